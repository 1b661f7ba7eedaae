// Draws the rows and the header of a list. UI thread only.
#include "ui/list_internal.h"

#include "base/texts.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_looks.h"
#include "ui/paint.h"
#include "ui/severity_paint.h"

#include <algorithm>

namespace {

constexpr int kCellPadding = 6;  // at 96 dpi, left of a cell's text
constexpr int kMarkWidth = 18;
constexpr int kSignSize = 13;
constexpr UINT kCellText = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;

COLORREF ColourOf(ListColour colour) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    switch (colour) {
        case ListColour::Back: return chrome.paneBack;
        case ListColour::SelectedBack: return ThemeSelectedBack(true);
        case ListColour::QuietBack: return ThemeSelectedBack(false);
        case ListColour::StopBack: return MixColours(chrome.paneBack, chrome.modified, 18);
        case ListColour::Text: return chrome.paneText;
        case ListColour::Quiet: return ThemeQuietText();
        case ListColour::Accent: return chrome.accent;
        case ListColour::Error: return chrome.error;
        case ListColour::Arrow: break;
    }
    return chrome.modified;
}

void DrawBox(HDC dc, int left, int middle, bool ticked, COLORREF colour) {
    const int half = UiScaled(6);
    const RECT box = {left, middle - half, left + 2 * half + 1, middle + half + 1};
    FrameArea(dc, box, colour);
    if (!ticked) return;
    const POINT tick[] = {{box.left + UiScaled(3), middle},
                          {box.left + UiScaled(5), middle + UiScaled(3)},
                          {box.right - UiScaled(3), middle - UiScaled(3)}};
    DrawPolyline(dc, tick, colour, std::max(UiScaled(2), 1));
}

void DrawListMark(HDC dc, ListMark mark, const RECT& cell, COLORREF colour, COLORREF back) {
    const int middle = (cell.top + cell.bottom) / 2;
    const int left = cell.left + UiScaled(5);
    const int arm = UiScaled(4);
    switch (MarkShapeOf(mark)) {
        case MarkShape::None: break;
        case MarkShape::Arrow:
            DrawTriangle(dc, {{left, middle - arm}, {left, middle + arm}, {left + arm + UiScaled(1), middle}}, colour,
                         mark == ListMark::Current);
            break;
        case MarkShape::Dot: FillDot(dc, {left, middle - arm, left + 2 * arm + 1, middle + arm + 1}, colour); break;
        case MarkShape::ArrowOnDot: {
            const int round = arm + UiScaled(1);
            FillDot(dc, {left - UiScaled(1), middle - round, left + 2 * arm + UiScaled(1) + 1, middle + round + 1},
                    colour);
            const int tail = left + UiScaled(2);
            DrawTriangle(dc, {{tail, middle - UiScaled(3)}, {tail, middle + UiScaled(3)}, {tail + arm, middle}}, back,
                         true);
            break;
        }
        case MarkShape::Error:
        case MarkShape::Warning:
            DrawSeveritySign(dc, {cell.left + UiScaled(4), middle - UiScaled(kSignSize) / 2}, UiScaled(kSignSize),
                             mark == ListMark::Error, colour, back);
            break;
        case MarkShape::Box: DrawBox(dc, left, middle, mark == ListMark::Checked, colour); break;
    }
}

void DrawCells(const ListView& list, HDC dc, int index, const ListRow& row, int right, COLORREF back) {
    const HGDIOBJ oldFont = GetCurrentObject(dc, OBJ_FONT);
    const std::span<const ListColumn> columns = list.kind->columns;
    const int count = static_cast<int>(columns.size());
    const int last = LastFilledCell(row);
    for (int i = 0; i <= last && i < count; ++i) {
        const std::wstring& text = row.cells[static_cast<std::size_t>(i)];
        RECT cell = ListViewCell(list, index, i);
        cell.left += ListViewCellPadding();
        cell.right = (i == last ? right : static_cast<int>(cell.right)) - UiScaled(2);
        SelectObject(dc, columns[static_cast<std::size_t>(i)].fixedPitch ? UiFixedFont() : UiFont());
        SetTextColor(dc, ThemeInkOn(back, ColourOf(CellColourOf(row, list.content->stale, i, i == count - 1))));
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &cell, kCellText);
    }
    SelectObject(dc, oldFont);
}

