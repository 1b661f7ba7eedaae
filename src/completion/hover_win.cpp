// The declaration of the word under the mouse or at the caret, in a tip of Scintilla's. UI thread.
#include "completion/tips.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "completion/call_tip.h"
#include "completion/hover_text.h"
#include "documents/document_row.h"
#include "editor/statement_text.h"
#include "symbols/definition_search.h"
#include "symbols/symbol_place.h"
#include "ui/dpi.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t kMostDeclarations = 4;  // of one name that are told
constexpr std::size_t kMostLines = 24;

struct Hover {
    HWND editor = nullptr;                        // whose tip tells about a word; null: none
    LRESULT caret = 0, topLine = 0, xOffset = 0;  // when it was shown
    bool operator==(const Hover&) const = default;
};
Hover g_hover;

// Where the mouse rests; editor null: it moves.
struct Rest {
    HWND editor = nullptr;
    LRESULT position = 0;
};
Rest g_rest;

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LPARAM lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

Hover ViewOf(HWND editor) {
    return {editor, Ask(editor, SCI_GETCURRENTPOS), Ask(editor, SCI_GETFIRSTVISIBLELINE), Ask(editor, SCI_GETXOFFSET)};
}

int TipWidth(HWND editor, const std::string& utf8) {
    LRESULT width = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t end = std::min(utf8.find('\n', at), utf8.size());
        const std::string line = utf8.substr(at, end - at);
        width = std::max(width, Ask(editor, SCI_TEXTWIDTH, STYLE_DEFAULT, reinterpret_cast<LPARAM>(line.c_str())));
        at = end + 1;
    }
    return static_cast<int>(width) + UiScaled(12);
}

LRESULT LeftOfText(HWND editor) {
    LRESULT left = 0;
    for (int margin = 0; margin < 5; ++margin) left += Ask(editor, SCI_GETMARGINWIDTHN, margin);
    return left;
}

enum class PlaceKind { Code, Assembly, Text };  // Text: in a comment or a string

PlaceKind KindOfPlace(const StatementText& line, std::size_t column, const Dialect& dialect) {
    std::vector<Token> tokens;
    ScanLine(line.text, 0, line.state, dialect, tokens);
    for (const Token& token : tokens) {
        if (token.start > column || column >= token.End()) continue;
        const bool text =
            token.kind == TokenKind::Comment || token.kind == TokenKind::String || token.kind == TokenKind::Data;
        return text ? PlaceKind::Text : token.Is(kTokenAssembly) ? PlaceKind::Assembly : PlaceKind::Code;
    }
    return PlaceKind::Code;
}

// A variable that another line gives its bounds.
bool IsDeclaredAbove(const std::vector<SymbolTablePtr>& tables, const std::vector<SymbolPlace>& places,
                     std::size_t at) {
    const Symbol& symbol = tables[places[at].text]->symbols[places[at].symbol];
    return at > 0 && IsVariable(symbol.kind) && symbol.typeLength == 0;
}

std::string TextOfDeclarations(const DocumentTab& document, const SymbolWord& word, std::uint32_t line) {
    const std::vector<ReachedText> texts = SymbolsInReach(document.id);
    std::vector<SymbolTablePtr> tables;
    for (const ReachedText& text : texts) tables.push_back(text.table);
    const std::vector<SymbolPlace> places = DefinitionsOf(word, line, tables);
    std::string all;
    for (std::size_t i = 0; i < places.size() && i < kMostDeclarations; ++i) {
        if (IsDeclaredAbove(tables, places, i)) continue;
        const SymbolPlace& place = places[i];
        const std::uint32_t at = tables[place.text]->symbols[place.symbol].line + 1;
        const std::string where =
            place.text == 0 ? "" : ToUtf8(NameOfText(texts[place.text])) + ":" + std::to_string(at);
        const std::string text = HoverTextOf(tables, place, where, DialectOf(document.compilerId));
        if (all.find(text) != std::string::npos) continue;
        if (!all.empty()) all += '\n';
        all += text;
    }
    return all;
}

// Of built-in functions and statements, which are no symbols.
std::string TextOfBuiltins(HWND editor, const StatementText& line, LRESULT position, LRESULT* start,
                           const Dialect& dialect) {
    *start = Ask(editor, SCI_WORDSTARTPOSITION, position, TRUE);
    const LRESULT end = Ask(editor, SCI_WORDENDPOSITION, position, TRUE);
    const auto from = static_cast<std::size_t>(*start - line.start);
    if (*start < line.start || end <= *start || from >= line.text.size()) return {};
    return HoverTextOfBuiltins(BuiltinsNamed(line.text.substr(from, static_cast<std::size_t>(end - *start)), dialect));
}

}  // namespace

