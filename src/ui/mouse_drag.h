// A drag by the left button in a window of ours. The keyboard stays where it is meanwhile, so the message loop looks for
// the key that takes a drag back. UI thread only.
#pragma once

#include <windows.h>

// The window gets the mouse until its button goes up. When it gets WM_CAPTURECHANGED before that, the drag is over: Esc
// was pressed, or another window has come to the front.
void MouseDragBegin(HWND window);
bool MouseDragIsMessage(const MSG& message);  // true for Esc, which takes the drag back
bool MouseDragIsTakenBack();                  // asked at WM_CAPTURECHANGED: by Esc
bool MouseDragCancel();                       // ends the drag; false when there is none
