// The commands as the main menu names them, with all their keys. UI thread only.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct MenuCommand {
    int id = 0;
    std::wstring path;  // the menus that lead to it, "Compiler > Build Profile > "
    std::wstring name;  // without the dots of a dialog
    std::wstring keys;  // "F8, F4"; empty: it has none
};
// Every command of the table that is in the menu, in its order: neither recent files and sessions, which stand in the menu
// only from its first opening on, nor the line that is there for none.
std::vector<MenuCommand> MenuCommands(HMENU menu);
// The text of a command in the menu, with its key: "&Save\tCtrl+S". Empty: the menu has not the command.
std::wstring CommandMenuText(HMENU menu, int command);
// The keys of a command: the one that the menu shows, and those that it does not.
std::wstring CommandKeys(int command, const std::wstring& shown = {});
