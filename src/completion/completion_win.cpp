// The completion list: when it comes up, what it shows, what choosing a row does. UI thread.
#include "completion/completion.h"

#include "base/texts.h"
#include "base/utf8.h"
#include "completion/completion_list.h"
#include "completion/completion_rows.h"
#include "completion/snippet_fields.h"
#include "completion/tips.h"
#include "completion/user_snippets.h"
#include "documents/document_row.h"
#include "editor/editor_pane.h"
#include "editor/typing_rules.h"
#include "language/basic_lexer.h"
#include "settings/settings_state.h"
#include "symbols/symbol_index.h"
#include "symbols/symbol_place.h"
#include "ui/subclass.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr LRESULT kLookedAbove = 16 << 10;  // bytes before the caret's line whose names count at once
constexpr LRESULT kLookedBelow = 8 << 10;   // and after it
constexpr std::size_t kMostNearby = 200;    // names near the caret
constexpr std::size_t kMostAccepted = 48;   // that are remembered

struct ListState {
    HWND editor = nullptr;  // null: no list is open
    DocumentId document = 0;
    LRESULT start = 0;  // of the word, bytes
    std::string prefix;
    bool wanted = false;    // by the command, not by typing
    bool moved = false;     // the user has chosen a row by a key
    LRESULT firstLine = 0;  // of the view
    std::vector<CompletionRow> rows;
    SnippetList snippets;                // to which rows point
    std::vector<SymbolTablePtr> tables;  // and these
};
ListState g_list;

// The tables of what a document reaches, and the caret's lines in the first of them. While the document's table is
// behind its text, what stands around the caret has one of its own, so that a name can be used as soon as it is typed.
struct Tables {
    std::vector<SymbolTablePtr> tables;
    std::vector<std::uint32_t> lines;
};

// What stands around a word. It stays the same while only the word grows.
struct WordNearby {
    HWND editor = nullptr;  // null: nothing is known
    LRESULT start = 0;      // of the word, bytes
    LRESULT first = 0;      // of the text
    std::size_t rest = 0;   // bytes of the text, without the word
    Tables tables;
    std::string prefix;              // of `names`
    std::vector<std::string> names;  // that are used there
};
WordNearby g_nearby;

// A place where nothing was found while symbols were still being read.
struct WaitingPlace {
    HWND editor = nullptr;  // null: none
    LRESULT caret = 0;
    bool wanted = false;
};
WaitingPlace g_waiting;
constexpr UINT_PTR kOpenTimer = 0x4B56;  // of the editor
constexpr UINT kOpenMs = 30;
HWND g_typedIn = nullptr;            // the editor whose list is to follow what was typed; null: none
std::deque<std::string> g_accepted;  // words that were chosen in this run, the last one first
bool g_dropCharacter = false;        // the key down was taken, its character is to be dropped

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

// Ends the list, and gives what it was.
ListState TakeList() {
    ListState list = std::exchange(g_list, {});
    g_nearby = {};
    g_documents.wordListOpen = false;
    if (list.editor == nullptr) return list;
    WordListHide();
    CallTipOnListClosed(list.editor);
    return list;
}

void CloseList() {
    if (g_list.editor != nullptr) TakeList();
}

bool IsNameByte(LRESULT c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || (c & 0xFF) >= 0x80;
}

// --- What stands around the caret

struct Look {
    HWND editor = nullptr;
    int tab = -1;
    LRESULT first = 0;  // position at which `text` begins, the start of a line
    std::string text;
    std::size_t caret = 0;  // bytes of `text`
    LRESULT firstLine = 0, caretLine = 0;
    ScanState state = 0;
    CompletionContext context;

    std::string_view Before() const { return std::string_view(text).substr(0, caret); }
};

// Whether words can be completed there at all.
bool CanComplete(HWND editor) {
    return Ask(editor, SCI_GETLEXER) == kBasicLexer && Ask(editor, SCI_GETREADONLY) == 0 &&
           Ask(editor, SCI_GETSELECTIONS) == 1 && Ask(editor, SCI_GETSELECTIONEMPTY) != 0 &&
           Ask(editor, SCI_SELECTIONISRECTANGLE) == 0 && !EditorPaneIsPlain(editor);
}

