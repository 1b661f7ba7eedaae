// Rules of find and replace: the text of a replacement, the range of a search, the texts and the place of the dialog.
// The text to search is UTF-8, positions are bytes. Pure.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

struct FindOptions {
    bool matchCase = false;
    bool wholeWord = false;  // for plain text only, because a regular expression has \< and \>
    bool regex = false;
};

struct FindSpan {
    std::ptrdiff_t start = 0;
    std::ptrdiff_t end = 0;

    bool operator==(const FindSpan&) const = default;
};

// The text that replaces a match. \0 stands for the match, \1 to \9 for its groups, and \n \r \t for control
// characters. Before any other character a backslash is left out. `group` is called only for groups that occur.
std::string ExpandReplacement(std::string_view replacement, const std::function<std::string(int)>& group);

// The range to search first, and the range to search when that has no match. For a backward search `end` is before
// `start`.
struct FindPlan {
    FindSpan first;
    FindSpan wrapped;
};
FindPlan PlanFind(FindSpan selection, FindSpan scope, bool forward);

// The selection as a search text. Empty when it has a line break or a NUL, or is longer than 255 bytes.
std::string_view SearchTextFromSelection(std::string_view selection);

// The status texts after Replace All and after a search. A match without continuing at the other end has an empty text.
std::wstring ReplacementCountText(std::size_t count);
const wchar_t* SearchStatus(bool found, bool wrapped, bool forward);

// The range of "in selection", cut to the length of the document (bytes); without a range the whole document.
FindSpan ScopeWithin(std::optional<FindSpan> taken, std::ptrdiff_t documentLength);

// The text that "find next" searches for while the dialog is closed: the last search text, else the selection, else the
// newest text of the history. Empty when there is none.
std::wstring TextToFindNext(const std::wstring& last, const std::wstring& selected, const std::wstring& newest);

// New top (screen pixels) of a dialog that covers a match: below the match, or above it when there is no room below.
// Never above the work area.
int DialogTopBesideMatch(int matchTop, int matchBottom, int dialogHeight, int workTop, int workBottom);
