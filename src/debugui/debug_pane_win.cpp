// The frame of the debug pane: its window, which view is shown, and when that reads the program. UI thread only.
#include "debugui/debug_pane.h"

#include "base/handles.h"
#include "base/log.h"
#include "debugui/pane_internal.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <uxtheme.h>

#include <algorithm>
#include <array>

namespace {

constexpr wchar_t kClass[] = L"KVXEDebugPane";
constexpr wchar_t kNoSession[] = L"Start debugging with Debug > Start Debugging to see the program here.";
constexpr wchar_t kRunning[] = L"Running...";
constexpr UINT_PTR kRefreshTimer = 1;
constexpr int kTabsHeight = 26;  // at 96 dpi
constexpr int kAddressHeight = 30;

constexpr std::array<const PaneView*, kDebugTabCount> kViews = {
    &kBreakpointsView, &kStackView, &kRegistersView, &kWatchesView, &kMemoryView, &kThreadsView, &kDisassemblyView};

struct Frame {
    HWND pane = nullptr, tabs = nullptr, more = nullptr, address = nullptr, list = nullptr, memory = nullptr;
    DebugTab selected = DebugTab::Breakpoints;
    std::array<PaneContent, kDebugTabCount> contents;
    std::array<std::wstring, kDebugTabCount> addresses;  // text of the address box, by view
    bool waiting = false;                                // a refresh is due
    unsigned refreshes = 0;
    PaneFonts fonts;
    UniqueFont textFont, fixedFont;
};
Frame g_frame;

PaneContent& Content() { return g_frame.contents[static_cast<std::size_t>(g_frame.selected)]; }
bool IsList() { return !PaneCurrentView().columns.empty(); }
HWND ViewWindow() { return IsList() ? g_frame.list : g_frame.memory; }
bool IsShown() { return g_frame.pane != nullptr && IsWindowVisible(g_frame.pane) != FALSE; }

void Place(HWND child, const RECT& area, bool shown) {
    SetWindowPos(child, nullptr, area.left, area.top, std::max<int>(area.right - area.left, 0),
                 std::max<int>(area.bottom - area.top, 0),
                 SWP_NOZORDER | SWP_NOACTIVATE | (shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
}

RECT AddressArea() {
    RECT area = {};
    GetClientRect(g_frame.pane, &area);
    area.top = PaneScaled(kTabsHeight);
    area.bottom = area.top + (PaneCurrentView().addressCue != nullptr ? PaneScaled(kAddressHeight) : 0);
    return area;
}

// As high as a line of text: the field shows its text at the top.
RECT AddressBox() {
    const RECT area = AddressArea();
    const int height = g_frame.fonts.fixedHeight + PaneScaled(3);
    const int top = (area.top + area.bottom - height) / 2;
    const int left = PaneScaled(8) + 9 * g_frame.fonts.textWidth;
    return {left, top, std::min<LONG>(area.right - PaneScaled(4), left + 26 * g_frame.fonts.fixedWidth), top + height};
}

void Layout() {
    RECT client = {};
    GetClientRect(g_frame.pane, &client);
    PaneTabsPlace(g_frame.tabs, g_frame.more, client.right, PaneScaled(kTabsHeight));
    Place(g_frame.address, AddressBox(), PaneCurrentView().addressCue != nullptr);
    const RECT view = {0, AddressArea().bottom, client.right, client.bottom};
    // Without rows there is nothing to see of a list but its header; the hint takes its place.
    const bool hasRows = !Content().rows.empty() || !IsList();
    Place(g_frame.list, view, IsList() && hasRows);
    Place(g_frame.memory, view, !IsList() && Content().hint.empty());
}

// --- Reading

void ShowContent() {
    PaneContent& content = Content();
    const HWND focus = GetFocus();
    const bool viewHadFocus = focus != nullptr && (focus == g_frame.list || focus == g_frame.memory);
    if (IsList()) PaneListUpdate(content);
    SetWindowTextW(g_frame.pane, content.hint.c_str());
    Layout();
    if (viewHadFocus && IsWindowVisible(focus) == FALSE) SetFocus(g_frame.tabs);
    InvalidateRect(g_frame.pane, nullptr, FALSE);
}

void Refresh() {
    KillTimer(g_frame.pane, kRefreshTimer);
    g_frame.waiting = false;
    ++g_frame.refreshes;
    PaneProgramRead();
    const PaneProgram& program = PaneProgramNow();
    const PaneView& view = PaneCurrentView();
    PaneContent& content = Content();
    content.reveal = -1;
    content.stale = view.ofStop && program.session && !program.stopped;
    if (view.ofStop && !program.session) {
        content = {};
        content.hint = kNoSession;
    } else if (content.stale && content.processId != program.processId) {
        content = {};
        content.hint = kRunning;
    } else if (!content.stale) {
        content.processId = program.processId;
        content.rows.clear();
        content.hint.clear();
        content.problem.clear();
        view.fill(content);
    }
    if (!IsList() && content.hint.empty()) InvalidateRect(g_frame.memory, nullptr, FALSE);
    ShowContent();
}

// --- Painting

void Paint(HDC dc) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    RECT client = {};
    GetClientRect(g_frame.pane, &client);
    PaneFillRect(dc, client, chrome.paneBack);
    const PaneContent& content = Content();
    const HGDIOBJ oldFont = SelectObject(dc, g_frame.fonts.text);
    SetBkMode(dc, TRANSPARENT);
    const RECT row = AddressArea();
    if (PaneCurrentView().addressCue != nullptr) {
        PaneFillRect(dc, {row.left, row.bottom - 1, row.right, row.bottom}, chrome.line);
        RECT label = {PaneScaled(8), row.top, AddressBox().left, row.bottom};
        SetTextColor(dc, chrome.tabText);
        DrawTextW(dc, L"Address", -1, &label, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
        RECT problem = {AddressBox().right + PaneScaled(8), row.top, row.right - PaneScaled(4), row.bottom};
        SetTextColor(dc, chrome.error);
        DrawTextW(dc, content.problem.c_str(), -1, &problem,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    RECT hint = {PaneScaled(12), row.bottom + PaneScaled(12), client.right - PaneScaled(12), client.bottom};
    SetTextColor(dc, PaneQuietColour());
    DrawTextW(dc, content.hint.c_str(), -1, &hint, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, oldFont);
}

void OnPaint(HWND window) {
    PAINTSTRUCT paint = {};
    if (const HDC dc = BeginPaint(window, &paint)) Paint(dc);
    EndPaint(window, &paint);
}

LRESULT OnColour(HDC dc) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    SetTextColor(dc, Content().problem.empty() ? chrome.paneText : chrome.error);
    SetBkColor(dc, chrome.tabActiveBack);
    SetDCBrushColor(dc, chrome.tabActiveBack);
    return reinterpret_cast<LRESULT>(GetStockObject(DC_BRUSH));
}

// --- Selecting

void Select(DebugTab tab) {
    if (static_cast<int>(tab) >= kDebugTabCount) return;
    PaneEditCancel();
    if (PaneCurrentView().addressCue != nullptr)
        g_frame.addresses[static_cast<std::size_t>(g_frame.selected)] = PaneAddressText();
    g_frame.selected = tab;
    SendMessageW(g_frame.tabs, TCM_SETCURSEL, static_cast<WPARAM>(tab), 0);
    SetWindowTextW(g_frame.address, g_frame.addresses[static_cast<std::size_t>(tab)].c_str());
    SendMessageW(g_frame.address, EM_SETCUEBANNER, FALSE, reinterpret_cast<LPARAM>(PaneCurrentView().addressCue));
    InvalidateRect(g_frame.address, nullptr, TRUE);  // Wine leaves the old cue standing
    PaneListShowView(tab);
    if (IsShown())
        Refresh();  // not a moment with the rows of an earlier stop
    else
        ShowContent();
}

LRESULT OnNotify(const NMHDR& header) {
    if (header.hwndFrom == g_frame.tabs) {
        const auto chosen = static_cast<DebugTab>(SendMessageW(g_frame.tabs, TCM_GETCURSEL, 0, 0));
        if (header.code == TCN_SELCHANGE && chosen != g_frame.selected) Select(chosen);
        if (header.code == NM_CLICK) PaneFocusView();
        InvalidateRect(g_frame.tabs, nullptr, FALSE);
        return 0;
    }
    LRESULT result = 0;
    PaneListHandleNotify(header, &result);
    return result;
}

int AverageWidth(HDC dc, HFONT font, int* height) {
    const HGDIOBJ old = SelectObject(dc, font);
    SIZE size = {};
    TEXTMETRICW metrics = {};
    GetTextExtentPoint32W(dc, L"0123456789ABCDEF", 16, &size);
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, old);
    *height = static_cast<int>(metrics.tmHeight);
    return std::max<int>((size.cx + 15) / 16, 1);
}

HFONT MakeFont(int points, const wchar_t* face, BYTE pitch) {
    return CreateFontW(-MulDiv(points, g_ui.dpi, 72), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                       OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, pitch, face);
}

void MakeFonts() {
    UniqueFont text(MakeFont(9, L"Segoe UI", DEFAULT_PITCH));
    UniqueFont fixed(MakeFont(g_settings.outputFontSize, g_settings.outputFont, FIXED_PITCH | FF_MODERN));
    if (!text || !fixed) return;
    PaneFonts& fonts = g_frame.fonts;
    fonts.text = text.Get();
    fonts.fixed = fixed.Get();
    int textHeight = 0;
    const HDC dc = GetDC(g_frame.pane);
    fonts.textWidth = AverageWidth(dc, fonts.text, &textHeight);
    fonts.fixedWidth = AverageWidth(dc, fonts.fixed, &fonts.fixedHeight);
    ReleaseDC(g_frame.pane, dc);
    fonts.lineHeight = std::max(textHeight, fonts.fixedHeight) + PaneScaled(5);
    fonts.fixedHeight += PaneScaled(2);
    for (HWND each : {g_frame.tabs, g_frame.list})
        SendMessageW(each, WM_SETFONT, reinterpret_cast<WPARAM>(fonts.text), FALSE);
    SendMessageW(g_frame.address, WM_SETFONT, reinterpret_cast<WPARAM>(fonts.fixed), FALSE);
    g_frame.textFont = std::move(text);  // the old ones go only now that no window uses them
    g_frame.fixedFont = std::move(fixed);
}

void OnShown(const WINDOWPOS& position) {
    if ((position.flags & SWP_SHOWWINDOW) != 0 && g_frame.tabs != nullptr) DebugPaneInvalidate();
}

LRESULT CALLBACK PaneProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            if (g_frame.tabs != nullptr) Layout();
            return 0;
        case WM_WINDOWPOSCHANGED: OnShown(*reinterpret_cast<const WINDOWPOS*>(lParam)); break;
        case WM_SETFOCUS: PaneFocusView(); return 0;
        case WM_NOTIFY: return OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_COMMAND:
            if (wParam == MAKEWPARAM(IDC_DEBUG_MORE, BN_CLICKED)) PaneMoreShowMenu(g_frame.tabs, g_frame.more);
            return 0;
        case WM_DRAWITEM: PaneMoreDraw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
        case WM_CTLCOLOREDIT: return OnColour(reinterpret_cast<HDC>(wParam));
        case WM_TIMER:
            if (wParam == kRefreshTimer) Refresh();
            return 0;
        case WM_ERASEBKGND: return 1;
        case WM_PAINT:
            if (g_frame.refreshes == 0) DebugPaneInvalidate();
            OnPaint(window);
            return 0;
        case WM_NCDESTROY: g_frame = {}; break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

bool CreateChildren() {
    g_frame.list = PaneListCreate(g_frame.pane);
    g_frame.memory = PaneMemoryCreate(g_frame.pane);
    g_frame.address = PaneAddressCreate(g_frame.pane);
    g_frame.more = PaneMoreCreate(g_frame.pane);
    g_frame.tabs = PaneTabsCreate(g_frame.pane);
    if (g_frame.tabs == nullptr || g_frame.more == nullptr || g_frame.address == nullptr || g_frame.list == nullptr ||
        g_frame.memory == nullptr)
        return false;
    for (int i = 0; i < kDebugTabCount; ++i) {
        TCITEMW item = {};
        item.mask = TCIF_TEXT;
        item.pszText =
            const_cast<wchar_t*>(kViews[static_cast<std::size_t>(i)]->title);  // read only, in spite of its type
        SendMessageW(g_frame.tabs, TCM_INSERTITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    }
    return true;
}

}  // namespace

// --- For the views

const PaneFonts& PaneFontsNow() { return g_frame.fonts; }
int PaneScaled(int pixels) { return MulDiv(pixels, g_ui.dpi, USER_DEFAULT_SCREEN_DPI); }
const PaneView& PaneCurrentView() { return *kViews[static_cast<std::size_t>(g_frame.selected)]; }
const wchar_t* PaneTitle(DebugTab tab) { return kViews[static_cast<std::size_t>(tab)]->title; }
unsigned PaneRefreshCount() { return g_frame.refreshes; }

COLORREF PaneMix(COLORREF a, COLORREF b, int percentOfB) {
    const auto part = [=](int shift) {
        const int first = static_cast<int>(a >> shift & 0xFF), second = static_cast<int>(b >> shift & 0xFF);
        return static_cast<COLORREF>(first + (second - first) * percentOfB / 100) << shift;
    };
    return part(0) | part(8) | part(16);
}

COLORREF PaneQuietColour() { return PaneMix(ThemeCurrentChrome().paneText, ThemeCurrentChrome().paneBack, 38); }

void PaneFillRect(HDC dc, const RECT& area, COLORREF colour) {
    SetDCBrushColor(dc, colour);
    FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void PaneFocusView() {
    const HWND view = ViewWindow();
    SetFocus(view != nullptr && IsWindowVisible(view) != FALSE ? view : g_frame.tabs);
}

bool PaneHandleFocusKey(HWND from, WPARAM key) {
    if (key == VK_ESCAPE) {
        FocusCurrentEditor();
        return true;
    }
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (control && (key == VK_NEXT || key == VK_PRIOR)) {
        const int step = key == VK_NEXT ? 1 : kDebugTabCount - 1;
        Select(static_cast<DebugTab>((static_cast<int>(g_frame.selected) + step) % kDebugTabCount));
        if (from != g_frame.tabs) PaneFocusView();
        return true;
    }
    if (key != VK_TAB || control) return false;
    const std::array<HWND, 3> order = {g_frame.tabs, g_frame.address, ViewWindow()};
    const auto at = static_cast<std::size_t>(std::ranges::find(order, from) - order.begin());
    const std::size_t step = GetKeyState(VK_SHIFT) < 0 ? order.size() - 1 : 1;
    for (std::size_t i = 1; i <= order.size(); ++i) {
        const HWND next = order[(at + i * step) % order.size()];
        if (next == nullptr || IsWindowVisible(next) == FALSE) continue;
        SetFocus(next);
        break;
    }
    return true;
}

std::wstring PaneAddressText() {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(g_frame.address)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(g_frame.address, text.data(), static_cast<int>(text.size()))));
    const std::size_t first = text.find_first_not_of(L" \t");
    if (first == std::wstring::npos) return {};
    return text.substr(first, text.find_last_not_of(L" \t") - first + 1);
}

// --- For everyone

HWND DebugPaneCreate(HWND parent, int controlId) {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof(description);
    description.lpfnWndProc = PaneProc;
    description.hInstance = g_ui.hInstance;
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = kClass;
    if (RegisterClassExW(&description) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) return nullptr;
    g_frame.pane =
        CreateWindowExW(WS_EX_CONTROLPARENT, kClass, L"", WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (g_frame.pane == nullptr || !CreateChildren()) {
        AppLogMsg(L"FAIL: DebugPaneCreate error=%lu", GetLastError());
        if (g_frame.pane != nullptr) DestroyWindow(g_frame.pane);
        return nullptr;
    }
    DebugPaneApplyTheme();
    return g_frame.pane;
}

void DebugPaneSelect(DebugTab tab) {
    if (g_frame.pane != nullptr) Select(tab);
}

void DebugPaneInvalidate() {
    if (g_frame.waiting || !IsShown()) return;  // showing the pane asks again
    // A timer's message is made only when nothing else waits in the queue: a row of posted steps comes first.
    g_frame.waiting = SetTimer(g_frame.pane, kRefreshTimer, USER_TIMER_MINIMUM, nullptr) != 0;
}

void DebugPaneApplyTheme() {
    if (g_frame.pane == nullptr) return;
    PaneEditCancel();
    MakeFonts();
    PaneListApplyTheme();
    PaneMemoryApplyTheme();
    PaneListShowView(g_frame.selected);
    ShowContent();
    RedrawWindow(g_frame.pane, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_FRAME);
    DebugPaneInvalidate();
}