std::optional<Look> LookAround(HWND editor) {
    Look look{.editor = editor, .tab = TabBarFindEditor(editor)};
    if (look.tab < 0 || !CanComplete(editor)) return std::nullopt;
    const LRESULT caret = Ask(editor, SCI_GETCURRENTPOS);
    look.caretLine = Ask(editor, SCI_LINEFROMPOSITION, caret);
    const LRESULT lineStart = Ask(editor, SCI_POSITIONFROMLINE, look.caretLine);
    if (caret - lineStart > kLookedAbove) return std::nullopt;  // nobody has typed such a line
    const LRESULT wanted = std::max<LRESULT>(lineStart - kLookedAbove, 0);
    look.firstLine = Ask(editor, SCI_LINEFROMPOSITION, wanted);
    look.first = Ask(editor, SCI_POSITIONFROMLINE, look.firstLine);
    if (look.first < wanted) look.first = Ask(editor, SCI_POSITIONFROMLINE, ++look.firstLine);
    const LRESULT end = std::min(caret + kLookedBelow, Ask(editor, SCI_GETLENGTH));
    look.text = EditorPaneTextBetween(editor, look.first, end);
    look.caret = static_cast<std::size_t>(caret - look.first);
    look.state = EditorPaneLineState(editor, look.firstLine) & kScanStateMask;
    look.context = CompletionContextAt(look.Before(), look.state, EditorPaneDialect(editor));
    return look;
}

// --- Rows

Tables TablesOf(const Look& look) {
    const DocumentId document = TabAt(look.tab).id;
    Tables found;
    const std::vector<ReachedText> reached = SymbolsInReach(document);
    if (!SymbolsAreCurrent(document)) {
        const SymbolPiece piece =
            ScanSymbols(look.text, look.state, EditorPaneDialect(look.editor), look.text.size(), true);
        const auto shared = std::make_shared<const SymbolPiece>(piece);
        found.tables.push_back(std::make_shared<SymbolTable>(JoinSymbols(std::span(&shared, 1))));
        found.lines.push_back(static_cast<std::uint32_t>(look.caretLine - look.firstLine));
    }
    for (const ReachedText& text : reached) found.tables.push_back(text.table);
    found.lines.push_back(SymbolsTableLine(document, static_cast<std::uint32_t>(look.caretLine)));
    return found;
}

void LookNearby(const Look& look) {
    const std::string& prefix = look.context.prefix;
    const LRESULT start = look.first + static_cast<LRESULT>(look.context.start);
    const std::size_t rest = look.text.size() - prefix.size();
    const bool same = g_nearby.editor == look.editor && g_nearby.start == start && g_nearby.first == look.first &&
                      g_nearby.rest == rest;
    if (!same)
        g_nearby = {.editor = look.editor,
                    .start = start,
                    .first = look.first,
                    .rest = rest,
                    .tables = TablesOf(look),
                    .prefix = {},
                    .names = {}};
    const bool grows = !g_nearby.prefix.empty() && g_nearby.names.size() < kMostNearby &&
                       CompareNames(prefix.substr(0, g_nearby.prefix.size()), g_nearby.prefix) == 0;
    if (prefix.empty() || grows) return;
    g_nearby.prefix = prefix;
    g_nearby.names =
        NamesInText(look.text, look.state, EditorPaneDialect(look.editor), prefix, look.context.start, kMostNearby);
}

std::vector<CompletionRow> RowsOf(const Look& look, const SnippetList& snippets) {
    const Dialect& dialect = EditorPaneDialect(look.editor);
    const Tables& tables = g_nearby.tables;
    std::vector<std::string> names;
    const std::string& prefix = look.context.prefix;
    // A short name is no help to type, but Enter behind it must not write another word.
    for (const std::string& name : prefix.empty() ? names : g_nearby.names)
        if ((name.size() >= 3 || name.size() == prefix.size()) &&
            CompareNames(std::string_view(name).substr(0, prefix.size()), prefix) == 0)
            names.push_back(name);
    const BlockKind innermost = look.context.place == CompletionPlace::BlockWord
                                    ? InnermostBlockAt(look.Before(), look.state, dialect)
                                    : BlockKind::Count;
    return CompletionRowsOf(look.context, {.tables = tables.tables,
                                           .lines = tables.lines,
                                           .names = names,
                                           .snippets = *snippets,
                                           .dialect = &dialect,
                                           .innermost = innermost,
                                           .accepted = &g_accepted,
                                           .capitals = g_settings.autoUpperKeywords != 0});
}

