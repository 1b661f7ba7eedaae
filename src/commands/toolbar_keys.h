// The toolbar by keyboard: F6 leads to it, the arrows move between its buttons, Enter presses one. UI thread only.
#pragma once

#include <windows.h>

// A message of the bar's window. True when it was handled.
bool ToolbarKeysTake(HWND bar, UINT message, WPARAM key);
