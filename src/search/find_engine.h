// Finding and replacing in a text that brings its own search. Knows no editor and no dialog. Pure.
#pragma once

#include "search/find_rules.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct FindQuery {
    FindOptions options;
    std::vector<std::string> patterns;  // one text, or the alternatives of a regular expression
};

// Makes a query from the text that the user typed. Null, or a sentence for the user that says why it cannot be searched
// for.
const wchar_t* PrepareQuery(std::string_view text, const FindOptions& options, FindQuery& query);

// A document with its search. Positions are bytes.
struct FindText {
    // Finds one pattern in a range. For a backward search `end` is before `start`.
    std::function<std::optional<FindSpan>(const FindOptions&, const std::string& pattern, FindSpan range)> search;
    std::function<std::string(int group)> group;  // text of a group (from 1) of the last match of `search`
    std::function<std::ptrdiff_t(std::ptrdiff_t position, bool forward)>
        beside;                                                      // next or previous character; the same at an end
    std::function<std::ptrdiff_t(std::ptrdiff_t position)> lineEnd;  // end of the line of a position
    std::function<std::string(FindSpan)> part;                       // the text of a range
    std::function<FindSpan()> selection;
};

struct FindResult {
    bool wrapped = false;  // the search continued at the other end of the scope
    std::optional<FindSpan> match;
};

// The next match before or after the selection. An empty match at the caret does not count.
FindResult FindInScope(const FindText& text, const FindQuery& query, FindSpan scope, bool forward);

struct Replacement {
    FindSpan span;
    std::string text;
};

// Whether the same text replaces every match, because it contains no group and no escape.
bool ReplacesAllAlike(const FindQuery& query, std::string_view replacement);

// The replacement of the selection, or nothing when the selection is no match in the scope.
std::optional<Replacement> ReplacementForSelection(const FindText& text, const FindQuery& query,
                                                   std::string_view replacement, FindSpan scope);

// Asked with the share of the work that is done, 0 to 1. False: the work is to stop.
using FindGoesOn = std::function<bool(double share)>;

// Every match in the scope with its replacement, in order. The texts are empty when ReplacesAllAlike. All matches are
// found before the first change, so that new text is not searched. Replace them from the last to the first, because a
// replacement moves the matches after it. The list is not complete when `goesOn` was false.
std::vector<Replacement> ReplacementsInScope(const FindText& text, const FindQuery& query, std::string_view replacement,
                                             FindSpan scope, const FindGoesOn& goesOn);