// Whether the list comes up, or stays, without being asked for.
bool OpensByItself(const Look& look) {
    const CompletionPlace place = look.context.place;
    if (g_settings.enableAutoComplete == 0 || place == CompletionPlace::NewName) return false;
    if (IsNameByte(Ask(look.editor, SCI_GETCHARAT, look.first + static_cast<LRESULT>(look.caret)))) return false;
    const auto letters = static_cast<int>(CompletionLetters(look.context.prefix));
    return place == CompletionPlace::Member || letters >= std::clamp(g_settings.autoCompleteTrigger, 1, 10);
}

// Whether the next letter may bring the list up. What it needs is looked up while the user is not yet waiting for it.
bool MayOpenSoon(const Look& look) {
    const CompletionContext& context = look.context;
    return g_settings.enableAutoComplete != 0 && context.inCode && context.place != CompletionPlace::NewName &&
           CompletionLetters(context.prefix) == 1 &&
           !IsNameByte(Ask(look.editor, SCI_GETCHARAT, look.first + static_cast<LRESULT>(look.caret)));
}

// --- Choosing

void RememberAccepted(const std::string& text) {
    std::erase_if(g_accepted, [&text](const std::string& known) { return CompareNames(known, text) == 0; });
    g_accepted.push_front(text);
    if (g_accepted.size() > kMostAccepted) g_accepted.pop_back();
}

// The whole word under the caret: it may go on behind it.
LRESULT EndOfWord(HWND editor) {
    LRESULT end = Ask(editor, SCI_GETCURRENTPOS);
    while (IsNameByte(Ask(editor, SCI_GETCHARAT, end))) ++end;
    return end;
}

void Accept(std::size_t index) {
    const ListState list = TakeList();
    if (index >= list.rows.size()) return;
    const CompletionRow& row = list.rows[index];
    const HWND editor = list.editor;
    LRESULT end = EndOfWord(editor);
    if (row.text.ends_with('$') && Ask(editor, SCI_GETCHARAT, end) == '$') ++end;
    RememberAccepted(row.text);
    if (row.snippet != nullptr) {
        const bool lower = g_settings.autoUpperKeywords == 0 && !list.prefix.empty() && !WritesCapitals(list.prefix);
        SnippetInsert(editor, list.start, end, *row.snippet, lower);
        return;
    }
    const LRESULT caret = list.start + static_cast<LRESULT>(row.text.size());
    if (EditorPaneTextBetween(editor, list.start, end) != row.text) {
        Ask(editor, SCI_BEGINUNDOACTION);
        Ask(editor, SCI_SETTARGETRANGE, list.start, end);
        SciSend(editor, SCI_REPLACETARGET, row.text.size(), reinterpret_cast<LPARAM>(row.text.data()));
        Ask(editor, SCI_ENDUNDOACTION);
    }
    Ask(editor, SCI_SETEMPTYSELECTION, caret);
    EditorPaneAfterClosingWord(editor);
    Ask(editor, SCI_SCROLLCARET);
    Ask(editor, SCI_CHOOSECARETX);
}

// --- Updating

void ShowRows() {
    WordListContent content{
        .count = g_list.rows.size(),
        .text = [](std::size_t row) { return Utf8ToWideText(g_list.rows[row].text); },
        .detail =
            [](std::size_t row) {
                return Utf8ToWideText(CompletionDetail(g_list.rows[row], EditorPaneDialect(g_list.editor)));
            },
        .kind = [](std::size_t row) { return g_list.rows[row].kind; },
        .chosen = Accept};
    Ask(g_list.editor, SCI_CALLTIPCANCEL);  // it would cover the list
    g_documents.wordListOpen = WordListShow(g_list.editor, g_list.start, std::move(content));
    if (!g_documents.wordListOpen) g_list = {};
}

