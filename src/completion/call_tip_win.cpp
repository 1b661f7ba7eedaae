// The call tip: appears when "(" or "," is typed or by its command, follows the caret through the arguments, and goes with
// the call. Scintilla draws it; its own way of ending a tip ends only what is drawn, so each move of the caret asks
// whether it still is in the call. UI thread.
#include "completion/tips.h"

#include "base/texts.h"
#include "completion/call_tip.h"
#include "documents/document_row.h"
#include "editor/statement_text.h"
#include "settings/settings_state.h"
#include "symbols/definitions.h"
#include "symbols/symbol_place.h"
#include "ui/subclass.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kMostSignatures = 30;
constexpr UINT_PTR kLookAgain = 0x4B50;      // timer of the editor
constexpr UINT kLookAgainMs = 60;            // while includes are read, and after a completion list
constexpr ULONGLONG kWaitForSymbols = 4000;  // ms

struct CallTip {
    HWND editor = nullptr;  // null: no call is followed
    // The first line of its statement, -1: not known yet. No position, because typing at several carets moves it.
    LRESULT statementLine = -1;
    std::size_t nameAt = 0;  // bytes from there to the name of what is called
    std::string name;
    bool byCommand = false;
    std::vector<Signature> signatures;
    std::size_t shown = 0;
    bool chosen = false;      // the user has chosen the signature
    TipText text;             // that is drawn
    POINT place = {};         // where, in the editor
    ULONGLONG waitUntil = 0;  // tick count; symbols may still come
};
CallTip g_callTip;

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LPARAM lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

LRESULT CALLBACK CallTipKeys(HWND editor, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR);
void CALLBACK OnLookAgain(HWND editor, UINT, UINT_PTR timer, DWORD);

void EndTip() {
    const HWND editor = g_callTip.editor;
    if (editor == nullptr) return;
    const bool drawn = !g_callTip.text.text.empty();
    g_callTip = {};
    SubclassRemove(editor, CallTipKeys);
    KillTimer(editor, kLookAgain);
    if (drawn) Ask(editor, SCI_CALLTIPCANCEL);
}

void HideTip() {
    if (g_callTip.text.text.empty()) return;
    g_callTip.text = {};
    Ask(g_callTip.editor, SCI_CALLTIPCANCEL);
}

// --- What is called

struct Callee {
    std::vector<Signature> signatures;  // empty: no procedure
    bool builtin = false;
};

void AddSignature(std::vector<Signature>& signatures, Signature signature) {
    const bool there = std::ranges::find(signatures, signature.text, &Signature::text) != signatures.end();
    if (!there && signatures.size() < kMostSignatures) signatures.push_back(std::move(signature));
}

Callee CalleeOf(const DocumentTab& document, const CallContext& call, std::uint32_t line) {
    const std::vector<ReachedText> texts = SymbolsInReach(document.id);
    std::vector<SymbolTablePtr> tables;
    for (const ReachedText& text : texts) tables.push_back(text.table);
    const SymbolWord word{.name = call.name, .isMember = call.isMember, .qualifier = call.qualifier};
    const std::vector<SymbolPlace> places = DefinitionsOf(word, line, tables);
    Callee callee;
    for (const SymbolPlace& place : places) {
        const Symbol& symbol = tables[place.text]->symbols[place.symbol];
        if (IsProcedure(symbol.kind) || symbol.kind == SymbolKind::Macro)
            AddSignature(callee.signatures, SignatureOfSymbol(*tables[place.text], symbol));
    }
    if (!places.empty() || call.isMember) return callee;
    callee.builtin = true;
    for (const Builtin* builtin : BuiltinsNamed(call.name, DialectOf(document.compilerId)))
        AddSignature(callee.signatures, SignatureOfBuiltin(*builtin));
    return callee;
}

// Nobody wants to be told about PRINT at each comma; the command tells it.
bool IsWorthShowing(const Callee& callee, const CallContext& call) {
    if (callee.signatures.empty()) return false;
    if (call.parentheses || g_callTip.byCommand) return true;
    const auto takesAny = [](const Signature& signature) { return signature.open || signature.parameters.empty(); };
    return !std::ranges::all_of(callee.signatures, takesAny);
}

struct FollowedCall {
    StatementText statement;
    CallContext call;
    Callee callee;
    bool anyCall = false;  // there are calls, perhaps of what is not known yet
};

