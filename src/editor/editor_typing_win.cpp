// What a pane does while the user types: puts BASIC keywords in capitals, shows the bracket that belongs to the one at the
// caret. UI thread.
#include "editor/editor_pane.h"

#include "base/events.h"
#include "editor/pane_rules.h"
#include "editor/pane_state.h"
#include "editor/typing_rules.h"
#include "language/basic_lexer.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr LRESULT kLongestLine = 16 << 10;  // bytes; what is longer was not typed, and every key would look through it

LRESULT BraceAtCaretOf(HWND editor) {
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    const auto at = [editor](LRESULT position) { return static_cast<char>(PaneSend(editor, SCI_GETCHARAT, position)); };
    return BraceAtCaret(caret, at(caret - 1), at(caret));
}

}  // namespace

BracePair EditorPaneBracesAtCaret(HWND editor) {
    const LRESULT brace = BraceAtCaretOf(editor);
    if (brace < 0) return {};
    const PaneSpan reach = BraceReach(brace, PaneSend(editor, SCI_GETLENGTH));
    std::vector<StyledByte> text(static_cast<std::size_t>(reach.end - reach.start) + 1);  // two NUL bytes are added
    Sci_TextRangeFull range = {{reach.start, reach.end}, reinterpret_cast<char*>(text.data())};
    SciSend(editor, SCI_GETSTYLEDTEXTFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    return BracesToShow(text, reach.start, brace);
}

void EditorPaneUpdateBraces(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr) return;
    EditorPaneUpdateBlockWords(editor);
    const BracePair shown = EditorPaneBracesAtCaret(editor);
    if (shown == BracePair{} && !state->bracesShown) return;
    state->bracesShown = shown != BracePair{};
    PaneSend(editor, SCI_BRACEHIGHLIGHT, shown.first, shown.second);
}

// NAME and RIGHT are keywords, and programs have variables and procedures of that name.
static bool NamesVariable(HWND editor, LRESULT line, std::string_view word) {
    bool isVariable = false;
    if (const PaneState* const state = PaneStateOf(editor); state != nullptr && state->document != 0)
        g_events.variableAsked(state->document, static_cast<int>(line), word, &isVariable);
    return isVariable;
}

void EditorPaneUpperKeywordBefore(HWND editor, LRESULT position) {
    if (!g_settings.autoUpperKeywords || PaneSend(editor, SCI_GETLEXER) != kBasicLexer) return;
    const LRESULT start = PaneSend(editor, SCI_WORDSTARTPOSITION, position, TRUE);
    const LRESULT length = position - start;
    if (!HasKeywordLength(length)) return;
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT lineStart = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    const LRESULT lineEnd = PaneSend(editor, SCI_GETLINEENDPOSITION, line);
    if (lineEnd - lineStart > kLongestLine) return;
    const std::string text = EditorPaneTextBetween(editor, lineStart, lineEnd);
    const std::optional<KeywordEdit> edit = KeywordEditOf(
        text, EditorPaneLineState(editor, line), EditorPaneDialect(editor), static_cast<std::size_t>(start - lineStart),
        static_cast<std::size_t>(position - lineStart), EditorPaneBlockTable(editor));
    if (!edit || NamesVariable(editor, line,
                               std::string_view(text).substr(static_cast<std::size_t>(start - lineStart),
                                                             static_cast<std::size_t>(length))))
        return;
    PaneSend(editor, SCI_SETTARGETRANGE, lineStart + static_cast<LRESULT>(edit->from), position);
    SciSend(editor, SCI_REPLACETARGET, edit->text.size(), reinterpret_cast<LPARAM>(edit->text.data()));
}
