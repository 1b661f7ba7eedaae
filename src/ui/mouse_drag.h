// A drag by the left button in a window of ours. The keyboard stays where it is meanwhile, so the message loop looks for
// the key that takes a drag back. UI thread only.
#pragma once

#include <windows.h>

// The window gets the mouse until its button goes up. When it gets WM_CAPTURECHANGED before that, it puts everything as
// it was before the drag.
void MouseDragBegin(HWND window);
bool MouseDragIsMessage(const MSG& message);  // true for Esc, which takes the drag back
bool MouseDragCancel();                       // false when there is no drag
