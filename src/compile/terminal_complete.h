// Completes file names in the terminal line. A worker lists the folder, because it may be on a share. UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Tab in the line: shows the next name that fits, seen from the folder, or lists the names first.
void TerminalComplete(HWND window, const std::wstring& folder, bool forward);
void TerminalOnNames(HWND window, WPARAM wParam);  // MSG_TERMINAL_NAMES
