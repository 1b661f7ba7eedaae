// The list is a list box in a frame of its own, which draws its rows. It comes a moment after the first key, so that a
// quick Ctrl+Tab switches without it. UI thread.
#include "tabs/tab_switcher.h"

#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "tabs/tab_bar_internal.h"
#include "tabs/tabs_state.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/ui_state.h"
#include "ui/window_class.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr wchar_t kFrameClass[] = L"KVXETabSwitcher";
constexpr DWORD kShowAfter = 150;  // ms
constexpr UINT kLookEvery = 40;    // ms
constexpr int kWidth = 560;        // at 96 dpi
constexpr int kMostRows = 18;

struct TabSwitcher {
    std::vector<DocumentId> order;  // by recent use, the active one first; empty: no switch is under way
    std::size_t at = 0;
    DWORD since = 0;  // GetTickCount of the first key
    HWND frame = nullptr;
    HWND list = nullptr;
    HWND focusBefore = nullptr;
};
TabSwitcher g_switch;

bool IsSwitching() { return !g_switch.order.empty(); }

std::vector<DocumentId> TabsByRecentUse() {
    std::vector<const DocumentTab*> tabs;
    for (const DocumentTab& tab : g_documents.tabs) tabs.push_back(&tab);
    std::ranges::stable_sort(tabs, std::ranges::greater(), &DocumentTab::lastShown);
    std::vector<DocumentId> order;
    for (const DocumentTab* tab : tabs) order.push_back(tab->id);
    return order;
}

// ------------------------------------------------------------------------------------------------------------- end

// `toBefore`: the keyboard goes back to where it was.
void EndSwitch(bool toBefore) {
    const HWND before = g_switch.focusBefore;
    const HWND frame = g_switch.frame;
    KillTimer(g_ui.hMainWnd, TIMER_TAB_SWITCH);
    g_switch = {};
    if (frame != nullptr && toBefore && IsChild(g_ui.hMainWnd, before) != FALSE) SetFocus(before);
    if (frame != nullptr) DestroyWindow(frame);
}

void ShowChosenTab() {
    const int index = TabBarFindDocument(g_switch.order[g_switch.at]);
    EndSwitch(index < 0 || index == g_documents.activeTab);
    if (index >= 0 && index != g_documents.activeTab) TabBarActivate(index);
}

void Step(int by) {
    const std::size_t count = g_switch.order.size();
    g_switch.at = (g_switch.at + count + static_cast<std::size_t>(static_cast<int>(count) + by)) % count;
    SendMessageW(g_switch.list, LB_SETCURSEL, g_switch.at, 0);
}

// ------------------------------------------------------------------------------------------------------------ list

int RowHeight() { return UiSizes().textHeight + UiScaled(8); }

void DrawRow(const DRAWITEMSTRUCT& item) {
    const int index = item.itemID < g_switch.order.size() ? TabBarFindDocument(g_switch.order[item.itemID]) : -1;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    FillArea(item.hDC, item.rcItem, selected ? chrome.hover : chrome.tabActiveBack);
    if (index < 0) return;
    if (selected)
        FillArea(item.hDC, {item.rcItem.left, item.rcItem.top, item.rcItem.left + UiScaled(3), item.rcItem.bottom},
                 chrome.accent);
    const DocumentTab& tab = TabAt(index);
    const TabMetrics metrics = TabBarMetrics();
    const TabRect row = {static_cast<int>(item.rcItem.left), static_cast<int>(item.rcItem.top),
                         static_cast<int>(item.rcItem.right), static_cast<int>(item.rcItem.bottom)};
    const TabFacts facts = {.modified = tab.modified, .light = TabLightOf(TabStateOf(tab)), .dragging = true};
    TabLook look = TabLookOf(facts, metrics, row, UiScaled(4));
    // The row has its own ground and no edges.
    std::erase_if(look.parts, [](const TabPart& part) {
        return part.shape == TabShape::Area && (part.colour == TabColour::Back || part.colour == TabColour::Line);
    });
    TabDrawShapes(item.hDC, look);
    const TabRect text = TabTextRect(metrics, row, true);
    RECT place = {text.left, text.top, text.right, text.bottom};
    const HGDIOBJ old = SelectObject(item.hDC, UiFont());
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, chrome.tabActiveText);
    constexpr UINT kLine = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
    DrawTextW(item.hDC, tab.label, -1, &place, kLine);
    place.left += UiTextWidth(tab.label, lstrlenW(tab.label)) + metrics.padding;
    SetTextColor(item.hDC, chrome.tabText);
    if (tab.hasFile && place.left < place.right)
        DrawTextW(item.hDC, FolderOf(tab.path).c_str(), -1, &place, kLine | DT_PATH_ELLIPSIS);
    SelectObject(item.hDC, old);
}

LRESULT OnListCommand(WORD notification) {
    if (!IsSwitching()) return 0;
    if (notification == LBN_KILLFOCUS) {
        EndSwitch(false);
    } else if (notification == LBN_SELCHANGE) {  // a click
        const LRESULT row = SendMessageW(g_switch.list, LB_GETCURSEL, 0, 0);
        g_switch.at = row >= 0 ? static_cast<std::size_t>(row) : 0;
        ShowChosenTab();
    }
    return 0;
}

