// The list of the debug pane: a virtual list view that draws the rows of whatever view is shown by the theme. Knows rows
// and cells, not what they mean. UI thread only.
#include "debugui/pane_internal.h"

#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <uxtheme.h>
#include <windowsx.h>

#include <algorithm>
#include <array>

namespace {

constexpr UINT_PTR kSubclassId = 1;
constexpr int kCellPadding = 6;  // at 96 dpi, left of a cell's text
constexpr int kMarkWidth = 18;

struct ViewPlace {
    std::vector<int> widths;  // as the user left them, pixels; empty: as they fit
    bool byUser = false;      // the columns that are shown were drawn to other widths
    int selected = 0;
    int top = 0;
};

struct List {
    HWND window = nullptr;
    HIMAGELIST heightOnly = nullptr;  // a list view takes its row height from its pictures
    DebugTab shown = DebugTab::Breakpoints;
    PaneContent const* content = nullptr;
    std::array<ViewPlace, kDebugTabCount> places;
};
List g_list;

LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendMessageW(g_list.window, message, wParam, lParam);
}
ViewPlace& PlaceOf(DebugTab tab) { return g_list.places[static_cast<std::size_t>(tab)]; }
int RowCount() { return g_list.content != nullptr ? static_cast<int>(g_list.content->rows.size()) : 0; }
const PaneRow* RowAt(int row) {
    return row >= 0 && row < RowCount() ? &g_list.content->rows[static_cast<std::size_t>(row)] : nullptr;
}
int ColumnCount() { return static_cast<int>(PaneCurrentView().columns.size()); }

int ColumnWidth(int column) { return static_cast<int>(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column))); }

ColumnRoom RoomOf(int column) {
    const PaneColumn& wanted = PaneCurrentView().columns[static_cast<std::size_t>(column)];
    const PaneFonts& fonts = PaneFontsNow();
    const int each = wanted.fixedPitch ? fonts.fixedWidth : fonts.textWidth;
    const int rest = PaneScaled(2 * kCellPadding + (column == 0 && PaneCurrentView().hasMarks ? kMarkWidth : 0));
    return {wanted.characters * each + rest, wanted.least * each + rest};
}

// What the user drew stays; only the last column follows the pane then.
void FitToPane() {
    std::vector<ColumnRoom> columns;
    for (int i = 0; i < ColumnCount(); ++i) columns.push_back(RoomOf(i));
    if (PlaceOf(g_list.shown).byUser)
        for (int i = 0; i + 1 < ColumnCount(); ++i)
            columns[static_cast<std::size_t>(i)] = {ColumnWidth(i), ColumnWidth(i)};
    RECT client = {};
    GetClientRect(g_list.window, &client);
    const std::vector<int> widths = FitColumns(columns, client.right);
    for (int i = 0; i < ColumnCount(); ++i) {
        const int width = widths[static_cast<std::size_t>(i)];
        if (width != ColumnWidth(i)) Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(i), MAKELPARAM(width, 0));
    }
}

void KeepPlace() {
    ViewPlace& place = PlaceOf(g_list.shown);
    const HWND header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));
    const auto columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
    if (columns < 1) return;
    place.widths.clear();
    for (int i = 0; place.byUser && i < columns; ++i) place.widths.push_back(ColumnWidth(i));
    place.selected = std::max(PaneListSelected(), 0);
    place.top = static_cast<int>(Send(LVM_GETTOPINDEX));
}

void DeleteColumns() {
    while (Send(LVM_DELETECOLUMN, 0) != FALSE) {}
}

void ScrollTo(int top) {
    RECT first = {};
    first.left = LVIR_BOUNDS;
    if (RowCount() == 0 || Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&first)) == FALSE) return;
    const int height = std::max<int>(first.bottom - first.top, 1);
    Send(LVM_SCROLL, 0, (top - static_cast<int>(Send(LVM_GETTOPINDEX))) * height);
}

// --- Drawing

