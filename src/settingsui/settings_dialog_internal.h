// What the files of the settings dialog share. UI thread only.
#pragma once

#include "base/handles.h"
#include "base/worker.h"
#include "resources/ids.h"
#include "settingsui/settings_form.h"
#include "ui/scale.h"

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
    std::vector<std::wstring> labels;  // of the items, with their mnemonics
    std::size_t made = 0;              // so many items have their controls: those that are in view, at first
    bool complete = false;             // all have them, and the lists of fonts are filled
    int scroll = 0;                    // pixels
    int height = 0;                    // of everything on it, in pixels
};

struct SettingsDialog {
    HWND window = nullptr;
    SettingsForm form;
    std::vector<PageWindow> pages;
    std::size_t page = 0;             // the one that is shown
    std::vector<std::size_t> listed;  // the pages in the list, which match the search
    std::wstring query;
    bool pageChosen = false;             // by the user, since the dialog was opened
    std::vector<std::wstring> keyLines;  // SettingsKeyLines, once they are needed
    bool filling = false;                // controls get texts: their notifications are no changes of the user
    bool fixedFonts = true;
    int dpi = 96;        // of the monitor on which the dialog is
    int textHeight = 1;  // of a line in `font`, in pixels
    UniqueFont font, bold, preview;
    Worker look;          // for a path on the network
    Worker test;          // runs a compiler
    Worker fetch;         // asks a service for its models
    bool asking = false;  // and its reply has not come

    int Px(int length) const { return ScaledTo(length, dpi); }  // a length at 96 dpi in pixels
};

inline const SettingItem& ItemAt(FormPlace place) { return SettingsPages()[place.page].items[place.item]; }
inline ItemWindows& WindowsAt(SettingsDialog& dialog, FormPlace place) {
    return dialog.pages[place.page].items[place.item];
}
inline std::wstring& TextAt(SettingsDialog& dialog, FormPlace place) {
    return dialog.form.texts[place.page][place.item];
}

// --- settings_dialog_page_win.cpp
bool SettingsPageMake(SettingsDialog& dialog, std::size_t page);  // once; false when the window cannot be made
// What a page can do without while it is painted for the first time; a timer of the page asks for it afterwards.
void SettingsPageComplete(SettingsDialog& dialog, std::size_t page);
void SettingsPagePlace(SettingsDialog& dialog, std::size_t page);  // its controls, by its size and the search
void SettingsPageReveal(SettingsDialog& dialog, FormPlace place);  // scrolls until the item is seen
void SettingsNoteRenew(SettingsDialog& dialog, FormPlace place);
// Of the text in the dialog's font, in pixels; broken at that width, or 0: of one line.
SIZE SettingsTextSize(const SettingsDialog& dialog, const std::wstring& text, int width);
COLORREF SettingsNoteColour(NoteKind kind);
// --- settings_dialog_fields_win.cpp
void SettingsFieldMake(SettingsDialog& dialog, FormPlace place);
bool SettingsHasButton(SettingControl control);                    // beside its field
void SettingsNoteMake(SettingsDialog& dialog, FormPlace place);    // of an item that has none yet
void SettingsFieldScale(SettingsDialog& dialog, FormPlace place);  // what WM_SETFONT does not scale
void SettingsFieldShow(SettingsDialog& dialog, FormPlace place);   // the text of the form in its control
// `chosen`: the user has just taken a line of its list.
std::wstring SettingsFieldText(SettingsDialog& dialog, FormPlace place, bool chosen);
void SettingsFieldPress(SettingsDialog& dialog, FormPlace place);  // the button beside it
void SettingsFieldDraw(SettingsDialog& dialog, FormPlace place, const DRAWITEMSTRUCT& draw);
void SettingsKeysFill(SettingsDialog& dialog, FormPlace place);    // the list of keys, by the search
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
    unsigned error = 0;   // why none came, an error of WinHTTP
    std::vector<std::wstring> names;
};
// Asks the service of the page for its models, for their list or only to see whether it answers; ends in
// MSG_SETTINGS_MODELS.
void SettingsAskService(SettingsDialog& dialog, FormPlace place);
void SettingsOnModels(SettingsDialog& dialog, const ModelsReply& reply);
void SettingsNoteTell(SettingsDialog& dialog, FormPlace place, const std::wstring& text, NoteKind kind);
void SettingsDetectCompilers(SettingsDialog& dialog, FormPlace place);
// What opens the files of the page's compiler, and changing it: at once, not with OK.
std::wstring SettingsDefaultProgram(FormPlace place, NoteKind* kind);
void SettingsChangeDefaultProgram(SettingsDialog& dialog, FormPlace place);
// All commands, as "File > Save\tCtrl+S". Those of the page that match the search, or all when it means the page.
std::vector<std::wstring> SettingsKeyLines();
std::vector<std::wstring> SettingsKeysFound(const SettingsDialog& dialog, std::size_t page);
// --- settings_dialog_place_win.cpp
void SettingsScaleSet(SettingsDialog& dialog, int dpi);  // fonts and heights; places nothing
void SettingsFramePlace(SettingsDialog& dialog);         // everything, by the size of the dialog
void SettingsShownPagePlace(SettingsDialog& dialog);     // only the page
void SettingsDialogPlace(const SettingsDialog& dialog);  // in the middle of its owner, no larger than the monitor
void SettingsDialogLimit(const SettingsDialog& dialog, MINMAXINFO& info);
void SettingsDialogRescale(SettingsDialog& dialog, int dpi, const RECT& suggested);
// --- settings_dialog_file_win.cpp
void SettingsDialogExport(const SettingsDialog& dialog);
void SettingsDialogImport(SettingsDialog& dialog);
void SettingsDialogReset(const SettingsDialog& dialog);
// --- settings_dialog_win.cpp
void SettingsItemChanged(SettingsDialog& dialog, FormPlace place);  // its text in the form has changed
void SettingsShowAllTexts(SettingsDialog& dialog);                  // after the settings have changed
void SettingsApplyEnable(const SettingsDialog& dialog);
