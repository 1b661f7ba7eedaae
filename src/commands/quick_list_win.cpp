// Draws the rows of the file finder and the command palette. UI thread only.
#include "commands/quick_list.h"

#include "base/log.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/redraw.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <algorithm>
#include <cwchar>
#include <string>

namespace {

constexpr int kGutter = 24;  // at 96 dpi, like the next ones: left of the text, for marks
constexpr int kRowBlank = 9;
constexpr int kGap = 8;                 // between name, folder and keys
constexpr UINT_PTR kBarTimer = 0x4B53;  // of the list; the control has timers of its own with small numbers
constexpr UINT kBarLateMs = 60;
constexpr wchar_t kEllipsis = L'\u2026';

struct QuickListState {
    HWND window = nullptr;
    QuickListRow (*rowOf)(int row) = nullptr;
    HIMAGELIST heightOnly = nullptr;
    int count = 0;
    bool barWaits = false;  // the scroll bar keeps its looks until the typing pauses
};
QuickListState g_list;

LRESULT ListSend(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendMessageW(g_list.window, message, wParam, lParam);
}

// --- A text with some characters marked

struct MarkedText {
    std::wstring text;
    std::vector<bool> marked;
};

struct TextLooks {
    COLORREF plain;
    COLORREF marked;
};

int WidthOf(HDC dc, std::wstring_view text, bool marked) {
    const HFONT font = marked ? UiBoldFont() : UiFont();
    if (GetCurrentObject(dc, OBJ_FONT) != font) SelectObject(dc, font);
    SIZE size = {};
    GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
    return static_cast<int>(size.cx);
}

// Calls `run` for each stretch of characters that look the same.
template <typename Run>
void ForEachRun(const MarkedText& text, Run run) {
    for (std::size_t start = 0; start < text.text.size();) {
        std::size_t end = start + 1;
        while (end < text.text.size() && text.marked[end] == text.marked[start]) ++end;
        run(std::wstring_view(text.text).substr(start, end - start), text.marked[start]);
        start = end;
    }
}

int WidthOf(HDC dc, const MarkedText& text) {
    int width = 0;
    ForEachRun(text, [&](std::wstring_view run, bool marked) { width += WidthOf(dc, run, marked); });
    return width;
}

// Draws the text from the left edge of the area, and returns its width.
int DrawMarked(HDC dc, const RECT& area, const MarkedText& text, const TextLooks& looks) {
    int x = area.left;
    const int y = area.top + (area.bottom - area.top - UiSizes().textHeight) / 2;
    ForEachRun(text, [&](std::wstring_view run, bool marked) {
        const int width = WidthOf(dc, run, marked);  // also selects the font
        SetTextColor(dc, marked ? looks.marked : looks.plain);
        ExtTextOutW(dc, x, y, ETO_CLIPPED, &area, run.data(), static_cast<UINT>(run.size()), nullptr);
        x += width;
    });
    return x - area.left;
}

// Leaves out characters until the text fits: at its end, or at its start, where a folder says less.
void Shorten(HDC dc, MarkedText& text, int room, bool atStart) {
    if (WidthOf(dc, text) <= room) return;
    const auto cut = [&](std::size_t kept) {
        MarkedText shorter = text;
        const std::size_t gone = text.text.size() - kept;
        shorter.text.erase(atStart ? 0 : kept, gone);
        const auto first = shorter.marked.begin() + static_cast<std::ptrdiff_t>(atStart ? 0 : kept);
        shorter.marked.erase(first, first + static_cast<std::ptrdiff_t>(gone));
        shorter.text.insert(atStart ? 0 : kept, 1, kEllipsis);
        shorter.marked.insert(atStart ? shorter.marked.begin() : shorter.marked.end(), false);
        return shorter;
    };
    std::size_t fits = 0, tooMany = text.text.size();
    while (fits + 1 < tooMany) {
        const std::size_t middle = (fits + tooMany) / 2;
        (WidthOf(dc, cut(middle)) <= room ? fits : tooMany) = middle;
    }
    text = cut(fits);
}

MarkedText PartOf(const QuickListRow& row, std::size_t from, std::size_t to) {
    MarkedText part{std::wstring(row.text.text.substr(from, to - from)), {}};
    part.marked.resize(part.text.size());
    for (const std::size_t at : row.positions)
        if (at >= from && at < to) part.marked[at - from] = true;
    return part;
}

// The folder of a path, the menu of a command: without what separates it from the name.
MarkedText RestOf(const QuickListRow& row) {
    std::size_t end = row.text.nameStart;
    while (end > 0 && std::wcschr(L"\\/> ", row.text.text[end - 1]) != nullptr) --end;
    return PartOf(row, 0, end);
}

// --- A row

void DrawMark(HDC dc, const RECT& row, QuickMark mark, COLORREF colour) {
    const int middle = (row.top + row.bottom) / 2, left = row.left + UiScaled(8);
    if (mark == QuickMark::Dot) {
        const int radius = UiScaled(2);
        const int centre = left + UiScaled(4);
        FillDot(dc, {centre - radius, middle - radius, centre + radius + 1, middle + radius + 1}, colour);
    } else if (mark == QuickMark::Tick) {
        const POINT tick[] = {
            {left, middle}, {left + UiScaled(3), middle + UiScaled(3)}, {left + UiScaled(9), middle - UiScaled(4)}};
        DrawPolyline(dc, tick, colour, std::max(UiScaled(2), 1));
    }
}

void DrawTexts(HDC dc, RECT area, const QuickListRow& row, const TextLooks& name, COLORREF quiet) {
    if (!row.extra.keys.empty()) {
        RECT keys = area;
        const int width = WidthOf(dc, row.extra.keys, false);
        keys.left = std::max<LONG>(keys.right - width, keys.left);
        const MarkedText text{row.extra.keys, std::vector<bool>(row.extra.keys.size())};
        DrawMarked(dc, keys, text, {quiet, quiet});
        area.right = keys.left - UiScaled(kGap);
    }
    MarkedText first = PartOf(row, row.text.nameStart, row.text.text.size());
    Shorten(dc, first, area.right - area.left, false);
    area.left += DrawMarked(dc, area, first, name) + UiScaled(kGap);
    MarkedText rest = RestOf(row);
    const int room = area.right - area.left;
    if (rest.text.empty() || room < 4 * UiSizes().textWidth) return;
    Shorten(dc, rest, room, true);
    DrawMarked(dc, area, rest, {quiet, name.marked});
}

void DrawQuickRow(HDC dc, int index) {
    RECT area = {};
    area.left = LVIR_BOUNDS;
    if (index < 0 || index >= g_list.count ||
        ListSend(LVM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&area)) == FALSE)
        return;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    RECT client = {};
    GetClientRect(g_list.window, &client);
    area.left = client.left;
    area.right = client.right;
    const bool selected = index == QuickListSelected();
    const COLORREF back = selected ? ThemeSelectedBack(true) : chrome.paneBack;
    const auto ink = [back](COLORREF usual) { return ThemeInkOn(back, usual); };
    FillArea(dc, area, back);
    if (selected) FillArea(dc, {area.left, area.top, area.left + UiScaled(3), area.bottom}, chrome.accent);
    const QuickListRow row = g_list.rowOf(index);
    const COLORREF quiet = ink(ThemeQuietText());
    const COLORREF plain = row.extra.enabled ? ink(chrome.paneText) : quiet;
    const HGDIOBJ font = GetCurrentObject(dc, OBJ_FONT);
    SetBkMode(dc, TRANSPARENT);
    DrawMark(dc, area, row.extra.mark, row.extra.mark == QuickMark::Dot ? ink(chrome.accent) : plain);
    area.left += UiScaled(kGutter);
    area.right -= UiScaled(kGap);
    DrawTexts(dc, area, row, {plain, row.extra.enabled ? ink(chrome.accent) : quiet}, quiet);
    SelectObject(dc, font);
}

