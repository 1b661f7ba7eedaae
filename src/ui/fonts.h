// The font of the frame, and plain areas of colour. UI thread only.
#pragma once

#include <windows.h>

// The system's message font at the current DPI; owned here, valid until the next change of DPI.
HFONT UiFont();
void UiFontReset();

// Fills an area with one colour.
void FillArea(HDC dc, const RECT& area, COLORREF colour);
