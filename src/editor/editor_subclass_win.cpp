// The subclass of every Scintilla pane: cursor, focus, typed characters, Return, zoom by the wheel, mouse log, and the
// colouring before a paint. Keeps the PaneState of each pane. UI thread.
#include "editor/pane_state.h"

#include "base/events.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "editor/caret_place.h"
#include "editor/caret_set.h"
#include "editor/editor_pane.h"
#include "editor/line_commands.h"
#include "editor/margins.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/accessible.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr int kClassNameLength = 48;

// All panes. A vector is searched faster than a window property is read, because there are few panes and each key looks
// one up.
struct PaneEntry {
    HWND editor;
    std::unique_ptr<PaneState> state;
};
std::vector<PaneEntry> g_panes;

struct MouseMessage {
    UINT message;
    const wchar_t* name;
};
constexpr MouseMessage kMouseMessages[] = {
    {WM_LBUTTONDOWN, L"WM_LBUTTONDOWN"},     {WM_LBUTTONUP, L"WM_LBUTTONUP"},
    {WM_LBUTTONDBLCLK, L"WM_LBUTTONDBLCLK"}, {WM_RBUTTONDOWN, L"WM_RBUTTONDOWN"},
    {WM_RBUTTONUP, L"WM_RBUTTONUP"},         {WM_RBUTTONDBLCLK, L"WM_RBUTTONDBLCLK"},
    {WM_MBUTTONDOWN, L"WM_MBUTTONDOWN"},     {WM_MBUTTONUP, L"WM_MBUTTONUP"},
    {WM_MBUTTONDBLCLK, L"WM_MBUTTONDBLCLK"}, {WM_MOUSEMOVE, L"WM_MOUSEMOVE"},
    {WM_MOUSEACTIVATE, L"WM_MOUSEACTIVATE"}, {WM_SETCURSOR, L"WM_SETCURSOR"},
};

const wchar_t* MouseMessageName(UINT message) {
    for (const MouseMessage& row : kMouseMessages)
        if (row.message == message) return row.name;
    return nullptr;
}

bool IsPlainMove(UINT message, LPARAM lParam) {
    return message == WM_MOUSEMOVE || (message == WM_SETCURSOR && HIWORD(lParam) == WM_MOUSEMOVE);
}

void LogPaneMouse(HWND pane, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!LogIsOpen()) return;
    const wchar_t* name = MouseMessageName(message);
    if (name == nullptr) return;
    if (IsPlainMove(message, lParam) && GetKeyState(VK_LBUTTON) >= 0) return;
    POINT screen = {};
    GetCursorPos(&screen);
    const HWND under = WindowFromPoint(screen);
    wchar_t paneClass[kClassNameLength] = {};
    wchar_t underClass[kClassNameLength] = {};
    GetClassNameW(pane, paneClass, kClassNameLength);
    if (under != nullptr) GetClassNameW(under, underClass, kClassNameLength);
    AppLogMsg(
        L"DBG SCIMOUSE: sci=%p cls=%s msg=%s wp=0x%04x lp=(%d,%d) screen=(%d,%d) WindowFromPoint=%p cls=%s "
        L"focus=%p",
        pane, paneClass, name, static_cast<unsigned>(wParam), GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam),
        static_cast<int>(screen.x), static_cast<int>(screen.y), under, underClass, GetFocus());
}

// Each move of the mouse asks for the cursor, and the same line a hundred times a second tells nothing new.
void LogForcedCursor(HWND pane) {
    static HWND lastPane = nullptr;
    static HWND lastFocus = nullptr;
    const HWND focus = GetFocus();
    if (!LogIsOpen() || (pane == lastPane && focus == lastFocus)) return;
    AppLogMsg(L"DBG SCIMOUSE: sci=%p msg=WM_SETCURSOR forced IDC_IBEAM focus=%p", pane, focus);
    lastPane = pane;
    lastFocus = focus;
}

// SetFocus sends WM_SETFOCUS, which calls TakeFocus again. The recursion ends there, because SetFocus does nothing for
// the window that has the focus.
void TakeFocus(HWND pane) {
    SetFocus(pane);
    SciSend(pane, SCI_SETFOCUS, TRUE, 0);
    EditorPaneEnsureCaretVisible(pane);
}

// Ctrl with a letter that is no command would otherwise insert a control character, and with the space bar a blank.
bool IsUnwantedCharacter(WPARAM character) {
    if (character == L' ') return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0;
    return (character < 0x20 && character != L'\r' && character != L'\n' && character != L'\t') || character == 0x7F;
}

