// Painting that every window needs: in one go, and the few plain shapes of the frame. UI thread only.
#pragma once

#include "base/handles.h"

#include <windows.h>

#include <span>

// Answers WM_PAINT: what is drawn to Dc() goes to the screen as a whole at the end of the scope. Without memory for a
// bitmap it is drawn on the screen itself: better a flicker than nothing.
class BufferedPaint {
public:
    explicit BufferedPaint(HWND window);
    ~BufferedPaint();
    BufferedPaint(const BufferedPaint&) = delete;
    BufferedPaint& operator=(const BufferedPaint&) = delete;

    HDC Dc() const { return memory_ ? memory_.Get() : screen_; }
    const RECT& Client() const { return client_; }

private:
    HWND window_;
    PAINTSTRUCT paint_ = {};
    HDC screen_ = nullptr;
    RECT client_ = {};
    UniqueBitmap bitmap_;
    UniqueMemoryDc memory_;  // closed before the bitmap that is selected into it
    HGDIOBJ oldBitmap_ = nullptr;
};

void FillArea(HDC dc, const RECT& area, COLORREF colour);
void FillDot(HDC dc, const RECT& area, COLORREF colour);    // the ellipse in the area
void FrameArea(HDC dc, const RECT& area, COLORREF colour);  // its edge, one pixel wide
void DrawTriangle(HDC dc, const POINT (&corners)[3], COLORREF colour, bool filled = true);
void DrawStrokes(HDC dc, std::span<const POINT[2]> lines, COLORREF colour, int width);
void DrawPolyline(HDC dc, std::span<const POINT> points, COLORREF colour, int width);
// A triangle that points down in the middle of `width` pixels at the right end of the area.
void DrawDropArrow(HDC dc, const RECT& area, int width, COLORREF colour);

// `percentOfB` of the second colour in the first.
COLORREF MixColours(COLORREF a, COLORREF b, int percentOfB);
// For WM_CTLCOLOR...: text, its background and the brush that is answered.
LRESULT ControlColours(HDC dc, COLORREF text, COLORREF back);
