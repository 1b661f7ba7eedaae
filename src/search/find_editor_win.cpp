// Finds and replaces in one editor with Scintilla's search. The rules are in find_engine. UI thread.
#include "search/find_editor.h"

#include "documents/caret_place.h"
#include "documents/editor_pane.h"
#include "scintilla/sci.h"

namespace {

int SearchFlags(const FindOptions& options) {
    int flags = options.matchCase ? SCFIND_MATCHCASE : SCFIND_NONE;
    if (options.regex) {
        // Scintilla's own expressions search line by line without recursion, so a long line cannot exhaust the stack.
        // With std::regex (SCFIND_CXX11REGEX) it can.
        flags |= SCFIND_REGEXP | SCFIND_POSIX;
    } else if (options.wholeWord) {
        flags |= SCFIND_WHOLEWORD;
    }
    return flags;
}

std::optional<FindSpan> SearchEditor(HWND editor, const FindOptions& options, const std::string& pattern,
                                     FindSpan range) {
    SciSend(editor, SCI_SETSEARCHFLAGS, static_cast<WPARAM>(SearchFlags(options)));
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(range.start), range.end);
    const LRESULT found = SciSend(editor, SCI_SEARCHINTARGET, pattern.size(), reinterpret_cast<LPARAM>(pattern.data()));
    if (found < 0) return {};
    // An expression matches single bytes, so a match may begin inside a character. Scintilla mends only its end.
    const LRESULT start = CaretPositionAt(editor, found);
    const LRESULT end = SciSend(editor, SCI_GETTARGETEND);
    return FindSpan{start, end == found ? start : end};
}

std::string FoundGroup(HWND editor, int group) {
    const auto length = static_cast<std::size_t>(SciSend(editor, SCI_GETTAG, static_cast<WPARAM>(group)));
    std::string text(length + 1, '\0');
    SciSend(editor, SCI_GETTAG, static_cast<WPARAM>(group), reinterpret_cast<LPARAM>(text.data()));
    text.resize(length);
    return text;
}

std::string TextPart(HWND editor, FindSpan span) {
    std::string text(static_cast<std::size_t>(span.end - span.start), '\0');
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(span.start), span.end);
    SciSend(editor, SCI_GETTARGETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
    return text;
}

std::ptrdiff_t EndOfLineAt(HWND editor, std::ptrdiff_t position) {
    const LRESULT line = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position));
    return SciSend(editor, SCI_GETLINEENDPOSITION, static_cast<WPARAM>(line));
}

void ReplaceSpan(HWND editor, FindSpan span, std::string_view text) {
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(span.start), span.end);
    SciSend(editor, SCI_REPLACETARGET, text.size(), reinterpret_cast<LPARAM>(text.data()));
}

}  // namespace

FindText FindTextOf(HWND editor) {
    return {.search = [editor](const FindOptions& options, const std::string& pattern,
                               FindSpan range) { return SearchEditor(editor, options, pattern, range); },
            .group = [editor](int group) { return FoundGroup(editor, group); },
            .beside = [editor](std::ptrdiff_t position, bool forward) -> std::ptrdiff_t {
                return SciSend(editor, forward ? SCI_POSITIONAFTER : SCI_POSITIONBEFORE, static_cast<WPARAM>(position));
            },
            .lineEnd = [editor](std::ptrdiff_t position) { return EndOfLineAt(editor, position); },
            .part = [editor](FindSpan span) { return TextPart(editor, span); },
            .selection =
                [editor] {
                    return FindSpan{SciSend(editor, SCI_GETSELECTIONSTART), SciSend(editor, SCI_GETSELECTIONEND)};
                }};
}

bool ReplaceSelection(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope) {
    const std::optional<Replacement> found = ReplacementForSelection(FindTextOf(editor), query, replacement, scope);
    if (!found) return false;
    ReplaceSpan(editor, found->span, found->text);
    CaretGoTo(editor, found->span.start + static_cast<LRESULT>(found->text.size()));
    return true;
}

ReplaceAllResult ReplaceAllInScope(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope,
                                   const FindGoesOn& goesOn) {
    ReplaceAllResult result;
    const auto half = [&](double from, double share) {
        if (goesOn != nullptr && !goesOn((from + share) / 2)) result.stopped = true;
        return !result.stopped;
    };
    const std::vector<Replacement> found = ReplacementsInScope(FindTextOf(editor), query, replacement, scope,
                                                               [&](double share) { return half(0, share); });
    if (found.empty() || result.stopped) return result;
    const bool alike = ReplacesAllAlike(query, replacement);
    const LRESULT anchor = SciSend(editor, SCI_GETANCHOR);
    const LRESULT caret = SciSend(editor, SCI_GETCURRENTPOS);
    const LRESULT topLine = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    SciSend(editor, SCI_BEGINUNDOACTION);
    for (auto edit = found.rbegin(); edit != found.rend(); ++edit) {
        const std::string_view text = alike ? replacement : std::string_view{edit->text};
        ReplaceSpan(editor, edit->span, text);
        result.grown += static_cast<std::ptrdiff_t>(text.size()) - (edit->span.end - edit->span.start);
        ++result.count;
        if (!half(1, static_cast<double>(result.count) / static_cast<double>(found.size()))) break;
    }
    SciSend(editor, SCI_ENDUNDOACTION);
    if (!result.stopped) return result;
    EditorPaneTakeBack(editor);  // moves the caret to the last edit
    SciSend(editor, SCI_SETSEL, static_cast<WPARAM>(anchor), caret);
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(topLine));
    return {.stopped = true};
}
