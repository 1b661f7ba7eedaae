// The row of tabs over the views and the address box: drawn by the theme, worked by keys. UI thread only.
#include "debugui/pane_internal.h"

#include "app/app_state.h"
#include "files/handles.h"
#include "language/theme.h"
#include "resources/ids.h"

#include <commctrl.h>

#include <algorithm>

namespace {

constexpr UINT_PTR kSubclassId = 1;
constexpr int kWidestBlank = 14;  // beside a title, at 96 dpi

// What the row was last fitted to: each refresh of the pane asks again.
struct Fit {
    HWND tabs = nullptr;
    int width = 0, titles = 0;
    bool operator==(const Fit&) const = default;
};
Fit g_fit;

void DrawTab(HDC dc, const RECT& body, const wchar_t* title, bool active, bool focused) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    PaneFillRect(dc, body, active ? chrome.paneBack : chrome.tabBack);
    if (active) {
        PaneFillRect(dc, {body.left, body.top, body.right, body.top + PaneScaled(2)}, chrome.accent);
    } else {
        PaneFillRect(dc, {body.left, body.bottom - 1, body.right, body.bottom}, chrome.line);
    }
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

std::wstring TitleOf(HWND tabs, int index) {
    wchar_t title[32] = {};
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = title;
    item.cchTextMax = static_cast<int>(std::size(title));
    SendMessageW(tabs, TCM_GETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    return title;
}

int TitlesWidth(HWND tabs) {
    int width = 0;
    const HDC dc = GetDC(tabs);
    const HGDIOBJ oldFont = SelectObject(dc, PaneFontsNow().text);
    for (int i = 0; i < kDebugTabCount; ++i) {
        const std::wstring title = TitleOf(tabs, i);
        SIZE size = {};
        GetTextExtentPoint32W(dc, title.c_str(), static_cast<int>(title.size()), &size);
        width += size.cx;
    }
    SelectObject(dc, oldFont);
    ReleaseDC(tabs, dc);
    return width;
}

void DrawRow(HWND tabs, HDC dc, const RECT& client) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    PaneFillRect(dc, client, chrome.tabBack);
    PaneFillRect(dc, {client.left, client.bottom - 1, client.right, client.bottom}, chrome.line);
    const HGDIOBJ oldFont = SelectObject(dc, PaneFontsNow().text);
    SetBkMode(dc, TRANSPARENT);
    const LRESULT active = SendMessageW(tabs, TCM_GETCURSEL, 0, 0);
    for (int i = 0; i < kDebugTabCount; ++i) {
        RECT body = {};
        SendMessageW(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&body));
        body.top = client.top;
        body.bottom = client.bottom;
        DrawTab(dc, body, TitleOf(tabs, i).c_str(), i == active, GetFocus() == tabs);
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
        0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_TABS)), g_app.hInstance, nullptr);
    if (tabs != nullptr) SetWindowSubclass(tabs, TabsProc, kSubclassId, 0);
    return tabs;
}

void PaneTabsFit(HWND tabs, int width) {
    const Fit fit = {tabs, width, TitlesWidth(tabs)};
    if (fit == g_fit) return;
    g_fit = fit;
    // The control wants a few pixels beside its tabs; without them it shows arrows.
    const int room = width - PaneScaled(6);
    const int blank = (room - fit.titles) / (2 * kDebugTabCount);
    // With room for all titles each tab is as wide as its own; without, all share alike and the longest are shortened.
    const bool alike = blank < PaneScaled(3);
    const LONG_PTR style = GetWindowLongPtrW(tabs, GWL_STYLE);
    const LONG_PTR wanted = alike ? style | TCS_FIXEDWIDTH : style & ~LONG_PTR{TCS_FIXEDWIDTH};
    if (style != wanted) SetWindowLongPtrW(tabs, GWL_STYLE, wanted);
    const int each = std::max(room / kDebugTabCount, 1);
    SendMessageW(tabs, TCM_SETPADDING, 0, MAKELPARAM(std::clamp(blank, 0, PaneScaled(kWidestBlank)), 0));
    SendMessageW(tabs, TCM_SETITEMSIZE, 0, MAKELPARAM(each, PaneScaled(22)));
    InvalidateRect(tabs, nullptr, FALSE);
}

HWND PaneAddressCreate(HWND parent) {
    const HWND box = CreateWindowExW(
        0, WC_EDITW, nullptr, WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, 0, 0, 0, 0, parent,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_ADDRESS)), g_app.hInstance, nullptr);
    if (box != nullptr) SetWindowSubclass(box, AddressProc, kSubclassId, 0);
    return box;
}