LRESULT PaintPane(HWND pane, WPARAM wParam, LPARAM lParam) {
    const PaneState* state = PaneStateOf(pane);
    if (state != nullptr && state->emptyPaint) return SubclassNext(pane, WM_PAINT, wParam, lParam);
    EditorPaneCheckLineMargin(pane);
    const PaintColours colours = EditorColourBeforePaint(pane);
    const LRESULT result = SubclassNext(pane, WM_PAINT, wParam, lParam);
    EditorColourAfterPaint(pane, colours);
    return result;
}

// WM_MOUSEACTIVATE comes before the focus does, and the message of the button after it.
LRESULT OnPaneMouseActivate(HWND pane, WPARAM wParam, LPARAM lParam) {
    LogPaneMouse(pane, WM_MOUSEACTIVATE, wParam, lParam);
    if (PaneState* state = PaneStateOf(pane); state != nullptr) state->pressing = LOWORD(lParam) == HTCLIENT;
    return SubclassNext(pane, WM_MOUSEACTIVATE, wParam, lParam);
}

// A press that never came, of a button that Scintilla does not know.
void OnPaneKillFocus(HWND pane) {
    if (PaneState* state = PaneStateOf(pane); state != nullptr) state->pressing = false;
    g_events.refreshWanted();  // the Edit commands go elsewhere now
}

// Whether the caret still stands behind a word that was being typed. True once.
bool TakeTypedWord(HWND pane) {
    PaneState* state = PaneStateOf(pane);
    return state != nullptr && std::exchange(state->typedAt, -1) == SciSend(pane, SCI_GETCURRENTPOS) &&
           SciSend(pane, SCI_GETSELECTIONS) == 1 && SciSend(pane, SCI_GETSELECTIONEMPTY) != 0;
}

bool OnlyAlt(WPARAM keys) { return GetKeyState(VK_MENU) < 0 && (keys & (MK_CONTROL | MK_SHIFT)) == 0; }

bool IsInMargins(HWND pane, LPARAM point) {
    LRESULT right = 0;
    for (int margin = 0; margin < kMarginCount; ++margin)
        right += SciSend(pane, SCI_GETMARGINWIDTHN, static_cast<WPARAM>(margin));
    return GET_X_LPARAM(point) < right;
}

LRESULT OnPaneButtonDown(HWND pane, UINT message, WPARAM wParam, LPARAM lParam) {
    LogPaneMouse(pane, message, wParam, lParam);
    if (PaneState* state = PaneStateOf(pane); state != nullptr) state->pressing = true;
    if (message == WM_LBUTTONDOWN && TakeTypedWord(pane)) EditorPaneAfterLeaving(pane);
    if (PaneState* state = PaneStateOf(pane); state != nullptr && message == WM_LBUTTONDOWN)
        state->beforePress =
            OnlyAlt(wParam) && !IsInMargins(pane, lParam) ? CaretSpans(pane) : std::vector<CaretSpan>{};
    if (message == WM_LBUTTONDOWN) TakeFocus(pane);
    const LRESULT result = SubclassNext(pane, message, wParam, lParam);
    CaretLeaveHiddenLine(pane);  // the press may have folded a block
    if (PaneState* state = PaneStateOf(pane); state != nullptr) state->pressing = false;
    return result;
}

// With Alt the mouse selects a column. When it has not moved, the click means a caret more.
LRESULT OnPaneButtonUp(HWND pane, WPARAM wParam, LPARAM lParam) {
    LogPaneMouse(pane, WM_LBUTTONUP, wParam, lParam);
    const LRESULT result = SubclassNext(pane, WM_LBUTTONUP, wParam, lParam);
    PaneState* state = PaneStateOf(pane);
    if (state == nullptr || state->beforePress.empty()) return result;
    std::vector<CaretSpan> spans = std::exchange(state->beforePress, {});
    const bool moved = SciSend(pane, SCI_GETSELECTIONS) != 1 || SciSend(pane, SCI_GETSELECTIONEMPTY) == 0;
    if (!moved) CaretToggleAt(pane, std::move(spans), SciSend(pane, SCI_GETCURRENTPOS));
    return result;
}

// Posts the zoom command instead of zooming this pane alone, because all editors share one zoom setting.
LRESULT OnPaneZoomWheel(HWND pane, WPARAM wParam) {
    PaneState* state = PaneStateOf(pane);
    if (state == nullptr) return 0;
    const int notches = WheelNotches(state->zoomWheel, GET_WHEEL_DELTA_WPARAM(wParam));
    const WORD command = notches > 0 ? IDM_VIEW_ZOOM_IN : IDM_VIEW_ZOOM_OUT;
    for (int i = 0; i < std::abs(notches); ++i) PostMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0);
    return 0;
}

bool ContinuesWord(WPARAM character) {
    return character >= 0x80 || (character >= L'0' && character <= L'9') || (character >= L'A' && character <= L'Z') ||
           (character >= L'a' && character <= L'z') || character == L'_';
}

