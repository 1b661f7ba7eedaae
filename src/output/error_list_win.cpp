// The error list: a virtual list view that asks for the text of each cell and keeps no copy of `g_output.errors`. UI
// thread only.
#include "output/output_pane.h"

#include "output/error_columns.h"
#include "output/output_state.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_header.h"
#include "ui/menu.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <uxtheme.h>

#include <string>

namespace {

void FillCell(LVITEMW& item) {
    if ((item.mask & LVIF_TEXT) == 0 || item.cchTextMax <= 0) return;
    item.pszText[0] = L'\0';
    if (item.iItem >= 0 && item.iItem < ErrorCount(g_output.errors))
        lstrcpynW(item.pszText,
                  ErrorCellText(g_output.errors.items[static_cast<std::size_t>(item.iItem)], item.iSubItem).c_str(),
                  item.cchTextMax);
}

constexpr wchar_t kRowLooks[] = L"Explorer";

void ApplyTheme(HWND list) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    SendMessageW(list, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    SendMessageW(list, LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    SendMessageW(list, LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(chrome.paneText));
    SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    ScrollBarsApplyTheme(list, kRowLooks);
    ListHeaderApplyTheme(list);
}

void ShowListMenu(HWND list, POINT at) {
    const int row = ErrorListSelected();
    if (at.x == -1 && at.y == -1) {  // from the keyboard
        RECT place = {.left = LVIR_LABEL};
        SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(row < 0 ? 0 : row), reinterpret_cast<LPARAM>(&place));
        at = {place.left, place.bottom};
        ClientToScreen(list, &at);
    }
    const bool chosen = row >= 0;
    constexpr UINT kGoTo = 1;
    const MenuItem items[] = {{.id = kGoTo, .text = L"&Go to Source\tEnter", .enabled = chosen},
                              {},
                              {.id = IDM_AI_EXPLAIN, .text = L"E&xplain This Error", .enabled = chosen},
                              {.id = IDM_AI_FIX, .text = L"&Fix This Error", .enabled = chosen}};
    const UINT command = ShowPopupMenu(list, items, at);
    if (command == kGoTo)
        CompilerNavigateToError(ErrorListSelected());
    else if (command != 0)
        PostMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0);
}

LRESULT CALLBACK ErrorListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message != WM_CONTEXTMENU) return SubclassNext(list, message, wParam, lParam);
    ShowListMenu(list, {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
    return 0;
}

}  // namespace

HWND ErrorListCreate(HWND parent, int controlId) {
    HWND list = CreateWindowExW(0, WC_LISTVIEWW, L"",
                                WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA |
                                    LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
                                0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)),
                                g_ui.hInstance, nullptr);
    if (list == nullptr) return nullptr;
    SubclassAdd(list, ErrorListProc);
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP);
    for (std::size_t i = 0; i < kErrorColumns.size(); ++i) {
        std::wstring title = kErrorColumns[i].title;
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        column.fmt = kErrorColumns[i].alignRight ? LVCFMT_RIGHT : LVCFMT_LEFT;
        column.cx = UiScaled(kErrorColumns[i].width);
        column.pszText = title.data();
        SendMessageW(list, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
    }
    SetWindowTheme(list, kRowLooks, nullptr);
    ApplyTheme(list);
    SendMessageW(list, LVM_SETITEMCOUNT, static_cast<WPARAM>(ErrorCount(g_output.errors)), 0);
    return list;
}

int ErrorListSelected() {
    if (g_output.hErrorList == nullptr) return -1;
    return static_cast<int>(SendMessageW(g_output.hErrorList, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void ErrorListRefresh() {
    HWND list = g_output.hErrorList;
    if (list == nullptr) return;
    ApplyTheme(list);
    SendMessageW(list, LVM_SETITEMCOUNT, static_cast<WPARAM>(ErrorCount(g_output.errors)), LVSICF_NOSCROLL);
    InvalidateRect(list, nullptr, TRUE);
}

void ErrorListShowCurrent() {
    HWND list = g_output.hErrorList;
    if (list == nullptr || g_output.errors.current >= ErrorCount(g_output.errors)) return;
    LVITEMW state = {};
    state.state = LVIS_SELECTED | LVIS_FOCUSED;
    state.stateMask = state.state;
    const auto row = static_cast<WPARAM>(g_output.errors.current);
    SendMessageW(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&state));
    SendMessageW(list, LVM_ENSUREVISIBLE, row, FALSE);
}

bool ErrorListHandleNotify(const NMHDR& header) {
    if (g_output.hErrorList == nullptr || header.hwndFrom != g_output.hErrorList) return false;
    switch (header.code) {
        case LVN_GETDISPINFOW:
            // LVN_GETDISPINFO is answered in the record that came with it.
            FillCell(reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(&header))->item);
            return true;
        case NM_DBLCLK:
        case NM_RETURN: CompilerNavigateToError(ErrorListSelected()); return true;
        default: return false;
    }
}
