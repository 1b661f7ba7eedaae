// Painting without flicker, and the plain shapes of the frame. Areas do not include their right and lower edges. UI
// thread only.
#pragma once

#include "base/handles.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>

// Answers WM_PAINT. What is drawn on Dc(), in the window's coordinates, is copied to the screen at the end of the scope.
// Only Area() is copied, so what lies outside of it need not be drawn. When there is no memory for a bitmap, Dc() is the
// screen itself.
class BufferedPaint {
public:
    explicit BufferedPaint(HWND window);
    ~BufferedPaint();
    BufferedPaint(const BufferedPaint&) = delete;
    BufferedPaint& operator=(const BufferedPaint&) = delete;

    HDC Dc() const { return memory_ != nullptr ? memory_ : screen_; }
    const RECT& Client() const { return client_; }
    const RECT& Area() const { return paint_.rcPaint; }

private:
    HWND window_;
    PAINTSTRUCT paint_ = {};
    HDC screen_ = nullptr;
    RECT client_ = {};
    HDC memory_ = nullptr;  // of the buffer in `paint_win.cpp` that this one has taken
    int saved_ = 0;         // the state of `memory_` before
    std::size_t buffer_ = 0;
};

void FillArea(HDC dc, const RECT& area, COLORREF colour);
void FillDot(HDC dc, const RECT& area, COLORREF colour);    // the ellipse that fills the area
void FrameArea(HDC dc, const RECT& area, COLORREF colour);  // the edge of the area, one pixel wide
void DrawTriangle(HDC dc, const POINT (&corners)[3], COLORREF colour, bool filled = true);
void DrawStrokes(HDC dc, std::span<const POINT[2]> lines, COLORREF colour, int width);
void DrawPolyline(HDC dc, std::span<const POINT> points, COLORREF colour, int width);
// A triangle that points down, in the middle of the last `width` pixels of the area.
void DrawDropArrow(HDC dc, const RECT& area, int width, COLORREF colour);

// A picture of 32 bits for each pixel, top row first; `pixels` lives as long as it. Null without memory.
UniqueBitmap PixelsNew(int width, int height, std::uint32_t** pixels);

// Mixes the colours: `percentOfB` per cent of `b`, the rest of `a`.
COLORREF MixColours(COLORREF a, COLORREF b, int percentOfB);
// Sets both colours and returns the background's brush, which is the answer to WM_CTLCOLOR... messages.
LRESULT ControlColours(HDC dc, COLORREF text, COLORREF back);