// What is done for several carets is one step of undo, after which they are there again.
bool HasSeveralCarets(HWND pane) { return SciSend(pane, SCI_GETSELECTIONS) > 1; }

// Sends the pane a message that may break the line, and indents the new line then.
LRESULT OnPaneNewLine(HWND pane, UINT message, WPARAM wParam, LPARAM lParam) {
    const CaretsDrawOnce once(pane);
    const CaretUndoStep together(pane, CaretEdit::Other, HasSeveralCarets(pane));
    const LRESULT lines = SciSend(pane, SCI_GETLINECOUNT);
    const LRESULT before = SciSend(pane, SCI_GETCURRENTPOS);
    SciSend(pane, SCI_BEGINUNDOACTION);  // one undo step for the line break and the indentation
    LRESULT result = 0;
    EditorReplace(pane, [&] { result = SubclassNext(pane, message, wParam, lParam); });
    if (SciSend(pane, SCI_GETLINECOUNT) == lines + 1) {
        EditorPaneUpperKeywordBefore(pane, before);
        EditorPaneAfterNewLine(pane);
    }
    SciSend(pane, SCI_ENDUNDOACTION);
    return result;
}

LRESULT OnPaneCharacter(HWND pane, WPARAM wParam, LPARAM lParam) {
    if (IsUnwantedCharacter(wParam)) return 0;
    // Ctrl+Enter sends a line feed, and so do programs that type for their user. Scintilla would insert it as it is,
    // also into a document of CR LF.
    if (wParam == L'\n') return OnPaneNewLine(pane, SCI_NEWLINE, 0, 0);
    const CaretUndoStep together(pane, wParam >= L' ' ? CaretEdit::Typed : CaretEdit::Other, HasSeveralCarets(pane));
    const LRESULT before = SciSend(pane, SCI_GETCURRENTPOS);
    LRESULT result = 0;
    EditorReplace(pane, [&] { result = SubclassNext(pane, WM_CHAR, wParam, lParam); });
    const LRESULT after = SciSend(pane, SCI_GETCURRENTPOS);
    if (!ContinuesWord(wParam) && after == before + 1) EditorPaneUpperKeywordBefore(pane, before);
    // "print#" may be a variable, "print#1" is not.
    if (ContinuesWord(wParam) && before > 0 && SciSend(pane, SCI_GETCHARAT, static_cast<WPARAM>(before - 1)) == '#')
        EditorPaneUpperKeywordBefore(pane, before - 1);
    if (wParam == L'}' && after == before + 1) EditorPaneAfterClosingBrace(pane);
    if (ContinuesWord(wParam) && after == before + 1) EditorPaneAfterClosingWord(pane);
    if (PaneState* state = PaneStateOf(pane); state != nullptr)
        state->typedAt = ContinuesWord(wParam) && after > before ? SciSend(pane, SCI_GETCURRENTPOS) : -1;
    return result;
}

// The keys that lead out of a line.
bool LeavesLine(WPARAM key) {
    const bool document = GetKeyState(VK_CONTROL) < 0 && (key == VK_HOME || key == VK_END);
    return document || key == VK_UP || key == VK_DOWN || key == VK_PRIOR || key == VK_NEXT;
}

// The keys of Scintilla's own for which this program has more to do than Scintilla. False for any other key.
bool DoEditingKey(HWND pane, WPARAM key) {
    const bool control = GetKeyState(VK_CONTROL) < 0, shift = GetKeyState(VK_SHIFT) < 0, alt = GetKeyState(VK_MENU) < 0;
    const struct {
        bool pressed;
        void (*act)(HWND);
    } rows[] = {{key == 'Z' && control && !shift && !alt, EditorUndo},
                {key == VK_BACK && alt && !shift && !control, EditorUndo},
                {key == 'Y' && control && !shift && !alt, EditorRedo},
                {key == 'X' && control && !shift && !alt, EditorCut},
                {key == VK_DELETE && shift && !control && !alt, EditorCut},
                {key == 'L' && control && !shift && !alt, EditorCutLine},
                {key == 'V' && control && !shift && !alt, EditorPaste},
                {key == VK_INSERT && shift && !control && !alt, EditorPaste}};
    for (const auto& row : rows)
        if (row.pressed) row.act(pane);
    return std::ranges::any_of(rows, [](const auto& row) { return row.pressed; });
}