void Update(HWND editor, bool wanted) {
    g_waiting = {};
    g_typedIn = nullptr;
    const std::optional<Look> look = LookAround(editor);
    const LRESULT start = look ? look->first + static_cast<LRESULT>(look->context.start) : -1;
    const bool goesOn = look && g_list.editor == editor && g_list.start == start;
    const bool asked = wanted || (goesOn && g_list.wanted);
    if (!look || !look->context.inCode || (!asked && !OpensByItself(*look))) {
        CloseList();
        if (look && MayOpenSoon(*look)) LookNearby(*look);
        return;
    }
    SnippetList snippets = goesOn ? g_list.snippets : SnippetsKnown();
    LookNearby(*look);
    std::vector<CompletionRow> rows = RowsOf(*look, snippets);
    const bool isWritten = rows.size() == 1 && rows[0].fit == NameFit::Equal && rows[0].snippet == nullptr;
    const bool mayCome = asked || look->context.place == CompletionPlace::Member;
    if (rows.empty() && mayCome && !SymbolsReachIsKnown(TabAt(look->tab).id))
        g_waiting = {editor, Ask(editor, SCI_GETCURRENTPOS), asked};
    if (rows.empty() || (isWritten && !asked)) return CloseList();
    g_list = {.editor = editor,
              .document = TabAt(look->tab).id,
              .start = start,
              .prefix = look->context.prefix,
              .wanted = asked,
              .firstLine = Ask(editor, SCI_GETFIRSTVISIBLELINE),
              .rows = std::move(rows),
              .snippets = std::move(snippets),
              .tables = g_nearby.tables.tables};
    ShowRows();
}

void UpdateNow() {
    const HWND editor = std::exchange(g_typedIn, nullptr);
    if (editor != nullptr && editor == g_documents.hEditor) Update(editor, false);
}

void CALLBACK OnOpenTimer(HWND editor, UINT, UINT_PTR timer, DWORD) {
    KillTimer(editor, timer);
    if (g_typedIn == editor) UpdateNow();
}

// An open list follows once the typed character is painted. Another one opens in the first pause of the typing, because
// nobody reads a list between two quick keys, and showing a window takes longer than all the rest of a key.
void UpdateLater(HWND editor) {
    g_typedIn = editor;
    if (g_list.editor != editor) SetTimer(editor, kOpenTimer, kOpenMs, OnOpenTimer);
}

void OnCharacter(HWND editor, WPARAM character) {
    if (g_list.editor == nullptr && g_settings.enableAutoComplete == 0) return;
    if (character == L'.' || (character < 0x10000 && IsNameByte(static_cast<LRESULT>(character))))
        return UpdateLater(editor);
    g_typedIn = nullptr;
    CloseList();
}

// What was typed is a row already: Enter is a new line then, as without the list. Tab expands a snippet of that name, or
// goes to the next field of the snippet around, or only takes the word. True: the key has been taken.
bool TakeWrittenWord(WPARAM key) {
    const HWND editor = g_list.editor;
    const auto snippet = std::ranges::find_if(
        g_list.rows, [](const CompletionRow& row) { return row.snippet != nullptr && row.fit == NameFit::Equal; });
    const bool expands = key == VK_TAB && snippet != g_list.rows.end();
    Accept(expands ? static_cast<std::size_t>(snippet - g_list.rows.begin()) : 0);
    if (key == VK_TAB && !expands) SnippetTakesKey(editor, key);
    return key == VK_TAB;
}

bool TakeChoosingKey(WPARAM key) {
    if (g_list.rows.empty()) return false;
    const CompletionRow& first = g_list.rows[0];
    if (!g_list.moved && first.fit == NameFit::Equal && first.snippet == nullptr) return TakeWrittenWord(key);
    Accept(WordListSelected());
    return true;
}

bool MoveInList(int rows) {
    g_list.moved = true;
    WordListMove(rows);
    return true;
}

// True: the key has been taken.
bool OnListKey(WPARAM key) {
    const bool held = GetKeyState(VK_CONTROL) < 0 || GetKeyState(VK_MENU) < 0;
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    switch (key) {
        case VK_UP: return !held && !shift && MoveInList(-1);
        case VK_DOWN: return !held && !shift && MoveInList(1);
        case VK_PRIOR: return !held && !shift && MoveInList(-WordListPage());
        case VK_NEXT: return !held && !shift && MoveInList(WordListPage());
        case VK_ESCAPE: CloseList(); return true;
        case VK_TAB:
        case VK_RETURN:
            if (!held && !shift) return TakeChoosingKey(key);
            CloseList();
            return false;
        case VK_LEFT:
        case VK_RIGHT:
        case VK_HOME:
        case VK_END:
        case VK_DELETE: CloseList(); return false;
        default: return false;
    }
}

