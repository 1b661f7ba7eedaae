// Turns the text of `Editor.ini` into settings and back, in the order of the table in settings_schema.h. The disk, the
// system's INI functions and its data protection are passed in as functions. Pure.
#pragma once

#include "settings/settings_schema.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

// A key of the assistant in its protected form. A save writes this form again while the record holds `held`: the system
// protects a text differently each time, so a file without changes would change; and the record holds only a part of a
// key that another account has protected.
struct StoredKey {
    const SettingRow* row = nullptr;  // null: this entry is free
    std::wstring held;                // what the record holds for it
    std::wstring stored;              // the whole protected text
};
using StoredKeys = std::array<StoredKey, 2>;

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
void ParseSettings(const SettingsSource& source, Settings& settings, StoredKeys& keys);

struct SettingsTarget {
    // Returns the protected text of a key, of any length. Empty when it cannot be protected; the file then gets no key.
    std::function<std::wstring(const SettingRow& row, const wchar_t* clearText)> protect;
    const wchar_t* programFolder = L"";
    WindowPlace windowPlace;
};
// Returns the bytes of the whole file. `keys` gets the keys that were protected anew.
std::string ComposeSettings(const Settings& settings, StoredKeys& keys, const SettingsTarget& target);

// Calls `add` for each part of a protected text with the key under which it is stored.
void ForEachSecretPiece(const wchar_t* key, std::wstring_view stored,
                        const std::function<void(const std::wstring& key, std::wstring_view piece)>& add);
