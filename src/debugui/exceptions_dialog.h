// The dialog in which the user says which exceptions are passed to the program and which stop it. Modal, UI thread only.
#pragma once

#include <windows.h>

// Changes and saves the setting when the user says OK.
void AskExceptionRules(HWND owner);
