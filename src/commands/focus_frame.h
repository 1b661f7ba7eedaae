// The frame around what has the keyboard in a bar. UI thread only.
#pragma once

#include "ui/chrome.h"
#include "ui/paint.h"

inline void DrawFocusFrame(HDC dc, const RECT& area) {
    const COLORREF colour = ThemeCurrentChrome().accent;
    FillArea(dc, {area.left, area.top, area.right, area.top + 1}, colour);
    FillArea(dc, {area.left, area.bottom - 1, area.right, area.bottom}, colour);
    FillArea(dc, {area.left, area.top, area.left + 1, area.bottom}, colour);
    FillArea(dc, {area.right - 1, area.top, area.right, area.bottom}, colour);
}
