// Finds the next match, and the text that replaces each match. Pure.
#include "search/find_engine.h"

#include "files/text_encoding.h"
#include "search/regex_check.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::ptrdiff_t kSearchPiece = 1 << 20;  // bytes

// The nearest match of all alternatives. When two begin at the same place, that of the first alternative.
std::optional<FindSpan> NearestMatch(const FindText& text, const FindQuery& query, FindSpan range) {
    const bool forward = range.start <= range.end;
    std::optional<FindSpan> best;
    for (const std::string& pattern : query.patterns) {
        FindSpan part = range;
        if (best && forward)  // a match that begins after this line cannot be nearer
            part.end = std::min(range.end, text.lineEnd(best->start));
        else if (best)
            part.end = std::max(range.end, best->start);
        const std::optional<FindSpan> match = text.search(query.options, pattern, part);
        if (match && (!best || (forward ? match->start < best->start : match->start > best->start))) best = match;
    }
    return best;
}

// Walks over the matches of a scope from its start. An alternative is searched again only after its last match is
// passed.
class MatchWalk {
public:
    MatchWalk(const FindText& text, const FindQuery& query, FindSpan scope, const FindGoesOn& goesOn)
        : text_(text), query_(query), scope_(scope), goesOn_(goesOn), at_(scope.start), next_(query.patterns.size()) {}

    // The next match, or nothing at the end or when the walk is to stop. `pattern` gets the index of the alternative that matched.
    std::optional<FindSpan> Next(std::size_t& pattern) {
        while (at_ <= scope_.end && GoesOn(at_)) {
            std::optional<FindSpan> best;
            for (std::size_t i = 0; i < next_.size(); ++i) {
                Refresh(i);
                if (next_[i].match && (!best || next_[i].match->start < best->start)) {
                    best = next_[i].match;
                    pattern = i;
                }
            }
            if (!best) return {};
            const bool isEmpty = best->start == best->end;
            const bool touchesLast =
                isEmpty && best->start == lastEnd_;  // an empty match right after a match does not count
            lastEnd_ = best->end;
            at_ = isEmpty ? Beyond(best->end) : best->end;
            if (!touchesLast) return best;
        }
        return {};
    }

private:
    struct Candidate {
        bool searched = false;
        std::optional<FindSpan> match;
    };

    // The position after the next character. At the end of the text a position after the scope, which ends the walk.
    std::ptrdiff_t Beyond(std::ptrdiff_t position) const {
        const std::ptrdiff_t after = text_.beside(position, true);
        return after > position ? after : scope_.end + 1;
    }

    void Refresh(std::size_t index) {
        Candidate& candidate = next_[index];
        if (candidate.searched && (!candidate.match || candidate.match->start >= at_)) return;
        candidate = {.searched = true, .match = SearchInPieces(query_.patterns[index])};
    }

    bool GoesOn(std::ptrdiff_t position) const {
        const auto length = static_cast<double>(std::max<std::ptrdiff_t>(scope_.end - scope_.start, 1));
        return goesOn_ == nullptr || goesOn_(static_cast<double>(position - scope_.start) / length);
    }

    // Searches whole lines at a time, so that a long search can be stopped. A match never goes beyond a line.
    std::optional<FindSpan> SearchInPieces(const std::string& pattern) const {
        for (std::ptrdiff_t from = at_;;) {
            const bool last = scope_.end - from <= kSearchPiece;
            const std::ptrdiff_t end = last ? scope_.end : std::min(scope_.end, text_.lineEnd(from + kSearchPiece));
            const std::optional<FindSpan> match = text_.search(query_.options, pattern, {from, end});
            if (match || end >= scope_.end || !GoesOn(end)) return match;
            from = end;
        }
    }

    const FindText& text_;
    const FindQuery& query_;
    FindSpan scope_;
    const FindGoesOn& goesOn_;
    std::ptrdiff_t at_;
    std::ptrdiff_t lastEnd_ = -1;
    std::vector<Candidate> next_;
};

