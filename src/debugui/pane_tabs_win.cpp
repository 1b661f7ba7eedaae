// The row of tabs over the views and the address box: drawn by the theme, worked by keys. UI thread only.
#include "debugui/pane_internal.h"

#include "base/handles.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr UINT_PTR kSubclassId = 1;
constexpr int kLeastBlank = 6, kWidestBlank = 14;  // beside a title, at 96 dpi
constexpr int kMoreWidth = 26;

// What the row was last fitted to: each refresh of the pane asks again.
struct Fit {
    HWND tabs = nullptr;
    int width = 0, titles = 0, selected = 0;
    bool operator==(const Fit&) const = default;
};
Fit g_fit;
TabSpan g_shown;

void DrawTab(HDC dc, const RECT& body, const wchar_t* title, bool active, bool focused) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    PaneFillRect(dc, body, active ? chrome.paneBack : chrome.tabBack);
    if (active)
        PaneFillRect(dc, {body.left, body.top, body.right, body.top + PaneScaled(2)}, chrome.accent);
    else
        PaneFillRect(dc, {body.left, body.bottom - 1, body.right, body.bottom}, chrome.line);
    const int inset = active ? 0 : PaneScaled(6);
    PaneFillRect(dc, {body.right - 1, body.top + inset, body.right, body.bottom - inset}, chrome.line);
    RECT text = {body.left + PaneScaled(3), body.top + PaneScaled(2), body.right - PaneScaled(3), body.bottom};
    SetTextColor(dc, active ? chrome.tabActiveText : chrome.tabText);
    DrawTextW(dc, title, -1, &text, DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (!active || !focused) return;
    const RECT ring = {body.left + PaneScaled(3), body.top + PaneScaled(5), body.right - PaneScaled(4),
                       body.bottom - PaneScaled(3)};
    SetDCBrushColor(dc, chrome.accent);
    FrameRect(dc, &ring, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

int TitlesWidth(HWND tabs) {
    int width = 0;
    const HDC dc = GetDC(tabs);
    const HGDIOBJ oldFont = SelectObject(dc, PaneFontsNow().text);
    for (int i = 0; i < kDebugTabCount; ++i) {
        const wchar_t* title = PaneTitle(static_cast<DebugTab>(i));
        SIZE size = {};
        GetTextExtentPoint32W(dc, title, lstrlenW(title), &size);
        width += size.cx;
    }
    SelectObject(dc, oldFont);
    ReleaseDC(tabs, dc);
    return width;
}

int Selected(HWND tabs) { return static_cast<int>(SendMessageW(tabs, TCM_GETCURSEL, 0, 0)); }

RECT TabRect(HWND tabs, int index) {
    RECT body = {};
    SendMessageW(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&body));
    return body;
}

void DrawRow(HWND tabs, HDC dc, const RECT& client) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    PaneFillRect(dc, client, chrome.tabBack);
    PaneFillRect(dc, {client.left, client.bottom - 1, client.right, client.bottom}, chrome.line);
    const HGDIOBJ oldFont = SelectObject(dc, PaneFontsNow().text);
    SetBkMode(dc, TRANSPARENT);
    const int active = Selected(tabs);
    for (int i = 0; i < kDebugTabCount; ++i) {
        RECT body = TabRect(tabs, i);
        body.top = client.top;
        body.bottom = client.bottom;
        DrawTab(dc, body, PaneTitle(static_cast<DebugTab>(i)), i == active, GetFocus() == tabs);
    }
    SelectObject(dc, oldFont);
}

void PaintRow(HWND tabs) {
    PAINTSTRUCT paint = {};
    const HDC dc = BeginPaint(tabs, &paint);
    RECT client = {};
    GetClientRect(tabs, &client);
    const UniqueMemoryDc memory(CreateCompatibleDC(dc));
    const UniqueBitmap bitmap(
        CreateCompatibleBitmap(dc, std::max<int>(client.right, 1), std::max<int>(client.bottom, 1)));
    const HGDIOBJ old = SelectObject(memory.Get(), bitmap.Get());
    DrawRow(tabs, memory.Get(), client);
    BitBlt(dc, 0, 0, client.right, client.bottom, memory.Get(), 0, 0, SRCCOPY);
    SelectObject(memory.Get(), old);
    EndPaint(tabs, &paint);
}

LRESULT CALLBACK TabsProc(HWND tabs, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    switch (message) {
        case WM_PAINT: PaintRow(tabs); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(tabs, nullptr, FALSE); break;
        case WM_KEYDOWN:
            if (PaneHandleFocusKey(tabs, wParam)) return 0;
            if (wParam == VK_DOWN || wParam == VK_RETURN) {
                PaneFocusView();
                return 0;
            }
            break;
        case WM_CHAR: return 0;  // no beep
        case WM_NCDESTROY: RemoveWindowSubclass(tabs, TabsProc, id); break;
        default: break;
    }
    return DefSubclassProc(tabs, message, wParam, lParam);
}

LRESULT CALLBACK AddressProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (PaneHandleFocusKey(box, wParam)) return 0;
            if (wParam == VK_RETURN) {
                SendMessageW(box, EM_SETSEL, 0, -1);
                DebugPaneInvalidate();
                return 0;
            }
            if (wParam == VK_DOWN) {
                PaneFocusView();
                return 0;
            }
            break;
        case WM_CHAR:
            if (wParam == VK_RETURN || wParam == VK_TAB || wParam == VK_ESCAPE) return 0;  // no beep
            break;
        case WM_NCDESTROY: RemoveWindowSubclass(box, AddressProc, id); break;
        default: break;
    }
    return DefSubclassProc(box, message, wParam, lParam);
}

}  // namespace

