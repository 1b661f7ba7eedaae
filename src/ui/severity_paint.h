// Draws the signs of errors and warnings (ui/severity_sign.h) on the screen. UI thread only.
#pragma once

#include <windows.h>

// `at` is the upper left corner, `size` the edge in pixels.
void DrawSeveritySign(HDC dc, POINT at, int size, bool error, COLORREF colour, COLORREF inside);
