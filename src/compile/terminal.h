// The terminal line: Enter runs the text as a command, its output in the output pane. UI thread only.
#pragma once

#include <windows.h>

LRESULT CALLBACK TerminalSubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR data);
