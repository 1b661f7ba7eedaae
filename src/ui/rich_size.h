// Tells a Rich Edit pane its new size when the hand that drags a bar or the frame is still. UI thread only.
//
// The control lays out its whole text again for each new size, also where it does not wrap. Under Wine this takes 0.1 ms
// a line, and the scroll bars are drawn four times: a pane with 15,000 lines stopped the window for 1.7 s at each step
// of a drag.
#pragma once

#include <windows.h>

// The window itself has each new size at once: its scroll bars stand at its edges, and text beyond an edge is cut. A pane
// that was hidden or empty is told at once.
void RichSizeLate(HWND pane);
// The pane shows the end of its text again after a new size when it did so before.
void RichSizeKeepsEnd(HWND pane);