// The innermost call at the caret that is one.
std::optional<FollowedCall> CallAtCaret(const DocumentTab& document) {
    const LRESULT caret = Ask(document.editor, SCI_GETCURRENTPOS);
    std::optional<StatementText> statement = EditorPaneStatementTo(document.editor, caret);
    if (!statement) return std::nullopt;
    FollowedCall followed{std::move(*statement), {}, {}, false};
    const auto line = static_cast<std::uint32_t>(Ask(document.editor, SCI_LINEFROMPOSITION, caret));
    const Dialect& dialect = DialectOf(document.compilerId);
    for (CallContext& call : CallsAround(followed.statement.text, followed.statement.state, dialect)) {
        followed.anyCall = true;
        const bool same =
            call.nameStart == g_callTip.nameAt && call.name == g_callTip.name && !g_callTip.signatures.empty();
        followed.callee = same ? Callee{g_callTip.signatures} : CalleeOf(document, call, line);
        if (!same && !IsWorthShowing(followed.callee, call)) continue;
        followed.call = std::move(call);
        return followed;
    }
    followed.callee = {};
    return followed;
}

// --- Showing it

void Draw(const TipText& text, LRESULT wanted, LRESULT argumentsStart) {
    const HWND editor = g_callTip.editor;
    const LRESULT at = TipPlace(editor, wanted, text.text);
    const POINT place = {static_cast<LONG>(Ask(editor, SCI_POINTXFROMPOSITION, 0, at)),
                         static_cast<LONG>(Ask(editor, SCI_POINTYFROMPOSITION, 0, at))};
    const bool there = Ask(editor, SCI_CALLTIPACTIVE) != 0 && g_callTip.text.text == text.text &&
                       place.x == g_callTip.place.x && place.y == g_callTip.place.y;
    if (!there) {
        HoverEnd(editor);
        Ask(editor, SCI_CALLTIPSHOW, at, reinterpret_cast<LPARAM>(text.text.c_str()));
        Ask(editor, SCI_CALLTIPSETPOSSTART, argumentsStart);  // Backspace ends the tip before this place
    }
    Ask(editor, SCI_CALLTIPSETHLT, static_cast<LRESULT>(text.start), static_cast<LPARAM>(text.end));
    g_callTip.text = text;
    g_callTip.place = place;
}

bool CaretIsInView(HWND editor) {
    RECT client = {};
    GetClientRect(editor, &client);
    const LRESULT y = Ask(editor, SCI_POINTYFROMPOSITION, 0, Ask(editor, SCI_GETCURRENTPOS));
    return y >= 0 && y < client.bottom;
}

void ShowFollowed(const FollowedCall& followed) {
    const HWND editor = g_callTip.editor;
    const CallContext& call = followed.call;
    if (call.nameStart != g_callTip.nameAt || call.name != g_callTip.name || g_callTip.signatures.empty()) {
        g_callTip.nameAt = call.nameStart;
        g_callTip.name = call.name;
        g_callTip.signatures = followed.callee.signatures;
        g_callTip.chosen = false;
    }
    if (!g_callTip.chosen) g_callTip.shown = BestSignature(g_callTip.signatures, call);
    // There is room for one of the two.
    if (g_documents.wordListOpen) return;
    if (!CaretIsInView(editor)) return HideTip();
    const LRESULT nameAt = followed.statement.start + static_cast<LRESULT>(call.nameStart);
    const LRESULT arguments = followed.statement.start + static_cast<LRESULT>(call.argumentsStart);
    Draw(TipTextOf(g_callTip.signatures, g_callTip.shown, call, TipColumns(editor)),
         call.parentheses ? arguments : nameAt, arguments);
}

// Symbols are scanned by workers: until they are there, the call is looked at again.
bool MayStillCome(const DocumentTab& document) {
    if (SymbolsReachIsKnown(document.id)) return false;
    if (g_callTip.waitUntil == 0) g_callTip.waitUntil = GetTickCount64() + kWaitForSymbols;
    return GetTickCount64() < g_callTip.waitUntil;
}

void Follow() {
    const HWND editor = g_callTip.editor;
    const int tab = TabBarFindEditor(editor);
    if (tab < 0 || editor != g_documents.hEditor) return EndTip();
    const std::optional<FollowedCall> followed = CallAtCaret(TabAt(tab));
    if (!followed && g_callTip.byCommand) TellSymbolStatus(Text(L"There is no call at the caret"));
    if (!followed) return EndTip();
    const LRESULT line = Ask(editor, SCI_LINEFROMPOSITION, followed->statement.start);
    if (g_callTip.statementLine >= 0 && line != g_callTip.statementLine) return EndTip();
    g_callTip.statementLine = line;
    if (!followed->callee.signatures.empty()) return ShowFollowed(*followed);
    HideTip();
    g_callTip.signatures.clear();
    if (followed->anyCall && MayStillCome(TabAt(tab))) {
        SetTimer(editor, kLookAgain, kLookAgainMs, OnLookAgain);
        return;
    }
    if (g_callTip.byCommand) TellSymbolStatus(Text(L"There is no call at the caret"));
    EndTip();
}

