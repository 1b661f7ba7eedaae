// The first lines of a file, or those around a line, beside the list of the file finder. Opens nothing. UI thread only.
#pragma once

#include "commands/quick_source.h"

#include <windows.h>

// What is to be shown. A document is shown at once, a file after TIMER_QUICK_PREVIEW of the window, read by a worker.
void QuickPreviewSelect(HWND window, const QuickPreview& what);
void QuickPreviewOnTimer(HWND window);
bool QuickPreviewOnText(WPARAM posted);  // MSG_QUICK_PREVIEW; true: it is to be drawn anew
void QuickPreviewDraw(HDC dc, const RECT& area);
void QuickPreviewForget(HWND window);
void QuickPreviewDrop(HWND window);  // frees what waits in the queue of the window
