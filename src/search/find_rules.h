// Rules of find and replace: the range of a search, the texts and the place of the dialog.
// The text to search is UTF-8, positions are bytes. Pure.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

struct FindOptions {
    bool matchCase = false;
    bool wholeWord = false;
    bool regex = false;
};

struct FindSpan {
    std::ptrdiff_t start = 0;
    std::ptrdiff_t end = 0;

    bool operator==(const FindSpan&) const = default;
};

// The range to search first, and the range to search when that has no match. For a backward search `end` is before
// `start`.
struct FindPlan {
    FindSpan first;
    FindSpan wrapped;
};
FindPlan PlanFind(FindSpan selection, FindSpan scope, bool forward);

// The selection as a search text. Empty when it has a line break or a NUL, or is longer than 255 bytes.
std::string_view SearchTextFromSelection(std::string_view selection);

// The range of "in selection", cut to the length of the document (bytes); without a range the whole document.
FindSpan ScopeWithin(std::optional<FindSpan> taken, std::ptrdiff_t documentLength);

// The scope after an edit at `position`. What is inserted at its start or end belongs to it. Nothing when it was removed
// with text around it: nobody can tell then where it would come back.
std::optional<FindSpan> ScopeAfterEdit(FindSpan scope, std::ptrdiff_t position, std::ptrdiff_t inserted,
                                       std::ptrdiff_t removed);

// The text that "find next" searches for while the dialog is closed: the last search text, else the selection, else the
// newest text of the history. Empty when there is none.
std::wstring TextToFindNext(const std::wstring& last, const std::wstring& selected, const std::wstring& newest);

// New top (screen pixels) of a dialog that covers a match: below the match, or above it when there is no room below.
// Never above the work area.
int DialogTopBesideMatch(int matchTop, int matchBottom, int dialogHeight, int workTop, int workBottom);
