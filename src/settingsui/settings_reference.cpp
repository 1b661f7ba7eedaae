#include "settingsui/settings_reference.h"

#include "base/utf8.h"
#include "settingsui/settings_pages.h"

#include <algorithm>

namespace {

// A bar would end the cell.
std::string Cell(std::wstring_view text) {
    std::string cell = ToUtf8(text);
    for (std::size_t at = 0; (at = cell.find('|', at)) != std::string::npos; at += 2) cell.insert(at, 1, '\\');
    std::ranges::replace(cell, '\n', ' ');
    return cell;
}

std::string Code(std::wstring_view text) { return text.empty() ? std::string{} : "`" + Cell(text) + "`"; }

std::string KeyOf(const SettingRow& row) { return Code(L"[" + std::wstring(row.section) + L"] " + row.key); }

std::string DefaultOf(const SettingItem& item) {
    const SettingRow& row = *item.row;
    if (row.type == SettingType::Text) return Code(row.text);
    if (item.control == SettingControl::Check) return row.number != 0 ? "on" : "off";
    const auto choice = static_cast<std::size_t>(row.number);
    if (item.control == SettingControl::Choice && choice < item.choices.size()) return Cell(item.choices[choice]);
    if (item.control == SettingControl::Colour || item.control == SettingControl::Exceptions) return {};
    return std::to_string(row.number);
}

// What may be chosen, and what the setting does.
std::string MeaningOf(const SettingItem& item) {
    std::string text;
    if (item.control == SettingControl::Number && item.high > item.low)
        text = std::to_string(item.low) + " to " + std::to_string(item.high) + ". ";
    for (std::size_t i = 0; i < item.choices.size(); ++i)
        text += (i == 0 ? "" : ", ") + std::to_string(i) + ": " + Cell(item.choices[i]);
    if (!item.choices.empty()) text += ". ";
    text += Cell(item.help);
    while (text.ends_with(' ')) text.pop_back();
    return text;
}

void AppendPage(const SettingsPage& page, std::string* text) {
    const auto& items = page.items;
    if (std::ranges::none_of(items, [](const SettingItem& item) { return item.row != nullptr; })) return;
    *text += "\n## " + Cell(page.title) + "\n| setting | in Editor.ini | default | |\n|---|---|---|---|\n";
    for (const SettingItem& item : items) {
        if (item.row == nullptr) continue;
        *text += "| " + Cell(item.label) + " | " + KeyOf(*item.row);
        if (item.beyond != nullptr)
            *text += ", above " + std::to_string(item.row->limits.high) + " also " + KeyOf(*item.beyond);
        *text += " | " + DefaultOf(item) + " | " + MeaningOf(item) + " |\n";
    }
}

}  // namespace

std::string SettingsReference() {
    std::string text =
        "# Settings\n\nThe dialog (Ctrl+comma) changes all of these. They are kept in `Editor.ini` beside the program, "
        "or in the "
        "user's own folder where that one cannot be written. This page is made from the program's own table.\n";
    for (const SettingsPage& page : SettingsPages()) AppendPage(page, &text);
    return text;
}
