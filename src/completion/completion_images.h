// The small images before the rows of the completion list. UI thread only.
#pragma once

#include "completion/completion_rows.h"

#include <windows.h>

// Draws the image of a kind as a square of `size` pixels, on a background of that colour.
void CompletionImageDraw(HDC dc, POINT at, int size, RowKind kind, COLORREF back);
