// Puts procedures of ours before the own procedure of a control. UI thread only.
//
// The system's SetWindowSubclass does the same, but finds its list by a window property at each message, twice. The list
// here is in the process. Under Wine each look at a property asks the server, which made up a fifth of a start.
#pragma once

#include <windows.h>

using SubclassProc = LRESULT(CALLBACK*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data);

// Adds the procedure; the last one added gets the messages first. When it is there already, only its `data` is renewed.
// Returns false on a failure. A procedure need not be removed before the window is destroyed.
bool SubclassAdd(HWND window, SubclassProc proc, DWORD_PTR data = 0);
void SubclassRemove(HWND window, SubclassProc proc);

// Called by such a procedure: passes the message to the one added before it, or to the control.
LRESULT CALLBACK SubclassNext(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
