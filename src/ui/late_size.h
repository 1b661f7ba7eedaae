// Tells a pane its new size when the hand that drags a bar or the frame is still. UI thread only.
//
// A Rich Edit lays out its whole text again for each new size, also where it does not wrap. Under Wine this takes 0.1 ms
// a line: a pane with 15,000 lines stopped the window for 1.7 s at each step of a drag. Lists and trees are quick, but a
// scroll bar takes 2 to 4 ms under Wine for each time that it is drawn, and a window with all panes has nine.
// A step with all panes takes some 880 requests to the server of Wine where nothing waits, and 460 to 620 in a slow drag.
#pragma once

#include <windows.h>

enum class SizeWaits {
    Always,      // a Rich Edit
    InSlowDrag,  // only while the steps of the drag take longer than a frame
    Never,       // an editor: in a slow drag only its scroll bars wait
};
// The window itself has each new size at once: text beyond an edge is cut, and new room has the ground of the panes. In a
// slow drag scroll bars are a plain strip. A pane that was hidden or empty is told at once.
void SizeLate(HWND pane, SizeWaits waits);
// A Rich Edit shows the end of its text again after a new size when it did so before.
void SizeLateKeepsEnd(HWND pane);

// Something that nobody needs while the frame is dragged. Returns whether it waits: `later` is called then, once the hand is
// still. Otherwise the steps are quick, or it is no drag of the frame, and the caller does it now.
bool SizeWaitsWithFrame(void (*later)());

// The frame is about to give its panes new places.
void SizeStepBegins();
// The frame and its panes have their places. From the second step of a drag on they are painted at once: while the mouse
// moves the message queue is never empty, so that the panes would not be painted before the hand is still. Under Wine it
// also saves two requests to its server for each window.
void SizeStepPaint(HWND frame);
// The same, whatever was before.
void SizeStepPaintNow(HWND frame);
// All that the step has changed is painted, because the message queue is empty.
void SizeStepEnds();
