// The subclass of the tab strip: hover, close buttons, drag, middle click, wheel, context menu, tooltip, painting. The
// rules for press, move and release are in tab_pointer. Commands that may ask the user are posted to the main window.
// UI thread.
#include "tabs/tab_bar_internal.h"

#include "documents/document_row.h"
#include "resources/ids.h"
#include "tabs/tabs_state.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/menu.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <string>

TabBarState g_tabBar;

namespace {

constexpr int kTipWidth = 700;  // at 96 dpi

void RepaintStrip() { InvalidateRect(g_tabs.hTabCtrl, nullptr, FALSE); }

void PostCommand(UINT command) { PostMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0); }

DocumentId DocumentAt(int index) { return IsTabIndex(index) ? TabAt(index).id : 0; }

void AskToClose(DocumentId document) {
    if (TabBarSelectToClose(TabBarFindDocument(document)) != 0) PostCommand(IDM_FILE_CLOSE);
}

// Shows the tab's document first, because the menu's commands act on the active document.
void ShowTabMenu(HWND strip, int index, POINT at) {
    if (TabBarActivate(index) == 0) return;
    const DocumentTab& tab = TabAt(index);
    const DocumentId document = tab.id;
    const MenuItem items[] = {
        {.id = IDM_FILE_CLOSE, .text = L"&Close\tCtrl+W"},
        {.id = IDM_TAB_CLOSE_OTHERS, .text = L"Close &Others", .enabled = TabCount() > 1},
        {.id = IDM_TAB_CLOSE_RIGHT, .text = L"Close to the &Right", .enabled = index + 1 < TabCount()},
        {.id = IDM_FILE_CLOSE_ALL, .text = L"Close &All"},
        {},
        {.id = IDM_TAB_COPY_PATH, .text = L"Copy Full &Path", .enabled = tab.hasFile}};
    ClientToScreen(strip, &at);
    const UINT command = ShowPopupMenu(strip, items, at, TPM_NONOTIFY);
    // TrackPopupMenu ran a message loop, so the document may be gone or no longer active.
    if (command != 0 && TabBarActivate(TabBarFindDocument(document)) != 0) PostCommand(command);
}

void UpdateTabHover(HWND strip, POINT at, bool inside) {
    TabPointer& pointer = g_tabBar.pointer;
    const int before = pointer.hoverTab;
    if (!TabPointerHover(pointer, TabBarMetrics(), TabBarRects(), inside, at.x, at.y)) return;
    if (pointer.hoverTab != before && g_tabBar.tooltip != nullptr) SendMessageW(g_tabBar.tooltip, TTM_POP, 0, 0);
    RepaintStrip();
    if (g_tabBar.tracking || !inside) return;
    TRACKMOUSEEVENT track = {};
    track.cbSize = sizeof track;
    track.dwFlags = TME_LEAVE;
    track.hwndTrack = strip;
    g_tabBar.tracking = TrackMouseEvent(&track) != FALSE;
}

// True when the press was on a close button; then the control must not get the message.
bool OnTabPressed(HWND strip, POINT at) {
    UpdateTabHover(strip, at, true);
    if (!TabPointerPress(g_tabBar.pointer, DocumentAt(g_tabBar.pointer.hoverTab), at.x)) return false;
    SetCapture(strip);
    return true;
}

// Called after the control has handled the press, because it may have taken the capture.
void CaptureForDrag(HWND strip) {
    if (g_tabBar.pointer.dragDocument != 0) SetCapture(strip);
}

LRESULT OnStripPressed(HWND strip, WPARAM wParam, POINT at) {
    if (OnTabPressed(strip, at)) return 0;
    SubclassNext(strip, WM_LBUTTONDOWN, wParam, MAKELPARAM(at.x, at.y));
    CaptureForDrag(strip);
    return 0;
}

// The tooltip is made when the pointer first comes over the strip, because most starts end without one.
void CreateTabTip(HWND strip) {
    g_tabBar.tooltip =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, strip, nullptr, g_ui.hInstance, nullptr);
    if (g_tabBar.tooltip == nullptr) return;
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
    tool.hwnd = strip;  // gets the WM_NOTIFY that asks for the text
    tool.uId = reinterpret_cast<UINT_PTR>(strip);
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(g_tabBar.tooltip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(g_tabBar.tooltip, TTM_SETMAXTIPWIDTH, 0, UiScaled(kTipWidth));  // so that it may have two lines
    TooltipApplyTheme(g_tabBar.tooltip);
}

