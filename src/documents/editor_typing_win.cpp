// What a pane does while the user types: indents a new line like the one above, puts BASIC keywords in capitals, shows the
// bracket that belongs to the one at the caret. UI thread.
#include "documents/editor_pane.h"

#include "documents/brace_match.h"
#include "documents/pane_rules.h"
#include "documents/pane_state.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"

#include <SciLexer.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr LRESULT kLongestKeyword = 16;

bool IsKeywordStyle(LRESULT style) {
    return style == SCE_B_KEYWORD || style == SCE_B_KEYWORD2 || style == SCE_B_KEYWORD3 || style == SCE_B_KEYWORD4;
}

// The style that the lexer gives to a position of the caret's line, which may not have been painted yet.
LRESULT FreshStyleAt(HWND editor, LRESULT position, LRESULT upTo) {
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    PaneSend(editor, SCI_COLOURISE, start, upTo);
    PaneSend(editor, SCI_STARTSTYLING, PaneSend(editor, SCI_GETLENGTH));  // as editor_colour_win.cpp wants it
    return PaneSend(editor, SCI_GETSTYLEAT, position);
}

void ShowBraces(HWND editor, LRESULT first, LRESULT second) { PaneSend(editor, SCI_BRACEHIGHLIGHT, first, second); }

// The bracket at the caret: the one before it, else the one after it. -1 without one.
LRESULT BraceAtCaret(HWND editor) {
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    if (caret > 0 && IsBrace(static_cast<char>(PaneSend(editor, SCI_GETCHARAT, caret - 1)))) return caret - 1;
    return IsBrace(static_cast<char>(PaneSend(editor, SCI_GETCHARAT, caret))) ? caret : -1;
}

}  // namespace

void EditorPaneUpdateBraces(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr) return;
    const LRESULT brace = BraceAtCaret(editor);
    if (brace < 0) {
        if (state->bracesShown) ShowBraces(editor, INVALID_POSITION, INVALID_POSITION);
        state->bracesShown = false;
        return;
    }
    const PaneSpan reach = BraceReach(brace, PaneSend(editor, SCI_GETLENGTH));
    const LRESULT start = reach.start;
    std::vector<StyledByte> text(static_cast<std::size_t>(reach.end - start) + 1);  // Scintilla adds two NUL bytes
    Sci_TextRangeFull range = {{start, reach.end}, reinterpret_cast<char*>(text.data())};
    SciSend(editor, SCI_GETSTYLEDTEXTFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    const std::ptrdiff_t partner = MatchBrace(text, static_cast<std::size_t>(brace - start));
    state->bracesShown = partner >= 0;
    ShowBraces(editor, partner >= 0 ? brace : INVALID_POSITION, partner >= 0 ? start + partner : INVALID_POSITION);
}

void EditorPaneAfterNewLine(HWND editor) {
    if (PaneSend(editor, SCI_GETSELECTIONS) != 1) return;
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, PaneSend(editor, SCI_GETCURRENTPOS));
    if (line < 1 || PaneSend(editor, SCI_GETLINEINDENTATION, line) != 0) return;
    const LRESULT indentation = PaneSend(editor, SCI_GETLINEINDENTATION, line - 1);
    if (indentation <= 0) return;
    PaneSend(editor, SCI_SETLINEINDENTATION, line, indentation);
    PaneSend(editor, SCI_GOTOPOS, PaneSend(editor, SCI_GETLINEINDENTPOSITION, line));
}

void EditorPaneUpperKeywordBefore(HWND editor, LRESULT position) {
    if (!g_settings.autoUpperKeywords || PaneSend(editor, SCI_GETLEXER) != SCLEX_VB) return;
    const LRESULT start = PaneSend(editor, SCI_WORDSTARTPOSITION, position, TRUE);
    const LRESULT length = position - start;
    if (length < 2 || length > kLongestKeyword) return;
    char word[kLongestKeyword + 1] = {};
    Sci_TextRangeFull range = {{start, position}, word};
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    const std::optional<std::string> capitals = KeywordInCapitals({word, static_cast<std::size_t>(length)});
    if (!capitals) return;
    const LRESULT lineEnd = PaneSend(editor, SCI_GETLINEENDPOSITION, PaneSend(editor, SCI_LINEFROMPOSITION, position));
    if (!IsKeywordStyle(FreshStyleAt(editor, start, std::max(lineEnd, position)))) return;
    PaneSend(editor, SCI_SETTARGETRANGE, start, position);
    SciSend(editor, SCI_REPLACETARGET, static_cast<WPARAM>(length), reinterpret_cast<LPARAM>(capitals->data()));
}
