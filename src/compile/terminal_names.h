// Completion of file names in the terminal line: which word is completed, with what, and how it is written. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t kMostTerminalNames = 1000;

// The word that ends at the caret, without its quotes: what names a folder ("sub\", empty: the current one), and the
// beginning of a name in it. A quoted word may hold blanks.
struct TerminalWord {
    std::size_t start = 0;  // in the line, of its quotes too
    std::size_t end = 0;
    std::wstring folder;
    std::wstring name;
    bool operator==(const TerminalWord&) const = default;
};
TerminalWord TerminalWordAt(std::wstring_view line, std::size_t caret);

// The folder whose names fit, in the form "C:\x\": `folder` of the word seen from `current`.
std::wstring TerminalFolderOf(std::wstring_view current, std::wstring_view folder);

// Those that begin with `name`, without regard to case, in alphabetical order; "." and ".." are never among them.
std::vector<std::wstring> TerminalNamesFitting(std::vector<std::wstring> names, std::wstring_view name);
// The name as it is written in the line, in quotes when the command interpreter would otherwise divide it.
std::wstring TerminalNameText(const TerminalWord& word, std::wstring_view name);

// A completion under way: Tab shows one name after the other, Shift+Tab goes backwards.
struct TerminalCompletion {
    TerminalWord word;  // what the user typed
    std::vector<std::wstring> names;
    int at = -1;         // index into names; -1: none was shown yet
    std::wstring shown;  // the line as the completion made it; another one begins a new completion
};
// Shows the next name in place of the one before. `*caret` becomes the place after it. False when there is no name.
bool TerminalCompleteNext(TerminalCompletion& completion, std::wstring* line, std::size_t* caret, bool forward);