// For programs that read the screen aloud.
void FillQuickItem(LVITEMW& item) {
    if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax < 1) return;
    std::wstring text;
    if (item.iItem >= 0 && item.iItem < g_list.count) {
        const QuickListRow row = g_list.rowOf(item.iItem);
        text = row.text.text.substr(row.text.nameStart);
        if (const std::wstring rest = RestOf(row).text; !rest.empty()) text += L"  " + rest;
        if (!row.extra.keys.empty()) text += L"  " + row.extra.keys;
    }
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
    text.copy(item.pszText, length);
    item.pszText[length] = L'\0';
}

// The control erases nothing when only its rows are told to be drawn anew.
void FillBelowRows(HDC dc) {
    RECT below = {}, last = {};
    GetClientRect(g_list.window, &below);
    last.left = LVIR_BOUNDS;
    if (g_list.count > 0 &&
        ListSend(LVM_GETITEMRECT, static_cast<WPARAM>(g_list.count) - 1, reinterpret_cast<LPARAM>(&last)) != FALSE)
        below.top = last.bottom;
    if (below.top < below.bottom) FillArea(dc, below, ThemeCurrentChrome().paneBack);
}

LRESULT DrawList(const NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) {
        FillBelowRows(draw.nmcd.hdc);
        return CDRF_NOTIFYITEMDRAW;
    }
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    DrawQuickRow(draw.nmcd.hdc, static_cast<int>(draw.nmcd.dwItemSpec));
    return CDRF_SKIPDEFAULT;
}

