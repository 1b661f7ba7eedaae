#include "commands/keyboard_map_rows.h"

#include "base/texts.h"
#include "commands/command_table.h"
#include "resources/ids.h"

#include <algorithm>
#include <utility>

namespace {

constexpr EditorKey kEditorKeys[] = {
    {L"Ctrl+L", English(L"Cut the line")},
    {L"Ctrl+[", English(L"To the paragraph before")},
    {L"Ctrl+]", English(L"To the paragraph behind")},
    {L"Ctrl+Left", English(L"To the word before")},
    {L"Ctrl+Right", English(L"To the word behind")},
    {L"Ctrl+\\", English(L"To the next part of the word")},
    {L"Ctrl+Up", English(L"Scroll a line, the caret stays")},
    {L"Ctrl+Down", English(L"Scroll a line back")},
    {L"Ctrl+Home", English(L"To the start of the text")},
    {L"Ctrl+End", English(L"To the end of the text")},
    {L"Alt+Home", English(L"To the start of the row on the screen")},
    {L"Alt+End", English(L"To the end of the row on the screen")},
    {L"Ctrl+Backspace", English(L"Delete the word before")},
    {L"Ctrl+Del", English(L"Delete the word behind")},
    {L"Ctrl+Shift+Backspace", English(L"Delete to the start of the line")},
    {L"Ctrl+Shift+Del", English(L"Delete to the end of the line")},
    {L"Alt+Backspace", English(L"Undo")},
    {L"Ctrl+Ins", English(L"Copy")},
    {L"Shift+Ins", English(L"Paste")},
    {L"Shift+Del", English(L"Cut")},
    {L"Ins", English(L"Type over the text, or between it")},
    {L"Alt+Shift+Up", English(L"Select a column upwards")},
    {L"Alt+Shift+Down", English(L"Select a column downwards")},
    {L"Alt+Shift+Left", English(L"Select a column to the left")},
    {L"Alt+Shift+Right", English(L"Select a column to the right")},
    {L"Esc", English(L"Leave one caret of several or of a column")},
    {L"Tab", English(L"Indent the selected lines")},
    {L"Shift+Tab", English(L"Take an indentation back")},
};

constexpr const wchar_t* kTree = English(L"in the project tree");
constexpr const wchar_t* kTabs = English(L"on the tab strip");
constexpr const wchar_t* kTerminal = English(L"in the terminal line");
constexpr const wchar_t* kOutput = English(L"in the output");
constexpr const wchar_t* kErrors = English(L"in the error list");
constexpr const wchar_t* kBar = English(L"in the search bar");
constexpr const wchar_t* kFind = English(L"in Find and Replace");
constexpr const wchar_t* kResults = English(L"in the search results");
constexpr const wchar_t* kOutline = English(L"in the outline");
constexpr const wchar_t* kDebug = English(L"in the lists of the debug views");
constexpr const wchar_t* kMemory = English(L"in the memory view");
constexpr const wchar_t* kSplitters = English(L"on a bar between panes");
constexpr const wchar_t* kToolbar = English(L"on the toolbar");
constexpr const wchar_t* kStatus = English(L"on the status bar");
constexpr const wchar_t* kPeek = English(L"in the peek window");
constexpr const wchar_t* kQuick = English(L"in Go to File and the command palette");
constexpr const wchar_t* kAssistant = English(L"in the message to the assistant");

constexpr PaneKey kPaneKeys[] = {
    {kTree, L"Enter", English(L"Open the file; open or close the folder")},
    {kTree, L"F2", English(L"Rename")},
    {kTree, L"Ins", English(L"Make a file")},
    {kTree, L"Shift+Ins", English(L"Make a folder")},
    {kTree, L"Del", English(L"Delete")},
    {kTree, L"Ctrl+C", English(L"Copy the path")},
    {kTree, L"Ctrl+R", English(L"Read the folders again")},
    {kTree, L"Esc", English(L"To the editor")},
    {kTabs, L"Left, Right", English(L"Show the tab before or behind")},
    {kTabs, L"Home, End", English(L"Show the first or the last tab")},
    {kTabs, L"Ctrl+Shift+Left, Ctrl+Shift+Right", English(L"Move the tab")},
    {kTabs, L"Del", English(L"Close the tab")},
    {kTabs, L"Enter, Space, Down, Esc", English(L"To the editor")},
    {kTerminal, L"Enter", English(L"Run the command; send the line to the running program")},
    {kTerminal, L"Up, Down", English(L"The command before or behind")},
    {kTerminal, L"Tab, Shift+Tab", English(L"Complete the name, forwards or backwards")},
    {kTerminal, L"Ctrl+Z", English(L"End the input of the running program, in an empty line")},
    {kTerminal, L"Esc", English(L"Empty the line, then stop what runs, then to the editor")},
    {kOutput, L"Enter", English(L"To the place that the line names")},
    {kOutput, L"Esc", English(L"To the editor")},
    {kErrors, L"Enter", English(L"To the place of the message")},
    {kErrors, L"Ctrl+C", English(L"Copy the row")},
    {kErrors, L"Esc", English(L"To the editor")},
    {kBar, L"Enter", English(L"To the next match")},
    {kBar, L"Shift+Enter", English(L"To the match before")},
    {kBar, L"Ctrl+Enter", English(L"Close the bar and stay at the match")},
    {kBar, L"Esc", English(L"Close the bar and go back")},
    {kFind, L"Enter, F3", English(L"To the next match")},
    {kFind, L"Shift+Enter, Shift+F3", English(L"To the match before")},
    {kFind, L"Esc", English(L"Close")},
    {kResults, L"Enter", English(L"To the match")},
    {kResults, L"Space", English(L"Tick the row, or take its tick away")},
    {kResults, L"Del", English(L"Remove the row")},
    {kResults, L"Left, Right", English(L"Fold or unfold the file")},
    {kResults, L"Ctrl+C", English(L"Copy the row")},
    {kResults, L"Tab, Shift+Tab", English(L"To the next or the previous button")},
    {kResults, L"Esc", English(L"To the editor")},
    {kOutline, L"Enter", English(L"To the declaration")},
    {kOutline, L"Up, Down, PageUp, PageDown", English(L"Choose a declaration, also from the filter")},
    {kOutline, L"Tab, Shift+Tab", English(L"Between the filter, the button and the list")},
    {kOutline, L"Esc", English(L"Empty the filter, then to the editor")},
    {kDebug, L"Ctrl+PageUp, Ctrl+PageDown", English(L"The view before or behind")},
    {kDebug, L"Enter", English(L"To the place, or change the value")},
    {kDebug, L"F2", English(L"Change the row")},
    {kDebug, L"Space", English(L"Switch the breakpoint on or off")},
    {kDebug, L"Ins", English(L"Add a watch or a local")},
    {kDebug, L"Del", English(L"Remove the row")},
    {kDebug, L"Ctrl+C", English(L"Copy the row")},
    {kDebug, L"Tab, Shift+Tab", English(L"To the next or the previous field")},
    {kDebug, L"Esc", English(L"To the editor")},
    {kMemory, L"Ctrl+Left, Ctrl+Right", English(L"To the bytes or to their text")},
    {kMemory, L"Home, End", English(L"To the first or the last byte of the row")},
    {kMemory, L"Ctrl+Home", English(L"To the address that was asked for")},
    {kMemory, L"Ctrl+C", English(L"Copy the row")},
    {kSplitters, L"Left, Right, Up, Down", English(L"Move the bar; with Ctrl by single pixels")},
    {kSplitters, L"Home, End", English(L"Move it all the way")},
    {kSplitters, L"Backspace", English(L"Where it was at first")},
    {kSplitters, L"Tab, Shift+Tab", English(L"To the next or the previous bar")},
    {kSplitters, L"Enter", English(L"Keep the place")},
    {kSplitters, L"Esc", English(L"Take the move back")},
    {kToolbar, L"Left, Right, Home, End", English(L"To another button")},
    {kToolbar, L"Enter, Space, Down", English(L"Press the button")},
    {kToolbar, L"Esc", English(L"To the editor")},
    {kStatus, L"Left, Right, Home, End", English(L"To another field")},
    {kStatus, L"Enter, Space, Up, Down", English(L"Open the menu of the field")},
    {kStatus, L"Esc", English(L"To the editor")},
    {kPeek, L"Enter", English(L"To the place")},
    {kPeek, L"Tab", English(L"Between the text and the places")},
    {kPeek, L"Alt+Left, Alt+Right", English(L"Back and forward")},
    {kPeek, L"Esc, Ctrl+F4", English(L"Close")},
    {kQuick, L"Up, Down, PageUp, PageDown", English(L"Choose a row")},
    {kQuick, L"Ctrl+P, Ctrl+Shift+P", English(L"The next row, or the other list")},
    {kQuick, L"Enter", English(L"Take the row")},
    {kQuick, L"Esc", English(L"Close")},
    {kAssistant, L"Enter", English(L"Send")},
    {kAssistant, L"Tab, Shift+Tab", English(L"To the button or to the chat")},
    {kAssistant, L"Esc", English(L"Cancel the request, then to the editor")},
};

// Commands that have keys and stand in no menu. The number of several is put behind the name.
struct UnlistedCommands {
    int first;
    int count;
    const wchar_t* name;
    const wchar_t* place;
};
constexpr UnlistedCommands kUnlisted[] = {
    {IDM_TAB_NUMBER_FIRST, 8, English(L"Tab {1}"), kTabs},
    {IDM_TOOLBAR_MORE, 1, English(L"Buttons without room"), kToolbar},
};

std::wstring Lower(std::wstring_view text) {
    std::wstring lower(text);
    for (wchar_t& c : lower)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c | 0x20);
    return lower;
}

