#include "ui/menu_text.h"

#include "ui/scale.h"

#include <algorithm>
#include <cwctype>

MenuItemText SplitMenuText(std::wstring_view text) {
    const std::size_t tab = std::min(text.find(L'\t'), text.size());
    return {std::wstring(text.substr(0, tab)), std::wstring(text.substr(std::min(tab + 1, text.size())))};
}

std::wstring MenuNameShown(std::wstring_view name) {
    std::wstring shown;
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] == L'&' && ++at == name.size()) break;  // "&&" is one that is shown
        shown += name[at];
    }
    return shown;
}

bool MenuHasMnemonic(std::wstring_view name, wchar_t key) {
    const auto upper = [](wchar_t letter) { return std::towupper(static_cast<std::wint_t>(letter)); };
    for (std::size_t at = name.find(L'&'); at != std::wstring_view::npos && at + 1 < name.size();
         at = name.find(L'&', at + 2))  // "&&" is no mnemonic
        if (name[at + 1] != L'&' && upper(name[at + 1]) == upper(key)) return true;
    return false;
}

MenuMnemonic FindMenuMnemonic(std::span<const std::wstring> names, int selected, wchar_t key) {
    const int count = static_cast<int>(names.size());
    MenuMnemonic found;
    for (int step = 1; step <= count; ++step) {
        const int item = (selected + step) % count;
        if (!MenuHasMnemonic(names[static_cast<std::size_t>(item)], key)) continue;
        if (found.item >= 0) {
            found.alone = false;
            return found;
        }
        found = {.item = item, .alone = true};
    }
    return found;
}

MenuItemSize MenuItemSizeOf(bool separator, int name, int key, int lineHeight, int dpi) {
    constexpr int kKeyGap = 24;  // between text and key
    constexpr int kItemBlank = 8;
    constexpr int kSeparator = 7;
    if (separator) return {0, ScaledTo(kSeparator, dpi)};
    const int keyRoom = key > 0 ? ScaledTo(kKeyGap, dpi) + key : 0;
    return {ScaledTo(kMenuGutter + kMenuRight, dpi) + name + keyRoom, lineHeight + ScaledTo(kItemBlank, dpi)};
}
