// The subclass of the tab strip: hover, close buttons, drag, middle click, wheel, keys, tooltip, painting. The rules for
// press, move and release are in tab_pointer. Commands that may ask the user are posted to the main window. UI thread.
#include "tabs/tab_bar_internal.h"

#include "base/texts.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "tabs/tabs_state.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/mouse_drag.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <string>
#include <utility>

namespace {

constexpr int kTipWidth = 700;    // at 96 dpi
constexpr int kWheelStep = 120;   // pixels at 96 dpi that a notch of the wheel scrolls
constexpr int kArrowStep = 180;   // the same for a click on an arrow
constexpr int kTipStays = 30000;  // ms

void RepaintStrip() { InvalidateRect(g_tabs.hTabCtrl, nullptr, FALSE); }

void PostCommand(UINT command) { PostMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0); }

DocumentId DocumentAt(int index) { return IsTabIndex(index) ? TabAt(index).id : 0; }

void AskToClose(DocumentId document) {
    if (TabBarSelectToClose(TabBarFindDocument(document)) != 0) PostCommand(IDM_FILE_CLOSE);
}

// The button at the end of a pinned tab takes the pin off.
void PressCloseButton(DocumentId document) {
    const int index = TabBarFindDocument(document);
    if (IsTabIndex(index) && TabAt(index).pinned)
        TabBarPin(index, false);
    else
        AskToClose(document);
}

void UpdateTabHover(HWND strip, POINT at, bool inside) {
    TabPointer& pointer = g_tabBar.pointer;
    const int before = pointer.hoverTab;
    if (!TabPointerHover(pointer, TabBarMetrics(), TabBarStrip(), inside, at.x, at.y)) return;
    if (pointer.hoverTab != before && g_tabBar.tooltip != nullptr) SendMessageW(g_tabBar.tooltip, TTM_POP, 0, 0);
    RepaintStrip();
    if (g_tabBar.tracking || !inside) return;
    TRACKMOUSEEVENT track = {};
    track.cbSize = sizeof track;
    track.dwFlags = TME_LEAVE;
    track.hwndTrack = strip;
    g_tabBar.tracking = TrackMouseEvent(&track) != FALSE;
}

void PressStripButton(int button) {
    switch (static_cast<TabButton>(button)) {
        case TabButton::Back: TabBarScrollBy(-UiScaled(kArrowStep)); break;
        case TabButton::Forth: TabBarScrollBy(UiScaled(kArrowStep)); break;
        case TabButton::List: PostCommand(IDM_TAB_LIST); break;
    }
}

// The control does not get the press, because it has its tabs elsewhere.
void OnStripPressed(HWND strip, POINT at) {
    UpdateTabHover(strip, at, true);
    TabPointer& pointer = g_tabBar.pointer;
    if (pointer.hoverButton >= 0) return PressStripButton(pointer.hoverButton);
    const DocumentId document = DocumentAt(pointer.hoverTab);
    const bool onButton = TabPointerPress(pointer, document, at.x);
    if (!onButton) TabBarActivate(TabBarFindDocument(document));
    if (document != 0) MouseDragBegin(strip);
    if (onButton || document == 0) return;
    // The tab may have moved: the active one is wider.
    UpdateTabHover(strip, at, true);
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
    SendMessageW(g_tabBar.tooltip, TTM_SETMAXTIPWIDTH, 0, UiScaled(kTipWidth));  // so that it may have more lines
    SendMessageW(g_tabBar.tooltip, TTM_SETDELAYTIME, TTDT_AUTOPOP, kTipStays);
    TooltipApplyTheme(g_tabBar.tooltip);
}

void DragTab(POINT at) {
    TabPointer& pointer = g_tabBar.pointer;
    const int from = TabBarFindDocument(pointer.dragDocument);
    const TabStrip strip = TabBarStrip();
    const int to = TabPointerDragTo(pointer, TabBarMetrics(), strip.tabs, from, at.x);
    if (to >= 0) TabBarMove(from, to);
    if (!pointer.dragging) return;
    // Held at an end of the room, the tab goes on among those that are out of sight.
    const int edge = TabBarMetrics().padding;
    if (at.x < edge) TabBarScrollBy(-edge);
    if (at.x > strip.view - edge) TabBarScrollBy(edge);
}

