// Answers what the list view control asks for, and handles the mouse and the keyboard. UI thread only.
#include "ui/list_internal.h"

#include "ui/clipboard.h"
#include "ui/redraw.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <windowsx.h>

namespace {

void FillItem(const ListView& list, LVITEMW& item) {
    const ListRow* row = ListViewRow(list, item.iItem);
    if (row == nullptr) return;
    const auto column = static_cast<std::size_t>(item.iSubItem);
    if ((item.mask & LVIF_TEXT) != 0 && item.cchTextMax > 0)
        lstrcpynW(item.pszText, column < row->cells.size() ? row->cells[column].c_str() : L"", item.cchTextMax);
    if ((item.mask & LVIF_STATE) != 0 && column == 0) {
        const UINT box = row->mark == ListMark::Checked ? 2U : row->mark == ListMark::Unchecked ? 1U : 0U;
        item.state |= INDEXTOSTATEIMAGEMASK(box);
    }
}

// The tip shows the whole row, because its cells may be cut.
void FillTip(const ListView& list, const NMLVGETINFOTIPW& tip) {
    const ListRow* row = ListViewRow(list, tip.iItem);
    if (row == nullptr || tip.cchTextMax < 1) return;
    std::wstring text;
    for (const std::wstring& cell : row->cells)
        if (!cell.empty()) text += text.empty() ? cell : L"   " + cell;
    lstrcpynW(tip.pszText, text.c_str(), tip.cchTextMax);
}

std::wstring RowAsText(const ListRow& row) {
    std::wstring text;
    for (const std::wstring& cell : row.cells) text += text.empty() ? cell : L"\t" + cell;
    return text;
}

void CopySelectedRow(const ListView& list) {
    const ListRow* row = ListViewRow(list, ListViewSelected(list));
    if (row != nullptr) ClipboardPutText(g_ui.hMainWnd, RowAsText(*row));
}

void CopyAllRows(const ListView& list) {
    if (list.content == nullptr) return;
    std::wstring text;
    for (const ListColumn& column : list.kind->columns)
        text += (text.empty() ? L"" : L"\t") + std::wstring(column.title);
    for (const ListRow& row : list.content->rows) text += L"\r\n" + RowAsText(row);
    ClipboardPutText(g_ui.hMainWnd, text + L"\r\n");
}

// --- Mouse and keyboard

bool IsOnMark(const ListView& list, const NMITEMACTIVATE& click) {
    const RECT cell = ListViewCell(list, click.iItem, 0);  // begins to the right of the mark
    return list.kind->hasMarks && click.ptAction.x < cell.left;
}

void OnListClick(const ListView& list, const NMITEMACTIVATE& click) {
    if (ListViewRow(list, click.iItem) == nullptr) return;
    if (list.kind->check != nullptr && IsOnMark(list, click))
        list.kind->check(click.iItem);
    else if (list.kind->edit != nullptr && click.iSubItem > 0)
        list.kind->edit(click.iItem, click.iSubItem);
}

void OnListDoubleClick(const ListView& list, const NMITEMACTIVATE& click) {
    if (ListViewRow(list, click.iItem) == nullptr || (list.kind->check != nullptr && IsOnMark(list, click))) return;
    if (list.kind->activate != nullptr) list.kind->activate(click.iItem, click.iSubItem);
}

bool OnListKey(const ListView& list, WPARAM key) {
    if (list.handleKey != nullptr && list.handleKey(list.window, key)) return true;
    const int row = ListViewSelected(list);
    if (ListViewRow(list, row) == nullptr) return false;
    const ListKind& kind = *list.kind;
    if (key == 'C' && GetKeyState(VK_CONTROL) < 0)
        CopySelectedRow(list);
    else if (key == VK_RETURN && kind.activate != nullptr)
        kind.activate(row, -1);
    else if (key == VK_F2 && kind.edit != nullptr)
        kind.edit(row, -1);
    else if (key == VK_SPACE && kind.check != nullptr)
        kind.check(row);
    else
        return kind.key != nullptr && kind.key(row, static_cast<int>(key));
    return true;
}

// Selects the row under the mouse, as its button usually has done by now.
void SelectRowAt(const ListView& list, POINT screen) {
    LVHITTESTINFO hit = {.pt = screen, .flags = 0, .iItem = -1, .iSubItem = 0, .iGroup = 0};
    ScreenToClient(list.window, &hit.pt);
    const auto row = static_cast<int>(ListViewSend(list, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    if (row >= 0 && row != ListViewSelected(list)) ListViewSelect(list, row);
}

void OnListMenu(const ListView& list, POINT at) {
    if (at.x != -1 || at.y != -1) SelectRowAt(list, at);
    const int row = ListViewSelected(list);
    const bool onRow = ListViewRow(list, row) != nullptr;
    if (list.kind->menu == nullptr || (!onRow && !list.kind->menuWithoutRow)) return;
    if (at.x == -1 && at.y == -1) {  // opened by the keyboard: below the selected row, or the header
        RECT above = {};
        GetClientRect(ListViewHeader(list), &above);
        if (onRow) above = ListViewCell(list, row, 0);
        at = {above.left, above.bottom};
        ClientToScreen(list.window, &at);
    }
    list.kind->menu(onRow ? row : -1, at);
}

void OnListCharacter(const ListView& list, wchar_t character) {
    const int row = ListViewSelected(list);
    if (character > L' ' && ListViewRow(list, row) != nullptr && list.kind->typed != nullptr)
        list.kind->typed(row, character);
}

// The user begins to change the width of a column. The control passes on the header's notifications in ANSI or Unicode
// form.
bool BeginsColumnResize(UINT code) {
    return code == HDN_BEGINTRACKW || code == HDN_BEGINTRACKA || code == HDN_DIVIDERDBLCLICKW ||
           code == HDN_DIVIDERDBLCLICKA;
}

// Returns true when `result` answers the notification of the header.
bool OnHeaderNotify(ListView& list, const NMHDR& header, LRESULT* result) {
    if (header.hwndFrom != ListViewHeader(list)) return false;
    if (BeginsColumnResize(header.code) && list.kind != nullptr) list.places[list.kind].byUser = true;
    if (header.code != NM_CUSTOMDRAW) return false;
    *result = ListViewDrawHeader(list, reinterpret_cast<const NMCUSTOMDRAW&>(header));
    return true;
}

// Drawn once for a new size: the control draws its scroll bars up to eight times for it, which takes 2 ms each under
// Wine.
LRESULT OnListPlaced(const ListView& list, WPARAM wParam, const WINDOWPOS& place) {
    const auto parameter = reinterpret_cast<LPARAM>(&place);
    if ((place.flags & SWP_NOSIZE) != 0) return SubclassNext(list.window, WM_WINDOWPOSCHANGED, wParam, parameter);
    LRESULT result = 0;
    {
        const FramePause pause(list.window);
        result = SubclassNext(list.window, WM_WINDOWPOSCHANGED, wParam, parameter);
    }
    RedrawWindow(list.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    return result;
}

void OnListDestroyed(ListView& list) {
    if (list.heightOnly != nullptr) ImageList_Destroy(list.heightOnly);
    ListViewForget(list);
    list = {};
}

}  // namespace

void ListViewCopy(const ListView& list, bool all) { all ? CopyAllRows(list) : CopySelectedRow(list); }

LRESULT CALLBACK ListViewProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data) {
    ListView& list = *reinterpret_cast<ListView*>(data);
    LRESULT result = 0;
    switch (message) {
        case WM_NOTIFY:
            if (OnHeaderNotify(list, *reinterpret_cast<const NMHDR*>(lParam), &result)) return result;
            break;
        case WM_CTLCOLOREDIT: return InlineEditColours(reinterpret_cast<HDC>(wParam));
        case WM_GETDLGCODE: return list.inDialog ? DLGC_WANTARROWS | DLGC_WANTCHARS : DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
            if (OnListKey(list, wParam)) return 0;
            break;
        case WM_CHAR: OnListCharacter(list, static_cast<wchar_t>(wParam)); return 0;  // no type-ahead search
        case WM_COPY: CopySelectedRow(list); return 0;
        case WM_CONTEXTMENU: OnListMenu(list, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(window, nullptr, FALSE); break;
        case WM_WINDOWPOSCHANGED: return OnListPlaced(list, wParam, *reinterpret_cast<const WINDOWPOS*>(lParam));
        case WM_SIZE:
            result = SubclassNext(window, message, wParam, lParam);
            ListViewFitColumns(list);
            return result;
        case WM_NCDESTROY: OnListDestroyed(list); break;
        default: break;
    }
    return SubclassNext(window, message, wParam, lParam);
}

bool ListViewHandleNotify(ListView& list, const NMHDR& header, LRESULT* result) {
    if (list.window == nullptr || header.hwndFrom != list.window) return false;
    switch (header.code) {
        case LVN_GETDISPINFOW:
            // The control reads the answer from the record that it has sent.
            FillItem(list, reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(&header))->item);
            return true;
        case NM_CUSTOMDRAW:
            *result = ListViewDrawItem(list, reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
            return true;
        case NM_CLICK: OnListClick(list, reinterpret_cast<const NMITEMACTIVATE&>(header)); return true;
        case NM_DBLCLK: OnListDoubleClick(list, reinterpret_cast<const NMITEMACTIVATE&>(header)); return true;
        case LVN_GETINFOTIPW: FillTip(list, reinterpret_cast<const NMLVGETINFOTIPW&>(header)); return true;
        case LVN_BEGINSCROLL: InlineEditCancel(); return true;
        case LVN_ITEMCHANGED: ListRowRepaint(reinterpret_cast<const NMLISTVIEW&>(header)); return false;
        default: return false;
    }
}

INT_PTR ListViewHandleDialogNotify(HWND dialog, ListView& list, const NMHDR& header) {
    LRESULT result = 0;
    if (!ListViewHandleNotify(list, header, &result)) return FALSE;
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, result);
    return TRUE;
}
