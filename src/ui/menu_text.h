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

// The size of an item in a pop-up menu, in pixels.
struct MenuItemSize {
    int width = 0, height = 0;
};
// `name` and `key` are the widths of the texts; 0: there is no key.
MenuItemSize MenuItemSizeOf(bool separator, int name, int key, int lineHeight, int dpi);
// Lengths at 96 dpi that the drawing of an item uses too.
inline constexpr int kMenuGutter = 28;  // left of the text, for marks and pictures
inline constexpr int kMenuRight = 26;   // right of the text, for the arrow of a submenu
