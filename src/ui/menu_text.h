// The texts of menu items: name, key and mnemonic. Pure.
#pragma once

#include <span>
#include <string>
#include <string_view>

struct MenuItemText {
    std::wstring name, key;  // "&Save", "Ctrl+S"
};
// Of "&Save\tCtrl+S".
MenuItemText SplitMenuText(std::wstring_view text);
// The name without the marks of its mnemonic.
std::wstring MenuNameShown(std::wstring_view name);
bool MenuHasMnemonic(std::wstring_view name, wchar_t key);

struct MenuMnemonic {
    int item = -1;       // -1: no item has the mnemonic
    bool alone = false;  // no other item has it, so it is carried out; otherwise it is only selected
};
// The item that a typed key means, after the selected one (-1: none).
MenuMnemonic FindMenuMnemonic(std::span<const std::wstring> names, int selected, wchar_t key);
