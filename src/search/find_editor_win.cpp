// Finds and replaces in one editor. The rules are in find_engine. UI thread.
#include "search/find_editor.h"

#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "scintilla/sci.h"

namespace {

void ReplaceSpan(HWND editor, FindSpan span, std::string_view text) {
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(span.start), span.end);
    SciSend(editor, SCI_REPLACETARGET, text.size(), reinterpret_cast<LPARAM>(text.data()));
}

}  // namespace

// Scintilla moves the gap in its buffer only when it is inside the range, so a search moves it once, and not far.
RegexText EditorTextOf(HWND editor) {
    return {.length = SciSend(editor, SCI_GETLENGTH),
            .bytes =
                [editor](std::ptrdiff_t from, std::ptrdiff_t to) {
                    return reinterpret_cast<const char*>(
                        SciSend(editor, SCI_GETRANGEPOINTER, static_cast<WPARAM>(from), to - from));
                }};
}

FindSpan EditorSelection(HWND editor) {
    return {SciSend(editor, SCI_GETSELECTIONSTART), SciSend(editor, SCI_GETSELECTIONEND)};
}

const char* EditorLineBreak(HWND editor) {
    const LRESULT mode = SciSend(editor, SCI_GETEOLMODE);
    return mode == SC_EOL_LF ? "\n" : mode == SC_EOL_CR ? "\r" : "\r\n";
}

EditorEdits::EditorEdits(HWND editor) : editor_(editor), pause_(std::in_place, editor) {
    SciSend(editor, SCI_BEGINUNDOACTION);
}

EditorEdits::~EditorEdits() {
    SciSend(editor_, SCI_ENDUNDOACTION);
    pause_.reset();
    InvalidateRect(editor_, nullptr, FALSE);
}

bool ReplaceMatch(HWND editor, const FindQuery& query, const ReplaceForm& form, FindSpan match, FindSpan scope) {
    const std::optional<Replacement> found = ReplacementForSelection(EditorTextOf(editor), query, form, match, scope);
    if (!found) return false;
    ReplaceSpan(editor, found->span, found->text);
    CaretGoTo(editor, found->span.start + static_cast<LRESULT>(found->text.size()));
    return true;
}

ReplaceAllResult ReplaceAllInScope(HWND editor, const FindQuery& query, const ReplaceForm& form, FindSpan scope,
                                   const FindGoesOn& goesOn) {
    ReplaceAllResult result;
    const auto half = [&](double from, double share) { return goesOn == nullptr || goesOn((from + share) / 2); };
    const std::vector<Replacement> found = ReplacementsInScope(
        EditorTextOf(editor), query, form, scope, [&](double share) { return half(0, share); }, result.end);
    if (found.empty() || result.end != RegexResult::NoMatch) return result;
    const LRESULT anchor = SciSend(editor, SCI_GETANCHOR);
    const LRESULT caret = SciSend(editor, SCI_GETCURRENTPOS);
    const LRESULT topLine = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    {
        const EditorEdits edits(editor);
        for (auto edit = found.rbegin(); edit != found.rend(); ++edit) {
            const std::string_view text = form.alike ? form.text : edit->text;
            ReplaceSpan(editor, edit->span, text);
            ++result.count;
            if (half(1, static_cast<double>(result.count) / static_cast<double>(found.size()))) continue;
            result.end = RegexResult::Stopped;
            break;
        }
    }
    if (result.end != RegexResult::Stopped) return result;
    EditorPaneTakeBack(editor);  // moves the caret to the last edit
    SciSend(editor, SCI_SETSEL, static_cast<WPARAM>(anchor), caret);
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(topLine));
    return {.end = RegexResult::Stopped};
}
