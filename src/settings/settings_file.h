// What `Editor.ini` holds: from the settings to its text and back, in the order of the table in settings_schema.h. Knows
// neither the disk nor the system's INI functions nor its data protection; those come as functions. Pure.
#pragma once

#include "settings/settings_schema.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

// Keys that another account protected: the record holds the stored text as far as it fits, and a save must not put that
// cut text over the whole one.
struct ForeignKey {
    const SettingRow* row = nullptr;  // null: this place is free
    std::wstring stored;
};
using ForeignKeys = std::array<ForeignKey, 2>;

struct SettingsSource {
    // A stored value (see EncodeIniValue) and a number, or the default when the key is not there.
    std::function<std::wstring(const wchar_t* section, const wchar_t* key, const wchar_t* defaultText)> text;
    std::function<int(const wchar_t* section, const wchar_t* key, int defaultNumber)> number;
    // False: `stored` is not protected, or by another account; `out` is then as it was.
    std::function<bool(const wchar_t* stored, wchar_t* out, std::size_t capacity)> unprotect;
    std::function<bool(const wchar_t* path)> fileExists;
    const wchar_t* programFolder = L"";  // with its trailing backslash
};
// Everything but the recent sessions. What the source does not have gets its default. Limits are applied, and paths to
// compilers that do not exist go.
void ParseSettings(const SettingsSource& source, Settings& settings, ForeignKeys& foreign);

struct SettingsTarget {
    // Writes the protected text of a key. False: it cannot be protected, and is stored as it is.
    std::function<bool(const SettingRow& row, const wchar_t* clearText, wchar_t* out, std::size_t capacity)> protect;
    const wchar_t* programFolder = L"";
    WindowPlace windowPlace;
};
// The bytes of the whole file.
std::string ComposeSettings(const Settings& settings, const ForeignKeys& foreign, const SettingsTarget& target);

// True when `found` is nothing but the beginning of `whole`: a copy that broke off. The system may have given the copy its
// full length at once: zeros stand then for what is missing.
bool IsCutCopy(std::string_view found, std::string_view whole);
