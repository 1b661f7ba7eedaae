// The table of all settings: for each its place in the INI file, its type, its default and its limits. Load, save and
// reset follow it. Pure.
#pragma once

#include "settings/settings.h"
#include "settings/settings_effects.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>

enum class SettingType : std::uint8_t {
    Text,
    Bool,  // any number but 0 is read as 1
    Int,
    List,  // numbered texts; another field has their count, and `key` is a format with "%d"
};

// The parts of the file in the order in which they are loaded. Between them the load does other steps.
enum class SettingGroup : std::uint8_t {
    Compilers,
    Preferences,  // [Editor], [Project], [Colors], [Build], and the side bar in [AI]
    Assistant,    // [AI]
    Recent,       // [MRU]
    Window,       // [Window], and AutoSaveEnabled in [Editor]
};

enum SettingFlags : std::uint8_t {
    kSettingLoadOnly = 1,      // read, never written; a save drops it
    kSettingSaveOnly = 2,      // written, never read
    kSettingSecret = 4,        // protected on disk
    kSettingExeRelative = 8,   // a path, stored relative to the executable's folder
    kSettingLateSave = 16,     // written after the recent files
    kSettingLateClamp = 32,    // its limits are applied after everything is loaded
    kSettingUnlessEmpty = 64,  // a text that is written only when it is not empty
};

// A value below `low` becomes `below`, one above `high` becomes `above`.
struct SettingLimits {
    std::int32_t low = std::numeric_limits<std::int32_t>::min();
    std::int32_t high = std::numeric_limits<std::int32_t>::max();
    std::int32_t below = 0;
    std::int32_t above = 0;
};

struct SettingRow {
    SettingGroup group;
    const wchar_t* section;
    const wchar_t* key;
    SettingType type;
    std::size_t offset;         // bytes, of the field in Settings
    std::size_t capacity = 0;   // Text, List: characters of one text, terminator included
    std::int32_t number = 0;    // Bool, Int: default
    const wchar_t* text = L"";  // Text: default
    SettingLimits limits = {};
    std::uint8_t flags = 0;
    std::size_t countOffset = 0;  // List: bytes, of the field with the count
    std::int32_t rows = 0;        // List: the greatest count
    std::size_t rowCapacity = 0;  // List: characters of one text in Settings, terminator included
    std::uint16_t effects = 0;    // SettingEffect bits: the effects of a change
};

// All rows, in the order of the file's sections and keys.
std::span<const SettingRow> SettingRows();

std::int32_t ApplyLimits(const SettingLimits& limits, std::int32_t value);

// The number at an offset in the record, and the text of a row. `index`, below `rows`, selects the text of a List.
std::int32_t& SettingNumber(Settings& settings, std::size_t offset);
std::int32_t SettingNumber(const Settings& settings, std::size_t offset);
wchar_t* SettingText(Settings& settings, const SettingRow& row, int index = 0);
const wchar_t* SettingText(const Settings& settings, const SettingRow& row, int index = 0);

// Sets every field that has a row to its default.
void SettingsApplyDefaults(Settings& settings);
// The factory reset. Its values differ from the defaults on purpose: font size 11, tabs on, output font size 10, and 0
// or empty for every setting that is not named in it.
void SettingsReset(Settings& settings);

// Gives the compilers without a description the built-in one.
void FillEmptyDescriptions(Settings& settings);
// Empties keys that are too short to be valid, switches their services off, and recomputes `aiEnabled`.
void CheckAssistantKeys(Settings& settings);
void UpdateAssistantEnabled(Settings& settings);

// Make a path absolute, or relative, against a folder that is given with its trailing backslash. `capacity` counts wide
// characters, the terminator included. `in` and `out` may be the same buffer.
void ResolveAgainstFolder(const wchar_t* folder, const wchar_t* in, wchar_t* out, std::size_t capacity);
void MakeFolderRelative(const wchar_t* folder, const wchar_t* in, wchar_t* out, std::size_t capacity);
