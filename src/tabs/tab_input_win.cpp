// The pointer on the tab strip: hover, close buttons, drag, middle click, context menu, tooltip, and the painting that
// replaces the control's own. What has to ask the user goes to the main window as a command. UI thread.
#include "tabs/tab_bar_internal.h"

#include "documents/document_row.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "tabs/tabs_state.h"
#include "ui/clipboard.h"
#include "ui/menu.h"
#include "ui/paint.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <windowsx.h>

#include <cstdlib>

TabBarState g_tabBar;

namespace {

constexpr UINT_PTR kSubclassId = 1;
enum MenuCommand : UINT { kMenuClose = 1, kMenuCloseOthers, kMenuCloseRight, kMenuCloseAll, kMenuCopyPath };

void RepaintStrip() { InvalidateRect(g_tabs.hTabCtrl, nullptr, FALSE); }

// Closing asks about unsaved text, which is the documents area's business. The answer may be no.
void CloseTabAt(int index) {
    if (!IsTabIndex(index)) return;
    g_documents.returnTo = index == g_documents.activeTab ? 0 : ActiveDocumentId();
    if (index != g_documents.activeTab) TabBarSelect(index);
    PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_FILE_CLOSE, 0);
}

// Closes tabs from the right down to `first`, sparing `keep`, until one refuses. Synchronous: each close may ask.
void CloseTabsFrom(int first, DocumentId keep) {
    for (int index = TabCount() - 1; index >= first; --index) {
        if (!IsTabIndex(index) || TabAt(index).id == keep) continue;
        const int before = TabCount();
        TabBarSelect(index);
        SendMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_FILE_CLOSE, 0);
        if (TabCount() >= before) return;
    }
    const int kept = TabBarFindDocument(keep);
    if (kept >= 0) TabBarActivate(kept);
}

void ShowTabMenu(HWND strip, int index, POINT at) {
    if (!IsTabIndex(index)) return;
    TabBarActivate(index);
    const DocumentTab& tab = TabAt(index);
    const DocumentId document = tab.id;
    const MenuItem items[] = {
        {.id = kMenuClose, .text = L"&Close\tCtrl+W"},
        {.id = kMenuCloseOthers, .text = L"Close &Others", .enabled = TabCount() > 1},
        {.id = kMenuCloseRight, .text = L"Close to the &Right", .enabled = index + 1 < TabCount()},
        {.id = kMenuCloseAll, .text = L"Close &All"},
        {},
        {.id = kMenuCopyPath, .text = L"Copy Full &Path", .enabled = tab.hasFile}};
    ClientToScreen(strip, &at);
    const UINT command = ShowPopupMenu(strip, items, at, TPM_NONOTIFY);

    const int now = TabBarFindDocument(document);  // the menu ran its own message loop
    if (now < 0) return;
    switch (command) {
        case kMenuClose: CloseTabAt(now); break;
        case kMenuCloseOthers: CloseTabsFrom(0, document); break;
        case kMenuCloseRight: CloseTabsFrom(now + 1, document); break;
        case kMenuCloseAll: PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_FILE_CLOSE_ALL, 0); break;
        case kMenuCopyPath: ClipboardPutText(g_ui.hMainWnd, TabAt(now).path); break;
        default: break;
    }
}

void UpdateTabHover(HWND strip, POINT at, bool inside) {
    const std::vector<TabRect> rects = TabBarRects();
    const int tab = inside ? TabHit(rects, at.x, at.y) : -1;
    const bool close =
        tab >= 0 && TabCloseRect(TabBarMetrics(), rects[static_cast<std::size_t>(tab)]).Contains(at.x, at.y);
    if (tab == g_tabBar.hoverTab && close == g_tabBar.hoverClose) return;
    if (tab != g_tabBar.hoverTab && g_tabBar.tooltip) SendMessageW(g_tabBar.tooltip, TTM_POP, 0, 0);
    g_tabBar.hoverTab = tab;
    g_tabBar.hoverClose = close;
    RepaintStrip();
    if (g_tabBar.tracking || !inside) return;
    TRACKMOUSEEVENT track = {};
    track.cbSize = sizeof track;
    track.dwFlags = TME_LEAVE;
    track.hwndTrack = strip;
    g_tabBar.tracking = TrackMouseEvent(&track) != FALSE;
}

