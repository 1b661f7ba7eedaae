// The window of the debug pane: tabs, address box, the view that is shown, and when it reads the program. UI thread
// only.
#include "debugui/debug_pane.h"

#include "base/log.h"
#include "base/texts.h"
#include "debugui/pane_internal.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/tab_row.h"
#include "ui/window_class.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <algorithm>
#include <array>

namespace {

constexpr wchar_t kClass[] = L"KVXEDebugPane";
constexpr const wchar_t* kNoSession = English(L"Start debugging with Debug > Start Debugging to see the program here.");
constexpr const wchar_t* kRunning = English(L"Running...");
constexpr UINT_PTR kRefreshTimer = 1;
constexpr int kAddressHeight = 30;  // at 96 dpi

constexpr std::array<const PaneView*, kDebugTabCount> kViews = {&kBreakpointsView, &kStackView,      &kRegistersView,
                                                                &kLocalsView,      &kWatchesView,    &kMemoryView,
                                                                &kThreadsView,     &kDisassemblyView};

struct DebugPaneFrame {
    HWND pane = nullptr, address = nullptr, memory = nullptr;
    TabRow tabs;
    ListView list;
    DebugTab selected = DebugTab::Breakpoints;
    std::array<PaneContent, kDebugTabCount> contents;
    std::array<std::wstring, kDebugTabCount> addresses;  // text of the address box, by view
    bool waiting = false;                                // a refresh is due
    unsigned refreshes = 0;
};
DebugPaneFrame g_frame;

PaneContent& ShownContent() { return g_frame.contents[static_cast<std::size_t>(g_frame.selected)]; }
bool ShowsList() { return PaneCurrentView().list != nullptr; }
HWND ViewWindow() { return ShowsList() ? g_frame.list.window : g_frame.memory; }
bool IsPaneVisible() { return g_frame.pane != nullptr && IsWindowVisible(g_frame.pane) != FALSE; }

void PlacePaneChild(HWND child, const RECT& area, bool shown) {
    SetWindowPos(child, nullptr, area.left, area.top, std::max<int>(area.right - area.left, 0),
                 std::max<int>(area.bottom - area.top, 0),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_DEFERERASE | (shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
}

RECT AddressArea() {
    RECT area = {};
    GetClientRect(g_frame.pane, &area);
    area.top = TabRowHeight();
    area.bottom = area.top + (PaneCurrentView().addressCue != nullptr ? UiScaled(kAddressHeight) : 0);
    return area;
}

// The box is as high as a line of text, because an edit control puts its text at the top.
RECT AddressBox() {
    const RECT area = AddressArea();
    const int height = PaneMemoryLineHeight() + UiScaled(3);
    const int top = (area.top + area.bottom - height) / 2;
    const int left = UiScaled(8) + 9 * UiSizes().textWidth;
    return {left, top, std::min<LONG>(area.right - UiScaled(4), left + 26 * UiSizes().fixedWidth), top + height};
}

void LayOutPane() {
    RECT client = {};
    GetClientRect(g_frame.pane, &client);
    TabRowPlace(g_frame.tabs, client.right);
    PlacePaneChild(g_frame.address, AddressBox(), PaneCurrentView().addressCue != nullptr);
    const RECT view = {0, AddressArea().bottom, client.right, client.bottom};
    // A list without rows is hidden, and the hint is drawn in its place.
    PlacePaneChild(g_frame.list.window, view, ShowsList() && !ShownContent().rows.empty());
    PlacePaneChild(g_frame.memory, view, !ShowsList() && ShownContent().hint.empty());
}

// --- Reading

void ShowPaneContent() {
    PaneContent& content = ShownContent();
    const HWND focus = GetFocus();
    const bool viewHadFocus = focus != nullptr && (focus == g_frame.list.window || focus == g_frame.memory);
    if (ShowsList()) ListViewUpdate(g_frame.list, content);
    SetWindowTextW(g_frame.pane, content.hint.c_str());
    LayOutPane();
    if (viewHadFocus && IsWindowVisible(focus) == FALSE) SetFocus(g_frame.tabs.tabs);
    InvalidateRect(g_frame.pane, nullptr, FALSE);
}

void FillPaneContent(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    const PaneView& view = PaneCurrentView();
    const PaneShows shows = PaneShowsNow(program, view.ofStop, content.processId);
    content.reveal = -1;
    content.stale = shows == PaneShows::Stale;
    if (shows == PaneShows::NoSession || shows == PaneShows::Running) {
        content = {};
        content.hint = Text(shows == PaneShows::Running ? kRunning : kNoSession);
    } else if (shows == PaneShows::Now) {
        content.processId = program.processId;
        content.rows.clear();
        content.hint.clear();
        content.problem.clear();
        view.fill(content);
    }
}

void RefreshPane() {
    KillTimer(g_frame.pane, kRefreshTimer);
    g_frame.waiting = false;
    ++g_frame.refreshes;
    const std::uint64_t before = PaneProgramNow().serial;
    PaneProgramRead();
    // A field over a value of the last stop would write to the place of this one.
    if (PaneProgramNow().serial != before && g_frame.selected != DebugTab::Breakpoints) InlineEditCancel();
    FillPaneContent(ShownContent());
    if (!ShowsList() && ShownContent().hint.empty()) InvalidateRect(g_frame.memory, nullptr, FALSE);
    ShowPaneContent();
}

// --- Painting

void DrawPaneText(HDC dc, const std::wstring& text, RECT area, COLORREF colour, UINT format) {
    SetTextColor(dc, colour);
    DrawTextW(dc, text.c_str(), -1, &area, format | DT_NOPREFIX);
}

void DrawAddressRow(HDC dc, const RECT& row) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    constexpr UINT kLine = DT_SINGLELINE | DT_VCENTER;
    const RECT box = AddressBox();
    FillArea(dc, {row.left, row.bottom - 1, row.right, row.bottom}, chrome.line);
    DrawPaneText(dc, Text(L"Address"), {UiScaled(8), row.top, box.left, row.bottom}, chrome.tabText, kLine);
    DrawPaneText(dc, ShownContent().problem, {box.right + UiScaled(8), row.top, row.right - UiScaled(4), row.bottom},
                 chrome.error, kLine | DT_END_ELLIPSIS);
}

void PaintPane(HWND window) {
    if (g_frame.refreshes == 0) DebugPaneInvalidate();
    const BufferedPaint paint(window);
    const HDC dc = paint.Dc();
    const RECT& client = paint.Client();
    FillArea(dc, client, ThemeCurrentChrome().paneBack);
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    SetBkMode(dc, TRANSPARENT);
    const RECT row = AddressArea();
    if (PaneCurrentView().addressCue != nullptr) DrawAddressRow(dc, row);
    DrawPaneText(dc, ShownContent().hint,
                 {UiScaled(12), row.bottom + UiScaled(12), client.right - UiScaled(12), client.bottom},
                 ThemeQuietText(), DT_CENTER | DT_WORDBREAK);
    SelectObject(dc, oldFont);
}

LRESULT AddressColours(HDC dc) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    return ControlColours(dc, ShownContent().problem.empty() ? chrome.paneText : chrome.error, chrome.tabActiveBack);
}

// --- Selecting

void SelectView(DebugTab tab) {
    if (static_cast<int>(tab) >= kDebugTabCount) return;
    InlineEditCancel();
    if (PaneCurrentView().addressCue != nullptr)
        g_frame.addresses[static_cast<std::size_t>(g_frame.selected)] = PaneAddressText();
    g_frame.selected = tab;
    if (g_settings.debugView != static_cast<int>(tab))
        SettingsChange([tab](Settings& settings) { settings.debugView = static_cast<int>(tab); });
    TabRowSelect(g_frame.tabs, static_cast<int>(tab));
    SetWindowTextW(g_frame.address, g_frame.addresses[static_cast<std::size_t>(tab)].c_str());
    SendMessageW(g_frame.address, EM_SETCUEBANNER, FALSE, reinterpret_cast<LPARAM>(Text(PaneCurrentView().addressCue)));
    InvalidateRect(g_frame.address, nullptr, TRUE);  // Wine does not erase the old cue
    AccessibleNameSet(g_frame.list.window, Text(PaneCurrentView().title));
    if (ShowsList()) ListViewShow(g_frame.list, *PaneCurrentView().list);
    if (IsPaneVisible())
        RefreshPane();  // at once, so that the rows of an earlier stop never show
    else
        ShowPaneContent();
}

// Shows a view with this text in its address box.
void ShowAt(DebugTab tab, const std::wstring& address) {
    g_frame.addresses[static_cast<std::size_t>(tab)] = address;
    if (g_frame.selected == tab) SetWindowTextW(g_frame.address, address.c_str());
    SelectView(tab);
    PaneFocusView();
}

LRESULT OnPaneNotify(const NMHDR& header) {
    LRESULT result = 0;
    if (header.hwndFrom != g_frame.tabs.tabs) {
        ListViewHandleNotify(g_frame.list, header, &result);
        return result;
    }
    const auto chosen = static_cast<DebugTab>(TabRowSelected(g_frame.tabs));
    if (header.code == TCN_SELCHANGE && chosen != g_frame.selected) SelectView(chosen);
    if (header.code == NM_CLICK) PaneFocusView();
    InvalidateRect(g_frame.tabs.tabs, nullptr, FALSE);
    return 0;
}

// Repaints the whole pane, because the hint is centred.
void OnPaneSized() {
    if (g_frame.tabs.tabs != nullptr) LayOutPane();
    InvalidateRect(g_frame.pane, nullptr, FALSE);
}

void OnPaneShown(const WINDOWPOS& position) {
    if ((position.flags & SWP_SHOWWINDOW) != 0 && g_frame.tabs.tabs != nullptr) DebugPaneInvalidate();
}

// The pane's text is its hint, which says why a view is empty.
LRESULT OnPaneGetObject(HWND window, WPARAM wParam, LPARAM lParam) {
    const std::wstring& hint = ShownContent().hint;
    const std::wstring name = Text(L"Debug") + (hint.empty() ? L"" : L": " + hint);
    return AccessibleAnswer(window, wParam, lParam, name, DefWindowProcW(window, WM_GETOBJECT, wParam, lParam));
}

LRESULT CALLBACK DebugPaneProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_GETOBJECT: return OnPaneGetObject(window, wParam, lParam);
        case WM_SIZE: OnPaneSized(); return 0;
        case WM_WINDOWPOSCHANGED: OnPaneShown(*reinterpret_cast<const WINDOWPOS*>(lParam)); break;
        case WM_SETFOCUS: PaneFocusView(); return 0;
        case WM_NOTIFY: return OnPaneNotify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_COMMAND:
            if (wParam == MAKEWPARAM(IDC_DEBUG_MORE, BN_CLICKED)) TabRowShowMore(g_frame.tabs);
            return 0;
        case WM_DRAWITEM: TabRowDrawMore(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
        case WM_CTLCOLOREDIT: return AddressColours(reinterpret_cast<HDC>(wParam));
        case WM_TIMER:
            if (wParam == kRefreshTimer) RefreshPane();
            return 0;
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintPane(window); return 0;
        case WM_NCDESTROY: g_frame = {}; break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

std::span<const wchar_t* const> ViewTitles() {
    static const std::array<const wchar_t*, kDebugTabCount> titles = [] {
        std::array<const wchar_t*, kDebugTabCount> all = {};
        std::ranges::transform(kViews, all.begin(), [](const PaneView* view) { return Text(view->title); });
        return all;
    }();
    return titles;
}

bool CreatePaneChildren() {
    g_frame.list.handleKey = PaneHandleFocusKey;
    g_frame.tabs.titles = ViewTitles();
    g_frame.tabs.handleKey = PaneHandleFocusKey;
    g_frame.tabs.enterView = PaneFocusView;
    if (!ListViewCreate(g_frame.list, g_frame.pane, IDC_DEBUG_LIST)) return false;
    g_frame.memory = PaneMemoryCreate(g_frame.pane);
    g_frame.address = PaneAddressCreate(g_frame.pane);
    AccessibleNameAdd(g_frame.memory, Text(L"Memory"));
    AccessibleNameSet(g_frame.address, Text(L"Address"));
    return g_frame.memory != nullptr && g_frame.address != nullptr &&
           TabRowCreate(g_frame.tabs, g_frame.pane, IDC_DEBUG_TABS, IDC_DEBUG_MORE);
}

// Moves the focus from a window of the pane to the next visible one, or with `back` to the previous one.
void FocusNextChild(HWND from, bool back) {
    const std::array<HWND, 3> order = {g_frame.tabs.tabs, g_frame.address, ViewWindow()};
    const auto at = static_cast<std::size_t>(std::ranges::find(order, from) - order.begin());
    const std::size_t step = back ? order.size() - 1 : 1;
    for (std::size_t i = 1; i <= order.size(); ++i) {
        const HWND next = order[(at + i * step) % order.size()];
        if (next == nullptr || IsWindowVisible(next) == FALSE) continue;
        SetFocus(next);
        return;
    }
}

}  // namespace

// --- For the views

const PaneView& PaneCurrentView() { return *kViews[static_cast<std::size_t>(g_frame.selected)]; }
unsigned PaneRefreshCount() { return g_frame.refreshes; }
ListView& PaneList() { return g_frame.list; }

UINT PaneShowMenu(std::span<const MenuItem> items, POINT screen) { return ShowPopupMenu(g_frame.pane, items, screen); }

void PaneCopyRows(UINT command) {
    if (command == kPaneCopyRow || command == kPaneCopyAll) ListViewCopy(g_frame.list, command == kPaneCopyAll);
}

std::optional<WatchKind> PaneAskKind(int row, int column, WatchKind now) {
    std::array<MenuItem, kWatchKinds> items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto kind = static_cast<WatchKind>(i);
        items[i] = {.id = static_cast<UINT>(i + 1), .text = WatchKindName(kind), .checked = kind == now};
    }
    const RECT cell = ListViewCell(g_frame.list, row, column);
    POINT at = {cell.left, cell.bottom};
    ClientToScreen(g_frame.list.window, &at);
    const UINT chosen = PaneShowMenu(items, at);
    return chosen != 0 ? std::optional(static_cast<WatchKind>(chosen - 1)) : std::nullopt;
}

