// The dialog that asks for a breakpoint's condition. Modal, UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Asks for the condition of a breakpoint at `place` ("steps.bas:12"): at most 128 characters that fit the engine's 63
// bytes of UTF-8; longer ones are refused in the dialog. `condition` (UTF-8) is the old one and the answer. False: cancelled.
bool AskCondition(HWND owner, const wchar_t* place, std::string* condition);
