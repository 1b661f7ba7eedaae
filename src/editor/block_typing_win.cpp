// What Return does in a pane: indents the new line by the blocks above it, takes a line that closes a block back to the
// line that opened it, and closes a new block when the settings say so. UI thread.
#include "base/scan_text.h"
#include "editor/margins.h"
#include "editor/pane_state.h"
#include "editor/typing_rules.h"
#include "language/basic_lexer.h"
#include "language/block_words.h"
#include "language/format.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"

#include <SciLexer.h>

#include <algorithm>
#include <optional>
#include <string>

namespace {

constexpr LRESULT kLongestLine = 4 << 10;     // bytes; a longer one is not looked at
constexpr LRESULT kStatementLines = 64;       // of one statement, and blank lines between two
constexpr LRESULT kSearchedBelow = 64 << 10;  // bytes in which the end of a block is searched

std::string TextOfLine(HWND editor, LRESULT line) {
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    const LRESULT end = PaneSend(editor, SCI_GETLINEENDPOSITION, line);
    return end - start > kLongestLine ? std::string() : EditorPaneTextBetween(editor, start, end);
}

LRESULT IndentOf(HWND editor, LRESULT line) { return PaneSend(editor, SCI_GETLINEINDENTATION, line); }

bool IsBlank(HWND editor, LRESULT line) {
    return PaneSend(editor, SCI_GETLINEINDENTPOSITION, line) == PaneSend(editor, SCI_GETLINEENDPOSITION, line);
}

// A line with its blocks, and the statement that it ends or goes on with.
struct LineWithBlocks {
    LineAbove above;
    LineState after = 0;
    BlockLine blocks;  // of the line itself
    std::string text;
    bool isLabel = false;  // it holds a label and nothing else
};

LineWithBlocks LookAtLine(HWND editor, LRESULT line, BlockTable& table) {
    LRESULT first = line;
    while (first > 0 && line - first < kStatementLines && (EditorPaneLineState(editor, first) & kScanContinues) != 0)
        --first;
    LineWithBlocks look;
    std::vector<Token> tokens;
    const Dialect& dialect = EditorPaneDialect(editor);
    look.after = EditorPaneLineState(editor, first);
    for (LRESULT at = first; at <= line; ++at) {
        look.text = TextOfLine(editor, at);
        const ScannedLine scanned = ScanLine(look.text, 0, look.after & kScanStateMask, dialect, tokens);
        look.after = ScanBlocks(table, look.text, tokens, look.after, scanned.state, dialect, look.blocks);
        if (at == first) look.above.depth = look.blocks.depth;
        look.isLabel = at == first && IsLabelOnly(tokens);
    }
    look.above.indentation = IndentOf(editor, first);
    look.above.own = IndentOf(editor, line);
    look.above.depthAfter = DepthOf(table, look.after);
    look.above.continues = (look.after & kScanContinues) != 0;
    look.above.continued = first != line;
    return look;
}

// The nearest line above that is not blank; -1 without one.
LRESULT LineAboveWithText(HWND editor, LRESULT line) {
    const LRESULT last = std::max<LRESULT>(line - kStatementLines, 0);
    for (--line; line >= last; --line)
        if (!IsBlank(editor, line)) return line;
    return -1;
}

// Takes a line such as END IF back to the indentation of its block.
void IndentClosingLine(HWND editor, LRESULT line, LineWithBlocks& look, BlockTable& table, LRESULT step) {
    const LRESULT above = LineAboveWithText(editor, line);
    if (above < 0 || look.above.continued) return;
    const LineWithBlocks before = LookAtLine(editor, above, table);
    const std::optional<std::ptrdiff_t> wanted =
        IndentationOfCloser(before.above, look.above.own, look.above.depth, step);
    if (!wanted) return;
    PaneSend(editor, SCI_SETLINEINDENTATION, line, *wanted);
    look.above.indentation = look.above.own = *wanted;
}

// Puts a label one step further left than what is around it, as the formatter does, and what is below the label not.
void IndentLabel(HWND editor, LRESULT line, LineWithBlocks& look, BlockTable& table, LRESULT step) {
    LRESULT above = line;
    LineWithBlocks before = look;
    while (before.isLabel && (above = LineAboveWithText(editor, above)) >= 0) before = LookAtLine(editor, above, table);
    if (before.isLabel || before.above.continues || look.above.depth == 0) return;
    const std::ptrdiff_t inside = IndentationBelow(before.above, step);
    if (look.above.own == inside && inside >= step) {
        look.above.own = look.above.indentation = inside - step;
        PaneSend(editor, SCI_SETLINEINDENTATION, line, look.above.own);
    }
    if (look.above.own == inside - step) --look.above.depth;
}

// Whether the block that a line with this indentation has opened is closed below `line`. A line that is indented less
// closes a block around it.
bool IsClosedBelow(HWND editor, LRESULT line, const LineWithBlocks& opener, std::uint32_t id, BlockTable& table) {
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    const LRESULT length = PaneSend(editor, SCI_GETLENGTH);
    const LRESULT end = std::min(start + kSearchedBelow, length);
    const std::string text = EditorPaneTextBetween(editor, start, end);
    const Dialect& dialect = EditorPaneDialect(editor);
    LineReader reader{.text = text, .dialect = &dialect, .state = opener.after & kScanStateMask};
    BlockLine blocks;
    for (LineState state = opener.after; ReadLine(reader); ++line) {
        state = ScanBlocks(table, reader.line, reader.tokens, state, reader.state, dialect, blocks);
        const auto closes = [id](const BlockEvent& event) {
            return event.id == id && event.kind == BlockEvent::Kind::Close;
        };
        if (std::ranges::any_of(blocks.events, closes)) return IndentOf(editor, line) >= opener.above.indentation;
        if (!IsBlockOpen(table, state, id)) return false;
    }
    return end < length;  // too far to know
}

void CloseNewBlock(HWND editor, LRESULT line, const LineWithBlocks& opener, BlockTable& table) {
    if (g_settings.autoCloseBlocks == 0 || opener.above.depthAfter != opener.above.depth + 1) return;
    if (opener.blocks.events.empty() || opener.blocks.events.back().kind != BlockEvent::Kind::Open) return;
    const BlockEvent& event = opener.blocks.events.back();
    const std::string_view closing = BlockRowOf(event.block).closing;
    if (closing.empty() || IsClosedBelow(editor, line + 1, opener, event.id, table)) return;
    std::string inserted = PaneSend(editor, SCI_GETEOLMODE) == SC_EOL_LF   ? "\n"
                           : PaneSend(editor, SCI_GETEOLMODE) == SC_EOL_CR ? "\r"
                                                                           : "\r\n";
    const bool capitals = g_settings.autoUpperKeywords != 0 || WritesCapitals(opener.text);
    for (const char c : closing) inserted += capitals || c < 'A' || c > 'Z' ? c : static_cast<char>(c + 32);
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    SciSend(editor, SCI_INSERTTEXT, static_cast<WPARAM>(caret), reinterpret_cast<LPARAM>(inserted.c_str()));
    PaneSend(editor, SCI_SETLINEINDENTATION, line + 1, opener.above.indentation);
    PaneSend(editor, SCI_MARKERDEFINE, kMarkOwnCloser, SC_MARK_EMPTY);
    PaneSend(editor, SCI_MARKERADD, line + 1, kMarkOwnCloser);
    PaneSend(editor, SCI_GOTOPOS, caret);
}

// Who types the end of a block by habit finds it there already: the one that came by itself, below `line`, goes.
void DropOwnCloser(HWND editor, LRESULT line, const LineWithBlocks& typed, BlockTable& table) {
    if ((PaneSend(editor, SCI_MARKERGET, line + 1) & 1 << kMarkOwnCloser) == 0 || typed.blocks.events.empty()) return;
    if (IndentOf(editor, line + 1) != typed.above.indentation) return;
    const LineWithBlocks own = LookAtLine(editor, line + 1, table);
    const BlockEvent& event = typed.blocks.events.back();
    const std::string_view closing = BlockRowOf(event.block).closing;
    const std::string_view text = WithoutLeadingBlanks(own.text);
    if (event.kind != BlockEvent::Kind::Close || text.size() != closing.size()) return;
    if (!std::ranges::equal(text, closing, [](char a, char b) { return UpperAscii(a) == b; })) return;
    PaneSend(editor, SCI_MARKERDELETE, line + 1, kMarkOwnCloser);
    const LRESULT from = PaneSend(editor, SCI_GETLINEENDPOSITION, line);
    PaneSend(editor, SCI_DELETERANGE, from, PaneSend(editor, SCI_GETLINEENDPOSITION, line + 1) - from);
}

LRESULT StepOf(HWND editor) {
    const LRESULT indent = PaneSend(editor, SCI_GETINDENT);
    return indent > 0 ? indent : PaneSend(editor, SCI_GETTABWIDTH);
}

void AfterNewLineInBasic(HWND editor, LRESULT line, BlockTable& table) {
    const LRESULT step = StepOf(editor);
    LineWithBlocks look = LookAtLine(editor, line - 1, table);
    IndentClosingLine(editor, line - 1, look, table, step);
    if (look.isLabel) IndentLabel(editor, line - 1, look, table, step);
    if (IndentOf(editor, line) != 0) return;  // what was right of the caret has brought some
    if (IsBlank(editor, line)) {
        DropOwnCloser(editor, line, look, table);
        CloseNewBlock(editor, line, look, table);
    }
    // The last change, because redo leaves the caret behind that one.
    PaneSend(editor, SCI_SETLINEINDENTATION, line, IndentationBelow(look.above, step));
    PaneSend(editor, SCI_GOTOPOS, PaneSend(editor, SCI_GETLINEINDENTPOSITION, line));
}

bool OpensBraceAbove(HWND editor, LRESULT line) {
    return line > 0 && PaneSend(editor, SCI_GETLEXER) == SCLEX_CPP && OpensBrace(TextOfLine(editor, line - 1));
}

}  // namespace