// A box for a breakpoint, an arrow for the place of the program.
void DrawMark(HDC dc, PaneMark mark, const RECT& cell, COLORREF colour) {
    const int middle = (cell.top + cell.bottom) / 2;
    const int left = cell.left + PaneScaled(5);
    if (mark == PaneMark::Current || mark == PaneMark::Chosen) {
        const int arm = PaneScaled(4);
        const std::array<POINT, 3> arrow = {
            {{left, middle - arm}, {left, middle + arm}, {left + arm + PaneScaled(1), middle}}};
        const bool filled = mark == PaneMark::Current;
        SetDCBrushColor(dc, colour);
        SetDCPenColor(dc, colour);
        const HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(filled ? DC_BRUSH : NULL_BRUSH));
        const HGDIOBJ oldPen = SelectObject(dc, GetStockObject(DC_PEN));
        Polygon(dc, arrow.data(), static_cast<int>(arrow.size()));
        SelectObject(dc, oldPen);
        SelectObject(dc, oldBrush);
        return;
    }
    if (mark == PaneMark::None) return;
    const int half = PaneScaled(6);
    const RECT box = {left, middle - half, left + 2 * half + 1, middle + half + 1};
    SetDCBrushColor(dc, colour);
    FrameRect(dc, &box, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    if (mark != PaneMark::Checked) return;
    const HPEN pen = CreatePen(PS_SOLID, std::max(PaneScaled(2), 1), colour);
    const HGDIOBJ old = SelectObject(dc, pen);
    const std::array<POINT, 3> tick = {{{box.left + PaneScaled(3), middle},
                                        {box.left + PaneScaled(5), middle + PaneScaled(3)},
                                        {box.right - PaneScaled(3), middle - PaneScaled(3)}}};
    Polyline(dc, tick.data(), static_cast<int>(tick.size()));
    SelectObject(dc, old);
    DeleteObject(pen);
}

COLORREF RowBack(const PaneRow& row, bool selected, bool focused) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    if (selected && focused) return PaneMix(chrome.paneBack, chrome.accent, 28);
    if (selected) return chrome.hover;
    if (row.mark == PaneMark::Current && !g_list.content->stale) return PaneMix(chrome.paneBack, chrome.modified, 18);
    return chrome.paneBack;
}

COLORREF CellColour(const PaneRow& row, int column) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    if (g_list.content->stale || row.tone == PaneTone::Quiet) return PaneQuietColour();
    if (row.tone == PaneTone::Source) return chrome.accent;
    if (row.tone == PaneTone::Problem && column == ColumnCount() - 1) return chrome.error;
    return (row.changed >> column & 1) != 0 ? chrome.error : chrome.paneText;
}

// Its text runs on over the empty cells behind it.
int LastFilled(const PaneRow& row) {
    int last = static_cast<int>(row.cells.size()) - 1;
    while (last > 0 && row.cells[static_cast<std::size_t>(last)].empty()) --last;
    return last;
}

void DrawRow(HDC dc, int index) {
    const PaneRow* row = RowAt(index);
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    if (row == nullptr || Send(LVM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&bounds)) == FALSE)
        return;
    const bool focused = GetFocus() == g_list.window;
    const bool selected = PaneListSelected() == index;
    RECT line = bounds;
    GetClientRect(g_list.window, &line);
    line.top = bounds.top;
    line.bottom = bounds.bottom;
    PaneFillRect(dc, line, RowBack(*row, selected, focused));
    if (selected && focused)
        PaneFillRect(dc, {line.left, line.top, line.left + PaneScaled(2), line.bottom}, ThemeCurrentChrome().accent);
    SetBkMode(dc, TRANSPARENT);
    if (PaneCurrentView().hasMarks) {
        const bool quiet = g_list.content->stale || row->tone == PaneTone::Quiet;
        const bool arrow = row->mark == PaneMark::Current || row->mark == PaneMark::Chosen;
        const ThemeChrome& chrome = ThemeCurrentChrome();
        DrawMark(dc, row->mark, bounds, quiet ? PaneQuietColour() : arrow ? chrome.modified : chrome.paneText);
    }
    const HGDIOBJ oldFont = GetCurrentObject(dc, OBJ_FONT);
    const int last = LastFilled(*row);
    for (int i = 0; i <= last && i < ColumnCount(); ++i) {
        const std::wstring& text = row->cells[static_cast<std::size_t>(i)];
        RECT cell = PaneListCell(index, i);
        cell.left += PaneScaled(kCellPadding);
        cell.right = (i == last ? line.right : cell.right) - PaneScaled(2);
        SelectObject(dc, PaneCurrentView().columns[static_cast<std::size_t>(i)].fixedPitch ? PaneFontsNow().fixed
                                                                                           : PaneFontsNow().text);
        SetTextColor(dc, CellColour(*row, i));
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &cell,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    SelectObject(dc, oldFont);
}

