// The lists that the window of the file finder can show: files, commands, a line to go to. Each is a row of one table,
// chosen by the first character that is typed. UI thread only.
#pragma once

#include "search/fuzzy_index.h"
#include "search/quick_query.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

enum class QuickMark : std::uint8_t { None, Tick, Dot };

// What a row shows beside its text.
struct QuickExtra {
    std::wstring keys;  // at the right edge
    QuickMark mark = QuickMark::None;
    bool enabled = true;
};

// What a row lets the user look at before it is chosen.
struct QuickPreview {
    int document = 0;   // DocumentId; 0: `path`
    std::wstring path;  // empty, without a document: nothing
    int line = 0;       // from 1; 0: the caret's line of a document, the start of a file
    bool operator==(const QuickPreview&) const = default;
};

// A row: its number among the texts of its source (search/fuzzy_index.h), and its text.
struct QuickItem {
    std::size_t number = 0;
    FuzzyText text;
};

// Functions that may be null are so marked.
struct QuickSource {
    wchar_t prefix = L'\0';      // the character that chooses it; 0: what is typed without one
    const wchar_t* title = L"";  // what its rows are, in the plural
    bool filters = true;         // false: the texts themselves follow what is typed
    // The window opens; the keyboard is still where it was. May be null.
    void (*opening)() = nullptr;
    // Gathers the texts. `window` gets the messages of workers. May be null.
    void (*begin)(HWND window) = nullptr;
    const FuzzyIndices& (*texts)(const QuickQuery& query) = nullptr;
    // Called after `texts`.
    unsigned (*generation)() = nullptr;              // another one when earlier results no longer count; may be null
    bool (*hides)(const QuickItem& item) = nullptr;  // the row stands there twice; may be null
    std::size_t (*hidden)() = nullptr;               // number of all such texts; may be null
    QuickExtra (*extra)(const QuickItem& item) = nullptr;
    std::wstring (*status)(bool none) = nullptr;  // about the whole list; `none`: nothing matches. May be null.
    QuickPreview (*preview)(const QuickItem& item, const QuickQuery& query) = nullptr;  // may be null
    // Carries the row out. The window is closed by then, and the keyboard where it was.
    void (*accept)(const QuickItem& item, const QuickQuery& query) = nullptr;
};

extern const QuickSource kQuickFiles;                                  // quick_files_win.cpp
extern const QuickSource kQuickCommands;                               // quick_commands_win.cpp
extern const QuickSource kQuickLine;                                   // quick_line_win.cpp
extern const QuickSource kQuickTabs;                                   // quick_tabs_win.cpp
extern const QuickSource kQuickDocumentSymbols, kQuickProjectSymbols;  // quick_symbols_win.cpp

// The table of the sources.
std::span<const QuickSource* const> QuickSources();
const QuickSource& QuickSourceOf(wchar_t prefix);  // the files when there is none with that prefix
std::wstring QuickPrefixes();
