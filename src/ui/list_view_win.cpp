// The window, the columns and the rows of a list. UI thread only.
#include "ui/list_view.h"

#include "base/texts.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fit.h"
#include "ui/fonts.h"
#include "ui/late_size.h"
#include "ui/list_internal.h"
#include "ui/redraw.h"
#include "ui/subclass.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int kRowBlank = 5;  // height of a row beyond its text, at 96 dpi

std::vector<ListView*> g_inDialogs;  // the lists of the dialogs that are open

int ListColumnCount(const ListView& list) {
    return list.kind != nullptr ? static_cast<int>(list.kind->columns.size()) : 0;
}

int ListColumnWidth(const ListView& list, int column) {
    return static_cast<int>(ListViewSend(list, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
}

// --- Columns

ColumnRoom RoomOfColumn(const ListKind& kind, int column) {
    const ListColumn& wanted = kind.columns[static_cast<std::size_t>(column)];
    const int each = wanted.fixedPitch ? UiSizes().fixedWidth : UiSizes().textWidth;
    const int rest = 2 * ListViewCellPadding() + ListViewMarkWidth(kind, column);
    return {wanted.characters * each + rest, wanted.least * each + rest};
}

int ListRowHeight(const ListView& list) {
    RECT first = {};
    first.left = LVIR_BOUNDS;
    ListViewSend(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&first));
    return std::max<int>(first.bottom - first.top, 1);
}

// The width for the columns. It does not ask which scroll bars there are now: the columns themselves bring or remove
// the horizontal one, that one changes the height, and the height brings or removes the vertical one, without end.
int RoomForColumns(const ListView& list) {
    RECT window = {}, header = {}, client = {};
    GetWindowRect(list.window, &window);
    GetWindowRect(ListViewHeader(list), &header);
    GetClientRect(list.window, &client);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(list.window, GWL_STYLE));
    const int frame = (style & WS_BORDER) != 0 ? 2 * UiMetric(SM_CXBORDER) : 0;
    const int width = window.right - window.left - frame;
    const int rows = ListViewRowCount(list) > 0 ? ListViewRowCount(list) * ListRowHeight(list) : 0;
    if (rows <= window.bottom - window.top - frame - (header.bottom - header.top)) return width;
    return (style & WS_VSCROLL) != 0 ? client.right : width - UiMetric(SM_CXVSCROLL);
}

void KeepPlace(ListView& list) {
    const auto columns = static_cast<int>(SendMessageW(ListViewHeader(list), HDM_GETITEMCOUNT, 0, 0));
    if (list.kind == nullptr || columns < 1) return;
    ListView::Place& place = list.places[list.kind];
    place.widths.clear();
    for (int i = 0; place.byUser && i < columns; ++i) place.widths.push_back(ListColumnWidth(list, i));
    place.selected = std::max(ListViewSelected(list), 0);
    place.top = static_cast<int>(ListViewSend(list, LVM_GETTOPINDEX));
}

void DeleteColumns(const ListView& list) {
    while (ListViewSend(list, LVM_DELETECOLUMN, 0) != FALSE) {}
}

void InsertColumns(ListView& list) {
    const ListView::Place& place = list.places[list.kind];
    const bool kept = place.widths.size() == list.kind->columns.size();
    for (int i = 0; i < ListColumnCount(list); ++i) {
        const auto index = static_cast<std::size_t>(i);
        LVCOLUMNW add = {};
        add.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        add.pszText = const_cast<wchar_t*>(Text(list.kind->columns[index].title));  // the control does not write to it
        add.cx = kept ? place.widths[index] : RoomOfColumn(*list.kind, i).wanted;
        ListViewSend(list, LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&add));
    }
}

// --- Rows

void ScrollTo(const ListView& list, int top) {
    if (ListViewRowCount(list) == 0) return;
    const int rows = top - static_cast<int>(ListViewSend(list, LVM_GETTOPINDEX));
    ListViewSend(list, LVM_SCROLL, 0, rows * ListRowHeight(list));
}

// Makes some rows around it visible, too: four after it, and two before it, which may hold its line of source.
void RevealRow(const ListView& list, int row) {
    ListViewSelect(list, row);
    for (const int each : {std::min(row + 4, ListViewRowCount(list) - 1), std::max(row - 2, 0), row})
        ListViewSend(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(each), FALSE);
}

}  // namespace

// Columns whose widths the user has changed keep them; only the last one then follows the window.
void ListViewFitColumns(ListView& list) {
    const DpiScope scope(list.window);
    std::vector<ColumnRoom> columns;
    const bool byUser = list.kind != nullptr && list.places[list.kind].byUser;
    for (int i = 0; i < ListColumnCount(list); ++i)
        columns.push_back(byUser && i + 1 < ListColumnCount(list)
                              ? ColumnRoom{ListColumnWidth(list, i), ListColumnWidth(list, i)}
                              : RoomOfColumn(*list.kind, i));
    const std::vector<int> widths = FitColumns(columns, RoomForColumns(list));
    for (int i = 0; i < ListColumnCount(list); ++i) {
        const int width = widths[static_cast<std::size_t>(i)];
        if (width != ListColumnWidth(list, i))
            ListViewSend(list, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(i), MAKELPARAM(width, 0));
    }
}

int ListViewRowCount(const ListView& list) {
    return list.content != nullptr ? static_cast<int>(list.content->rows.size()) : 0;
}

