// Finding and replacing in one editor, by the editing component's own search. UI thread.
#include "search/find_engine.h"

#include "scintilla/sci.h"
#include "search/regex_check.h"

#include <algorithm>

namespace {

int SearchFlags(const FindOptions& options) {
    int flags = options.matchCase ? SCFIND_MATCHCASE : SCFIND_NONE;
    if (options.regex) {
        // The component's own expressions: they search line by line without recursion, so that no text, however long
        // its lines, can exhaust the stack, as the C++ library's expressions do.
        flags |= SCFIND_REGEXP | SCFIND_POSIX;
    } else if (options.wholeWord) {
        flags |= SCFIND_WHOLEWORD;
    }
    return flags;
}

// One pattern in a range; a backward search has `end` before `start`.
std::optional<FindSpan> SearchOne(HWND editor, const FindQuery& query, const std::string& pattern, FindSpan range) {
    SciSend(editor, SCI_SETSEARCHFLAGS, static_cast<WPARAM>(SearchFlags(query.options)));
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(range.start), range.end);
    const LRESULT found = SciSend(editor, SCI_SEARCHINTARGET, pattern.size(), reinterpret_cast<LPARAM>(pattern.data()));
    if (found < 0) return {};
    return FindSpan{found, SciSend(editor, SCI_GETTARGETEND)};
}

// The end of the line of a position: where a search that can only be beaten before that position may stop, because no
// match of an alternative goes beyond its line.
std::ptrdiff_t LineEndAt(HWND editor, std::ptrdiff_t position) {
    const LRESULT line = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position));
    return SciSend(editor, SCI_GETLINEENDPOSITION, static_cast<WPARAM>(line));
}

// The nearest match of all alternatives; of two that begin at the same place, the first alternative's.
std::optional<FindSpan> Search(HWND editor, const FindQuery& query, FindSpan range) {
    const bool forward = range.start <= range.end;
    std::optional<FindSpan> best;
    for (const std::string& pattern : query.patterns) {
        FindSpan part = range;
        if (best && forward)
            part.end = std::min(range.end, LineEndAt(editor, best->start));
        else if (best)
            part.end = std::max(range.end, best->start);
        const std::optional<FindSpan> match = SearchOne(editor, query, pattern, part);
        if (match && (!best || (forward ? match->start < best->start : match->start > best->start))) best = match;
    }
    return best;
}

FindSpan Selection(HWND editor) {
    return {SciSend(editor, SCI_GETSELECTIONSTART), SciSend(editor, SCI_GETSELECTIONEND)};
}

std::ptrdiff_t Beside(HWND editor, std::ptrdiff_t position, bool forward) {
    return SciSend(editor, forward ? SCI_POSITIONAFTER : SCI_POSITIONBEFORE, static_cast<WPARAM>(position));
}

// Walks over the matches of a scope from its start, asking each alternative again only once its match is passed.
class MatchWalk {
public:
    MatchWalk(HWND editor, const FindQuery& query, FindSpan scope)
        : editor_(editor), query_(query), scope_(scope), at_(scope.start), next_(query.patterns.size()) {}

