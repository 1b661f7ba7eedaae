// The edit field over a cell of the list, and the pane's menus and clipboard. Knows not what is edited. UI thread only.
#include "debugui/pane_internal.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "debugui/debugui_state.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/clipboard.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <cstring>
#include <utility>

namespace {

constexpr UINT_PTR kSubclassId = 1;

struct EditState {
    HWND edit = nullptr;
    PaneCommit commit;
    std::wstring shown;    // what it began with; unchanged it is not taken: a rounded number would be written back
    bool refused = false;  // what stands in it cannot be taken
};
EditState g_edit;

HWND List() { return GetDlgItem(g_debugUi.hDebugPane, IDC_DEBUG_LIST); }

std::wstring TextOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::wstring Offer() {
    const std::wstring text = TextOf(g_edit.edit);
    return text == g_edit.shown ? std::wstring{} : g_edit.commit(text);
}

// Takes the text when it is good. What is not stays in the field with its reason in the status bar.
bool Commit() {
    const std::wstring problem = Offer();
    if (g_edit.edit == nullptr) return true;  // the commit has closed it
    if (problem.empty()) {
        PaneEditCancel();
        return true;
    }
    g_events.statusText(problem.c_str());
    g_edit.refused = true;
    InvalidateRect(g_edit.edit, nullptr, TRUE);
    MessageBeep(MB_ICONWARNING);
    return false;
}

bool OnKey(WPARAM key) {
    if (key == VK_ESCAPE) {
        const HWND list = GetParent(g_edit.edit);
        PaneEditCancel();
        SetFocus(list);
        return true;
    }
    if (key != VK_RETURN && key != VK_TAB) return false;
    const HWND list = GetParent(g_edit.edit);
    if (Commit()) SetFocus(list);
    return true;
}

// Another window was chosen: a good text is taken, a refused one dropped.
void OnFocusLost() {
    if (g_edit.edit == nullptr) return;
    if (!g_edit.refused) Offer();
    PaneEditCancel();
}

LRESULT CALLBACK EditProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnKey(wParam)) return 0;
            g_edit.refused = false;
            InvalidateRect(edit, nullptr, FALSE);
            break;
        case WM_CHAR:
            if (wParam == VK_RETURN || wParam == VK_TAB || wParam == VK_ESCAPE) return 0;
            break;
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KILLFOCUS: {
            const LRESULT result = DefSubclassProc(edit, message, wParam, lParam);
            OnFocusLost();
            return result;
        }
        case WM_NCDESTROY: RemoveWindowSubclass(edit, EditProc, id); break;
        default: break;
    }
    return DefSubclassProc(edit, message, wParam, lParam);
}

}  // namespace

void PaneEditBegin(int row, int column, const std::wstring& text, bool append, PaneCommit commit) {
    PaneEditCancel();
    const HWND list = List();
    SendMessageW(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    RECT cell = PaneListCell(row, column);
    RECT client = {};
    GetClientRect(list, &client);
    cell.right = cell.right > client.right ? client.right : cell.right;
    const HWND edit = CreateWindowExW(
        0, WC_EDITW, text.c_str(), WS_CHILD | WS_VISIBLE | WS_BORDER | WS_CLIPSIBLINGS | ES_AUTOHSCROLL, cell.left,
        cell.top, cell.right - cell.left, cell.bottom - cell.top, list, nullptr, g_ui.hInstance, nullptr);
    if (edit == nullptr) {
        AppLogMsg(L"FAIL: PaneEditBegin error=%lu", GetLastError());
        return;
    }
    g_edit = {edit, std::move(commit), append ? std::wstring{} : text, false};
    SendMessageW(edit, WM_SETFONT, reinterpret_cast<WPARAM>(PaneFontsNow().fixed), FALSE);
    SetWindowSubclass(edit, EditProc, kSubclassId, 0);
    SendMessageW(edit, EM_SETSEL, append ? text.size() : 0, append ? static_cast<LPARAM>(text.size()) : -1);
    SetFocus(edit);
}

void PaneEditCancel() {
    // Forgotten first: destroying it takes the focus away from it.
    const HWND edit = std::exchange(g_edit.edit, nullptr);
    if (edit == nullptr) return;
    const HWND list = GetParent(edit);
    const bool hadFocus = GetFocus() == edit;
    DestroyWindow(edit);
    if (hadFocus) SetFocus(list);
    if (g_edit.refused) g_events.statusText(L"");
    g_edit.refused = false;
}

bool PaneEditColours(HDC dc) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    SetTextColor(dc, g_edit.refused ? chrome.error : chrome.paneText);
    SetBkColor(dc, chrome.tabActiveBack);
    SetDCBrushColor(dc, chrome.tabActiveBack);
    return true;
}

UINT PaneShowMenu(std::span<const PaneMenuItem> items, POINT screen, UINT side) {
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) return 0;
    for (const PaneMenuItem& item : items) {
        const UINT state = (item.enabled ? MF_ENABLED : MF_GRAYED) | (item.checked ? MF_CHECKED : MF_UNCHECKED);
        AppendMenuW(menu, item.id == 0 ? MF_SEPARATOR : MF_STRING | state, item.id, item.text);
    }
    const BOOL chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON | side, screen.x, screen.y, 0,
                                       g_debugUi.hDebugPane, nullptr);
    DestroyMenu(menu);
    return static_cast<UINT>(chosen);
}

void PaneCopyText(const std::wstring& text) { ClipboardPutText(g_ui.hMainWnd, text); }