void EditorPaneAfterClosingBrace(HWND editor) {
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, caret);
    if (PaneSend(editor, SCI_GETLEXER) != SCLEX_CPP || !IsClosingBrace(TextOfLine(editor, line))) return;
    if (!EditorColourUpTo(editor, caret)) return;  // brackets of one style belong together
    const LRESULT partner = EditorPaneBracesAtCaret(editor).second;
    if (partner < 0) return;
    const LRESULT opener = PaneSend(editor, SCI_LINEFROMPOSITION, partner);
    PaneSend(editor, SCI_SETLINEINDENTATION, line, IndentOf(editor, opener));
}

void EditorPaneAfterClosingWord(HWND editor) {
    BlockTable* table = EditorPaneBlockTable(editor);
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, caret);
    if (table == nullptr || PaneSend(editor, SCI_GETSELECTIONS) != 1 ||
        PaneSend(editor, SCI_GETLINEENDPOSITION, line) != caret || !IsTwoWordCloser(TextOfLine(editor, line)))
        return;
    LineWithBlocks look = LookAtLine(editor, line, *table);
    if (look.blocks.events.empty() || look.blocks.events.back().kind != BlockEvent::Kind::Close) return;
    IndentClosingLine(editor, line, look, *table, StepOf(editor));
}