    // The next match and the alternative that it is of, or nothing at the end.
    std::optional<FindSpan> Next(std::size_t& pattern) {
        while (at_ <= scope_.end) {
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
            const bool touchesLast = isEmpty && best->start == lastEnd_;  // right behind a match: not one of its own
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

    // One character on; past the end of the scope where there is none, which ends the walk.
    std::ptrdiff_t Beyond(std::ptrdiff_t position) const {
        const std::ptrdiff_t after = Beside(editor_, position, true);
        return after > position ? after : scope_.end + 1;
    }

    void Refresh(std::size_t index) {
        Candidate& candidate = next_[index];
        if (candidate.searched && (!candidate.match || candidate.match->start >= at_)) return;
        candidate = {.searched = true, .match = SearchOne(editor_, query_, query_.patterns[index], {at_, scope_.end})};
    }

    HWND editor_;
    const FindQuery& query_;
    FindSpan scope_;
    std::ptrdiff_t at_;
    std::ptrdiff_t lastEnd_ = -1;
    std::vector<Candidate> next_;
};

// A group of the match that was found last.
std::string MatchedGroup(HWND editor, FindSpan match, int group) {
    if (group == 0) {
        std::string text(static_cast<std::size_t>(match.end - match.start), '\0');
        SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(match.start), match.end);
        SciSend(editor, SCI_GETTARGETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
        return text;
    }
    const auto length = static_cast<std::size_t>(SciSend(editor, SCI_GETTAG, static_cast<WPARAM>(group)));
    std::string text(length + 1, '\0');
    SciSend(editor, SCI_GETTAG, static_cast<WPARAM>(group), reinterpret_cast<LPARAM>(text.data()));
    text.resize(length);
    return text;
}

std::string ReplacementFor(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan match) {
    if (!query.options.regex) return std::string{replacement};
    return ExpandReplacement(replacement, [&](int group) { return MatchedGroup(editor, match, group); });
}

void ReplaceSpan(HWND editor, FindSpan span, const std::string& text) {
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(span.start), span.end);
    SciSend(editor, SCI_REPLACETARGET, text.size(), reinterpret_cast<LPARAM>(text.data()));
}

struct Edit {
    FindSpan span;
    std::string text;  // of a regular expression only; a plain replacement is the same everywhere
};

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

FindResult FindInScope(HWND editor, const FindQuery& query, FindSpan scope, bool forward) {
    const FindSpan selection = Selection(editor);
    const FindPlan plan = PlanFind(selection, scope, forward);
    std::optional<FindSpan> match = Search(editor, query, plan.first);
    const bool isHere = match && match->start == match->end && *match == selection;
    if (isHere) {
        const std::ptrdiff_t next = Beside(editor, plan.first.start, forward);
        const bool atEnd = next == plan.first.start || (forward ? next > scope.end : next < scope.start);
        match = atEnd ? std::nullopt : Search(editor, query, {next, plan.first.end});
    }
    if (match) return {.wrapped = false, .match = match};
    return {.wrapped = true, .match = Search(editor, query, plan.wrapped)};
}

bool ReplaceSelection(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope) {
    const FindSpan selection = Selection(editor);
    if (selection.start < scope.start || selection.end > scope.end) return false;
    if (Search(editor, query, {selection.start, scope.end}) != selection) return false;
    // With several alternatives the last search was not the winner's: its groups are found again.
    const auto matches = [&](const std::string& pattern) {
        return SearchOne(editor, query, pattern, {selection.start, scope.end}) == selection;
    };
    if (query.options.regex) static_cast<void>(std::find_if(query.patterns.begin(), query.patterns.end(), matches));
    const std::string text = ReplacementFor(editor, query, replacement, selection);
    ReplaceSpan(editor, selection, text);
    SciSend(editor, SCI_GOTOPOS, static_cast<WPARAM>(selection.start) + text.size());
    return true;
}

ReplaceAllResult ReplaceAllInScope(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope) {
    ReplaceAllResult result;
    std::vector<Edit> edits;
    MatchWalk walk{editor, query, scope};
    const std::string plain{replacement};
    const bool needsGroups = query.options.regex && replacement.find('\\') != std::string_view::npos;
    std::size_t pattern = 0;
    while (const std::optional<FindSpan> match = walk.Next(pattern)) {
        Edit edit{*match, {}};
        if (needsGroups) {
            // Finds the groups again: the walk may have asked another alternative last.
            SearchOne(editor, query, query.patterns[pattern], {match->start, scope.end});
            edit.text = ReplacementFor(editor, query, replacement, *match);
        }
        edits.push_back(std::move(edit));
    }
    if (edits.empty()) return result;
    // From the last to the first: no edit moves a match that is still to be replaced.
    SciSend(editor, SCI_BEGINUNDOACTION);
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        const std::string& text = needsGroups ? edit->text : plain;
        ReplaceSpan(editor, edit->span, text);
        result.grown += static_cast<std::ptrdiff_t>(text.size()) - (edit->span.end - edit->span.start);
    }
    SciSend(editor, SCI_ENDUNDOACTION);
    result.count = edits.size();
    return result;
}