LRESULT OnListDraw(const NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    DrawRow(draw.nmcd.hdc, static_cast<int>(draw.nmcd.dwItemSpec));
    return CDRF_SKIPDEFAULT;
}

LRESULT OnHeaderDraw(const NMCUSTOMDRAW& draw) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    if (draw.dwDrawStage == CDDS_PREPAINT) {
        RECT client = {};
        GetClientRect(draw.hdr.hwndFrom, &client);
        PaneFillRect(draw.hdc, client, chrome.tabBack);
        return CDRF_NOTIFYITEMDRAW;
    }
    const auto column = static_cast<std::size_t>(draw.dwItemSpec);
    if (draw.dwDrawStage != CDDS_ITEMPREPAINT || column >= PaneCurrentView().columns.size()) return CDRF_DODEFAULT;
    RECT cell = draw.rc;
    PaneFillRect(draw.hdc, cell, chrome.tabBack);
    PaneFillRect(draw.hdc, {cell.left, cell.bottom - 1, cell.right, cell.bottom}, chrome.line);
    PaneFillRect(draw.hdc, {cell.right - 1, cell.top + PaneScaled(4), cell.right, cell.bottom - PaneScaled(4)},
                 chrome.line);
    cell.left += PaneScaled(kCellPadding + (column == 0 && PaneCurrentView().hasMarks ? kMarkWidth : 0));
    const HGDIOBJ oldFont = SelectObject(draw.hdc, PaneFontsNow().text);
    SetBkMode(draw.hdc, TRANSPARENT);
    SetTextColor(draw.hdc, chrome.tabText);
    DrawTextW(draw.hdc, PaneCurrentView().columns[column].title, -1, &cell,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    SelectObject(draw.hdc, oldFont);
    return CDRF_SKIPDEFAULT;
}

// --- Asking and acting

void FillItem(LVITEMW& item) {
    const PaneRow* row = RowAt(item.iItem);
    if (row == nullptr) return;
    const auto column = static_cast<std::size_t>(item.iSubItem);
    if ((item.mask & LVIF_TEXT) != 0 && item.cchTextMax > 0)
        lstrcpynW(item.pszText, column < row->cells.size() ? row->cells[column].c_str() : L"", item.cchTextMax);
    if ((item.mask & LVIF_STATE) != 0 && column == 0) {
        const UINT box = row->mark == PaneMark::Checked ? 2U : row->mark == PaneMark::Unchecked ? 1U : 0U;
        item.state |= INDEXTOSTATEIMAGEMASK(box);
    }
}

std::wstring RowText(int row) {
    std::wstring text;
    for (const std::wstring& cell : RowAt(row)->cells) text += text.empty() ? cell : L"\t" + cell;
    return text;
}

// The row whole: some of it may be cut.
void FillTip(const NMLVGETINFOTIPW& tip) {
    if (RowAt(tip.iItem) == nullptr || tip.cchTextMax < 1) return;
    std::wstring text;
    for (const std::wstring& cell : RowAt(tip.iItem)->cells)
        if (!cell.empty()) text += text.empty() ? cell : L"   " + cell;
    lstrcpynW(tip.pszText, text.c_str(), tip.cchTextMax);
}

bool IsOnMark(const NMITEMACTIVATE& click) {
    const RECT cell = PaneListCell(click.iItem, 0);  // begins right of the mark
    return PaneCurrentView().hasMarks && click.ptAction.x < cell.left;
}

void OnClick(const NMITEMACTIVATE& click) {
    const PaneView& view = PaneCurrentView();
    if (RowAt(click.iItem) == nullptr) return;
    if (view.check != nullptr && IsOnMark(click))
        view.check(click.iItem);
    else if (view.edit != nullptr && click.iSubItem > 0)
        view.edit(click.iItem, click.iSubItem);
}

void OnDoubleClick(const NMITEMACTIVATE& click) {
    const PaneView& view = PaneCurrentView();
    if (RowAt(click.iItem) == nullptr || (view.check != nullptr && IsOnMark(click))) return;
    if (view.activate != nullptr) view.activate(click.iItem, click.iSubItem);
}

