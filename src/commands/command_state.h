// Collects the state of the program for the command table and applies the table's answers to menus and toolbar. UI
// thread only.
#pragma once

#include "commands/command_table.h"

#include <windows.h>

CommandView CurrentCommandView();
// Enables and checks every command of the main menu and the toolbar by the current state.
void MenuUpdateState();
// Puts the keys of commands beside the items whose texts name none, of a menu that is about to open.
void MenuShowKeys(HMENU menu);
// Enables and checks the items of a menu that is about to open.
void MenuApplyState(HMENU menu, const CommandView& view);
