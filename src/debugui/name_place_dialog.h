// The dialog that gives a name to a place of the program's memory. Modal, UI thread only.
#pragma once

#include <windows.h>

// For the word at the caret of the active document, in the procedure around it.
void AskNameOfPlace(HWND owner);