void EndTabDrag() {
    g_tabBar.dragTab = -1;
    g_tabBar.dragging = false;
    g_tabBar.pressedClose = -1;
}

// True when the press was on a close button and the control must not see it.
bool OnTabPressed(HWND strip, POINT at) {
    UpdateTabHover(strip, at, true);
    const int tab = g_tabBar.hoverTab;
    if (tab < 0) return false;
    if (g_tabBar.hoverClose) {
        g_tabBar.pressedClose = tab;
        SetCapture(strip);
        return true;
    }
    g_tabBar.dragTab = tab;
    g_tabBar.dragFrom = at;
    return false;
}

// After the control has selected the tab, which may have moved the capture.
void CaptureForDrag(HWND strip) {
    if (g_tabBar.dragTab >= 0) SetCapture(strip);
}

void OnTabPointer(HWND strip, POINT at) {
    if (g_tabBar.dragTab >= 0 && !g_tabBar.dragging)
        g_tabBar.dragging = std::abs(at.x - g_tabBar.dragFrom.x) >= TabBarMetrics().dragStart;
    if (g_tabBar.dragging) {
        const int target = TabDropIndex(TabBarRects(), g_tabBar.dragTab, at.x);
        if (target != g_tabBar.dragTab && TabBarMove(g_tabBar.dragTab, target)) g_tabBar.dragTab = target;
    }
    UpdateTabHover(strip, at, true);
}

void OnTabReleased(HWND strip, POINT at) {
    const int pressed = g_tabBar.pressedClose;
    const bool dragged = g_tabBar.dragging;
    EndTabDrag();
    if (GetCapture() == strip) ReleaseCapture();
    UpdateTabHover(strip, at, true);
    if (pressed >= 0 && pressed == g_tabBar.hoverTab && g_tabBar.hoverClose) CloseTabAt(pressed);
    if (dragged) RepaintStrip();
}

void OnTabWheel(WPARAM wParam) {
    if (TabCount() < 2) return;
    const int step = GET_WHEEL_DELTA_WPARAM(wParam) > 0 ? -1 : 1;
    const int target = g_documents.activeTab + step;
    if (IsTabIndex(target)) TabBarActivate(target);
}

void PaintStrip(HWND strip) {
    TabBarPlaceScroller(strip);  // the control moves its arrows back whenever it lays out its tabs
    const BufferedPaint paint(strip);
    TabBarPaint(paint.Dc(), paint.Client());
}

// The tooltip's text is asked for when it is about to show: the path of the tab under the pointer.
bool FillTabTip(NMHDR& header) {
    if (header.hwndFrom != g_tabBar.tooltip || header.code != TTN_GETDISPINFOW) return false;
    static wchar_t text[kPathCapacity];
    text[0] = L'\0';
    if (IsTabIndex(g_tabBar.hoverTab)) {
        const DocumentTab& tab = TabAt(g_tabBar.hoverTab);
        SafeCopyW(text, tab.hasFile ? tab.path : tab.label);
    }
    reinterpret_cast<NMTTDISPINFOW&>(header).lpszText = text;
    return true;
}

void PaintScroller(HWND scroller) {
    const BufferedPaint paint(scroller);
    const RECT& client = paint.Client();
    POINT at = {};
    GetCursorPos(&at);
    ScreenToClient(scroller, &at);
    const bool pressed = GetCapture() == scroller && PtInRect(&client, at) != FALSE;
    const bool left = at.x < (client.left + client.right) / 2;
    TabBarPaintScroller(paint.Dc(), client, pressed && left, pressed && !left);
}

