// Shows the words of the block at the caret (IF, ELSE, END IF), and jumps between them and between brackets. UI thread.
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "editor/pane_state.h"
#include "editor/typing_rules.h"
#include "language/basic_lexer.h"
#include "language/block_words.h"
#include "scintilla/sci.h"
#include "ui/chrome.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int kIndicator = INDICATOR_CONTAINER;
constexpr LRESULT kLongestLine = 4 << 10;  // bytes; a longer one has no block that anyone reads
constexpr LRESULT kShownBytes = 64 << 10;  // searched at every move of the caret: about half a millisecond
constexpr LRESULT kShownLines = 5000;      // looked at above the caret
constexpr LRESULT kJumpBytes = 16 << 20;
constexpr LRESULT kJumpLines = 500'000;

struct BlockReach {
    LRESULT lines;  // above
    LRESULT bytes;  // from the block's first line on
};

std::string LineText(HWND editor, LRESULT line) {
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    const LRESULT end = PaneSend(editor, SCI_GETLINEENDPOSITION, line);
    return end - start > kLongestLine ? std::string() : EditorPaneTextBetween(editor, start, end);
}

// The line above which the block is not open; -1 when it is further away.
LRESULT OpeningLine(HWND editor, const BlockTable& table, LRESULT line, std::uint32_t id, const BlockReach& reach) {
    const LRESULT last = std::max<LRESULT>(line - reach.lines, 0);
    for (; line >= last; --line) {
        const LRESULT above = line > 0 ? PaneSend(editor, SCI_GETLINESTATE, line - 1) : 0;
        if (!IsBlockOpen(table, static_cast<LineState>(above), id)) return line;
    }
    return -1;
}

// A block with the words of it that were found. Positions are bytes of the document.
struct FoundBlock {
    BlockWords own;  // those at the caret
    std::vector<BlockWords> words;
    bool closed = false;
};

FoundBlock BlockAt(HWND editor, LRESULT position, const BlockReach& reach) {
    FoundBlock found;
    BlockTable* table = EditorPaneBlockTable(editor);
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    if (table == nullptr || !EditorColourUpTo(editor, start)) return found;
    const Dialect& dialect = EditorPaneDialect(editor);
    const std::vector<BlockWords> words =
        BlockWordsOfLine(*table, dialect, LineText(editor, line), EditorPaneLineState(editor, line));
    found.own = BlockWordsAt(words, static_cast<std::size_t>(position - start));
    if (found.own.id == 0) return found;
    const bool opens = found.own.kind == BlockEvent::Kind::Open;
    const LRESULT first = opens ? line : OpeningLine(editor, *table, line, found.own.id, reach);
    if (first < 0) return found;
    const LRESULT from = PaneSend(editor, SCI_POSITIONFROMLINE, first);
    const LRESULT end = std::min<LRESULT>(from + reach.bytes, PaneSend(editor, SCI_GETLENGTH));
    const std::string text = EditorPaneTextBetween(editor, from, end);
    const BlockSearch search = FindBlockWords(*table, dialect, text, EditorPaneLineState(editor, first), found.own.id);
    found.words = search.words;
    found.closed = search.closed;
    for (BlockWords& each : found.words) {
        each.start += static_cast<std::size_t>(from);
        each.end += static_cast<std::size_t>(from);
    }
    return found;
}

// Whether a letter is at the position or just before it: most moves of the caret end here.
bool MayBeAtWord(HWND editor, LRESULT position) {
    const LRESULT start = PaneSend(editor, SCI_WORDSTARTPOSITION, position, TRUE);
    const LRESULT end = PaneSend(editor, SCI_WORDENDPOSITION, position, TRUE);
    constexpr LRESULT kLongest = 16;
    if (start == end || end - start > kLongest) return false;
    const std::string word = EditorPaneTextBetween(editor, start, end);
    return LookUpWord(word, EditorPaneDialect(editor)).word != BasicWord::None;
}

void ShowWords(HWND editor, PaneState& state, std::vector<PaneSpan> spans) {
    if (spans == state.blockWords) return;
    if (PaneSend(editor, SCI_GETINDICATORCURRENT) != kIndicator) PaneSend(editor, SCI_SETINDICATORCURRENT, kIndicator);
    if (!state.blockWords.empty()) PaneSend(editor, SCI_INDICATORCLEARRANGE, 0, PaneSend(editor, SCI_GETLENGTH));
    if (!spans.empty()) {
        PaneSend(editor, SCI_INDICSETSTYLE, kIndicator, INDIC_STRAIGHTBOX);
        PaneSend(editor, SCI_INDICSETFORE, kIndicator, static_cast<LRESULT>(ThemeCurrentChrome().accent));
        PaneSend(editor, SCI_INDICSETALPHA, kIndicator, 30);
        PaneSend(editor, SCI_INDICSETOUTLINEALPHA, kIndicator, 90);
        PaneSend(editor, SCI_INDICSETUNDER, kIndicator, TRUE);
    }
    for (const PaneSpan& span : spans) PaneSend(editor, SCI_INDICATORFILLRANGE, span.start, span.end - span.start);
    state.blockWords = std::move(spans);
}

// The bracket that belongs to the one at the caret; -1 without one.
LRESULT BracePartner(HWND editor) {
    const BracePair pair = EditorPaneBracesAtCaret(editor);
    if (pair == BracePair{}) return -1;
    return pair.second;
}

// From the opening words to the closing ones, and from all others to the opening ones.
LRESULT BlockPartner(const FoundBlock& found) {
    if (found.words.empty()) return -1;
    const bool opens = found.own.kind == BlockEvent::Kind::Open;
    if (opens && !found.closed) return -1;
    return static_cast<LRESULT>(opens ? found.words.back().start : found.words.front().start);
}

}  // namespace

BlockTable* EditorPaneBlockTable(HWND editor) {
    if (PaneSend(editor, SCI_GETLEXER) != kBasicLexer) return nullptr;
    return reinterpret_cast<BlockTable*>(PaneSend(editor, SCI_PRIVATELEXERCALL, kGetBlockTable));
}

void EditorPaneUpdateBlockWords(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || PaneSend(editor, SCI_GETLEXER) != kBasicLexer) return;
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    std::vector<PaneSpan> spans;
    if (PaneSend(editor, SCI_GETSELECTIONEMPTY) != 0 && MayBeAtWord(editor, caret)) {
        const FoundBlock found = BlockAt(editor, caret, {kShownLines, kShownBytes});
        for (const BlockWords& words : found.words)
            spans.push_back({static_cast<std::ptrdiff_t>(words.start), static_cast<std::ptrdiff_t>(words.end)});
        if (spans.size() == 1) spans.clear();
    }
    ShowWords(editor, *state, std::move(spans));
}

void EditorPaneGoToMatch(HWND editor) {
    if (editor == nullptr) return;
    LRESULT place = BracePartner(editor);
    if (place < 0) place = BlockPartner(BlockAt(editor, PaneSend(editor, SCI_GETCURRENTPOS), {kJumpLines, kJumpBytes}));
    if (place >= 0) CaretGoToMiddle(editor, place);
}
