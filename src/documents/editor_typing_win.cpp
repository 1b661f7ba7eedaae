// What a pane does while one types: indents a new line like the one above, puts BASIC keywords in capitals, shows the
// bracket that belongs to the one at the caret. UI thread.
#include "documents/editor_pane.h"

#include "documents/brace_match.h"
#include "documents/pane_state.h"
#include "language/lexer_table.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"

#include <SciLexer.h>

#include <algorithm>
#include <vector>

namespace {

constexpr LRESULT kBraceReach = 16 << 10;  // bytes each way: further than anyone can see
constexpr LRESULT kLongestKeyword = 16;

LRESULT Send(HWND editor, UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

bool IsKeywordStyle(LRESULT style) {
    return style == SCE_B_KEYWORD || style == SCE_B_KEYWORD2 || style == SCE_B_KEYWORD3 || style == SCE_B_KEYWORD4;
}

// The style that the lexer gives to a position of the caret's line, which may not have been painted yet.
LRESULT FreshStyleAt(HWND editor, LRESULT position, LRESULT upTo) {
    const LRESULT line = Send(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT start = Send(editor, SCI_POSITIONFROMLINE, line);
    Send(editor, SCI_COLOURISE, start, upTo);
    Send(editor, SCI_STARTSTYLING, Send(editor, SCI_GETLENGTH));  // as editor_colour_win.cpp wants it
    return Send(editor, SCI_GETSTYLEAT, position);
}

void ShowBraces(HWND editor, LRESULT first, LRESULT second) { Send(editor, SCI_BRACEHIGHLIGHT, first, second); }

// The bracket at the caret: the one before it, else the one after it. -1 without one.
LRESULT BraceAtCaret(HWND editor) {
    const LRESULT caret = Send(editor, SCI_GETCURRENTPOS);
    if (caret > 0 && IsBrace(static_cast<char>(Send(editor, SCI_GETCHARAT, caret - 1)))) return caret - 1;
    return IsBrace(static_cast<char>(Send(editor, SCI_GETCHARAT, caret))) ? caret : -1;
}

}  // namespace

void EditorPaneUpdateBraces(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (!state) return;
    const LRESULT brace = BraceAtCaret(editor);
    if (brace < 0) {
        if (state->bracesShown) ShowBraces(editor, INVALID_POSITION, INVALID_POSITION);
        state->bracesShown = false;
        return;
    }
    const LRESULT start = std::max<LRESULT>(brace - kBraceReach, 0);
    const LRESULT end = std::min<LRESULT>(brace + kBraceReach, Send(editor, SCI_GETLENGTH));
    std::vector<StyledByte> text(static_cast<std::size_t>(end - start) + 1);  // Scintilla adds two NUL bytes
    Sci_TextRangeFull range = {{start, end}, reinterpret_cast<char*>(text.data())};
    SciSend(editor, SCI_GETSTYLEDTEXTFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    const std::ptrdiff_t partner = MatchBrace(text, static_cast<std::size_t>(brace - start));
    state->bracesShown = partner >= 0;
    ShowBraces(editor, partner >= 0 ? brace : INVALID_POSITION, partner >= 0 ? start + partner : INVALID_POSITION);
}

void EditorPaneAfterNewLine(HWND editor) {
    if (Send(editor, SCI_GETSELECTIONS) != 1) return;
    const LRESULT line = Send(editor, SCI_LINEFROMPOSITION, Send(editor, SCI_GETCURRENTPOS));
    if (line < 1 || Send(editor, SCI_GETLINEINDENTATION, line) != 0) return;
    const LRESULT indentation = Send(editor, SCI_GETLINEINDENTATION, line - 1);
    if (indentation <= 0) return;
    Send(editor, SCI_SETLINEINDENTATION, line, indentation);
    Send(editor, SCI_GOTOPOS, Send(editor, SCI_GETLINEINDENTPOSITION, line));
}

void EditorPaneUpperKeywordBefore(HWND editor, LRESULT position) {
    if (!g_settings.autoUpperKeywords || Send(editor, SCI_GETLEXER) != SCLEX_VB) return;
    const LRESULT start = Send(editor, SCI_WORDSTARTPOSITION, position, TRUE);
    const LRESULT length = position - start;
    if (length < 2 || length > kLongestKeyword) return;
    char word[kLongestKeyword + 1] = {};
    Sci_TextRangeFull range = {{start, position}, word};
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    if (!IsBasicKeyword({word, static_cast<std::size_t>(length)})) return;
    const LRESULT lineEnd = Send(editor, SCI_GETLINEENDPOSITION, Send(editor, SCI_LINEFROMPOSITION, position));
    if (!IsKeywordStyle(FreshStyleAt(editor, start, std::max(lineEnd, position)))) return;

    char upper[kLongestKeyword + 1] = {};
    std::transform(word, word + length, upper,
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    if (std::equal(word, word + length, upper)) return;
    Send(editor, SCI_SETTARGETRANGE, start, position);
    SciSend(editor, SCI_REPLACETARGET, static_cast<WPARAM>(length), reinterpret_cast<LPARAM>(upper));
}
