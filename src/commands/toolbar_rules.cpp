#include "commands/toolbar_rules.h"

#include "base/texts.h"

#include <algorithm>

namespace {

bool IsButtonWanted(const ButtonRow& row, std::uint32_t conditions) {
    return row.shownWhen == kShownAlways || ((conditions & row.shownWhen) != 0 && (conditions & row.hiddenWhen) == 0);
}

struct CommandText {
    std::wstring name;  // without the mark of its mnemonic and the dots at its end
    std::wstring key;   // empty: none
};

CommandText CommandTextOf(std::wstring_view menuText, std::wstring_view key) {
    const std::size_t tab = menuText.find(L'\t');
    CommandText command = {.name = {}, .key = std::wstring(tab == menuText.npos ? key : menuText.substr(tab + 1))};
    for (std::size_t i = 0; i < std::min(tab, menuText.size()); ++i) {
        if (menuText[i] == L'&' && i + 1 < menuText.size()) ++i;  // "&&" gives one &
        command.name += menuText[i];
    }
    while (command.name.ends_with(L'.')) command.name.pop_back();
    return command;
}

}  // namespace

ToolbarShare ShareToolbar(std::span<const ButtonRow> rows, std::uint32_t conditions, int room,
                          const std::function<int(const ButtonRow&)>& width,
                          const std::function<std::wstring(const ButtonRow&)>& text) {
    const std::span<const ButtonRow> buttons = rows.first(rows.size() - 1);
    std::vector<BarItem> items;
    for (const ButtonRow& row : buttons)
        items.push_back({width(row), row.rank, IsButtonWanted(row, conditions), row.command == 0});
    const BarFit fit = FitToolbar(items, room, width(rows.back()));
    ToolbarShare share = {.shown = fit.shown, .more = fit.more, .hidden = {}};
    for (std::size_t i = 0; i < items.size(); ++i) {
        const ButtonRow& row = buttons[i];
        if (row.command == 0 && !share.hidden.empty() && share.hidden.back().command != 0) share.hidden.emplace_back();
        if (items[i].wanted && !items[i].gap && !fit.shown[i])
            share.hidden.push_back({row.command, row.icon, row.showsState, text(row)});
    }
    if (!share.hidden.empty() && share.hidden.back().command == 0) share.hidden.pop_back();
    return share;
}

std::wstring CommandTip(std::wstring_view menuText, std::wstring_view key) {
    const CommandText command = CommandTextOf(menuText, key);
    return command.key.empty() ? command.name : command.name + L" (" + command.key + L")";
}

std::wstring CommandItem(std::wstring_view menuText, std::wstring_view key) {
    const CommandText command = CommandTextOf(menuText, key);
    std::wstring item;
    for (const wchar_t c : command.name) item.append(c == L'&' ? 2 : 1, c);
    return command.key.empty() ? item : item + L"\t" + command.key;
}

IconInks ToolbarInks(bool dark, bool enabled) {
    if (!enabled) {
        const std::uint32_t grey = dark ? 0x5C6068 : 0xB4BAC6;
        const std::uint32_t fill = dark ? 0x2A2D33 : 0xF1F3F9;
        return {.line = grey, .accent = grey, .go = grey, .stop = grey, .fill = fill};
    }
    if (dark) return {.line = 0xC8CCD4, .accent = 0x6CB2F5, .go = 0x6CC77A, .stop = 0xF07470, .fill = 0x33373E};
    return {.line = 0x4A5468, .accent = 0x1F6FD0, .go = 0x238A3A, .stop = 0xCC3A33, .fill = 0xFFFFFF};
}

IconInks HighContrastInks(const SystemColours& colours, bool enabled) {
    const Rgb ink = enabled ? colours.faceText : colours.greyText;
    return {.line = ink, .accent = ink, .go = ink, .stop = ink, .fill = colours.face};
}

std::vector<CompilerMenuRow> CompilerMenuRows(int activeCompiler, int profile, bool canBuildAll,
                                              const CompilerProbe& installed) {
    std::vector<CompilerMenuRow> rows;
    for (std::uint32_t id = 0; id < kCompilerCount; ++id)
        rows.push_back({.command = Profile(id).command,
                        .text = CompilerLabel(id, installed(id)),
                        .checked = static_cast<int>(id) == activeCompiler});
    rows.emplace_back();
    constexpr const wchar_t* kProfiles[] = {English(L"Profile: Debug"), English(L"Profile: Release"),
                                            English(L"Profile: Fast")};
    for (int i = 0; i < 3; ++i)
        rows.push_back({.command = IDM_PROFILE_DEBUG + i, .text = Text(kProfiles[i]), .checked = i == profile});
    rows.emplace_back();
    rows.push_back({.command = IDM_BUILD_ALL, .text = Text(L"Build All Open Sources"), .enabled = canBuildAll});
    return rows;
}
