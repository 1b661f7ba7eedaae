#include "ui/inline_edit.h"

#include "base/events.h"
#include "base/log.h"
#include "base/texts.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <utility>

namespace {

constexpr int kTipWidth = 420;  // at 96 dpi

struct InlineEditState {
    HWND edit = nullptr;
    InlineCommit commit;
    std::wstring shown;    // the text at the beginning; empty with `append`
    bool refused = false;  // its present text was refused
    HWND tip = nullptr;    // tells why, below the field
};
InlineEditState g_edit;

void HideProblem() {
    if (const HWND tip = std::exchange(g_edit.tip, nullptr); tip != nullptr) DestroyWindow(tip);
}

TTTOOLINFOW ToolOfProblem(std::wstring& problem) {
    TTTOOLINFOW tool = {};
    tool.cbSize = TTTOOLINFOW_V2_SIZE;
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_IDISHWND;
    tool.hwnd = g_edit.edit;
    tool.uId = reinterpret_cast<UINT_PTR>(g_edit.edit);
    tool.lpszText = problem.data();
    return tool;
}

// The status bar alone would be overlooked, because the eyes are at the field.
void ShowProblemBelow(std::wstring problem) {
    HideProblem();
    g_edit.tip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0,
                                 0, 0, GetAncestor(g_edit.edit, GA_ROOT), nullptr, g_ui.hInstance, nullptr);
    if (g_edit.tip == nullptr) return;
    TTTOOLINFOW tool = ToolOfProblem(problem);
    TooltipApplyTheme(g_edit.tip);
    SendMessageW(g_edit.tip, TTM_SETMAXTIPWIDTH, 0, UiScaled(kTipWidth));
    SendMessageW(g_edit.tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    RECT field = {};
    GetWindowRect(g_edit.edit, &field);
    SendMessageW(g_edit.tip, TTM_TRACKPOSITION, 0, MAKELPARAM(field.left, field.bottom + UiScaled(2)));
    SendMessageW(g_edit.tip, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
}

std::wstring OfferEditText() {
    const std::wstring text = WindowText(g_edit.edit);
    return text == g_edit.shown ? std::wstring{} : g_edit.commit(text);
}

bool CommitInlineEdit() {
    const std::wstring problem = OfferEditText();
    if (g_edit.edit == nullptr) return true;  // `commit` has closed the field
    if (problem.empty()) {
        InlineEditCancel();
        return true;
    }
    g_events.statusText(problem.c_str());
    ShowProblemBelow(problem);
    g_edit.refused = true;
    InvalidateRect(g_edit.edit, nullptr, TRUE);
    MessageBeep(MB_ICONWARNING);
    return false;
}

bool IsEndingKey(WPARAM key) { return key == VK_RETURN || key == VK_TAB || key == VK_ESCAPE; }

// Returns true when the key ended editing or tried to.
bool OnInlineEditKey(WPARAM key) {
    if (!IsEndingKey(key)) {
        g_edit.refused = false;
        HideProblem();
        InvalidateRect(g_edit.edit, nullptr, FALSE);
        return false;
    }
    const HWND list = GetParent(g_edit.edit);
    const bool ended = key == VK_ESCAPE || CommitInlineEdit();
    if (key == VK_ESCAPE) InlineEditCancel();
    if (ended) SetFocus(list);
    return true;
}

// The field has lost the focus: its text is taken, unless it was refused.
void OnInlineEditLeft() {
    if (g_edit.edit == nullptr) return;
    if (!g_edit.refused) OfferEditText();
    InlineEditCancel();
}

LRESULT CALLBACK InlineEditProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnInlineEditKey(wParam)) return 0;
            break;
        case WM_CHAR:
            if (IsEndingKey(wParam)) return 0;  // the control would beep
            break;
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KILLFOCUS:
            SubclassNext(edit, message, wParam, lParam);
            OnInlineEditLeft();
            return 0;
        case WM_NCDESTROY:
            if (g_edit.edit == edit) g_edit.edit = nullptr;  // destroyed together with its list
            if (g_edit.edit == nullptr) HideProblem();
            break;
        default: break;
    }
    return SubclassNext(edit, message, wParam, lParam);
}

}  // namespace

void InlineEditBegin(HWND list, const RECT& cell, const std::wstring& text, bool append, InlineCommit commit) {
    InlineEditCancel();
    const HWND edit = CreateWindowExW(
        0, WC_EDITW, text.c_str(), WS_CHILD | WS_VISIBLE | WS_BORDER | WS_CLIPSIBLINGS | ES_AUTOHSCROLL, cell.left,
        cell.top, cell.right - cell.left, cell.bottom - cell.top, list, nullptr, g_ui.hInstance, nullptr);
    if (edit == nullptr) {
        AppLogMsg(L"FAIL: InlineEditBegin error=%lu", GetLastError());
        return;
    }
    g_edit = {edit, std::move(commit), append ? std::wstring{} : text, false, nullptr};
    SendMessageW(edit, WM_SETFONT, reinterpret_cast<WPARAM>(UiFixedFont()), FALSE);
    SubclassAdd(edit, InlineEditProc);
    AccessibleNameSet(edit, Text(L"New value"));
    ControlApplyTheme(edit);
    SendMessageW(edit, EM_SETSEL, append ? text.size() : 0, append ? static_cast<LPARAM>(text.size()) : -1);
    SetFocus(edit);
}

void InlineEditCancel() {
    // The handle is cleared first, because DestroyWindow takes the focus from the field, which would commit its text.
    const HWND edit = std::exchange(g_edit.edit, nullptr);
    HideProblem();
    if (edit == nullptr) return;
    const HWND list = GetParent(edit);
    const bool hadFocus = GetFocus() == edit;
    DestroyWindow(edit);
    if (hadFocus) SetFocus(list);
    if (g_edit.refused) g_events.statusText(L"");
    g_edit.refused = false;
}

LRESULT InlineEditColours(HDC dc) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    return ControlColours(dc, g_edit.refused ? chrome.error : chrome.paneText, chrome.tabActiveBack);
}
