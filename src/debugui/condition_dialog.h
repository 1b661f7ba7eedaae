// The dialog that asks for a breakpoint's condition. Modal, UI thread only.
#pragma once

#include "debugger/named_places.h"

#include <windows.h>

#include <span>
#include <string>

// Asks for the condition of the breakpoint at `place` ("steps.bas:12"). The dialog takes at most 128 characters and
// refuses what exceeds the engine's 63 bytes of UTF-8. `condition` (UTF-8) holds the old one, and the new one
// afterwards. `names` are those that count there. False: cancelled.
bool AskCondition(HWND owner, const wchar_t* place, std::span<const NamedPlace> names, std::string* condition);