bool IsOneOf(std::wstring_view keys, std::wstring_view key) {
    for (;;) {
        const std::size_t comma = keys.find(L", ");
        if (keys.substr(0, comma) == key) return true;
        if (comma == std::wstring_view::npos) return false;
        keys.remove_prefix(comma + 2);
    }
}

bool Fits(const KeyMapRow& row, std::wstring_view word) {
    const std::wstring keys = Lower(row.keys);
    const bool isKey = word.find(L'+') != std::wstring_view::npos && !word.ends_with(L'+');
    if (isKey) return IsOneOf(keys, word);
    return keys.find(word) != std::wstring::npos || Lower(row.name).find(word) != std::wstring::npos ||
           Lower(row.place).find(word) != std::wstring::npos;
}

}  // namespace

std::span<const EditorKey> EditorKeys() { return kEditorKeys; }

std::span<const PaneKey> PaneKeys() { return kPaneKeys; }

std::vector<KeyMapRow> AllKeyRows(std::vector<KeyMapRow> ofMenu) {
    std::vector<KeyMapRow> rows = std::move(ofMenu);
    std::erase_if(rows, [](const KeyMapRow& row) { return row.keys.empty() || MenuKeyIsOfAnother(row.command); });
    for (KeyMapRow& row : rows)
        if (row.command == IDM_BUILD_RUN) row.name = Text(L"Build & Run, or Continue while the program is stopped");
    for (const UnlistedCommands& unlisted : kUnlisted)
        for (int i = 0; i < unlisted.count; ++i)
            rows.push_back({unlisted.first + i, FirstExtraKeyOf(unlisted.first + i),
                            TextWith(unlisted.name, {std::to_wstring(i + 1)}), Text(unlisted.place)});
    for (const EditorKey& key : kEditorKeys) rows.push_back({0, key.keys, Text(key.what), Text(L"in the text")});
    for (const PaneKey& key : kPaneKeys) rows.push_back({0, key.keys, Text(key.what), Text(key.place)});
    return rows;
}

std::vector<KeyMapRow> FilteredKeyRows(std::span<const KeyMapRow> rows, std::wstring_view filter) {
    const std::wstring lower = Lower(filter);
    std::vector<std::wstring_view> words;
    for (std::size_t at = 0; (at = lower.find_first_not_of(L' ', at)) != std::wstring::npos;) {
        const std::size_t end = std::min(lower.find(L' ', at), lower.size());
        words.push_back(std::wstring_view(lower).substr(at, end - at));
        at = end;
    }
    std::vector<KeyMapRow> left;
    for (const KeyMapRow& row : rows)
        if (std::ranges::all_of(words, [&row](std::wstring_view word) { return Fits(row, word); })) left.push_back(row);
    return left;
}
