// The error list: a virtual list view that asks for the text of each cell and keeps no copy of `g_output.errors`. UI
// thread only.
#include "output/output_pane.h"

#include "base/wide_format.h"
#include "output/output_state.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_header.h"

#include <commctrl.h>

#include <array>
#include <iterator>

namespace {

enum Column : int { kSeverity, kMessage, kFile, kLine, kColumn };

struct ColumnSpec {
    const wchar_t* title;
    int width;  // pixels at 96 dpi
    int format;
};
constexpr std::array<ColumnSpec, 5> kColumns = {{
    {L"Severity", 80, LVCFMT_LEFT},
    {L"Message", 420, LVCFMT_LEFT},
    {L"File", 320, LVCFMT_LEFT},
    {L"Line", 60, LVCFMT_RIGHT},
    {L"Column", 60, LVCFMT_RIGHT},
}};

void CellText(const CompilerError& error, int column, wchar_t* out, int capacity) {
    const std::span<wchar_t> cell(out, static_cast<std::size_t>(capacity));
    switch (column) {
        case kSeverity: FormatBufferW(cell, L"%s", error.severity == 0 ? L"Error" : L"Warning"); break;
        case kMessage: FormatBufferW(cell, L"%s", error.message); break;
        case kFile: FormatBufferW(cell, L"%s", error.file); break;
        case kLine: FormatBufferW(cell, L"%d", error.line); break;
        case kColumn:
            if (error.column >= 1) FormatBufferW(cell, L"%d", error.column);
            break;
        default: break;
    }
}

void FillCell(LVITEMW& item) {
    if ((item.mask & LVIF_TEXT) == 0 || item.cchTextMax <= 0) return;
    item.pszText[0] = L'\0';
    if (item.iItem >= 0 && item.iItem < g_output.errors.count)
        CellText(g_output.errors.items[item.iItem], item.iSubItem, item.pszText, item.cchTextMax);
}

void ApplyTheme(HWND list) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    SendMessageW(list, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    SendMessageW(list, LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    SendMessageW(list, LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(chrome.paneText));
    SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    ScrollBarsApplyTheme(list);
    ListHeaderApplyTheme(list);
}

}  // namespace

HWND ErrorListCreate(HWND parent, int controlId) {
    HWND list = CreateWindowExW(0, WC_LISTVIEWW, L"",
                                WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA |
                                    LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
                                0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)),
                                g_ui.hInstance, nullptr);
    if (list == nullptr) return nullptr;
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP);
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        std::wstring title = kColumns[i].title;
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        column.fmt = kColumns[i].format;
        column.cx = UiScaled(kColumns[i].width);
        column.pszText = title.data();
        SendMessageW(list, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
    }
    ApplyTheme(list);
    SendMessageW(list, LVM_SETITEMCOUNT, static_cast<WPARAM>(g_output.errors.count), 0);
    return list;
}

void ErrorListRefresh() {
    HWND list = g_output.hErrorList;
    if (list == nullptr) return;
    ApplyTheme(list);
    SendMessageW(list, LVM_SETITEMCOUNT, static_cast<WPARAM>(g_output.errors.count), LVSICF_NOSCROLL);
    InvalidateRect(list, nullptr, TRUE);
}

void ErrorListShowCurrent() {
    HWND list = g_output.hErrorList;
    if (list == nullptr || g_output.errors.current >= g_output.errors.count) return;
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
        case NM_RETURN:
            CompilerNavigateToError(static_cast<int>(
                SendMessageW(g_output.hErrorList, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)));
            return true;
        default: return false;
    }
}