void OnTabPointer(HWND strip, POINT at) {
    const bool first = g_tabBar.tooltip == nullptr;
    if (first) CreateTabTip(strip);
    TabPointer& pointer = g_tabBar.pointer;
    const int from = TabBarFindDocument(pointer.dragDocument);
    const int to = TabPointerDragTo(pointer, TabBarMetrics(), TabBarRects(), from, at.x);
    if (to >= 0) TabBarMove(from, to);
    UpdateTabHover(strip, at, true);
    if (!first) return;
    // This message came before the tooltip listened.
    MSG message = {};
    message.hwnd = strip;
    message.message = WM_MOUSEMOVE;
    message.lParam = MAKELPARAM(at.x, at.y);
    SendMessageW(g_tabBar.tooltip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
}

void OnTabReleased(HWND strip, POINT at) {
    TabPointer& pointer = g_tabBar.pointer;
    const TabPointer before = pointer;
    TabPointerEnd(pointer);
    if (GetCapture() == strip) ReleaseCapture();
    UpdateTabHover(strip, at, true);
    if (before.pressedClose != 0 && pointer.hoverClose && DocumentAt(pointer.hoverTab) == before.pressedClose)
        AskToClose(before.pressedClose);
    if (before.dragging) RepaintStrip();
}

void OnTabWheel(WPARAM wParam) {
    const int notches = WheelNotches(g_tabBar.wheel, GET_WHEEL_DELTA_WPARAM(wParam));
    if (TabCount() < 2 || notches == 0) return;
    const int target = std::clamp(g_documents.activeTab - notches, 0, TabCount() - 1);
    if (target != g_documents.activeTab) TabBarActivate(target);
}

void PaintStrip(HWND strip) {
    TabBarPlaceScroller(strip);  // because the control moves its arrows whenever it lays out its tabs
    const BufferedPaint paint(strip);
    TabBarPaint(paint.Dc(), paint.Client());
}

// Answers TTN_GETDISPINFOW with the path of the tab under the pointer, or the label of a document without a file. False
// for another notification.
bool FillTabTip(NMHDR& header) {
    if (header.hwndFrom != g_tabBar.tooltip || header.code != TTN_GETDISPINFOW) return false;
    static std::wstring text;
    text.clear();
    if (IsTabIndex(g_tabBar.pointer.hoverTab)) {
        const DocumentTab& tab = TabAt(g_tabBar.pointer.hoverTab);
        text = tab.hasFile ? tab.path : tab.label;
        const std::wstring news = OutsideTipText(tab.outside, tab.onDisk.readOnly);
        if (!news.empty()) text += L"\n" + news;
    }
    reinterpret_cast<NMTTDISPINFOW&>(header).lpszText = text.data();
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

LRESULT CALLBACK ScrollerProc(HWND scroller, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintScroller(scroller); return 0;
        default: break;
    }
    return SubclassNext(scroller, message, wParam, lParam);
}

// The second of two quick clicks. On a tab it is a click like any other, because the close button under the pointer may
// already be that of the next tab.
LRESULT OnStripDoubleClick(HWND strip, WPARAM wParam, POINT at) {
    if (TabHit(TabBarRects(), at.x, at.y) >= 0) return OnStripPressed(strip, wParam, at);
    PostCommand(IDM_FILE_NEW);
    return 0;
}

void OnStripLeft(HWND strip) {
    g_tabBar.tracking = false;
    UpdateTabHover(strip, {}, false);
}

void OnStripDestroyed(HWND strip);

LRESULT CALLBACK StripProc(HWND strip, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const POINT at = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintStrip(strip); return 0;
        case WM_SIZE:
            SubclassNext(strip, message, wParam, lParam);
            TabBarUpdateWidths();
            return 0;
        case WM_LBUTTONDOWN: return OnStripPressed(strip, wParam, at);
        case WM_LBUTTONDBLCLK: return OnStripDoubleClick(strip, wParam, at);
        case WM_LBUTTONUP: OnTabReleased(strip, at); break;
        case WM_MBUTTONUP: AskToClose(DocumentAt(TabHit(TabBarRects(), at.x, at.y))); return 0;
        case WM_RBUTTONUP: ShowTabMenu(strip, TabHit(TabBarRects(), at.x, at.y), at); return 0;
        case WM_MOUSEMOVE: OnTabPointer(strip, at); break;
        case WM_MOUSELEAVE: OnStripLeft(strip); break;
        case WM_MOUSEWHEEL: OnTabWheel(wParam); return 0;
        case WM_CAPTURECHANGED: TabPointerEnd(g_tabBar.pointer); break;
        case WM_NOTIFY:
            if (FillTabTip(*reinterpret_cast<NMHDR*>(lParam))) return 0;
            break;
        case WM_DESTROY: OnStripDestroyed(strip); break;
        default: break;
    }
    return SubclassNext(strip, message, wParam, lParam);
}

void OnStripDestroyed(HWND strip) {
    SubclassRemove(strip, StripProc);
    if (g_tabBar.tooltip != nullptr) DestroyWindow(g_tabBar.tooltip);
    g_tabBar = {};
}

}  // namespace

void TabBarPlaceScroller(HWND tabControl) {
    HWND scroller = FindWindowExW(tabControl, nullptr, UPDOWN_CLASSW, nullptr);
    if (scroller == nullptr) return;
    SubclassAdd(scroller, ScrollerProc);  // setting it again changes nothing
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

bool TabBarInstallSubclass(HWND tabControl) { return SubclassAdd(tabControl, StripProc); }