void CopyRow() {
    const int row = PaneListSelected();
    if (RowAt(row) != nullptr) PaneCopyText(RowText(row));
}

bool OnKey(WPARAM key) {
    if (PaneHandleFocusKey(g_list.window, key)) return true;
    const PaneView& view = PaneCurrentView();
    const int row = PaneListSelected();
    if (RowAt(row) == nullptr) return false;
    if (key == 'C' && GetKeyState(VK_CONTROL) < 0) {
        CopyRow();
        return true;
    }
    if (key == VK_RETURN && view.activate != nullptr) {
        view.activate(row, -1);
        return true;
    }
    if (key == VK_F2 && view.edit != nullptr) {
        view.edit(row, -1);
        return true;
    }
    if (key == VK_SPACE && view.check != nullptr) {
        view.check(row);
        return true;
    }
    return view.key != nullptr && view.key(row, static_cast<int>(key));
}

void OnContextMenu(POINT at) {
    const PaneView& view = PaneCurrentView();
    const int row = PaneListSelected();
    if (view.menu == nullptr || RowAt(row) == nullptr) return;
    if (at.x == -1 && at.y == -1) {  // from the keyboard: below the selected row
        const RECT cell = PaneListCell(row, 0);
        at = {cell.left, cell.bottom};
        ClientToScreen(g_list.window, &at);
    }
    view.menu(row, at);
}

void OnCharacter(wchar_t character) {
    const PaneView& view = PaneCurrentView();
    const int row = PaneListSelected();
    if (character > L' ' && view.typed != nullptr && RowAt(row) != nullptr) view.typed(row, character);
}

// The user begins to draw a column to another width. The control asks its header in either alphabet.
bool IsWidening(UINT code) {
    return code == HDN_BEGINTRACKW || code == HDN_BEGINTRACKA || code == HDN_DIVIDERDBLCLICKW ||
           code == HDN_DIVIDERDBLCLICKA;
}

LRESULT CALLBACK ListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    switch (message) {
        case WM_NOTIFY: {
            const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
            if (header.hwndFrom != reinterpret_cast<HWND>(Send(LVM_GETHEADER))) break;
            if (header.code == NM_CUSTOMDRAW) return OnHeaderDraw(*reinterpret_cast<const NMCUSTOMDRAW*>(lParam));
            if (IsWidening(header.code)) PlaceOf(g_list.shown).byUser = true;
            break;
        }
        case WM_CTLCOLOREDIT:
            if (PaneEditColours(reinterpret_cast<HDC>(wParam)))
                return reinterpret_cast<LRESULT>(GetStockObject(DC_BRUSH));
            break;
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
            if (OnKey(wParam)) return 0;
            break;
        case WM_CHAR: OnCharacter(static_cast<wchar_t>(wParam)); return 0;  // no search by typing
        case WM_COPY: CopyRow(); return 0;
        case WM_CONTEXTMENU: OnContextMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(list, nullptr, FALSE); break;
        case WM_SIZE: {
            const LRESULT result = DefSubclassProc(list, message, wParam, lParam);
            FitToPane();
            return result;
        }
        case WM_NCDESTROY:
            RemoveWindowSubclass(list, ListProc, id);
            if (g_list.heightOnly != nullptr) ImageList_Destroy(g_list.heightOnly);
            g_list = {};
            break;
        default: break;
    }
    return DefSubclassProc(list, message, wParam, lParam);
}

}  // namespace

HWND PaneListCreate(HWND parent) {
    g_list.window = CreateWindowExW(
        0, WC_LISTVIEWW, L"",
        WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL |
            LVS_SHOWSELALWAYS | LVS_NOSORTHEADER | LVS_SHAREIMAGELISTS,
        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_LIST)), g_ui.hInstance, nullptr);
    if (g_list.window == nullptr) return nullptr;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP);
    Send(LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
    SetWindowSubclass(g_list.window, ListProc, kSubclassId, 0);
    return g_list.window;
}

