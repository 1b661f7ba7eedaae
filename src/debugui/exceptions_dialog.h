// The dialog in which the user says which exceptions are passed to the program and which stop it. Modal, UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Lets the user change rules in the form of the setting. False when he cancels; `setting` is then unchanged.
bool EditExceptionRules(HWND owner, std::wstring& setting);
// Changes and saves the setting when the user says OK.
void AskExceptionRules(HWND owner);
