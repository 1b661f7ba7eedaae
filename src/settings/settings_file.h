// Turns the text of `Editor.ini` into settings and back, in the order of the table in settings_schema.h. The disk, the
// system's INI functions and its data protection are passed in as functions. Pure.
#pragma once

#include "settings/settings_schema.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

// A key of the assistant that another account has protected. The record holds as much of the stored text as fits, so a
// save must write the whole text from here.
struct ForeignKey {
    const SettingRow* row = nullptr;  // null: this entry is free
    std::wstring stored;
};
using ForeignKeys = std::array<ForeignKey, 2>;

struct SettingsSource {
    // Return the stored value (see EncodeIniValue) or the number of a key, or the default when the key is missing.
    std::function<std::wstring(const wchar_t* section, const wchar_t* key, const wchar_t* defaultText)> text;
    std::function<int(const wchar_t* section, const wchar_t* key, int defaultNumber)> number;
    // Returns false, and leaves `out` unchanged, when `stored` is not protected or another account has protected it.
    std::function<bool(const wchar_t* stored, wchar_t* out, std::size_t capacity)> unprotect;
    std::function<bool(const wchar_t* path)> fileExists;
    const wchar_t* programFolder = L"";  // with its trailing backslash
};
// Reads everything but the recent sessions. Missing values get their defaults. Limits are applied, and paths of
// compilers that do not exist are emptied.
void ParseSettings(const SettingsSource& source, Settings& settings, ForeignKeys& foreign);

struct SettingsTarget {
    // Writes the protected text of a key to `out`. Returns false when it cannot be protected; the clear text is then
    // stored.
    std::function<bool(const SettingRow& row, const wchar_t* clearText, wchar_t* out, std::size_t capacity)> protect;
    const wchar_t* programFolder = L"";
    WindowPlace windowPlace;
};
// Returns the bytes of the whole file.
std::string ComposeSettings(const Settings& settings, const ForeignKeys& foreign, const SettingsTarget& target);

// True when `found` is the beginning of `whole`, as after a copy that broke off. Zeros at the end of `found` do not
// count, because the system may set the full length of a copy at once.
bool IsCutCopy(std::string_view found, std::string_view whole);
