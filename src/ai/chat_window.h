// The window of the chat: its keys and its context menu. UI thread only.
#pragma once

#include <windows.h>

// For a control that was just created.
void ChatWindowInit(HWND chat);
// Gives it the keyboard for reading: a caret that is out of view comes into it, so that the view does not jump.
void ChatWindowFocus();