const ListRow* ListViewRow(const ListView& list, int row) {
    return row >= 0 && row < ListViewRowCount(list) ? &list.content->rows[static_cast<std::size_t>(row)] : nullptr;
}

bool ListViewCreate(ListView& list, HWND parent, int controlId) {
    list.window = CreateWindowExW(
        0, WC_LISTVIEWW, L"",
        WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL |
            LVS_SHOWSELALWAYS | LVS_NOSORTHEADER | LVS_SHAREIMAGELISTS,
        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (list.window == nullptr) return false;
    ListViewSend(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP);
    ListViewSend(list, LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
    SubclassAdd(list.window, ListViewProc, reinterpret_cast<DWORD_PTR>(&list));
    SizeLate(list.window, SizeWaits::InSlowDrag);
    if (list.inDialog) g_inDialogs.push_back(&list);
    return true;
}

void ListViewForget(const ListView& list) { std::erase(g_inDialogs, &list); }

void ListViewShow(ListView& list, const ListKind& kind) {
    const DpiScope scope(list.window);
    KeepPlace(list);
    const RedrawPause pause(list.window);
    list.content = nullptr;
    ListViewSend(list, LVM_SETITEMCOUNT, 0);
    // The same columns stay: under Wine each that goes or comes moves the header six times.
    if (list.kind != &kind) {
        DeleteColumns(list);
        list.kind = &kind;
        InsertColumns(list);
    }
    ListViewFitColumns(list);
}

void ListViewUpdate(ListView& list, const ListContent& content) {
    // A kind that was just shown returns to its selection and scroll position.
    const bool first = list.content == nullptr;
    const bool sameCount = !first && ListViewSend(list, LVM_GETITEMCOUNT) == static_cast<LRESULT>(content.rows.size());
    list.content = &content;
    if (!sameCount) {
        InlineEditCancel();
        ListViewSend(list, LVM_SETITEMCOUNT, content.rows.size(), LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
        ListViewFitColumns(list);
    }
    const int count = ListViewRowCount(list);
    if (first && count > 0) {
        ListViewSelect(list, std::min(list.places[list.kind].selected, count - 1));
        ScrollTo(list, std::min(list.places[list.kind].top, count - 1));
    } else if (count > 0 && ListViewSelected(list) < 0) {
        ListViewSelect(list, 0);
    }
    if (content.reveal >= 0 && content.reveal < count) RevealRow(list, content.reveal);
    InvalidateRect(list.window, nullptr, FALSE);
}

void ListViewApplyTheme(ListView& list) {
    // The fonts may have changed: the columns of every kind are fitted again when it is shown.
    const DpiScope scope(list.window);
    KeepPlace(list);
    for (auto& [kind, place] : list.places) {
        place.widths.clear();
        place.byUser = false;
    }
    const ThemeChrome& chrome = ThemeCurrentChrome();
    ListViewSend(list, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    ListViewSend(list, LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    ListViewSend(list, LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(chrome.paneText));
    ListViewSend(list, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    ScrollBarsApplyTheme(list.window);
    const int line = std::max(UiSizes().textHeight, UiSizes().fixedHeight) + UiScaled(kRowBlank);
    const HIMAGELIST height = ImageList_Create(1, line, ILC_COLOR, 1, 1);
    if (height == nullptr) return;
    ListViewSend(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(height));
    if (list.heightOnly != nullptr) ImageList_Destroy(list.heightOnly);
    list.heightOnly = height;
}

void ListViewsRenew(HWND dialog) {
    for (ListView* const list : g_inDialogs) {
        if (GetParent(list->window) != dialog || list->kind == nullptr) continue;
        const ListContent* const content = list->content;
        ListViewApplyTheme(*list);
        ListViewShow(*list, *list->kind);
        if (content != nullptr) ListViewUpdate(*list, *content);
    }
}

int ListViewSelected(const ListView& list) {
    return static_cast<int>(ListViewSend(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void ListViewSelect(const ListView& list, int row) {
    LVITEMW state = {};
    state.state = LVIS_SELECTED | LVIS_FOCUSED;
    state.stateMask = state.state;
    ListViewSend(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
}

RECT ListViewCell(const ListView& list, int row, int column) {
    const DpiScope scope(list.window);
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    ListViewSend(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&bounds));
    int left = bounds.left;
    for (int i = 0; i < column; ++i) left += ListColumnWidth(list, i);
    const int mark = list.kind != nullptr ? ListViewMarkWidth(*list.kind, column) : 0;
    return {left + mark, bounds.top, left + ListColumnWidth(list, column), bounds.bottom};
}

namespace {

// Opens the field from one cell to another.
void EditCells(ListView& list, int row, int first, int last, const std::wstring& text, bool append,
               InlineCommit commit) {
    InlineEditCancel();
    ListViewSend(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    RECT cell = ListViewCell(list, row, first);
    RECT client = {};
    GetClientRect(list.window, &client);
    cell.right = std::min(ListViewCell(list, row, last).right, client.right);
    InlineEditBegin(list.window, cell, text, append, std::move(commit));
}

}  // namespace

void ListViewEditCell(ListView& list, int row, int column, const std::wstring& text, bool append, InlineCommit commit) {
    EditCells(list, row, column, column, text, append, std::move(commit));
}

void ListViewEditRow(ListView& list, int row, const std::wstring& text, bool append, InlineCommit commit) {
    EditCells(list, row, 0, static_cast<int>(list.kind->columns.size()) - 1, text, append, std::move(commit));
}
