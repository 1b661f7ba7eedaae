// The list: its columns, its rows, and what the user does with them. UI thread only.
#include "ui/list_view.h"

#include "ui/chrome.h"
#include "ui/clipboard.h"
#include "ui/dpi.h"
#include "ui/fit.h"
#include "ui/fonts.h"
#include "ui/list_internal.h"

#include <uxtheme.h>
#include <windowsx.h>

#include <algorithm>

namespace {

constexpr UINT_PTR kSubclassId = 1;
constexpr int kRowBlank = 5;  // of a row beside its line of text, at 96 dpi

LRESULT SendList(const ListView& list, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendMessageW(list.window, message, wParam, lParam);
}

int ListRowCount(const ListView& list) {
    return list.content != nullptr ? static_cast<int>(list.content->rows.size()) : 0;
}

const ListRow* ListRowAt(const ListView& list, int row) {
    return row >= 0 && row < ListRowCount(list) ? &list.content->rows[static_cast<std::size_t>(row)] : nullptr;
}

int ListColumnCount(const ListView& list) {
    return list.kind != nullptr ? static_cast<int>(list.kind->columns.size()) : 0;
}

int ListColumnWidth(const ListView& list, int column) {
    return static_cast<int>(SendList(list, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
}

HWND HeaderOf(const ListView& list) { return reinterpret_cast<HWND>(SendList(list, LVM_GETHEADER)); }

ListView::Place& KeptPlace(ListView& list) { return list.places[list.kind]; }

// --- Columns

ColumnRoom RoomOfColumn(const ListKind& kind, int column) {
    const ListColumn& wanted = kind.columns[static_cast<std::size_t>(column)];
    const int each = wanted.fixedPitch ? UiSizes().fixedWidth : UiSizes().textWidth;
    const int rest = 2 * ListViewCellPadding() + ListViewMarkWidth(kind, column);
    return {wanted.characters * each + rest, wanted.least * each + rest};
}

// What the user drew stays; only the last column follows the pane then.
void FitColumnsToPane(ListView& list) {
    std::vector<ColumnRoom> columns;
    const bool byUser = list.kind != nullptr && KeptPlace(list).byUser;
    for (int i = 0; i < ListColumnCount(list); ++i)
        columns.push_back(byUser && i + 1 < ListColumnCount(list)
                              ? ColumnRoom{ListColumnWidth(list, i), ListColumnWidth(list, i)}
                              : RoomOfColumn(*list.kind, i));
    RECT client = {};
    GetClientRect(list.window, &client);
    const std::vector<int> widths = FitColumns(columns, client.right);
    for (int i = 0; i < ListColumnCount(list); ++i) {
        const int width = widths[static_cast<std::size_t>(i)];
        if (width != ListColumnWidth(list, i))
            SendList(list, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(i), MAKELPARAM(width, 0));
    }
}

void KeepPlace(ListView& list) {
    const auto columns = static_cast<int>(SendMessageW(HeaderOf(list), HDM_GETITEMCOUNT, 0, 0));
    if (list.kind == nullptr || columns < 1) return;
    ListView::Place& place = KeptPlace(list);
    place.widths.clear();
    for (int i = 0; place.byUser && i < columns; ++i) place.widths.push_back(ListColumnWidth(list, i));
    place.selected = std::max(ListViewSelected(list), 0);
    place.top = static_cast<int>(SendList(list, LVM_GETTOPINDEX));
}

void DeleteColumns(const ListView& list) {
    while (SendList(list, LVM_DELETECOLUMN, 0) != FALSE) {}
}

void InsertColumns(ListView& list) {
    const ListView::Place& place = KeptPlace(list);
    const bool kept = place.widths.size() == list.kind->columns.size();
    for (int i = 0; i < ListColumnCount(list); ++i) {
        const auto index = static_cast<std::size_t>(i);
        LVCOLUMNW add = {};
        add.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        add.pszText = const_cast<wchar_t*>(list.kind->columns[index].title);  // read only, in spite of its type
        add.cx = kept ? place.widths[index] : RoomOfColumn(*list.kind, i).wanted;
        SendList(list, LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&add));
    }
}

// --- Rows

void ScrollTo(const ListView& list, int top) {
    RECT first = {};
    first.left = LVIR_BOUNDS;
    if (ListRowCount(list) == 0 || SendList(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&first)) == FALSE)
        return;
    const int height = std::max<int>(first.bottom - first.top, 1);
    SendList(list, LVM_SCROLL, 0, (top - static_cast<int>(SendList(list, LVM_GETTOPINDEX))) * height);
}

// A few rows of what follows are worth more than the row itself at the lower edge, and of what goes before, such as its
// line of source, more than the row at the upper one.
void RevealRow(const ListView& list, int row) {
    ListViewSelect(list, row);
    for (const int each : {std::min(row + 4, ListRowCount(list) - 1), std::max(row - 2, 0), row})
        SendList(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(each), FALSE);
}

void FillItem(const ListView& list, LVITEMW& item) {
    const ListRow* row = ListRowAt(list, item.iItem);
    if (row == nullptr) return;
    const auto column = static_cast<std::size_t>(item.iSubItem);
    if ((item.mask & LVIF_TEXT) != 0 && item.cchTextMax > 0)
        lstrcpynW(item.pszText, column < row->cells.size() ? row->cells[column].c_str() : L"", item.cchTextMax);
    if ((item.mask & LVIF_STATE) != 0 && column == 0) {
        const UINT box = row->mark == ListMark::Checked ? 2U : row->mark == ListMark::Unchecked ? 1U : 0U;
        item.state |= INDEXTOSTATEIMAGEMASK(box);
    }
}

// The row whole, because some of it may be cut.
void FillTip(const ListView& list, const NMLVGETINFOTIPW& tip) {
    const ListRow* row = ListRowAt(list, tip.iItem);
    if (row == nullptr || tip.cchTextMax < 1) return;
    std::wstring text;
    for (const std::wstring& cell : row->cells)
        if (!cell.empty()) text += text.empty() ? cell : L"   " + cell;
    lstrcpynW(tip.pszText, text.c_str(), tip.cchTextMax);
}

void CopySelectedRow(const ListView& list) {
    const ListRow* row = ListRowAt(list, ListViewSelected(list));
    if (row == nullptr) return;
    std::wstring text;
    for (const std::wstring& cell : row->cells) text += text.empty() ? cell : L"\t" + cell;
    ClipboardPutText(g_ui.hMainWnd, text);
}

// --- What the user does

bool IsOnMark(const ListView& list, const NMITEMACTIVATE& click) {
    const RECT cell = ListViewCell(list, click.iItem, 0);  // begins right of the mark
    return list.kind->hasMarks && click.ptAction.x < cell.left;
}

void OnListClick(const ListView& list, const NMITEMACTIVATE& click) {
    if (ListRowAt(list, click.iItem) == nullptr) return;
    if (list.kind->check != nullptr && IsOnMark(list, click))
        list.kind->check(click.iItem);
    else if (list.kind->edit != nullptr && click.iSubItem > 0)
        list.kind->edit(click.iItem, click.iSubItem);
}

void OnListDoubleClick(const ListView& list, const NMITEMACTIVATE& click) {
    if (ListRowAt(list, click.iItem) == nullptr || (list.kind->check != nullptr && IsOnMark(list, click))) return;
    if (list.kind->activate != nullptr) list.kind->activate(click.iItem, click.iSubItem);
}

bool OnListKey(const ListView& list, WPARAM key) {
    if (list.handleKey != nullptr && list.handleKey(list.window, key)) return true;
    const int row = ListViewSelected(list);
    if (ListRowAt(list, row) == nullptr) return false;
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

void OnListMenu(const ListView& list, POINT at) {
    const int row = ListViewSelected(list);
    if (ListRowAt(list, row) == nullptr || list.kind->menu == nullptr) return;
    if (at.x == -1 && at.y == -1) {  // from the keyboard: below the selected row
        const RECT cell = ListViewCell(list, row, 0);
        at = {cell.left, cell.bottom};
        ClientToScreen(list.window, &at);
    }
    list.kind->menu(row, at);
}

void OnListCharacter(const ListView& list, wchar_t character) {
    const int row = ListViewSelected(list);
    if (character > L' ' && ListRowAt(list, row) != nullptr && list.kind->typed != nullptr)
        list.kind->typed(row, character);
}

// The user begins to draw a column to another width. The control asks its header in either alphabet.
bool IsWidening(UINT code) {
    return code == HDN_BEGINTRACKW || code == HDN_BEGINTRACKA || code == HDN_DIVIDERDBLCLICKW ||
           code == HDN_DIVIDERDBLCLICKA;
}

// True when the notification was one of the header that is drawn here.
bool OnHeaderNotify(ListView& list, const NMHDR& header, LRESULT* result) {
    if (header.hwndFrom != HeaderOf(list)) return false;
    if (IsWidening(header.code) && list.kind != nullptr) KeptPlace(list).byUser = true;
    if (header.code != NM_CUSTOMDRAW) return false;
    *result = ListViewDrawHeader(list, reinterpret_cast<const NMCUSTOMDRAW&>(header));
    return true;
}

void OnListDestroyed(ListView& list) {
    if (list.heightOnly != nullptr) ImageList_Destroy(list.heightOnly);
    list = {};
}

LRESULT CALLBACK ListViewProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR data) {
    ListView& list = *reinterpret_cast<ListView*>(data);
    LRESULT result = 0;
    switch (message) {
        case WM_NOTIFY:
            if (OnHeaderNotify(list, *reinterpret_cast<const NMHDR*>(lParam), &result)) return result;
            break;
        case WM_CTLCOLOREDIT: return InlineEditColours(reinterpret_cast<HDC>(wParam));
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
            if (OnListKey(list, wParam)) return 0;
            break;
        case WM_CHAR: OnListCharacter(list, static_cast<wchar_t>(wParam)); return 0;  // no search by typing
        case WM_COPY: CopySelectedRow(list); return 0;
        case WM_CONTEXTMENU: OnListMenu(list, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(window, nullptr, FALSE); break;
        case WM_SIZE:
            result = DefSubclassProc(window, message, wParam, lParam);
            FitColumnsToPane(list);
            return result;
        case WM_NCDESTROY:
            RemoveWindowSubclass(window, ListViewProc, id);
            OnListDestroyed(list);
            break;
        default: break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

}  // namespace

bool ListViewCreate(ListView& list, HWND parent, int controlId) {
    list.window = CreateWindowExW(
        0, WC_LISTVIEWW, L"",
        WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL |
            LVS_SHOWSELALWAYS | LVS_NOSORTHEADER | LVS_SHAREIMAGELISTS,
        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (list.window == nullptr) return false;
    SendList(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP);
    SendList(list, LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
    SetWindowSubclass(list.window, ListViewProc, kSubclassId, reinterpret_cast<DWORD_PTR>(&list));
    return true;
}

void ListViewShow(ListView& list, const ListKind& kind) {
    KeepPlace(list);
    SendList(list, WM_SETREDRAW, FALSE);
    list.content = nullptr;
    SendList(list, LVM_SETITEMCOUNT, 0);
    DeleteColumns(list);
    list.kind = &kind;
    InsertColumns(list);
    FitColumnsToPane(list);
    SendList(list, WM_SETREDRAW, TRUE);
}

void ListViewUpdate(ListView& list, const ListContent& content) {
    const bool first = list.content == nullptr;  // a kind just shown goes back to its place
    const bool sameCount = !first && SendList(list, LVM_GETITEMCOUNT) == static_cast<LRESULT>(content.rows.size());
    list.content = &content;
    if (!sameCount) {
        InlineEditCancel();
        SendList(list, LVM_SETITEMCOUNT, content.rows.size(), LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
        FitColumnsToPane(list);
    }
    const int count = ListRowCount(list);
    if (first && count > 0) {
        ListViewSelect(list, std::min(KeptPlace(list).selected, count - 1));
        ScrollTo(list, std::min(KeptPlace(list).top, count - 1));
    } else if (count > 0 && ListViewSelected(list) < 0) {
        ListViewSelect(list, 0);
    }
    if (content.reveal >= 0 && content.reveal < count) RevealRow(list, content.reveal);
    InvalidateRect(list.window, nullptr, FALSE);
}

void ListViewApplyTheme(ListView& list) {
    // The fonts may be others now: the columns of every kind get the widths that fit them.
    KeepPlace(list);
    for (auto& [kind, place] : list.places) {
        place.widths.clear();
        place.byUser = false;
    }
    DeleteColumns(list);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    SendList(list, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    SendList(list, LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    SendList(list, LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(chrome.paneText));
    SendList(list, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    SetWindowTheme(list.window, ThemeIsDark() ? L"DarkMode_Explorer" : L"Explorer", nullptr);
    const int line = std::max(UiSizes().textHeight, UiSizes().fixedHeight) + UiScaled(kRowBlank);
    const HIMAGELIST height = ImageList_Create(1, line, ILC_COLOR, 1, 1);
    if (height == nullptr) return;
    SendList(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(height));
    if (list.heightOnly != nullptr) ImageList_Destroy(list.heightOnly);
    list.heightOnly = height;
}

bool ListViewHandleNotify(ListView& list, const NMHDR& header, LRESULT* result) {
    if (list.window == nullptr || header.hwndFrom != list.window) return false;
    switch (header.code) {
        case LVN_GETDISPINFOW:
            // The control wants its answer in the very record it sends.
            FillItem(list, reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(&header))->item);
            return true;
        case NM_CUSTOMDRAW:
            *result = ListViewDrawItem(list, reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
            return true;
        case NM_CLICK: OnListClick(list, reinterpret_cast<const NMITEMACTIVATE&>(header)); return true;
        case NM_DBLCLK: OnListDoubleClick(list, reinterpret_cast<const NMITEMACTIVATE&>(header)); return true;
        case LVN_GETINFOTIPW: FillTip(list, reinterpret_cast<const NMLVGETINFOTIPW&>(header)); return true;
        case LVN_BEGINSCROLL: InlineEditCancel(); return true;
        default: return false;
    }
}

int ListViewSelected(const ListView& list) {
    return static_cast<int>(SendList(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void ListViewSelect(const ListView& list, int row) {
    LVITEMW state = {};
    state.state = LVIS_SELECTED | LVIS_FOCUSED;
    state.stateMask = state.state;
    SendList(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
}

RECT ListViewCell(const ListView& list, int row, int column) {
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    SendList(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&bounds));
    int left = bounds.left;
    for (int i = 0; i < column; ++i) left += ListColumnWidth(list, i);
    const int mark = list.kind != nullptr ? ListViewMarkWidth(*list.kind, column) : 0;
    return {left + mark, bounds.top, left + ListColumnWidth(list, column), bounds.bottom};
}

void ListViewEditCell(ListView& list, int row, int column, const std::wstring& text, bool append, InlineCommit commit) {
    InlineEditCancel();
    SendList(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    RECT cell = ListViewCell(list, row, column);
    RECT client = {};
    GetClientRect(list.window, &client);
    cell.right = std::min(cell.right, client.right);
    InlineEditBegin(list.window, cell, text, append, std::move(commit));
}
