#include "ui/paint.h"

#include "ui/dpi.h"

#include <algorithm>

namespace {

// The stock brush and pen take their colour from the device context and need not be created or freed.
HBRUSH StockBrush(HDC dc, COLORREF colour) {
    SetDCBrushColor(dc, colour);
    return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

// Selects a brush and a pen of one colour for a scope.
class ShapeColours {
public:
    ShapeColours(HDC dc, COLORREF colour, bool filled)
        : dc_(dc), oldBrush_(SelectObject(dc, filled ? StockBrush(dc, colour) : GetStockObject(NULL_BRUSH))) {
        SetDCPenColor(dc, colour);
        oldPen_ = SelectObject(dc, GetStockObject(DC_PEN));
    }
    ~ShapeColours() {
        SelectObject(dc_, oldPen_);
        SelectObject(dc_, oldBrush_);
    }
    ShapeColours(const ShapeColours&) = delete;
    ShapeColours& operator=(const ShapeColours&) = delete;

private:
    HDC dc_;
    HGDIOBJ oldBrush_;
    HGDIOBJ oldPen_ = nullptr;
};

}  // namespace

BufferedPaint::BufferedPaint(HWND window) : window_(window) {
    screen_ = BeginPaint(window, &paint_);
    GetClientRect(window, &client_);
    if (screen_ == nullptr) return;
    const RECT& area = paint_.rcPaint;
    bitmap_.Reset(CreateCompatibleBitmap(screen_, std::max<int>(area.right - area.left, 1),
                                         std::max<int>(area.bottom - area.top, 1)));
    if (bitmap_) memory_.Reset(CreateCompatibleDC(screen_));
    if (!memory_) return;
    oldBitmap_ = SelectObject(memory_.Get(), bitmap_.Get());
    SetWindowOrgEx(memory_.Get(), area.left, area.top, nullptr);
}

BufferedPaint::~BufferedPaint() {
    if (memory_) {
        const RECT& area = paint_.rcPaint;
        BitBlt(screen_, area.left, area.top, area.right - area.left, area.bottom - area.top, memory_.Get(), area.left,
               area.top, SRCCOPY);
        SelectObject(memory_.Get(), oldBitmap_);
    }
    EndPaint(window_, &paint_);
}

void FillArea(HDC dc, const RECT& area, COLORREF colour) { FillRect(dc, &area, StockBrush(dc, colour)); }

void FillDot(HDC dc, const RECT& area, COLORREF colour) {
    const ShapeColours colours(dc, colour, true);
    Ellipse(dc, area.left, area.top, area.right, area.bottom);
}

void FrameArea(HDC dc, const RECT& area, COLORREF colour) { FrameRect(dc, &area, StockBrush(dc, colour)); }

void DrawTriangle(HDC dc, const POINT (&corners)[3], COLORREF colour, bool filled) {
    const ShapeColours colours(dc, colour, filled);
    Polygon(dc, corners, 3);
}

void DrawStrokes(HDC dc, std::span<const POINT[2]> lines, COLORREF colour, int width) {
    const UniquePen pen(CreatePen(PS_SOLID, width, colour));
    const HGDIOBJ old = SelectObject(dc, pen.Get());
    for (const POINT(&line)[2] : lines) {
        MoveToEx(dc, line[0].x, line[0].y, nullptr);
        LineTo(dc, line[1].x, line[1].y);
    }
    SelectObject(dc, old);
}

void DrawPolyline(HDC dc, std::span<const POINT> points, COLORREF colour, int width) {
    const UniquePen pen(CreatePen(PS_SOLID, width, colour));
    const HGDIOBJ old = SelectObject(dc, pen.Get());
    Polyline(dc, points.data(), static_cast<int>(points.size()));
    SelectObject(dc, old);
}

void DrawDropArrow(HDC dc, const RECT& area, int width, COLORREF colour) {
    const int arm = UiScaled(4);
    const int middle = area.right - width / 2;
    const int top = (area.top + area.bottom - arm) / 2 + UiScaled(1);
    DrawTriangle(dc, {{middle - arm, top}, {middle + arm, top}, {middle, top + arm}}, colour);
}

UniqueBitmap PixelsNew(int width, int height, std::uint32_t** pixels) {
    BITMAPINFO info = {};
    info.bmiHeader = {.biSize = sizeof(BITMAPINFOHEADER),
                      .biWidth = width,
                      .biHeight = -height,
                      .biPlanes = 1,
                      .biBitCount = 32,
                      .biCompression = BI_RGB};
    return UniqueBitmap{CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, reinterpret_cast<void**>(pixels), nullptr, 0)};
}

COLORREF MixColours(COLORREF a, COLORREF b, int percentOfB) {
    const auto part = [=](int shift) {
        const int first = static_cast<int>(a >> shift & 0xFF), second = static_cast<int>(b >> shift & 0xFF);
        return static_cast<COLORREF>(first + (second - first) * percentOfB / 100) << shift;
    };
    return part(0) | part(8) | part(16);
}

LRESULT ControlColours(HDC dc, COLORREF text, COLORREF back) {
    SetTextColor(dc, text);
    SetBkColor(dc, back);
    return reinterpret_cast<LRESULT>(StockBrush(dc, back));
}
