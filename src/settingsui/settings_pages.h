// The pages of the settings dialog: for each setting its page, its control, its texts and its limits. The dialog is laid
// out from this table, so a setting that gets a line here appears by itself. Pure.
#pragma once

#include "settings/settings_schema.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

enum class SettingControl : std::uint8_t {
    Check,
    Number,
    Text,
    LongText,  // of several lines
    Choice,    // one of `choices`; the setting holds its number
    File,      // a path, with a button that browses and a mark that tells whether it is there
    Folder,
    Command,   // a command line
    Font,      // a list of the fonts that are installed
    Language,  // a list of the languages that have a file
    Colour,    // "#RRGGBB", or empty
    Secret,    // hidden until the user asks to see it
    Url,
    Model,       // a text, with a list that the service of the page is asked for
    Exceptions,  // the rules of the dialog for exceptions
    // What shows no setting:
    FixedFonts,   // a mark: the lists of fonts have only those of fixed pitch
    FontPreview,  // a text in the font and colours that are chosen
    CommandPreview,
    CompilerTest,    // runs the compiler
    DefaultProgram,  // makes the editor the one that opens the compiler's files, or takes that back
    Detect,          // searches for the compilers
    ConnectionTest,  // asks the service of the page whether it answers
    CopyKeys,        // copies the list of all keys
    SettingsFile,    // where the settings are kept
    Keys,            // the list of all keys
};

// A button that does something and holds no value.
constexpr bool SettingIsButton(SettingControl control) {
    return control == SettingControl::CompilerTest || control == SettingControl::DefaultProgram ||
           control == SettingControl::Detect || control == SettingControl::ConnectionTest ||
           control == SettingControl::CopyKeys;
}

struct SettingItem {
    const SettingRow* row = nullptr;   // null: shows no setting
    const wchar_t* heading = nullptr;  // begins a group of that name
    SettingControl control = SettingControl::Text;
    const wchar_t* label = L"";
    const wchar_t* help = L"";
    std::int32_t low = 0, high = 0;  // Number: what the user may type
    std::span<const wchar_t* const> choices;
    const SettingRow* beyond = nullptr;  // Number: the setting that gets what is more than `row` takes
    const wchar_t* group = L"";          // the heading of its group
    const wchar_t* words = L"";          // that the search finds it by, too
};

inline constexpr int kNoCompiler = -1;
struct SettingsPage {
    const wchar_t* title = L"";
    int compiler = kNoCompiler;  // CompilerId of a sub-page
    std::vector<SettingItem> items;
};

// In the order of the dialog. Built at the first call; UI thread.
const std::vector<SettingsPage>& SettingsPages();

// The settings that are on no page, because the program itself keeps them or because nothing uses them yet.
bool SettingIsKeptByProgram(const SettingRow& row);
