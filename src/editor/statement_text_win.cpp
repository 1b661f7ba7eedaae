// Reads the statement before a place. A key asks for it, so only its own lines are looked at. UI thread.
#include "editor/statement_text.h"

#include "editor/pane_state.h"
#include "language/basic_lexer.h"

#include <vector>

namespace {

constexpr LRESULT kMostLines = 64;        // of a statement
constexpr LRESULT kMostBytes = 16 << 10;  // of a statement up to the place

LRESULT StartOf(HWND editor, LRESULT line) { return PaneSend(editor, SCI_POSITIONFROMLINE, line); }

// Whether a line goes on in the next one: its last token is the underscore, or the comment behind it.
bool GoesOn(const std::string& line, ScanState state, const Dialect& dialect) {
    if (line.find('_') == std::string::npos) return false;
    std::vector<Token> tokens;
    return (ScanLine(line, 0, state, dialect, tokens).state & kScanContinues) != 0;
}

}  // namespace

std::optional<StatementText> EditorPaneStatementTo(HWND editor, LRESULT position) {
    if (PaneSend(editor, SCI_GETLEXER) != kBasicLexer) return std::nullopt;
    LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT end = position;
    if (end - StartOf(editor, line) > kMostBytes) return std::nullopt;
    const ScanState known = EditorPaneLineState(editor, line) & kScanStateMask;
    // Far below what is coloured the states of lines say nothing yet.
    const bool coloured = EditorColourUpTo(editor, StartOf(editor, line));
    const auto stateOf = [&](LRESULT of) -> ScanState {
        if (!coloured) return known & kScanAssembly;
        return of > 0 ? static_cast<ScanState>(PaneSend(editor, SCI_GETLINESTATE, of - 1)) & kScanStateMask : 0;
    };
    const Dialect& dialect = EditorPaneDialect(editor);
    for (LRESULT lines = 1; line > 0 && lines < kMostLines; ++lines, --line) {
        const LRESULT above = StartOf(editor, line - 1);
        if (end - above > kMostBytes) break;
        if (!GoesOn(EditorPaneTextBetween(editor, above, StartOf(editor, line)), stateOf(line - 1), dialect)) break;
    }
    const LRESULT start = StartOf(editor, line);
    return StatementText{EditorPaneTextBetween(editor, start, end), start, stateOf(line)};
}

std::optional<StatementText> EditorPaneLineAt(HWND editor, LRESULT position) {
    if (PaneSend(editor, SCI_GETLEXER) != kBasicLexer) return std::nullopt;
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT start = StartOf(editor, line), end = PaneSend(editor, SCI_GETLINEENDPOSITION, line);
    if (end - start > kMostBytes) return std::nullopt;
    return StatementText{EditorPaneTextBetween(editor, start, end), start,
                         EditorPaneLineState(editor, line) & kScanStateMask};
}
