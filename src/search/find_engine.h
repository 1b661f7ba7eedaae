// Finding and replacing in a text that can search itself. Knows no editor and no dialog. Pure.
#pragma once

#include "search/find_rules.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct FindQuery {
    FindOptions options;
    std::vector<std::string> patterns;  // one, or the alternatives of a regular expression; never empty once prepared
};

// What to look for, from the text as typed. Null, or a sentence for the user that says why not.
const wchar_t* PrepareQuery(std::string_view text, const FindOptions& options, FindQuery& query);

// A document and its own search. Positions are bytes.
struct FindText {
    // One pattern in a range; a backward search has `end` before `start`.
    std::function<std::optional<FindSpan>(const FindOptions&, const std::string& pattern, FindSpan range)> search;
    std::function<std::string(int group)> group;  // of what `search` found last, from 1
    std::function<std::ptrdiff_t(std::ptrdiff_t position, bool forward)>
        beside;                                                      // one character on; the same at an end
    std::function<std::ptrdiff_t(std::ptrdiff_t position)> lineEnd;  // of the line of a position
    std::function<std::string(FindSpan)> part;
    std::function<FindSpan()> selection;
};

struct FindResult {
    bool wrapped = false;  // found only past the end of the scope
    std::optional<FindSpan> match;
};

// The next match seen from the selection; an empty match where the caret already is does not count again.
FindResult FindInScope(const FindText& text, const FindQuery& query, FindSpan scope, bool forward);

struct Replacement {
    FindSpan span;
    std::string text;
};

// Whether every match is replaced by the same text, because no part of the match goes into it.
bool ReplacesAllAlike(const FindQuery& query, std::string_view replacement);

// What to put in place of the selection, when that is a match within the scope.
std::optional<Replacement> ReplacementForSelection(const FindText& text, const FindQuery& query,
                                                   std::string_view replacement, FindSpan scope);

// Every match in the scope with what takes its place (left empty when all are replaced alike), in their order: what matches
// before the first change, so that new text is not searched. Carried out from the last to the first, none moves another.
std::vector<Replacement> ReplacementsInScope(const FindText& text, const FindQuery& query, std::string_view replacement,
                                             FindSpan scope);
