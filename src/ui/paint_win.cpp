#include "ui/paint.h"

#include "base/handles.h"
#include "ui/dpi.h"

#include <algorithm>
#include <memory>
#include <vector>

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

// --- The bitmaps of BufferedPaint. A small one is kept for the next painting: under Wine each new one costs seven calls
// to the system, and a step of a resize paints fourteen windows.

constexpr int kKeptPixels = 64 * 1024;  // 256 kB

struct PaintBuffer {
    UniqueBitmap bitmap;
    UniqueMemoryDc dc;  // destroyed before the bitmap, which is selected into it
    HGDIOBJ oldBitmap = nullptr;
    SIZE size = {};
    bool used = false;
};
std::vector<std::unique_ptr<PaintBuffer>> g_buffers;  // one for each painting within another

void FreeBuffer(PaintBuffer& buffer) {
    if (buffer.dc) SelectObject(buffer.dc.Get(), buffer.oldBitmap);
    buffer.dc.Reset();
    buffer.bitmap.Reset();
    buffer.size = {};
}

// The buffer has at least this size afterwards. Returns false when there is no memory for it.
bool FitBuffer(PaintBuffer& buffer, HDC screen, SIZE size) {
    if (buffer.dc && buffer.size.cx >= size.cx && buffer.size.cy >= size.cy) return true;
    const SIZE both = {std::max(buffer.size.cx, size.cx), std::max(buffer.size.cy, size.cy)};
    const SIZE wanted = both.cx * both.cy <= kKeptPixels ? both : size;
    FreeBuffer(buffer);
    buffer.bitmap.Reset(CreateCompatibleBitmap(screen, wanted.cx, wanted.cy));
    if (!buffer.bitmap) return false;
    buffer.dc.Reset(CreateCompatibleDC(screen));
    if (!buffer.dc) return false;
    buffer.oldBitmap = SelectObject(buffer.dc.Get(), buffer.bitmap.Get());
    buffer.size = wanted;
    return true;
}

std::size_t FreeBufferIndex() {
    for (std::size_t i = 0; i < g_buffers.size(); ++i)
        if (!g_buffers[i]->used) return i;
    g_buffers.push_back(std::make_unique<PaintBuffer>());
    return g_buffers.size() - 1;
}

}  // namespace

BufferedPaint::BufferedPaint(HWND window) : window_(window) {
    screen_ = BeginPaint(window, &paint_);
    GetClientRect(window, &client_);
    if (screen_ == nullptr) return;
    const RECT& area = paint_.rcPaint;
    buffer_ = FreeBufferIndex();
    PaintBuffer& buffer = *g_buffers[buffer_];
    if (!FitBuffer(buffer, screen_, {std::max(area.right - area.left, 1L), std::max(area.bottom - area.top, 1L)}))
        return;
    buffer.used = true;
    memory_ = buffer.dc.Get();
    saved_ = SaveDC(memory_);
    SetWindowOrgEx(memory_, area.left, area.top, nullptr);
}

BufferedPaint::~BufferedPaint() {
    if (memory_ != nullptr) {
        const RECT& area = paint_.rcPaint;
        BitBlt(screen_, area.left, area.top, area.right - area.left, area.bottom - area.top, memory_, area.left,
               area.top, SRCCOPY);
        RestoreDC(memory_, saved_);
        PaintBuffer& buffer = *g_buffers[buffer_];
        buffer.used = false;
        if (buffer.size.cx * buffer.size.cy > kKeptPixels) FreeBuffer(buffer);
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