void DrawListRow(const ListView& list, HDC dc, int index) {
    if (list.content == nullptr || index < 0 || index >= static_cast<int>(list.content->rows.size())) return;
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    if (SendMessageW(list.window, LVM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&bounds)) ==
        FALSE)
        return;
    const ListRow& row = list.content->rows[static_cast<std::size_t>(index)];
    const bool selected = ListViewSelected(list) == index;
    RECT line = {};
    GetClientRect(list.window, &line);
    line.top = bounds.top;
    line.bottom = bounds.bottom;
    const bool focused = GetFocus() == list.window;
    const COLORREF back = ColourOf(RowBackOf(row, list.content->stale, selected, focused));
    ListRowFill(dc, line, back, selected, focused);
    SetBkMode(dc, TRANSPARENT);
    const COLORREF mark = ThemeInkOn(back, ColourOf(MarkColourOf(row, list.content->stale)));
    if (list.kind->hasMarks) DrawListMark(dc, row.mark, bounds, mark, back);
    DrawCells(list, dc, index, row, line.right, back);
}

void DrawHeaderCell(const ListKind& kind, const NMCUSTOMDRAW& draw, int column) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    RECT cell = draw.rc;
    FillArea(draw.hdc, cell, chrome.tabBack);
    FillArea(draw.hdc, {cell.left, cell.bottom - 1, cell.right, cell.bottom}, chrome.line);
    FillArea(draw.hdc, {cell.right - 1, cell.top + UiScaled(4), cell.right, cell.bottom - UiScaled(4)}, chrome.line);
    cell.left += ListViewCellPadding() + ListViewMarkWidth(kind, column);
    const HGDIOBJ oldFont = SelectObject(draw.hdc, UiFont());
    SetBkMode(draw.hdc, TRANSPARENT);
    SetTextColor(draw.hdc, chrome.tabText);
    DrawTextW(draw.hdc, Text(kind.columns[static_cast<std::size_t>(column)].title), -1, &cell, kCellText);
    SelectObject(draw.hdc, oldFont);
}

}  // namespace

int ListViewCellPadding() { return UiScaled(kCellPadding); }

int ListViewMarkWidth(const ListKind& kind, int column) {
    return column == 0 && kind.hasMarks ? UiScaled(kMarkWidth) : 0;
}

void ListRowFill(HDC dc, const RECT& row, COLORREF back, bool selected, bool focused) {
    const COLORREF accent = ThemeCurrentChrome().accent;
    FillArea(dc, row, back);
    if (selected && focused) FillArea(dc, {row.left, row.top, row.left + UiScaled(2), row.bottom}, accent);
    if (selected && !focused && SystemHighContrast()) FrameArea(dc, row, accent);
}

void ListRowRepaint(const NMLISTVIEW& changed) {
    RECT row = {.left = LVIR_BOUNDS};
    RECT client = {};
    GetClientRect(changed.hdr.hwndFrom, &client);
    if (SendMessageW(changed.hdr.hwndFrom, LVM_GETITEMRECT, static_cast<WPARAM>(changed.iItem),
                     reinterpret_cast<LPARAM>(&row)) == FALSE)
        row = client;  // all rows have changed
    row.left = client.left;
    row.right = client.right;
    InvalidateRect(changed.hdr.hwndFrom, &row, FALSE);
}

LRESULT ListViewDrawItem(const ListView& list, const NMLVCUSTOMDRAW& draw) {
    const DpiScope scope(list.window);
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || list.kind == nullptr) return CDRF_DODEFAULT;
    DrawListRow(list, draw.nmcd.hdc, static_cast<int>(draw.nmcd.dwItemSpec));
    return CDRF_SKIPDEFAULT;
}

LRESULT ListViewDrawHeader(const ListView& list, const NMCUSTOMDRAW& draw) {
    const DpiScope scope(list.window);
    if (draw.dwDrawStage == CDDS_PREPAINT) {
        RECT client = {};
        GetClientRect(draw.hdr.hwndFrom, &client);
        FillArea(draw.hdc, client, ThemeCurrentChrome().tabBack);
        return CDRF_NOTIFYITEMDRAW;
    }
    if (draw.dwDrawStage != CDDS_ITEMPREPAINT || list.kind == nullptr || draw.dwItemSpec >= list.kind->columns.size())
        return CDRF_DODEFAULT;
    DrawHeaderCell(*list.kind, draw, static_cast<int>(draw.dwItemSpec));
    return CDRF_SKIPDEFAULT;
}