LRESULT CALLBACK ScrollerProc(HWND scroller, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintScroller(scroller); return 0;
        case WM_NCDESTROY: RemoveWindowSubclass(scroller, ScrollerProc, id); break;
        default: break;
    }
    return DefSubclassProc(scroller, message, wParam, lParam);
}

void OnStripDoubleClick(POINT at) {
    if (TabHit(TabBarRects(), at.x, at.y) < 0) PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_FILE_NEW, 0);
}

void OnStripLeft(HWND strip) {
    g_tabBar.tracking = false;
    UpdateTabHover(strip, {}, false);
}

void OnStripDestroyed(HWND strip);

LRESULT CALLBACK StripProc(HWND strip, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    const POINT at = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintStrip(strip); return 0;
        case WM_SIZE:
            DefSubclassProc(strip, message, wParam, lParam);
            TabBarUpdateWidths();
            return 0;
        case WM_LBUTTONDOWN:
            if (OnTabPressed(strip, at)) return 0;
            DefSubclassProc(strip, message, wParam, lParam);
            CaptureForDrag(strip);
            return 0;
        case WM_LBUTTONDBLCLK: OnStripDoubleClick(at); break;
        case WM_LBUTTONUP: OnTabReleased(strip, at); break;
        case WM_MBUTTONUP: CloseTabAt(TabHit(TabBarRects(), at.x, at.y)); return 0;
        case WM_RBUTTONUP: ShowTabMenu(strip, TabHit(TabBarRects(), at.x, at.y), at); return 0;
        case WM_MOUSEMOVE: OnTabPointer(strip, at); break;
        case WM_MOUSELEAVE: OnStripLeft(strip); break;
        case WM_MOUSEWHEEL: OnTabWheel(wParam); return 0;
        case WM_CAPTURECHANGED: EndTabDrag(); break;
        case WM_NOTIFY:
            if (FillTabTip(*reinterpret_cast<NMHDR*>(lParam))) return 0;
            break;
        case WM_DESTROY: OnStripDestroyed(strip); break;
        default: break;
    }
    return DefSubclassProc(strip, message, wParam, lParam);
}

void OnStripDestroyed(HWND strip) {
    RemoveWindowSubclass(strip, StripProc, kSubclassId);
    if (g_tabBar.tooltip != nullptr) DestroyWindow(g_tabBar.tooltip);
    g_tabBar = {};
}

void CreateTabTip(HWND strip) {
    g_tabBar.tooltip =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, strip, nullptr, g_ui.hInstance, nullptr);
    if (g_tabBar.tooltip == nullptr) return;
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
    tool.hwnd = strip;  // asked for the text by WM_NOTIFY
    tool.uId = reinterpret_cast<UINT_PTR>(strip);
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(g_tabBar.tooltip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace

void TabBarPlaceScroller(HWND tabControl) {
    HWND scroller = FindWindowExW(tabControl, nullptr, UPDOWN_CLASSW, nullptr);
    if (scroller == nullptr) return;
    SetWindowSubclass(scroller, ScrollerProc, kSubclassId, 0);  // again does no harm
    RECT client = {};
    GetClientRect(tabControl, &client);
    const TabRect place = TabScrollerRect(TabBarMetrics(), static_cast<int>(client.right));
    RECT now = {};
    GetWindowRect(scroller, &now);
    MapWindowPoints(nullptr, tabControl, reinterpret_cast<POINT*>(&now), 2);
    const RECT wanted = {place.left, place.top, place.right, place.bottom};
    if (EqualRect(&now, &wanted)) return;
    SetWindowPos(scroller, nullptr, place.left, place.top, place.Width(), place.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

bool TabBarInstallSubclass(HWND tabControl) {
    if (!SetWindowSubclass(tabControl, StripProc, kSubclassId, 0)) return false;
    CreateTabTip(tabControl);
    return true;
}