void PaneShowMemory(const std::wstring& expression) { ShowAt(DebugTab::Memory, expression); }
void PaneShowCode(const std::wstring& expression) { ShowAt(DebugTab::Disassembly, expression); }

void PaneFocusView() {
    const HWND view = ViewWindow();
    SetFocus(view != nullptr && IsWindowVisible(view) != FALSE ? view : g_frame.tabs.tabs);
}

bool PaneHandleFocusKey(HWND from, WPARAM key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (key == VK_ESCAPE) {
        FocusEditorFromPane();
    } else if (control && (key == VK_NEXT || key == VK_PRIOR)) {
        const int step = key == VK_NEXT ? 1 : kDebugTabCount - 1;
        SelectView(static_cast<DebugTab>((static_cast<int>(g_frame.selected) + step) % kDebugTabCount));
        if (from != g_frame.tabs.tabs) PaneFocusView();
    } else if (key == VK_TAB && !control) {
        FocusNextChild(from, GetKeyState(VK_SHIFT) < 0);
    } else {
        return false;
    }
    return true;
}

std::wstring PaneAddressText() {
    const std::wstring text = WindowText(g_frame.address);
    const std::size_t first = text.find_first_not_of(L" \t");
    if (first == std::wstring::npos) return {};
    return text.substr(first, text.find_last_not_of(L" \t") - first + 1);
}

