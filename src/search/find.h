// Find and replace in the active document. UI thread only.
#pragma once

#include <windows.h>

void FindDialogShow(HWND owner, bool replace);
// True when the message belonged to the open find dialog; the message loop asks before anything else.
bool FindDialogIsMessage(MSG* message);