void OnTabPointer(HWND strip, POINT at) {
    const bool first = g_tabBar.tooltip == nullptr;
    if (first) CreateTabTip(strip);
    DragTab(at);
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
        PressCloseButton(before.pressedClose);
    if (before.dragging) RepaintStrip();
}

// The mouse was lost before its button went up: a tab that was dragged goes back.
void OnStripCaptureLost() {
    const TabPointer before = g_tabBar.pointer;
    TabPointerEnd(g_tabBar.pointer);
    if (!before.dragging) return;
    TabBarMove(TabBarFindDocument(before.dragDocument), std::min(before.dragFrom, TabCount() - 1));
    TabBarShowTab(g_documents.activeTab);
    RepaintStrip();
}

// A button that went down elsewhere closes nothing.
void OnMiddleReleased(POINT at) {
    const DocumentId pressed = std::exchange(g_tabBar.pointer.pressedMiddle, 0);
    if (pressed != 0 && pressed == DocumentAt(TabHit(TabBarStrip(), at.x, at.y))) AskToClose(pressed);
}

void OnTabWheel(HWND strip, WPARAM wParam, POINT screen) {
    const int notches = WheelNotches(g_tabBar.wheel, GET_WHEEL_DELTA_WPARAM(wParam));
    if (notches == 0) return;
    TabBarScrollBy(-notches * UiScaled(kWheelStep));
    ScreenToClient(strip, &screen);
    UpdateTabHover(strip, screen, true);
}

// ------------------------------------------------------------------------------------------------------------- keys

void SelectByKey(int index) {
    index = std::clamp(index, 0, TabCount() - 1);
    if (index != g_documents.activeTab) TabBarSelect(index);
    SetFocus(g_tabs.hTabCtrl);  // the document that is shown does not take the keyboard
}

void MoveByKey(int by) { TabBarMove(g_documents.activeTab, std::clamp(g_documents.activeTab + by, 0, TabCount() - 1)); }

// The keys of a strip that has the keyboard. With Ctrl and Shift the arrows move the tab. False for other keys.
bool OnStripKey(WPARAM key) {
    if (TabCount() == 0) return false;
    const bool moves = GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_SHIFT) < 0;
    const int active = g_documents.activeTab;
    switch (key) {
        case VK_LEFT: moves ? MoveByKey(-1) : SelectByKey(active - 1); return true;
        case VK_RIGHT: moves ? MoveByKey(1) : SelectByKey(active + 1); return true;
        case VK_HOME: SelectByKey(0); return true;
        case VK_END: SelectByKey(TabCount() - 1); return true;
        case VK_DELETE: PostCommand(IDM_FILE_CLOSE); return true;
        case VK_RETURN:
        case VK_SPACE:
        case VK_DOWN:
        case VK_ESCAPE: FocusEditorFromPane(); return true;
        default: return false;
    }
}

// By the menu key, or Shift and F10.
void OnStripMenu(HWND strip) {
    const int active = g_documents.activeTab;
    if (!IsTabIndex(active)) return;
    TabBarShowTab(active);
    const TabRect tab = TabBarStrip().tabs[static_cast<std::size_t>(active)];
    TabMenuShow(strip, active, {tab.left, tab.bottom});
}

// --------------------------------------------------------------------------------------------------------- messages

void PaintStrip(HWND strip) {
    // The control makes a scroller when there are more tabs than the strip has pixels.
    if (const HWND scroller = FindWindowExW(strip, nullptr, UPDOWN_CLASSW, nullptr); scroller != nullptr)
        ShowWindow(scroller, SW_HIDE);
    const BufferedPaint paint(strip);
    TabBarPaint(paint.Dc(), paint.Client());
}

// Answers TTN_GETDISPINFOW. False for another notification.
bool FillTabTip(NMHDR& header) {
    if (header.hwndFrom != g_tabBar.tooltip || header.code != TTN_GETDISPINFOW) return false;
    static std::wstring text;
    const TabPointer& pointer = g_tabBar.pointer;
    text = IsTabIndex(pointer.hoverTab) ? TabTipOf(pointer.hoverTab) : L"";
    if (IsTabIndex(pointer.hoverTab) && TabAt(pointer.hoverTab).pinned && pointer.hoverClose) text = Text(L"Unpin");
    if (pointer.hoverButton == static_cast<int>(TabButton::List)) text = Text(L"List of all tabs (Ctrl+E)");
    reinterpret_cast<NMTTDISPINFOW&>(header).lpszText = text.data();
    return true;
}