void Begin(HWND editor, bool byCommand) {
    if (g_callTip.editor != editor) EndTip();
    if (g_callTip.editor == nullptr) {
        g_callTip.editor = editor;
        SubclassAdd(editor, CallTipKeys);
    }
    g_callTip.byCommand = g_callTip.byCommand || byCommand;
    Follow();
}

void CALLBACK OnLookAgain(HWND editor, UINT, UINT_PTR timer, DWORD) {
    KillTimer(editor, timer);
    if (g_callTip.editor == editor) Follow();
}

void Choose(int step) {
    const std::size_t count = g_callTip.signatures.size();
    g_callTip.chosen = true;
    g_callTip.shown = (g_callTip.shown + count + static_cast<std::size_t>(step + static_cast<int>(count))) % count;
    Follow();
}

LRESULT CALLBACK CallTipKeys(HWND editor, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const bool drawn = g_callTip.editor == editor && Ask(editor, SCI_CALLTIPACTIVE) != 0;
    const bool plain = GetKeyState(VK_CONTROL) >= 0 && GetKeyState(VK_SHIFT) >= 0;
    if (message == WM_KEYDOWN && drawn && plain) {
        if (wParam == VK_ESCAPE) {
            EndTip();
            return 0;
        }
        if ((wParam == VK_UP || wParam == VK_DOWN) && g_callTip.signatures.size() > 1) {
            Choose(wParam == VK_UP ? -1 : 1);
            return 0;
        }
    }
    if (message == WM_DESTROY && g_callTip.editor == editor) g_callTip = {};  // Scintilla ends with its tip
    const LRESULT result = SubclassNext(editor, message, wParam, lParam);
    if (message == WM_KILLFOCUS) EndTip();
    return result;
}

// A blank behind the name of a procedure begins its arguments.
bool BeginsArguments(HWND editor) {
    const LRESULT caret = Ask(editor, SCI_GETCURRENTPOS);
    const auto before = static_cast<unsigned char>(Ask(editor, SCI_GETCHARAT, caret - 2));
    const bool word = before >= 0x80 || IsCharAlphaNumericA(static_cast<char>(before)) != FALSE || before == '_';
    if (!word) return false;
    const std::optional<StatementText> statement = EditorPaneStatementTo(editor, caret);
    const int tab = TabBarFindEditor(editor);
    if (!statement || tab < 0) return false;
    const Dialect& dialect = DialectOf(TabAt(tab).compilerId);
    const std::vector<CallContext> calls = CallsAround(statement->text, statement->state, dialect);
    if (calls.size() != 1 || calls[0].parentheses || calls[0].argumentsStart + 1 != statement->text.size())
        return false;
    return LookUpWord(calls[0].name, dialect).kind == WordClass::None;
}

}  // namespace

void CallTipOnCharacter(HWND editor, int character) {
    if (g_settings.showCallTips == 0 || editor != g_documents.hEditor) return;
    const bool begins = character == '(' || character == ',' ||
                        (character == ' ' && g_callTip.editor == nullptr && BeginsArguments(editor));
    if (begins) Begin(editor, false);
}

void CallTipOnView(HWND editor) {
    if (g_callTip.editor == editor && editor != nullptr) Follow();
}

void CallTipOnClick(HWND editor, int arrow) {
    if (g_callTip.editor == editor && g_callTip.signatures.size() > 1 && arrow != 0) Choose(arrow == 1 ? -1 : 1);
}

void CallTipOnListClosed(HWND editor) {
    // The word that was chosen comes just after.
    if (g_callTip.editor == editor && editor != nullptr) SetTimer(editor, kLookAgain, USER_TIMER_MINIMUM, OnLookAgain);
}

bool CallTipIsShown() { return g_callTip.editor != nullptr && !g_callTip.text.text.empty(); }

void CallTipShow() {
    const HWND editor = g_documents.hEditor;
    if (editor == nullptr) return;
    EndTip();
    Begin(editor, true);
}