// `match` must be the match that `text.search` found last, because the groups are those of that search. Nothing when a
// group holds only a part of a character: expressions match single bytes, and the part would break the text's encoding.
std::optional<std::string> ReplacementFor(const FindText& text, const FindQuery& query, std::string_view replacement,
                                          FindSpan match) {
    if (!query.options.regex) return std::string{replacement};
    std::string expanded =
        ExpandReplacement(replacement, [&](int group) { return group == 0 ? text.part(match) : text.group(group); });
    if (!IsValidUtf8Bytes(expanded.data(), expanded.size())) return std::nullopt;
    return expanded;
}

}  // namespace

const wchar_t* PrepareQuery(std::string_view text, const FindOptions& options, FindQuery& query) {
    query.options = options;
    query.patterns.clear();
    if (!options.regex) {
        query.patterns.emplace_back(text);
        return text.empty() ? L"Nothing to find" : nullptr;
    }
    if (!SplitAlternatives(text, query.patterns)) return L"The | of alternatives cannot stand inside parentheses";
    for (const std::string& pattern : query.patterns) {
        const wchar_t* fault = RegexFault(pattern);
        if (fault != nullptr) return fault;
    }
    return query.patterns.empty() ? L"Nothing to find" : nullptr;
}

FindResult FindInScope(const FindText& text, const FindQuery& query, FindSpan scope, bool forward) {
    const FindSpan selection = text.selection();
    const FindPlan plan = PlanFind(selection, scope, forward);
    std::optional<FindSpan> match = NearestMatch(text, query, plan.first);
    const bool isHere = match && match->start == match->end && *match == selection;
    if (isHere) {
        const std::ptrdiff_t next = text.beside(plan.first.start, forward);
        const bool atEnd = next == plan.first.start || (forward ? next > scope.end : next < scope.start);
        match = atEnd ? std::nullopt : NearestMatch(text, query, {next, plan.first.end});
    }
    if (match) return {.wrapped = false, .match = match};
    return {.wrapped = true, .match = NearestMatch(text, query, plan.wrapped)};
}

std::optional<Replacement> ReplacementForSelection(const FindText& text, const FindQuery& query,
                                                   std::string_view replacement, FindSpan scope) {
    const FindSpan selection = text.selection();
    const FindSpan range{selection.start, scope.end};
    if (selection.start < scope.start || selection.end > scope.end) return std::nullopt;
    if (NearestMatch(text, query, range) != selection) return std::nullopt;
    // The alternative that matches is searched again, because the groups are those of the last search.
    const auto matches = [&](const std::string& pattern) {
        return text.search(query.options, pattern, range) == selection;
    };
    if (query.options.regex) static_cast<void>(std::ranges::find_if(query.patterns, matches));
    std::optional<std::string> expanded = ReplacementFor(text, query, replacement, selection);
    if (!expanded) return std::nullopt;
    return Replacement{selection, std::move(*expanded)};
}

bool ReplacesAllAlike(const FindQuery& query, std::string_view replacement) {
    return !query.options.regex || replacement.find('\\') == std::string_view::npos;
}

std::vector<Replacement> ReplacementsInScope(const FindText& text, const FindQuery& query, std::string_view replacement,
                                             FindSpan scope, const FindGoesOn& goesOn) {
    std::vector<Replacement> replacements;
    MatchWalk walk{text, query, scope, goesOn};
    const bool alike = ReplacesAllAlike(query, replacement);
    std::size_t pattern = 0;
    while (const std::optional<FindSpan> match = walk.Next(pattern)) {
        // Searches again for the groups, because the walk may have searched another alternative last.
        if (!alike) text.search(query.options, query.patterns[pattern], {match->start, scope.end});
        std::optional<std::string> expanded = alike ? std::string{} : ReplacementFor(text, query, replacement, *match);
        if (expanded) replacements.push_back({*match, std::move(*expanded)});
    }
    return replacements;
}
