#include "ui/tab_row.h"

#include "base/texts.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/menu.h"
#include "ui/paint.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

namespace {

constexpr int kRowHeight = 26;                     // at 96 dpi
constexpr int kTabHeight = 22;                     // at 96 dpi, for the control
constexpr int kLeastBlank = 6, kWidestBlank = 14;  // at 96 dpi, on either side of a title
constexpr int kControlEdges = 6;                   // at 96 dpi, that the control needs beside its tabs
constexpr int kMoreWidth = 26;

void DrawTitle(HDC dc, const RECT& body, const wchar_t* title, bool active, bool focused) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, body, active ? chrome.paneBack : chrome.tabBack);
    if (active)
        FillArea(dc, {body.left, body.top, body.right, body.top + UiScaled(2)}, chrome.accent);
    else
        FillArea(dc, {body.left, body.bottom - 1, body.right, body.bottom}, chrome.line);
    const int inset = active ? 0 : UiScaled(6);
    FillArea(dc, {body.right - 1, body.top + inset, body.right, body.bottom - inset}, chrome.line);
    RECT text = {body.left + UiScaled(3), body.top + UiScaled(2), body.right - UiScaled(3), body.bottom};
    SetTextColor(dc, active ? chrome.tabActiveText : chrome.tabText);
    DrawTextW(dc, title, -1, &text, DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (active && focused)
        FrameArea(
            dc, {body.left + UiScaled(3), body.top + UiScaled(5), body.right - UiScaled(4), body.bottom - UiScaled(3)},
            chrome.accent);
}

RECT TitleRect(const TabRow& row, int index) {
    RECT body = {};
    SendMessageW(row.tabs, TCM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&body));
    return body;
}

int TitleCount(const TabRow& row) { return static_cast<int>(row.titles.size()); }

int TitlesWidth(const TabRow& row) {
    const std::vector<int> widths = UiTextWidths(std::vector<std::wstring>(row.titles.begin(), row.titles.end()));
    return std::accumulate(widths.begin(), widths.end(), 0);
}

void PaintTabRow(const TabRow& row) {
    const BufferedPaint paint(row.tabs);
    const HDC dc = paint.Dc();
    const RECT& client = paint.Client();
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, client, chrome.tabBack);
    FillArea(dc, {client.left, client.bottom - 1, client.right, client.bottom}, chrome.line);
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    SetBkMode(dc, TRANSPARENT);
    const int active = TabRowSelected(row);
    for (int i = 0; i < TitleCount(row); ++i) {
        RECT body = TitleRect(row, i);
        body.top = client.top;
        body.bottom = client.bottom;
        DrawTitle(dc, body, row.titles[static_cast<std::size_t>(i)], i == active, GetFocus() == row.tabs);
    }
    SelectObject(dc, oldFont);
}

bool OnTabRowKey(const TabRow& row, WPARAM key) {
    if (row.handleKey(row.tabs, key)) return true;
    if (key != VK_DOWN && key != VK_RETURN) return false;
    row.enterView();
    return true;
}

LRESULT CALLBACK TabRowProc(HWND tabs, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data) {
    TabRow& row = *reinterpret_cast<TabRow*>(data);
    switch (message) {
        case WM_PAINT: PaintTabRow(row); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(tabs, nullptr, FALSE); break;
        case WM_KEYDOWN:
            if (OnTabRowKey(row, wParam)) return 0;
            break;
        case WM_CHAR: return 0;  // the control would beep
        default: break;
    }
    return SubclassNext(tabs, message, wParam, lParam);
}

HWND CreateTabRowChild(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id) {
    return CreateWindowExW(0, className, text, WS_CHILD | WS_CLIPSIBLINGS | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_ui.hInstance, nullptr);
}

}  // namespace