// Two quick clicks. On a tab the second is a click like any other, because the close button under the pointer may
// already be that of the next tab.
void OnStripDoubleClick(HWND strip, POINT at) {
    const bool onSomething = TabHit(TabBarStrip(), at.x, at.y) >= 0 || at.x >= TabBarStrip().view;
    if (onSomething) return OnStripPressed(strip, at);
    PostCommand(IDM_FILE_NEW);
}

void OnStripLeft(HWND strip) {
    g_tabBar.tracking = false;
    UpdateTabHover(strip, {}, false);
}

// What asks the control for the places of its tabs - a screen reader, say - gets those that are painted.
bool AnswerPlace(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    if (lParam == 0 || (message != TCM_GETITEMRECT && message != TCM_HITTEST)) return false;
    const TabStrip strip = TabBarStrip();
    if (message == TCM_HITTEST) {
        TCHITTESTINFO& hit = *reinterpret_cast<TCHITTESTINFO*>(lParam);
        const int index = TabHit(strip, hit.pt.x, hit.pt.y);
        hit.flags = index < 0 ? TCHT_NOWHERE : TCHT_ONITEM;
        *result = index;
        return true;
    }
    *result = wParam < strip.tabs.size() ? TRUE : FALSE;
    if (*result == FALSE) return true;
    const TabRect& tab = strip.tabs[wParam];
    *reinterpret_cast<RECT*>(lParam) = {tab.left, tab.top, tab.right, tab.bottom};
    return true;
}

void OnStripDestroyed(HWND strip);

LRESULT CALLBACK StripProc(HWND strip, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const POINT at = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_NCHITTEST: return HTCLIENT;  // the control lets the pointer through beside its own tabs
        case WM_PAINT: PaintStrip(strip); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_SIZE:
            SubclassNext(strip, message, wParam, lParam);
            TabBarShowTab(g_documents.activeTab);
            return 0;
        case WM_LBUTTONDOWN: OnStripPressed(strip, at); return 0;
        case WM_LBUTTONDBLCLK: OnStripDoubleClick(strip, at); return 0;
        case WM_LBUTTONUP: OnTabReleased(strip, at); break;
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK: g_tabBar.pointer.pressedMiddle = DocumentAt(TabHit(TabBarStrip(), at.x, at.y)); return 0;
        case WM_MBUTTONUP: OnMiddleReleased(at); return 0;
        case WM_RBUTTONUP: TabMenuShow(strip, TabHit(TabBarStrip(), at.x, at.y), at); return 0;
        case WM_CONTEXTMENU: OnStripMenu(strip); return 0;
        case WM_MOUSEMOVE: OnTabPointer(strip, at); break;
        case WM_MOUSELEAVE: OnStripLeft(strip); break;
        case WM_MOUSEWHEEL: OnTabWheel(strip, wParam, at); return 0;
        case WM_CAPTURECHANGED: OnStripCaptureLost(); break;
        case WM_KEYDOWN:
            if (OnStripKey(wParam)) return 0;
            break;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: RepaintStrip(); break;
        case WM_NOTIFY:
            if (FillTabTip(*reinterpret_cast<NMHDR*>(lParam))) return 0;
            break;
        case WM_DESTROY: OnStripDestroyed(strip); break;
        default: break;
    }
    LRESULT result = 0;
    if (AnswerPlace(message, wParam, lParam, &result)) return result;
    return SubclassNext(strip, message, wParam, lParam);
}

void OnStripDestroyed(HWND strip) {
    SubclassRemove(strip, StripProc);
    if (g_tabBar.tooltip != nullptr) DestroyWindow(g_tabBar.tooltip);
    g_tabBar = {};
}

}  // namespace

bool TabBarInstallSubclass(HWND tabControl) { return SubclassAdd(tabControl, StripProc); }
