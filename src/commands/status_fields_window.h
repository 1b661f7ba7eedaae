// What the status bar does on clicks and keys. UI thread only.
#pragma once

#include "commands/status_bar_fit.h"

#include <windows.h>

// A message of the bar's window. True when it was handled.
bool StatusFieldsTake(HWND bar, UINT message, WPARAM wParam, LPARAM lParam);
int StatusFieldWithKeyboard();  // the part that the keys act on; -1 while the bar has not the keyboard
void StatusFieldsApplyTheme();  // to the tooltip, if there is one