std::size_t TipColumns(HWND editor) {
    RECT client = {};
    GetClientRect(editor, &client);
    static constexpr char kUsual[] = "BYVAL numbers() AS LONG, text AS STRING, ";
    const LRESULT usual = Ask(editor, SCI_TEXTWIDTH, STYLE_DEFAULT, reinterpret_cast<LPARAM>(kUsual));
    const LRESULT width = std::max<LRESULT>(usual / static_cast<LRESULT>(sizeof kUsual - 1), 1);
    const LRESULT room = client.right - LeftOfText(editor) - UiScaled(12);
    return static_cast<std::size_t>(std::clamp<LRESULT>(room / width, kLeastTipColumns, 120));
}

LRESULT TipPlace(HWND editor, LRESULT wanted, const std::string& utf8) {
    RECT client = {};
    GetClientRect(editor, &client);
    const LRESULT caretY = Ask(editor, SCI_POINTYFROMPOSITION, 0, Ask(editor, SCI_GETCURRENTPOS));
    const LRESULT y = g_hover.editor == editor ? Ask(editor, SCI_POINTYFROMPOSITION, 0, wanted) : caretY;
    const bool sameRow = Ask(editor, SCI_POINTYFROMPOSITION, 0, wanted) == y;
    const LRESULT left = LeftOfText(editor) + UiScaled(6);
    const LRESULT most = std::max<LRESULT>(client.right - TipWidth(editor, utf8), left);
    const LRESULT x = sameRow ? Ask(editor, SCI_POINTXFROMPOSITION, 0, wanted) : left;
    if (sameRow && x <= most && x >= left) return wanted;
    return Ask(editor, SCI_POSITIONFROMPOINT, std::clamp(x, left, most), y + 1);
}

std::string HoverTextAt(DocumentId document, LRESULT position, LRESULT* start) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0) return {};
    const DocumentTab& record = TabAt(tab);
    const std::optional<StatementText> line = EditorPaneLineAt(record.editor, position);
    if (!line) return {};
    const Dialect& dialect = DialectOf(record.compilerId);
    const auto column = static_cast<std::size_t>(position - line->start);
    const PlaceKind kind = KindOfPlace(*line, column, dialect);
    const std::optional<SymbolWord> word = SymbolWordAt(line->text, column, dialect);
    if (kind == PlaceKind::Text || (word && word->isInclude)) return {};
    std::string text;
    if (word) {
        const auto number = static_cast<std::uint32_t>(Ask(record.editor, SCI_LINEFROMPOSITION, position));
        *start = line->start + word->start;
        text = TextOfDeclarations(record, *word, number);
    }
    const bool builtin = text.empty() && kind == PlaceKind::Code && !(word && word->isMember);
    if (builtin) text = TextOfBuiltins(record.editor, *line, position, start, dialect);
    return BrokenLines(text, TipColumns(record.editor), kMostLines);
}

void HoverShow(HWND editor, LRESULT position, const std::string& utf8) {
    if (CallTipIsShown() || g_documents.wordListOpen) return;
    g_hover = ViewOf(editor);
    Ask(editor, SCI_CALLTIPSHOW, TipPlace(editor, position, utf8), reinterpret_cast<LPARAM>(utf8.c_str()));
    Ask(editor, SCI_CALLTIPSETHLT, 0, 0);
}

void HoverShowLines(HWND editor, LRESULT position, const std::string& utf8) {
    HoverShow(editor, position, BrokenLines(utf8, TipColumns(editor), kMostLines));
}

void HoverAtMouse(HWND editor, DocumentId document, LRESULT position) {
    const auto show = [editor, document, position] {
        LRESULT start = position;
        const std::string text = HoverTextAt(document, position, &start);
        if (!text.empty()) HoverShow(editor, start, text);
        return !text.empty();
    };
    g_rest = {editor, position};
    if (show() || SymbolsReachIsKnown(document)) return;
    SymbolsWhenReached(document, [editor, position, show] {
        if (g_rest.editor == editor && g_rest.position == position) show();
    });
}

void HoverMouseMoved(HWND editor) {
    g_rest = {};
    HoverEnd(editor);
}

void HoverEnd(HWND editor) {
    if (g_hover.editor != editor || editor == nullptr) return;
    g_hover = {};
    Ask(editor, SCI_CALLTIPCANCEL);
}

void HoverOnView(HWND editor, bool edited) {
    if (g_hover.editor == editor && editor != nullptr && (edited || !(g_hover == ViewOf(editor)))) HoverEnd(editor);
}

void HoverShowAtCaret() {
    const HWND editor = g_documents.hEditor;
    if (editor == nullptr) return;
    const LRESULT caret = Ask(editor, SCI_GETCURRENTPOS);
    SymbolsWhenReached(ActiveDocumentId(), [editor, caret] {
        if (editor != g_documents.hEditor || Ask(editor, SCI_GETCURRENTPOS) != caret) return;
        LRESULT start = caret;
        const std::string text = HoverTextAt(ActiveDocumentId(), caret, &start);
        if (text.empty()) return TellSymbolStatus(Text(L"Nothing is known of the word at the caret"));
        HoverShow(editor, start, text);
    });
}