// --- For everyone

HWND DebugPaneCreate(HWND parent, int controlId) {
    if (!WindowClassRegister({.name = kClass, .procedure = DebugPaneProc})) return nullptr;
    g_frame.pane =
        CreateWindowExW(WS_EX_CONTROLPARENT, kClass, L"", WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (g_frame.pane == nullptr || !CreatePaneChildren()) {
        AppLogMsg(L"FAIL: DebugPaneCreate error=%lu", GetLastError());
        if (g_frame.pane != nullptr) DestroyWindow(g_frame.pane);
        return nullptr;
    }
    DebugPaneApplyTheme();
    SelectView(static_cast<DebugTab>(g_settings.debugView));  // the view of the last run
    return g_frame.pane;
}

void DebugPaneSelect(DebugTab tab) {
    if (g_frame.pane != nullptr) SelectView(tab);
}

void DebugPaneInvalidate() {
    if (g_frame.waiting || !IsPaneVisible()) return;  // showing the pane calls this again
    // WM_TIMER comes only when the queue holds nothing else, so several posted steps come first.
    g_frame.waiting = SetTimer(g_frame.pane, kRefreshTimer, USER_TIMER_MINIMUM, nullptr) != 0;
}

void PaneCatchUp() {
    if (g_frame.waiting) RefreshPane();
}

void DebugPaneApplyTheme() {
    if (g_frame.pane == nullptr) return;
    InlineEditCancel();
    SendMessageW(g_frame.address, WM_SETFONT, reinterpret_cast<WPARAM>(UiFixedFont()), FALSE);
    ControlApplyTheme(g_frame.address);
    TabRowApplyTheme(g_frame.tabs);
    ListViewApplyTheme(g_frame.list);
    PaneMemoryApplyTheme();
    if (ShowsList()) ListViewShow(g_frame.list, *PaneCurrentView().list);
    ShowPaneContent();
    RedrawWindow(g_frame.pane, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_FRAME);
    DebugPaneInvalidate();
}