bool OnKeyDown(HWND editor, WPARAM key) {
    // A key that comes before the list has followed is meant for the list that the user expects.
    const bool types = (key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9') || key == VK_SHIFT;
    if (!types) UpdateNow();
    if (g_list.editor == editor && OnListKey(key)) return true;
    return SnippetTakesKey(editor, key);
}

LRESULT OnCharacterMessage(HWND editor, WPARAM wParam, LPARAM lParam) {
    if (std::exchange(g_dropCharacter, false) && wParam < L' ') return 0;
    const LRESULT result = SubclassNext(editor, WM_CHAR, wParam, lParam);
    if (wParam != VK_BACK) OnCharacter(editor, wParam);
    return result;
}

LRESULT OnKeyMessage(HWND editor, WPARAM wParam, LPARAM lParam) {
    g_dropCharacter = OnKeyDown(editor, wParam);
    if (g_dropCharacter) return 0;
    const LRESULT result = SubclassNext(editor, WM_KEYDOWN, wParam, lParam);
    if (wParam == VK_BACK && g_list.editor == editor) UpdateLater(editor);
    return result;
}

LRESULT CALLBACK CompletionProc(HWND editor, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN: return OnKeyMessage(editor, wParam, lParam);
        case WM_CHAR: return OnCharacterMessage(editor, wParam, lParam);
        case WM_KILLFOCUS:
        case WM_SYSKEYDOWN:
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
            g_typedIn = nullptr;
            if (g_list.editor == editor) CloseList();
            break;
        case WM_NCDESTROY:
            if (g_list.editor == editor) CloseList();
            if (g_waiting.editor == editor) g_waiting = {};
            if (g_typedIn == editor) g_typedIn = nullptr;
            g_nearby = {};
            SnippetForget(editor);
            break;
        default: break;
    }
    return SubclassNext(editor, message, wParam, lParam);
}

// The tables have changed while the list is open, or files have been read that it waits for.
void OnSymbols(DocumentId document) {
    g_nearby = {};
    if (document == g_list.document && g_list.editor != nullptr && !g_list.moved) Update(g_list.editor, g_list.wanted);
    const WaitingPlace waiting = g_waiting;
    if (waiting.editor != nullptr && DocumentOfEditor(waiting.editor) == document) {
        if (g_list.editor == nullptr && Ask(waiting.editor, SCI_GETCURRENTPOS) == waiting.caret)
            Update(waiting.editor, waiting.wanted);
        else
            g_waiting = {};
    }
    // The includes are read as soon as they are known, so that the next word finds them.
    if (g_settings.enableAutoComplete != 0 && document == ActiveDocumentId()) SymbolsInReach(document);
}

// The caret has left the word, or the view has moved.
void OnView(HWND editor) {
    if (g_typedIn == editor) return;  // the list follows
    const LRESULT caret = Ask(editor, SCI_GETCURRENTPOS);
    const bool inside = caret >= g_list.start && caret <= g_list.start + static_cast<LRESULT>(g_list.prefix.size());
    if (!inside || Ask(editor, SCI_GETFIRSTVISIBLELINE) != g_list.firstLine) CloseList();
}

}  // namespace

void CompletionAttach(HWND editor) {
    SubclassAdd(editor, CompletionProc);
    SymbolsListen(OnSymbols);
}

// Only typing at the word leaves what stands around it as it was.
static void ForgetNearby(HWND editor, const SCNotification& notification) {
    const bool changed = notification.nmhdr.code == SCN_MODIFIED &&
                         (notification.modificationType & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT)) != 0;
    if (!changed || g_nearby.editor != editor) return;
    if (notification.length != 1 || notification.linesAdded != 0 || notification.position < g_nearby.start)
        g_nearby = {};
}

void CompletionOnNotify(HWND editor, const SCNotification& notification) {
    SnippetOnNotify(editor, notification);
    ForgetNearby(editor, notification);
    if (g_list.editor != editor) return;
    const UINT code = notification.nmhdr.code;
    const bool undone =
        code == SCN_MODIFIED && (notification.modificationType & (SC_PERFORMED_UNDO | SC_PERFORMED_REDO)) != 0;
    if (code == SCN_ZOOM || undone)
        CloseList();
    else if (code == SCN_UPDATEUI)
        OnView(editor);
}

void CompletionClose() {
    g_typedIn = nullptr;
    CloseList();
}

void CompletionGoOn() {
    if (g_typedIn != nullptr && g_list.editor == g_typedIn) UpdateNow();
}

void CompletionShowWanted() {
    const HWND editor = g_documents.hEditor;
    if (editor == nullptr) return;
    Update(editor, true);
    if (g_list.editor == nullptr) return TellSymbolStatus(Text(L"Nothing to complete here"));
    if (g_list.rows.size() == 1 && !g_list.prefix.empty()) Accept(0);
}