LRESULT OnPaneEraseKey(HWND pane, WPARAM wParam, LPARAM lParam) {
    const CaretUndoStep together(pane, CaretEdit::Erased, HasSeveralCarets(pane));
    LRESULT result = 0;
    const auto erase = [&] { result = SubclassNext(pane, WM_KEYDOWN, wParam, lParam); };
    if (GetKeyState(VK_CONTROL) < 0 || GetKeyState(VK_SHIFT) < 0)
        EditorErase(pane, erase);
    else
        EditorEraseCharacter(pane, wParam == VK_DELETE, erase);
    return result;
}

LRESULT OnPaneTabKey(HWND pane, WPARAM wParam, LPARAM lParam) {
    const LRESULT before = SciSend(pane, SCI_GETCURRENTPOS);
    const bool typed = TakeTypedWord(pane);
    const CaretUndoStep together(pane, CaretEdit::Other, HasSeveralCarets(pane));
    const LRESULT result = SubclassNext(pane, WM_KEYDOWN, wParam, lParam);
    if (typed && SciSend(pane, SCI_GETCURRENTPOS) > before) EditorPaneUpperKeywordBefore(pane, before);
    return result;
}

// Without a name of its own the pane would be called by its whole text.
LRESULT OnPaneGetObject(HWND pane, WPARAM wParam, LPARAM lParam) {
    const PaneState* state = PaneStateOf(pane);
    const bool named = state != nullptr && !state->path.empty();
    const std::wstring name =
        named ? TextWith(L"Editor, {1}", {std::wstring(FileNameOf(state->path))}) : Text(L"Editor");
    return AccessibleAnswer(pane, wParam, lParam, name, SubclassNext(pane, WM_GETOBJECT, wParam, lParam));
}

LRESULT OnPaneDestroy(HWND pane, UINT message, WPARAM wParam, LPARAM lParam);

LRESULT CALLBACK EditorPaneProc(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_PAINT: return PaintPane(pane, wParam, lParam);
        case WM_CHAR: return OnPaneCharacter(pane, wParam, lParam);
        case WM_SYSKEYDOWN:
            if (DoEditingKey(pane, wParam)) return 0;
            break;
        case WM_KEYDOWN:
            if (DoEditingKey(pane, wParam)) return 0;
            if (wParam == VK_RETURN) return OnPaneNewLine(pane, message, wParam, lParam);
            if (wParam == VK_TAB) return OnPaneTabKey(pane, wParam, lParam);
            if (wParam == VK_BACK || wParam == VK_DELETE) return OnPaneEraseKey(pane, wParam, lParam);
            if (wParam == VK_ESCAPE && CaretsEndColumns(pane))
                return 0;  // Scintilla ends only carets that are no column
            if (LeavesLine(wParam) && TakeTypedWord(pane)) EditorPaneAfterLeaving(pane);
            break;
        case WM_SETCURSOR:
            LogPaneMouse(pane, message, wParam, lParam);
            if (LOWORD(lParam) != HTCLIENT) break;
            SetCursor(LoadCursorW(nullptr, IDC_IBEAM));
            LogForcedCursor(pane);
            return 1;
        case WM_SETFOCUS:
            TakeFocus(pane);
            g_events.refreshWanted();
            break;
        case WM_KILLFOCUS: OnPaneKillFocus(pane); break;
        case WM_MOUSEACTIVATE: return OnPaneMouseActivate(pane, wParam, lParam);
        case WM_LBUTTONUP: return OnPaneButtonUp(pane, wParam, lParam);
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN: return OnPaneButtonDown(pane, message, wParam, lParam);
        case WM_MOUSEWHEEL:
            if (GET_KEYSTATE_WPARAM(wParam) & MK_CONTROL) return OnPaneZoomWheel(pane, wParam);
            break;
        case WM_GETOBJECT: return OnPaneGetObject(pane, wParam, lParam);
        case WM_DESTROY: return OnPaneDestroy(pane, message, wParam, lParam);
        default: LogPaneMouse(pane, message, wParam, lParam); break;
    }
    return SubclassNext(pane, message, wParam, lParam);
}

LRESULT OnPaneDestroy(HWND pane, UINT message, WPARAM wParam, LPARAM lParam) {
    EditorColourStop(pane);
    SciDetach(pane);
    std::erase_if(g_panes, [pane](const PaneEntry& entry) { return entry.editor == pane; });
    SubclassRemove(pane, EditorPaneProc);
    return SubclassNext(pane, message, wParam, lParam);
}

}  // namespace

PaneState* PaneStateOf(HWND editor) {
    for (const PaneEntry& entry : g_panes)
        if (entry.editor == editor) return entry.state.get();
    return nullptr;
}

bool EditorPaneInstallSubclass(HWND editor) {
    auto state = std::make_unique<PaneState>();
    if (!SubclassAdd(editor, EditorPaneProc)) return false;
    g_panes.push_back({editor, std::move(state)});
    SciAttach(editor);
    return true;
}