HWND PaneTabsCreate(HWND parent) {
    const HWND tabs = CreateWindowExW(
        0, WC_TABCONTROLW, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | TCS_OWNERDRAWFIXED, 0, 0, 0,
        0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_TABS)), g_ui.hInstance, nullptr);
    if (tabs != nullptr) SetWindowSubclass(tabs, TabsProc, kSubclassId, 0);
    return tabs;
}

void PaneTabsPlace(HWND tabs, HWND more, int width, int height) {
    const Fit fit = {tabs, width, TitlesWidth(tabs), Selected(tabs)};
    if (fit == g_fit) return;
    g_fit = fit;
    // The control wants a few pixels beside its tabs; without them it shows arrows of its own.
    const int blank = (width - PaneScaled(6) - fit.titles) / (2 * kDebugTabCount);
    const bool all = blank >= PaneScaled(kLeastBlank);
    SendMessageW(tabs, TCM_SETPADDING, 0,
                 MAKELPARAM(std::clamp(blank, PaneScaled(kLeastBlank), PaneScaled(kWidestBlank)), 0));
    SendMessageW(tabs, TCM_SETITEMSIZE, 0, MAKELPARAM(0, PaneScaled(22)));
    // It is always as wide as all its tabs: what there is no room for lies beyond the edges of the pane.
    const int whole = all ? width : 2 * (fit.titles + 2 * kDebugTabCount * PaneScaled(kLeastBlank));
    SetWindowPos(tabs, nullptr, 0, 0, whole, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    std::array<int, kDebugTabCount> widths = {};
    for (int i = 0; i < kDebugTabCount; ++i) {
        const RECT tab = TabRect(tabs, i);
        widths[static_cast<std::size_t>(i)] = static_cast<int>(tab.right - tab.left);
    }
    const int room = all ? whole : width - PaneScaled(kMoreWidth);
    g_shown = FitTabs(widths, room, std::max(fit.selected, 0), g_shown.first);
    const int left = g_shown.first > 0 ? static_cast<int>(TabRect(tabs, g_shown.first).left) : 0;
    SetWindowPos(tabs, nullptr, -left, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    // Over the rest of the row, and with it over the tab that would be cut.
    const int end = std::min(static_cast<int>(TabRect(tabs, g_shown.end - 1).right) - left, room);
    SetWindowPos(more, HWND_TOP, end, 0, std::max(width - end, 0), height,
                 SWP_NOACTIVATE | (all ? SWP_HIDEWINDOW : SWP_SHOWWINDOW));
    InvalidateRect(tabs, nullptr, FALSE);
    InvalidateRect(more, nullptr, FALSE);
}

HWND PaneMoreCreate(HWND parent) {
    return CreateWindowExW(0, WC_BUTTONW, L"More Views", WS_CHILD | WS_CLIPSIBLINGS | BS_OWNERDRAW, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_MORE)), g_ui.hInstance, nullptr);
}

void PaneMoreDraw(const DRAWITEMSTRUCT& draw) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const RECT& area = draw.rcItem;
    const bool pressed = (draw.itemState & ODS_SELECTED) != 0;
    PaneFillRect(draw.hDC, area, pressed ? chrome.hover : chrome.tabBack);
    PaneFillRect(draw.hDC, {area.left, area.bottom - 1, area.right, area.bottom}, chrome.line);
    const int arm = PaneScaled(4);
    const int middle = area.right - PaneScaled(kMoreWidth) / 2;
    const int top = (area.top + area.bottom - arm) / 2 + PaneScaled(1);
    const std::array<POINT, 3> arrow = {{{middle - arm, top}, {middle + arm, top}, {middle, top + arm}}};
    SetDCBrushColor(draw.hDC, chrome.tabText);
    SetDCPenColor(draw.hDC, chrome.tabText);
    const HGDIOBJ oldBrush = SelectObject(draw.hDC, GetStockObject(DC_BRUSH));
    const HGDIOBJ oldPen = SelectObject(draw.hDC, GetStockObject(DC_PEN));
    Polygon(draw.hDC, arrow.data(), static_cast<int>(arrow.size()));
    SelectObject(draw.hDC, oldPen);
    SelectObject(draw.hDC, oldBrush);
}

void PaneMoreShowMenu(HWND tabs, HWND more) {
    std::vector<PaneMenuItem> items;
    for (int i = 0; i < kDebugTabCount; ++i)
        if (i < g_shown.first || i >= g_shown.end)
            items.push_back({static_cast<UINT>(i + 1), PaneTitle(static_cast<DebugTab>(i))});
    RECT area = {};
    GetWindowRect(more, &area);
    const UINT chosen = PaneShowMenu(items, {area.right, area.bottom}, TPM_RIGHTALIGN);
    if (chosen != 0) SendMessageW(tabs, TCM_SETCURFOCUS, chosen - 1, 0);
    PaneFocusView();
}

HWND PaneAddressCreate(HWND parent) {
    const HWND box = CreateWindowExW(
        0, WC_EDITW, nullptr, WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, 0, 0, 0, 0, parent,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_ADDRESS)), g_ui.hInstance, nullptr);
    if (box != nullptr) SetWindowSubclass(box, AddressProc, kSubclassId, 0);
    return box;
}
