// What the Edit commands would do to the window that has the keyboard when that is not an editor. UI thread only.
#pragma once

#include <windows.h>

#include <cstdint>

// The window with the keyboard when it takes the Edit commands instead of the editor: a text pane, an input line, or a
// window of the debug pane. Null for any other window.
HWND EditTargetNow();
// The conditions (CommandCondition) that hold for the Edit commands there.
std::uint32_t EditTargetConditions(HWND target);
// Carries out an Edit command there (IDM_EDIT_...).
void EditTargetDo(HWND target, int command);