LRESULT CALLBACK FrameProc(HWND frame, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND: return OnListCommand(HIWORD(wParam));
        case WM_DRAWITEM: DrawRow(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
        case WM_MEASUREITEM:
            reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = static_cast<UINT>(RowHeight());
            return TRUE;
        case WM_CTLCOLORLISTBOX:
            return ControlColours(reinterpret_cast<HDC>(wParam), ThemeCurrentChrome().tabActiveText,
                                  ThemeCurrentChrome().tabActiveBack);
        case WM_ERASEBKGND: {
            RECT area = {};
            GetClientRect(frame, &area);
            FillArea(reinterpret_cast<HDC>(wParam), area, ThemeCurrentChrome().tabActiveBack);
            FrameArea(reinterpret_cast<HDC>(wParam), area, ThemeCurrentChrome().accent);
            return 1;
        }
        default: return DefWindowProcW(frame, message, wParam, lParam);
    }
}

// In the middle of the frame's upper half, below the tabs.
RECT PlaceOfList() {
    RECT client = {}, tabs = {};
    GetClientRect(g_ui.hMainWnd, &client);
    GetWindowRect(g_tabs.hTabCtrl, &tabs);
    MapWindowPoints(nullptr, g_ui.hMainWnd, reinterpret_cast<POINT*>(&tabs), 2);
    const int margin = UiScaled(8);
    const int width = std::min(UiScaled(kWidth), static_cast<int>(client.right) - 2 * margin);
    const int room = std::max(static_cast<int>(client.bottom - tabs.bottom) - 2 * margin, RowHeight());
    const int rows = std::clamp(static_cast<int>(g_switch.order.size()), 1, std::min(kMostRows, room / RowHeight()));
    const int left = std::max((static_cast<int>(client.right) - width) / 2, 0);
    const int top = static_cast<int>(tabs.bottom) + margin;
    return {left, top, left + width, top + rows * RowHeight() + 2};
}

void ShowList() {
    g_switch.focusBefore = GetFocus();
    const RECT place = PlaceOfList();
    const int width = place.right - place.left, height = place.bottom - place.top;
    if (WindowClassRegister({.name = kFrameClass, .procedure = FrameProc}))
        g_switch.frame =
            CreateWindowExW(WS_EX_CONTROLPARENT, kFrameClass, Text(L"Tabs"),
                            WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, place.left, place.top, width, height,
                            g_ui.hMainWnd, reinterpret_cast<HMENU>(INT_PTR{IDC_TAB_SWITCHER}), g_ui.hInstance, nullptr);
    if (g_switch.frame == nullptr) return AppLogMsg(L"FAIL: ShowList error=%lu", GetLastError());
    g_switch.list = CreateWindowExW(
        0, L"LISTBOX", Text(L"Tabs"),
        WS_CHILD | WS_VISIBLE | WS_VSCROLL | LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, 1,
        1, width - 2, height - 2, g_switch.frame, nullptr, g_ui.hInstance, nullptr);
    ScrollBarsApplyTheme(g_switch.list);
    for (const DocumentId document : g_switch.order) {
        const int index = TabBarFindDocument(document);
        const std::wstring name = index >= 0 ? TabBarNameOf(index) : std::wstring();  // for a screen reader
        SendMessageW(g_switch.list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    }
    SendMessageW(g_switch.list, LB_SETCURSEL, g_switch.at, 0);
    SetWindowPos(g_switch.frame, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    FocusRetryEnd();  // it would take the keyboard from the list
    SetFocus(g_switch.list);
}

// True when the key was handled.
bool OnSwitchKey(WPARAM key) {
    const bool back = GetKeyState(VK_SHIFT) < 0;
    switch (key) {
        case VK_TAB: Step(back ? -1 : 1); return true;
        case VK_DOWN: Step(1); return true;
        case VK_UP: Step(-1); return true;
        case VK_ESCAPE: EndSwitch(true); return true;
        case VK_RETURN: ShowChosenTab(); return true;
        case VK_CONTROL:
        case VK_SHIFT: return false;
        default: ShowChosenTab(); return false;  // a command of its own, for the tab that was chosen
    }
}

}  // namespace

void TabSwitch(bool back) {
    if (IsSwitching()) return Step(back ? -1 : 1);
    if (TabCount() < 2) return;
    g_switch.order = TabsByRecentUse();
    g_switch.since = GetTickCount();
    Step(back ? -1 : 1);
    // From a menu, or when the keys are up already.
    if (GetKeyState(VK_CONTROL) >= 0) return ShowChosenTab();
    if (SetTimer(g_ui.hMainWnd, TIMER_TAB_SWITCH, kLookEvery, nullptr) == 0) ShowChosenTab();
}

bool TabSwitchIsMessage(const MSG& message) {
    if (!IsSwitching()) return false;
    if (message.message == WM_KEYDOWN) return OnSwitchKey(message.wParam);
    if (message.message == WM_KEYUP && message.wParam == VK_CONTROL) ShowChosenTab();
    return false;
}

void TabSwitchOnTimer() {
    if (!IsSwitching() || GetTickCount() - g_switch.since < kShowAfter) return;
    // The release may have gone to another window.
    if (GetAsyncKeyState(VK_CONTROL) >= 0) return ShowChosenTab();
    if (g_switch.frame == nullptr) ShowList();
}
