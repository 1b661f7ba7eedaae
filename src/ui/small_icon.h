// The program's icon in the caption of a window. UI thread only.
#pragma once

#include <windows.h>

// Shows the icon in the size for the DPI of the window (WindowDpi), in place of the one from before.
void SmallIconShow(HWND window);
void SmallIconDrop(HWND window);  // the window is destroyed
