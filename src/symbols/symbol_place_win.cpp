// Places of symbols in the editor. UI thread.
#include "symbols/symbol_place.h"

#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/nav_history.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "scintilla/sci.h"

#include <iterator>

namespace {

constexpr LRESULT kLongestLine = 16 << 10;  // bytes; in a longer one no word is looked for

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam));
}

// So that Alt+Left comes back to the very place.
void RememberCaret() {
    const NavHistory& history = g_documents.navigation;
    if (!IsTabIndex(g_documents.activeTab)) return;
    const auto position = static_cast<int>(Ask(g_documents.hEditor, SCI_GETCURRENTPOS));
    if (history.navPos[history.navIndex] != position || history.navTab[history.navIndex] != g_documents.activeTab)
        NavHistoryAdd(position, g_documents.activeTab);
}

bool ShowSpotDocument(const SymbolSpot& spot) {
    const int tab = spot.document != 0 ? TabBarFindDocument(spot.document) : -1;
    if (tab >= 0) return TabBarActivate(tab) != 0;
    return !spot.path.empty() && FileShow(spot.path.c_str(), false) != 0;
}

}  // namespace

SymbolSpot SpotOf(const ReachedText& text, std::uint32_t symbol) {
    const Symbol& found = text.table->symbols[symbol];
    return {text.document, text.path, found.line, found.column};
}

void SymbolGoTo(const SymbolSpot& spot) {
    RememberCaret();
    const NavHistory left = g_documents.navigation;
    if (!ShowSpotDocument(spot)) return;
    const HWND editor = g_documents.hEditor;
    const LRESULT start = Ask(editor, SCI_POSITIONFROMLINE, spot.line);
    const LRESULT position = start < 0 ? Ask(editor, SCI_GETLENGTH) : start + static_cast<LRESULT>(spot.column);
    CaretGoTo(editor, CaretPositionAt(editor, position));
    CaretShowInMiddle(editor);
    // The place at which the document came up is none that the user was at.
    NavHistory& history = g_documents.navigation;
    history = left;
    RememberCaret();
    history.navLastTab = g_documents.activeTab;
    history.navLastLine = static_cast<std::int32_t>(spot.line);
    FocusCurrentEditor();
}

const wchar_t* SymbolKindText(SymbolKind kind) {
    static constexpr const wchar_t* kTexts[] = {L"SUB",
                                                L"FUNCTION",
                                                L"METHOD",
                                                English(L"PROPERTY GET"),
                                                English(L"PROPERTY SET"),
                                                L"FASTPROC",
                                                L"MACRO",
                                                L"TYPE",
                                                L"UNION",
                                                L"ENUM",
                                                L"CLASS",
                                                L"INTERFACE",
                                                L"NAMESPACE",
                                                English(L"member"),
                                                English(L"ENUM value"),
                                                English(L"constant"),
                                                English(L"global"),
                                                English(L"local"),
                                                English(L"parameter"),
                                                English(L"label"),
                                                English(L"include")};
    static_assert(std::size(kTexts) == static_cast<std::size_t>(SymbolKind::Count));
    return Text(kTexts[static_cast<std::size_t>(kind)]);
}

std::wstring SymbolDeclaration(const SymbolTable& table, const Symbol& symbol) {
    std::string text(SymbolName(table, symbol));
    const std::string_view detail = SymbolDetail(table, symbol), type = SymbolType(table, symbol);
    const bool value = symbol.kind == SymbolKind::Constant || symbol.kind == SymbolKind::EnumValue;
    if (!detail.empty()) text.append(value ? " = " : "").append(detail);
    if (!type.empty()) text.append(" AS ").append(type);
    return std::wstring(SymbolKindText(symbol.kind)) + L" " + Utf8ToWideText(text);
}

std::optional<WordInDocument> WordAtPlace(LRESULT position) {
    if (!IsTabIndex(g_documents.activeTab)) return std::nullopt;
    const DocumentTab& tab = TabAt(g_documents.activeTab);
    WordInDocument found{.document = tab.id, .editor = tab.editor, .compilerId = tab.compilerId};
    if (position < 0) position = Ask(tab.editor, SCI_GETCURRENTPOS);
    const LRESULT line = Ask(tab.editor, SCI_LINEFROMPOSITION, position);
    const LRESULT start = Ask(tab.editor, SCI_POSITIONFROMLINE, line);
    const LRESULT length = Ask(tab.editor, SCI_GETLINEENDPOSITION, line) - start;
    if (length <= 0 || length > kLongestLine) return std::nullopt;
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    Sci_TextRangeFull range = {{start, start + length}, text.data()};
    SciSend(tab.editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    const auto column = static_cast<std::size_t>(position - start);
    const std::optional<SymbolWord> word = SymbolWordAt(text, column, DialectOf(tab.compilerId));
    if (!word) return std::nullopt;
    found.word = *word;
    found.line = static_cast<std::uint32_t>(line);
    found.position = start + word->start;
    return found;
}

void TellSymbolStatus(const std::wstring& text) { g_events.documentStatus(ActiveDocumentId(), text.c_str()); }
