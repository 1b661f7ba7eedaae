// Shows the context menus of the windows whose commands are in the command table. UI thread only.
#pragma once

#include <windows.h>

// Answers WM_CONTEXTMENU of the main window, which children pass on. `screen` is (-1, -1) when it came from the keyboard.
// False: the window has no such menu.
bool ContextMenuShow(HWND window, POINT screen);