// As wide as the list without its scroll bar.
void FitColumn() {
    RECT client = {};
    GetClientRect(g_list.window, &client);
    if (ListSend(LVM_GETCOLUMNWIDTH) != client.right) ListSend(LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(client.right, 0));
}

// The system wants the frame drawn anew after each FramePause, and its scroll bar takes 2 to 4 ms under Wine. What is
// drawn of it stays on the screen.
LRESULT CALLBACK QuickListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_NCPAINT && g_list.barWaits) return 0;
    if (message == WM_NCCALCSIZE && wParam != FALSE) {  // another size has another bar
        const RECT& now = reinterpret_cast<const NCCALCSIZE_PARAMS*>(lParam)->rgrc[0];
        const RECT& before = reinterpret_cast<const NCCALCSIZE_PARAMS*>(lParam)->rgrc[1];
        const bool same =
            now.right - now.left == before.right - before.left && now.bottom - now.top == before.bottom - before.top;
        g_list.barWaits = g_list.barWaits && same;
    }
    const LRESULT result = SubclassNext(list, message, wParam, lParam);
    if (message == WM_SIZE) FitColumn();
    return result;
}

}  // namespace

HWND QuickListCreate(HWND parent, int id, QuickListRow (*rowOf)(int row)) {
    g_list.rowOf = rowOf;
    g_list.window = CreateWindowExW(0, WC_LISTVIEWW, L"",
                                    WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL |
                                        LVS_SHOWSELALWAYS | LVS_NOCOLUMNHEADER | LVS_SHAREIMAGELISTS,
                                    0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                    reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(parent, GWLP_HINSTANCE)), nullptr);
    if (g_list.window == nullptr) {
        AppLogMsg(L"FAIL: QuickListCreate error=%lu", GetLastError());
        return nullptr;
    }
    SubclassAdd(g_list.window, QuickListProc);
    ListSend(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    LVCOLUMNW column = {};
    column.mask = LVCF_WIDTH;
    column.cx = 1;
    ListSend(LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    return g_list.window;
}

namespace {

void SelectRow(int row) {
    LVITEMW state = {};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    if (row < 0) {
        ListSend(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
        return;
    }
    state.state = state.stateMask;
    ListSend(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
    ListSend(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

void SetRowCount(int count) {
    if (count != g_list.count)  // the control counts its scroll bar again for each call, which takes a millisecond
        ListSend(LVM_SETITEMCOUNT, static_cast<WPARAM>(count), LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
    g_list.count = count;
    FitColumn();
}

bool HasBar() { return (GetWindowLongPtrW(g_list.window, GWL_STYLE) & WS_VSCROLL) != 0; }

void CALLBACK RedrawBar(HWND list, UINT, UINT_PTR timer, DWORD) {
    KillTimer(list, timer);
    g_list.barWaits = false;
    RECT client = {};
    GetClientRect(list, &client);
    const RECT bar = {client.right, 0, client.right + UiMetric(SM_CXVSCROLL), client.bottom};
    RedrawWindow(list, &bar, nullptr, RDW_INVALIDATE | RDW_FRAME);
}

}  // namespace

int QuickListSelected() { return static_cast<int>(ListSend(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)); }

void QuickListShow(int count, int selected) {
    const bool before = HasBar();
    {
        const FramePause pause(g_list.window);
        SetRowCount(count);
        SelectRow(-1);
        if (selected >= 0) SelectRow(selected);
    }
    // The rows are what the user waits for after a key; the thumb follows when the typing pauses.
    g_list.barWaits = before && HasBar();
    if (g_list.barWaits)
        SetTimer(g_list.window, kBarTimer, kBarLateMs, RedrawBar);
    else
        KillTimer(g_list.window, kBarTimer);
    RedrawWindow(g_list.window, nullptr, nullptr, RDW_INVALIDATE | (before == HasBar() ? 0U : UINT{RDW_FRAME}));
}

bool QuickListMove(WPARAM key) {
    const int page = std::max(static_cast<int>(ListSend(LVM_GETCOUNTPERPAGE)) - 1, 1);
    const int last = g_list.count - 1, at = QuickListSelected();
    int row = 0;
    switch (key) {
        case VK_UP: row = at <= 0 ? last : at - 1; break;
        case VK_DOWN: row = at >= last ? 0 : at + 1; break;
        case VK_PRIOR: row = std::max(at - page, 0); break;
        case VK_NEXT: row = std::min(at + page, last); break;
        case VK_HOME: break;
        case VK_END: row = last; break;
        default: return false;
    }
    if (last >= 0) SelectRow(row);
    return true;
}

void QuickListApplyTheme() {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    ListSend(LVM_SETBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    ListSend(LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    ListSend(LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(chrome.paneText));
    ListSend(WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    ScrollBarsApplyTheme(g_list.window);
    const HIMAGELIST height = ImageList_Create(1, UiSizes().textHeight + UiScaled(kRowBlank), ILC_COLOR, 1, 1);
    if (height == nullptr) return;
    ListSend(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(height));
    if (g_list.heightOnly != nullptr) ImageList_Destroy(g_list.heightOnly);
    g_list.heightOnly = height;
}

// The control makes its rows a little higher than their picture.
int QuickListRowHeight() {
    const auto heightOf = [](WPARAM rows) {
        return static_cast<int>(HIWORD(ListSend(LVM_APPROXIMATEVIEWRECT, rows, MAKELPARAM(-1, -1))));
    };
    return heightOf(2) - heightOf(1);
}

bool QuickListHandleNotify(const NMHDR& header, LRESULT* result, int* chosen) {
    if (header.hwndFrom != g_list.window) return false;
    switch (header.code) {
        case LVN_GETDISPINFOW:
            // The control reads the answer from the record that it has sent.
            FillQuickItem(reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(&header))->item);
            break;
        case NM_CUSTOMDRAW: *result = DrawList(reinterpret_cast<const NMLVCUSTOMDRAW&>(header)); break;
        case NM_CLICK: *chosen = reinterpret_cast<const NMITEMACTIVATE&>(header).iItem; break;
        default: break;
    }
    return true;
}