void EditorPaneAfterLeaving(HWND editor) {
    BlockTable* table = EditorPaneBlockTable(editor);
    if (table == nullptr) return;
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, caret);
    PaneSend(editor, SCI_BEGINUNDOACTION);
    EditorPaneUpperKeywordBefore(editor, caret);
    LineWithBlocks look = LookAtLine(editor, line, *table);
    IndentClosingLine(editor, line, look, *table, StepOf(editor));
    if (look.isLabel) IndentLabel(editor, line, look, *table, StepOf(editor));
    DropOwnCloser(editor, line, look, *table);
    PaneSend(editor, SCI_ENDUNDOACTION);
}

void EditorPaneAfterNewLine(HWND editor) {
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, PaneSend(editor, SCI_GETCURRENTPOS));
    const BrokenLine broken{.selections = PaneSend(editor, SCI_GETSELECTIONS),
                            .line = line,
                            .own = IndentOf(editor, line),
                            .above = line > 0 ? IndentOf(editor, line - 1) : 0,
                            .step = OpensBraceAbove(editor, line) ? StepOf(editor) : 0};
    BlockTable* table = EditorPaneBlockTable(editor);
    if (table != nullptr && broken.selections == 1 && line > 0 && !IsBlank(editor, line - 1)) {
        AfterNewLineInBasic(editor, line, *table);
        return;
    }
    const std::optional<std::ptrdiff_t> indentation = IndentationAfterBreak(broken);
    if (!indentation) return;
    PaneSend(editor, SCI_SETLINEINDENTATION, line, *indentation);
    PaneSend(editor, SCI_GOTOPOS, PaneSend(editor, SCI_GETLINEINDENTPOSITION, line));
}