void PaneListShowView(DebugTab tab) {
    KeepPlace();
    Send(WM_SETREDRAW, FALSE);
    g_list.content = nullptr;
    Send(LVM_SETITEMCOUNT, 0);
    DeleteColumns();
    g_list.shown = tab;
    const ViewPlace& place = PlaceOf(tab);
    int index = 0;
    for (const PaneColumn& column : PaneCurrentView().columns) {
        const bool kept = place.widths.size() == PaneCurrentView().columns.size();
        LVCOLUMNW add = {};
        add.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        add.pszText = const_cast<wchar_t*>(column.title);  // read only, in spite of its type
        add.cx = kept ? place.widths[static_cast<std::size_t>(index)] : RoomOf(index).wanted;
        Send(LVM_INSERTCOLUMNW, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&add));
    }
    FitToPane();
    Send(WM_SETREDRAW, TRUE);
}

void PaneListUpdate(const PaneContent& content) {
    const bool first = g_list.content == nullptr;  // a view just shown goes back to its place
    const bool sameCount = !first && Send(LVM_GETITEMCOUNT) == static_cast<LRESULT>(content.rows.size());
    g_list.content = &content;
    if (!sameCount) {
        PaneEditCancel();
        Send(LVM_SETITEMCOUNT, content.rows.size(), LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
        FitToPane();
    }
    const int count = RowCount();
    if (first && count > 0) {
        PaneListSelect(std::min(PlaceOf(g_list.shown).selected, count - 1));
        ScrollTo(std::min(PlaceOf(g_list.shown).top, count - 1));
    } else if (count > 0 && PaneListSelected() < 0) {
        PaneListSelect(0);
    }
    if (content.reveal >= 0 && content.reveal < count) {
        PaneListSelect(content.reveal);
        // A few rows of what follows are worth more than the row itself at the lower edge, and of what goes before, such as
        // its line of source, more than the row at the upper one.
        Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(std::min(content.reveal + 4, count - 1)), FALSE);
        Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(std::max(content.reveal - 2, 0)), FALSE);
        Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(content.reveal), FALSE);
    }
    InvalidateRect(g_list.window, nullptr, FALSE);
}

void PaneListApplyTheme() {
    // The fonts may be others now: every view's columns get the widths that fit them.
    KeepPlace();
    for (ViewPlace& place : g_list.places) {
        place.widths.clear();
        place.byUser = false;
    }
    DeleteColumns();
    const ThemeChrome& chrome = ThemeCurrentChrome();
    Send(LVM_SETBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    Send(LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    Send(LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(chrome.paneText));
    SetWindowTheme(g_list.window, ThemeIsDark() ? L"DarkMode_Explorer" : L"Explorer", nullptr);
    const HIMAGELIST height = ImageList_Create(1, std::max(PaneFontsNow().lineHeight, 1), ILC_COLOR, 1, 1);
    if (height == nullptr) return;
    Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(height));
    if (g_list.heightOnly != nullptr) ImageList_Destroy(g_list.heightOnly);
    g_list.heightOnly = height;
}

bool PaneListHandleNotify(const NMHDR& header, LRESULT* result) {
    if (g_list.window == nullptr || header.hwndFrom != g_list.window) return false;
    switch (header.code) {
        case LVN_GETDISPINFOW:
            // The control wants its answer in the very record it sends.
            FillItem(reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(&header))->item);
            return true;
        case NM_CUSTOMDRAW: *result = OnListDraw(reinterpret_cast<const NMLVCUSTOMDRAW&>(header)); return true;
        case NM_CLICK: OnClick(reinterpret_cast<const NMITEMACTIVATE&>(header)); return true;
        case NM_DBLCLK: OnDoubleClick(reinterpret_cast<const NMITEMACTIVATE&>(header)); return true;
        case LVN_GETINFOTIPW: FillTip(reinterpret_cast<NMLVGETINFOTIPW&>(const_cast<NMHDR&>(header))); return true;
        case LVN_BEGINSCROLL: PaneEditCancel(); return true;
        default: return false;
    }
}

int PaneListSelected() { return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)); }

void PaneListSelect(int row) {
    LVITEMW state = {};
    state.state = LVIS_SELECTED | LVIS_FOCUSED;
    state.stateMask = state.state;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
}

RECT PaneListCell(int row, int column) {
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    Send(LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&bounds));
    int left = bounds.left;
    for (int i = 0; i < column; ++i) left += ColumnWidth(i);
    const int mark = column == 0 && PaneCurrentView().hasMarks ? PaneScaled(kMarkWidth) : 0;
    return {left + mark, bounds.top, left + ColumnWidth(column), bounds.bottom};
}
