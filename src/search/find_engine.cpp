// Finds the next match, and the text that replaces each match. Pure.
#include "search/find_engine.h"

#include "base/count_text.h"
#include "base/texts.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

constexpr std::ptrdiff_t kFirstBlock = 16 * 1024;  // bytes that a search backwards takes first

// The start of the line of a position, but not before `least`.
std::ptrdiff_t LineStart(const RegexText& text, std::ptrdiff_t position, std::ptrdiff_t least) {
    constexpr std::ptrdiff_t kLook = 4096;
    for (std::ptrdiff_t end = position; end > least;) {
        const std::ptrdiff_t from = std::max(least, end - kLook);
        const std::string_view part(text.bytes(from, end), static_cast<std::size_t>(end - from));
        const std::size_t breakAt = part.find_last_of("\r\n");
        if (breakAt != part.npos) return from + static_cast<std::ptrdiff_t>(breakAt) + 1;
        end = from;
    }
    return least;
}

RegexGoesOn GoesOnIn(FindSpan scope, const FindGoesOn& goesOn) {
    if (goesOn == nullptr) return {};
    const auto length = static_cast<double>(std::max<std::ptrdiff_t>(scope.end - scope.start, 1));
    return
        [scope, length, &goesOn](std::ptrdiff_t at) { return goesOn(static_cast<double>(at - scope.start) / length); };
}

struct LastMatch {
    RegexResult end = RegexResult::NoMatch;
    std::optional<FindSpan> match;
};

// The last match that begins in `starts` and ends by `limit`. An empty match at `limit` counts with `emptyAtLimit`.
LastMatch LastMatchIn(const RegexText& text, RegexSearch& search, FindSpan starts, std::ptrdiff_t limit,
                      bool emptyAtLimit, const RegexGoesOn& goesOn) {
    LastMatch last;
    bool beyond = false;  // a match that begins later is of no interest, so the walk ends there
    search.Begin(text, {starts.start, limit}, false, [&](std::ptrdiff_t at) {
        beyond = at > starts.end;
        return !beyond && (goesOn == nullptr || goesOn(at));
    });
    while ((last.end = search.Next()) == RegexResult::Match) {
        const FindSpan match = search.Match();
        if (match.start > starts.end || (match.start == limit && !emptyAtLimit)) break;
        last.match = match;
    }
    if (last.end == RegexResult::Match || beyond) last.end = RegexResult::NoMatch;
    if (last.end != RegexResult::NoMatch) last.match.reset();
    return last;
}

// Searches blocks of whole lines, from the end of the scope to its start. Each block is twice as long as the last one.
LastMatch FindBackward(const RegexText& text, const FindQuery& query, FindSpan scope, bool emptyAtLimit,
                       const RegexGoesOn& goesOn) {
    RegexSearch search(query.code);
    std::ptrdiff_t end = scope.end;
    for (std::ptrdiff_t size = kFirstBlock;; size *= 2) {
        const std::ptrdiff_t start = LineStart(text, std::max(scope.start, end - size), scope.start);
        const LastMatch last = LastMatchIn(text, search, {start, end}, scope.end, emptyAtLimit, goesOn);
        if (last.match || last.end != RegexResult::NoMatch || start <= scope.start) return last;
        end = start - 1;
    }
}

// One search without continuing at the other end. `range` goes from its end to its start for a search backwards.
FindResult FindOnce(const RegexText& text, const FindQuery& query, FindSpan range, bool wrapped, bool forward,
                    const RegexGoesOn& goesOn) {
    if (!forward) {
        const LastMatch last = FindBackward(text, query, {range.end, range.start}, wrapped, goesOn);
        return {wrapped, last.match, last.end};
    }
    RegexSearch search(query.code);
    search.Begin(text, range, !wrapped, goesOn);
    const RegexResult end = search.Next();
    return {wrapped, end == RegexResult::Match ? std::optional{search.Match()} : std::nullopt, end};
}

}  // namespace

bool PrepareQuery(std::string_view text, const FindOptions& options, FindQuery& query, RegexFault& fault) {
    query = {options, RegexCompile(text, options, fault)};
    return query.code != nullptr;
}

FindResult FindInScope(const RegexText& text, const FindQuery& query, FindSpan selection, FindSpan scope, FindWay way,
                       const FindGoesOn& goesOn) {
    const FindPlan plan = PlanFind(selection, scope, way.forward);
    const RegexGoesOn stop = GoesOnIn(scope, goesOn);
    const FindResult first = FindOnce(text, query, plan.first, false, way.forward, stop);
    if (first.match || first.end != RegexResult::NoMatch || !way.wrap) return first;
    return FindOnce(text, query, plan.wrapped, true, way.forward, stop);
}

RegexResult ForEachMatch(const RegexText& text, const FindQuery& query, FindSpan scope,
                         const std::function<bool(const RegexSearch&)>& found, const FindGoesOn& goesOn) {
    RegexSearch search(query.code);
    search.Begin(text, scope, false, GoesOnIn(scope, goesOn));
    RegexResult result = search.Next();
    while (result == RegexResult::Match && found(search)) result = search.Next();
    return result;
}

std::optional<Replacement> ReplacementForSelection(const RegexText& text, const FindQuery& query,
                                                   const ReplaceForm& form, FindSpan selection, FindSpan scope) {
    if (selection.start < scope.start || selection.end > scope.end) return std::nullopt;
    RegexSearch search(query.code);
    search.Begin(text, {selection.start, scope.end}, false, [&](std::ptrdiff_t at) { return at <= selection.end; });
    if (search.Next() != RegexResult::Match || search.Match() != selection) return std::nullopt;
    return Replacement{selection, ReplaceExpand(form, search)};
}

std::vector<Replacement> ReplacementsInScope(const RegexText& text, const FindQuery& query, const ReplaceForm& form,
                                             FindSpan scope, const FindGoesOn& goesOn, RegexResult& end) {
    std::vector<Replacement> replacements;
    const auto add = [&](const RegexSearch& search) {
        replacements.push_back({search.Match(), form.alike ? std::string{} : ReplaceExpand(form, search)});
        return true;
    };
    end = ForEachMatch(text, query, scope, add, goesOn);
    return replacements;
}

const wchar_t* EndOfSearchText(RegexResult end) {
    switch (end) {
        case RegexResult::TooComplex: return Text(L"The expression is too complex for this text");
        case RegexResult::Stopped: return Text(L"Stopped");
        default: return Text(L"Not found");
    }
}

std::wstring FindStatusOf(const FindResult& result, bool forward) {
    if (!result.match) return EndOfSearchText(result.end);
    if (!result.wrapped) return L"";
    return forward ? Text(L"Continued from the start") : Text(L"Continued from the end");
}

std::wstring ReplaceStatusOf(RegexResult end, std::size_t count) {
    if (end != RegexResult::NoMatch) return TextWith(L"{1}: nothing was replaced", {EndOfSearchText(end)});
    if (count == 0) return Text(L"Not found: nothing replaced");
    return CountText(count, English(L"{1} replacement"), English(L"{1} replacements"));
}

std::wstring MatchCountText(std::size_t count) {
    if (count == 0) return Text(L"No matches");
    return CountText(count, English(L"{1} match"), English(L"{1} matches"));
}
