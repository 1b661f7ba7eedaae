// The table of every setting: where it lives in the INI file, what type it has, what it is when it is not there, and
// within which limits. Load, save and reset walk it. Pure.
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
    Bool,  // any number but 0 reads as 1
    Int,
    List,  // numbered texts, as many as the count in another field says; `key` is a format with "%d"
};

// Parts of the file in the order in which they are loaded; between two of them the load does something else.
enum class SettingGroup : std::uint8_t {
    Compilers,
    Preferences,  // [Editor], [Project], [Colors], [Build], and the side bar of [AI]
    Assistant,    // [AI]
    Recent,       // [MRU]
    Window,       // what closes the file
};

enum SettingFlags : std::uint8_t {
    kSettingLoadOnly = 1,     // read, never written: does not survive a save
    kSettingSaveOnly = 2,     // written, never read
    kSettingSecret = 4,       // protected on disk
    kSettingExeRelative = 8,  // a path that is stored relative to the executable's folder
    kSettingLateSave = 16,    // written after the recent files
    kSettingLateClamp = 32,   // limits applied when everything is loaded
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
    std::size_t offset;         // of the field in Settings
    std::size_t capacity = 0;   // Text, List: characters of one text, terminator included
    std::int32_t number = 0;    // Bool, Int: default
    const wchar_t* text = L"";  // Text: default
    SettingLimits limits = {};
    std::uint8_t flags = 0;
    std::size_t countOffset = 0;  // List: of the field that holds the count
    std::int32_t rows = 0;        // List: capacity
    std::size_t rowCapacity = 0;  // List: characters of one row in Settings
    std::uint16_t effects = 0;    // SettingEffect bits: what a change of it means for what is shown
};

// In the order of the file's sections and keys.
std::span<const SettingRow> SettingRows();

std::int32_t ApplyLimits(const SettingLimits& limits, std::int32_t value);

std::int32_t& SettingNumber(Settings& settings, std::size_t offset);
std::int32_t SettingNumber(const Settings& settings, std::size_t offset);
wchar_t* SettingText(Settings& settings, const SettingRow& row, int index = 0);
const wchar_t* SettingText(const Settings& settings, const SettingRow& row, int index = 0);

// Every row's default.
void SettingsApplyDefaults(Settings& settings);
// Factory reset. On purpose not the defaults of the load: font size 11, tabs on, output font size 10, everything that
// is not named here 0 or empty.
void SettingsReset(Settings& settings);

void FillEmptyDescriptions(Settings& settings);
// Drops keys too short to be one, each with its service, and recomputes `aiEnabled`.
void CheckAssistantKeys(Settings& settings);
void UpdateAssistantEnabled(Settings& settings);

// Paths against a folder given with its trailing backslash. `in` and `out` may be the same buffer.
void ResolveAgainstFolder(const wchar_t* folder, const wchar_t* in, wchar_t* out, std::size_t capacity);
void MakeFolderRelative(const wchar_t* folder, const wchar_t* in, wchar_t* out, std::size_t capacity);
