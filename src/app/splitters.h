// The bars between the panes. They move with the mouse and with keys; a double-click puts one where it is at a first
// start. UI thread only.
#pragma once

#include "app/layout.h"

#include <windows.h>

// The window of a bar, which is made when it is first wanted. Null: there is none.
HWND SplitterWindow(Splitter kind, bool wanted);
LRESULT CALLBACK SplitterProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// The grips, by which the mouse takes the bars, go where the bars are now, above all that was made since.
void SplittersPlaceGrips();
void SplittersTakeKeys();      // gives the keyboard to the first bar that is shown
void SplittersRestoreSizes();  // gives all panes their sizes of a first start
