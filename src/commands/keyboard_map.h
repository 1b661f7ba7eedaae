// The keyboard map: every command that has a key, and the keys of the editor itself. UI thread only.
#pragma once

#include <windows.h>

void KeyboardMapShow(HWND owner);  // modal; a chosen command is posted to the main window