bool TabRowCreate(TabRow& row, HWND parent, int tabsId, int moreId) {
    row.more = CreateTabRowChild(parent, WC_BUTTONW, Text(L"More Views"), BS_OWNERDRAW, moreId);
    row.tabs =
        CreateTabRowChild(parent, WC_TABCONTROLW, Text(L"Views"), WS_VISIBLE | WS_TABSTOP | TCS_OWNERDRAWFIXED, tabsId);
    if (row.tabs == nullptr || row.more == nullptr) return false;
    SubclassAdd(row.tabs, TabRowProc, reinterpret_cast<DWORD_PTR>(&row));
    SendMessageW(row.tabs, TCM_SETMINTABWIDTH, 0, 1);  // else short titles would be wider than FitTabRow reckons
    for (int i = 0; i < TitleCount(row); ++i) {
        TCITEMW item = {};
        item.mask = TCIF_TEXT;
        item.pszText =
            const_cast<wchar_t*>(row.titles[static_cast<std::size_t>(i)]);  // the control does not write to it
        SendMessageW(row.tabs, TCM_INSERTITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    }
    return true;
}

int TabRowSelected(const TabRow& row) { return static_cast<int>(SendMessageW(row.tabs, TCM_GETCURSEL, 0, 0)); }

void TabRowSelect(const TabRow& row, int index) {
    SendMessageW(row.tabs, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
}

int TabRowHeight() { return UiScaled(kRowHeight); }

// The control lays out its tabs again at each telling.
static void TellBlank(TabRow& row, int pixels) {
    if (row.blank == pixels) return;
    row.blank = pixels;
    SendMessageW(row.tabs, TCM_SETPADDING, 0, MAKELPARAM(pixels, 0));
    SendMessageW(row.tabs, TCM_SETITEMSIZE, 0, MAKELPARAM(0, UiScaled(kTabHeight)));
}

void TabRowPlace(TabRow& row, int width) {
    const TabRow::Fitted fitted = {width, TitlesWidth(row), TabRowSelected(row)};
    if (fitted == row.fitted) return;
    row.fitted = fitted;
    const int height = TabRowHeight();
    const TabRowLimits limits = {.leastBlank = UiScaled(kLeastBlank),
                                 .widestBlank = UiScaled(kWidestBlank),
                                 .edges = UiScaled(kControlEdges),
                                 .more = UiScaled(kMoreWidth)};
    const TabRowWidth whole = FitTabRow(width, fitted.titles, TitleCount(row), limits);
    TellBlank(row, whole.blank.pixels);
    SetWindowPos(row.tabs, nullptr, 0, 0, whole.control, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    std::vector<TabExtent> tabs;
    for (int i = 0; i < TitleCount(row); ++i) {
        const RECT title = TitleRect(row, i);
        tabs.push_back({static_cast<int>(title.left), static_cast<int>(title.right)});
    }
    const TabRowSpot place = PlaceTabRow(width, whole, tabs, fitted.selected, row.shown.first, limits);
    row.shown = place.shown;
    SetWindowPos(row.tabs, nullptr, -place.left, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetWindowPos(row.more, HWND_TOP, place.end, 0, std::max(width - place.end, 0), height,
                 SWP_NOACTIVATE | (whole.blank.all ? SWP_HIDEWINDOW : SWP_SHOWWINDOW));
    InvalidateRect(row.tabs, nullptr, FALSE);
    InvalidateRect(row.more, nullptr, FALSE);
}

void TabRowApplyTheme(TabRow& row) {
    SendMessageW(row.tabs, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    row.fitted = {};
    row.blank = -1;
}

void TabRowDrawMore(const DRAWITEMSTRUCT& draw) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const RECT& area = draw.rcItem;
    FillArea(draw.hDC, area, (draw.itemState & ODS_SELECTED) != 0 ? chrome.hover : chrome.tabBack);
    FillArea(draw.hDC, {area.left, area.bottom - 1, area.right, area.bottom}, chrome.line);
    DrawDropArrow(draw.hDC, area, UiScaled(kMoreWidth), chrome.tabText);
}

void TabRowShowMore(const TabRow& row) {
    std::vector<MenuItem> items;
    for (int i = 0; i < TitleCount(row); ++i)
        if (i < row.shown.first || i >= row.shown.end)
            items.push_back({.id = static_cast<UINT>(i + 1), .text = row.titles[static_cast<std::size_t>(i)]});
    RECT area = {};
    GetWindowRect(row.more, &area);
    const UINT chosen = ShowPopupMenu(GetParent(row.more), items, {area.right, area.bottom}, TPM_RIGHTALIGN);
    if (chosen != 0) SendMessageW(row.tabs, TCM_SETCURFOCUS, chosen - 1, 0);
    row.enterView();
}
