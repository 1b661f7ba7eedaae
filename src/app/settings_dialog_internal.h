// What the files of the settings dialog share. UI thread only.
#pragma once

#include "app/settings_form.h"
#include "base/handles.h"
#include "base/worker.h"
#include "resources/ids.h"

#include <windows.h>

#include <string>
#include <vector>

// The controls of an item, by their place among its SETTINGS_PARTS numbers.
enum SettingsPart { kPartField, kPartLabel, kPartButton, kPartNote, kPartHeading, kPartCount };

// What is told below a field. In the order of their claims to the place: a problem, what was seen, the help.
enum class NoteKind : std::uint8_t { Help, Good, Bad };
struct ItemWindows {
    HWND parts[kPartCount] = {};  // null: the item has none
    bool shown = true;            // it matches the search
    std::wstring seen;            // what a look or a test has found; empty: nothing
    NoteKind seenKind = NoteKind::Help;
    NoteKind noteKind = NoteKind::Help;  // of what the note tells now
};

struct PageWindow {
    HWND window = nullptr;  // made when the page is first shown
    std::vector<ItemWindows> items;
    int scroll = 0;  // pixels
    int height = 0;  // of everything on it, in pixels
};

struct SettingsDialog {
    HWND window = nullptr;
    SettingsForm form;
    std::vector<PageWindow> pages;
    std::size_t page = 0;             // the one that is shown
    std::vector<std::size_t> listed;  // the pages in the list, which match the search
    std::wstring query;
    bool filling = false;  // controls get texts: their notifications are no changes of the user
    bool fixedFonts = true;
    UniqueFont bold, preview;
    Worker look;   // for a path on the network
    Worker test;   // runs a compiler
    Worker fetch;  // asks a service for its models
};

inline const SettingItem& ItemAt(FormPlace place) { return SettingsPages()[place.page].items[place.item]; }
inline ItemWindows& WindowsAt(SettingsDialog& dialog, FormPlace place) {
    return dialog.pages[place.page].items[place.item];
}
inline std::wstring& TextAt(SettingsDialog& dialog, FormPlace place) {
    return dialog.form.texts[place.page][place.item];
}

// --- settings_dialog_page_win.cpp
bool SettingsPageMake(SettingsDialog& dialog, std::size_t page);   // once; false when the window cannot be made
void SettingsPagePlace(SettingsDialog& dialog, std::size_t page);  // its controls, by its size and the search
void SettingsPageReveal(SettingsDialog& dialog, FormPlace place);  // scrolls until the item is seen
void SettingsNoteRenew(SettingsDialog& dialog, FormPlace place);
COLORREF SettingsNoteColour(NoteKind kind);
// --- settings_dialog_fields_win.cpp
void SettingsFieldMake(SettingsDialog& dialog, FormPlace place, HWND parent, const std::wstring& label);
void SettingsFieldShow(SettingsDialog& dialog, FormPlace place);  // the text of the form in its control
// `chosen`: the user has just taken a line of its list.
std::wstring SettingsFieldText(SettingsDialog& dialog, FormPlace place, bool chosen);
void SettingsFieldPress(SettingsDialog& dialog, FormPlace place);  // the button beside it
void SettingsFieldDraw(SettingsDialog& dialog, FormPlace place, const DRAWITEMSTRUCT& draw);
void SettingsFontsFill(SettingsDialog& dialog, std::size_t page);  // the lists of fonts of a page
// --- settings_dialog_tools_win.cpp
struct PathSight {
    FormPlace place;
    std::wstring text;  // that was looked for
    bool found = false;
};
struct CompilerReply {
    FormPlace place;
    std::wstring text;
    bool good = false;
};
void SettingsLookForPath(SettingsDialog& dialog, FormPlace place);  // ends in SettingsOnLooked
void SettingsOnLooked(SettingsDialog& dialog, const PathSight& sight);
void SettingsTestCompiler(SettingsDialog& dialog, FormPlace place);  // ends in MSG_SETTINGS_TESTED
void SettingsOnTested(SettingsDialog& dialog, const CompilerReply& reply);
struct ModelsReply {
    FormPlace place;
    bool fetched = false;
    unsigned status = 0;  // of HTTP; 0: no reply came
    std::vector<std::wstring> names;
};
void SettingsFetchModels(SettingsDialog& dialog, FormPlace place);  // ends in MSG_SETTINGS_MODELS
void SettingsOnModels(SettingsDialog& dialog, const ModelsReply& reply);
void SettingsNoteTell(SettingsDialog& dialog, FormPlace place, const std::wstring& text, NoteKind kind);
void SettingsDetectCompilers(SettingsDialog& dialog, FormPlace place);
std::vector<std::wstring> SettingsKeyLines();  // "Save\tCtrl+S"
// --- settings_dialog_win.cpp
void SettingsItemChanged(SettingsDialog& dialog, FormPlace place);  // its text in the form has changed
