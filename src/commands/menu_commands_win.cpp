// Walks over a menu. UI thread only.
#include "commands/menu_commands.h"

#include "commands/command_table.h"
#include "ui/menu_text.h"

#include <iterator>

namespace {

bool IsListed(int command) {
    const CommandRow* const row = FindCommand(command);
    return row != nullptr && row->place == CommandPlace::Menu && row->needs != kNever;
}

void AddCommands(HMENU menu, const std::wstring& path, std::vector<MenuCommand>& commands) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t text[256] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, static_cast<int>(std::size(text)), MF_BYPOSITION);
        const MenuItemText item = SplitMenuText(text);
        std::wstring name = MenuNameShown(item.name);
        while (name.ends_with(L'.')) name.pop_back();
        const auto id = static_cast<int>(GetMenuItemID(menu, i));
        if (const HMENU submenu = GetSubMenu(menu, i); submenu != nullptr)
            AddCommands(submenu, path + name + L" > ", commands);
        else if (IsListed(id))
            commands.push_back({.id = id, .path = path, .name = name, .keys = CommandKeys(id, item.key)});
    }
}

}  // namespace

std::vector<MenuCommand> MenuCommands(HMENU menu) {
    std::vector<MenuCommand> commands;
    AddCommands(menu, L"", commands);
    return commands;
}

std::wstring CommandMenuText(HMENU menu, int command) {
    wchar_t text[256] = {};
    GetMenuStringW(menu, static_cast<UINT>(command), text, static_cast<int>(std::size(text)), MF_BYCOMMAND);
    const std::wstring key = FirstExtraKeyOf(command);
    std::wstring shown = text;
    if (!shown.empty() && !key.empty() && shown.find(L'\t') == std::wstring::npos) shown += L"\t" + key;
    return shown;
}

std::wstring CommandKeys(int command, const std::wstring& shown) {
    std::wstring keys = MenuKeyIsOfAnother(command) ? L"" : shown;
    for (const ExtraKey& extra : ExtraKeys()) {
        const std::wstring name = NameOfExtraKey(extra);
        if (extra.command != command || name == shown) continue;
        keys += (keys.empty() ? L"" : L", ") + name;
    }
    return keys;
}
