// Finding and replacing in a text. Knows no editor and no dialog. Positions are bytes. Pure.
#pragma once

#include "search/find_rules.h"
#include "search/regex.h"
#include "search/replacement.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct FindQuery {
    FindOptions options;
    RegexHandle code;  // null until it is prepared
};

// Makes a query from the text that the user typed. False when it cannot be searched for; `fault` then says why.
bool PrepareQuery(std::string_view text, const FindOptions& options, FindQuery& query, RegexFault& fault);

// Asked with the share of the work that is done, 0 to 1. False: the work is to stop.
using FindGoesOn = std::function<bool(double share)>;

struct FindResult {
    bool wrapped = false;  // the search continued at the other end of the scope
    std::optional<FindSpan> match;
    RegexResult end = RegexResult::NoMatch;  // why there is no match
};

struct FindWay {
    bool forward = true;
    bool wrap = true;  // continue at the other end of the scope
};

// The next match before or after the selection. An empty match at the caret does not count.
FindResult FindInScope(const RegexText& text, const FindQuery& query, FindSpan selection, FindSpan scope, FindWay way,
                       const FindGoesOn& goesOn = {});

// Calls `found` with the search at each match in the scope, in order, until it returns false. Returns how the walk ended;
// Match means that `found` ended it.
RegexResult ForEachMatch(const RegexText& text, const FindQuery& query, FindSpan scope,
                         const std::function<bool(const RegexSearch&)>& found, const FindGoesOn& goesOn = {});

struct Replacement {
    FindSpan span;
    std::string text;
};

// The replacement of the selection, or nothing when the selection is no match in the scope.
std::optional<Replacement> ReplacementForSelection(const RegexText& text, const FindQuery& query,
                                                   const ReplaceForm& form, FindSpan selection, FindSpan scope);

// Every match in the scope with its replacement, in order. The texts are empty when `form.alike`. All matches are found
// before the first change, so that new text is not searched. Replace them from the last to the first, because a
// replacement moves the matches after it. The list is not complete when `end` is not NoMatch.
std::vector<Replacement> ReplacementsInScope(const RegexText& text, const FindQuery& query, const ReplaceForm& form,
                                             FindSpan scope, const FindGoesOn& goesOn, RegexResult& end);

// --- What the user reads
const wchar_t* EndOfSearchText(RegexResult end);
std::wstring FindStatusOf(const FindResult& result, bool forward);  // empty for a match without continuing
std::wstring ReplaceStatusOf(RegexResult end, std::size_t count);
std::wstring MatchCountText(std::size_t count);
