// The current state of the program as the command table sees it, and what menus and tooltips make of it. UI thread.
#pragma once

#include "commands/command_table.h"

#include <windows.h>

#include <string>
#include <string_view>

CommandView CurrentCommandView();
// The pane, line or view other than an editor that has the keyboard and takes the Edit commands, or null.
HWND FocusedTextField();
// Enabled and checked state of every menu and toolbar command, now.
void MenuUpdateState();
// Enabled and checked of every item of a menu that is about to open.
void MenuApplyState(HMENU menu, const CommandView& view);

// "Save A&ll\tCtrl+Shift+S" -> "Save All (Ctrl+Shift+S)". Dots at the end go.
std::wstring CommandTipFromMenuText(std::wstring_view menuText);
