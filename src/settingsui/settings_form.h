// What the settings dialog shows of the settings, as texts: "1" for a mark, "12" for a number or a choice, "#RRGGBB" for
// a colour. Every change and every check is made on these texts. Pure.
#pragma once

#include "settingsui/settings_pages.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// For an item without a setting the text is empty, and nothing is put.
std::wstring SettingItemText(const SettingItem& item, const Settings& settings);
void SettingItemPut(const SettingItem& item, std::wstring_view text, Settings& settings);
// Why the text cannot be taken, as a sentence; empty when it can.
std::wstring SettingItemProblem(const SettingItem& item, std::wstring_view text);
// The greatest length of the text in characters.
std::size_t SettingItemLongest(const SettingItem& item);
bool SettingIsStyle(const SettingItem& item);  // the editor style

// Whether all words of the query are in the page's title or in the item's texts, further words and key. Letter case does
// not count. An empty query matches everything.
bool SettingItemMatches(const SettingsPage& page, const SettingItem& item, std::wstring_view query);
// The lines that hold all words of the query.
std::vector<std::wstring> LinesFound(const std::vector<std::wstring>& lines, std::wstring_view query);
bool SettingsPageMatches(const SettingsPage& page, std::wstring_view query);  // any of its items

// The texts by page and item.
using FormTexts = std::vector<std::vector<std::wstring>>;
struct SettingsForm {
    FormTexts known;  // of the settings in force
    FormTexts texts;  // as the user has left them
};
struct FormPlace {
    std::size_t page = 0, item = 0;
};

SettingsForm FormOf(const Settings& settings);
// Takes over settings that have changed elsewhere. Edited texts stay.
void FormRenew(SettingsForm& form, const Settings& settings);
// The user has given this text. A style brings its font along.
void FormSetText(SettingsForm& form, FormPlace place, std::wstring text);
bool FormItemIsEdited(const SettingsForm& form, FormPlace place);
bool FormIsEdited(const SettingsForm& form);
// The first edited text that cannot be taken. A text that the user has not touched is no reason to refuse the others.
std::optional<FormPlace> FormFirstProblem(const SettingsForm& form);
// Puts the edited texts into the settings, and leaves all others alone.
void FormPut(const SettingsForm& form, Settings& settings);

// "#RRGGBB" of a COLORREF, and back; nothing for any other text.
std::wstring ColourText(std::int32_t colour);
std::optional<std::int32_t> ColourOfText(std::wstring_view text);
