// Rules of find and replace: what a replacement becomes, where a search begins and goes on, what the dialog does next. Text
// to search is UTF-8, positions are bytes. Pure.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

struct FindOptions {
    bool matchCase = false;
    bool wholeWord = false;  // plain text only: a regular expression has \< and \>
    bool regex = false;
};

struct FindSpan {
    std::ptrdiff_t start = 0;
    std::ptrdiff_t end = 0;

    bool operator==(const FindSpan&) const = default;
};

// The text that replaces a match: \0 to \9 stand for the match and its groups, \n \r \t for control characters, and a
// backslash takes the meaning off any other character after it. `group` is asked only for groups that occur.
std::string ExpandReplacement(std::string_view replacement, const std::function<std::string(int)>& group);

// Where to search from, and again from the other end when that found nothing. A backward search has `end` before
// `start`.
struct FindPlan {
    FindSpan first;
    FindSpan wrapped;
};
FindPlan PlanFind(FindSpan selection, FindSpan scope, bool forward);

// Text of a selection that can be the search text: one line, short enough to remember. Empty otherwise.
std::string_view SearchTextFromSelection(std::string_view selection);

// The status line after Replace All, and after a search: empty for a plain match.
std::wstring ReplacementCountText(std::size_t count);
const wchar_t* SearchStatus(bool found, bool wrapped, bool forward);

// The range "in selection" cut to a document that may have become shorter; the whole document when it has none.
FindSpan ScopeWithin(std::optional<FindSpan> taken, std::ptrdiff_t documentLength);

// What "find next" searches for while the dialog is closed: what was searched for last, else the selection, else the
// newest text of the history. Empty: the dialog has to ask.
std::wstring TextToFindNext(const std::wstring& last, const std::wstring& selected, const std::wstring& newest);

// Where a dialog of that height goes that would lie over a match, in screen pixels: below the match, or above it where
// there is no room, but not above the work area.
int DialogTopBesideMatch(int matchTop, int matchBottom, int dialogHeight, int workTop, int workBottom);
