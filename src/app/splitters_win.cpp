#include "app/splitters.h"

#include "app/app_state.h"
#include "app/main_window.h"
#include "base/events.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/late_size.h"
#include "ui/mouse_drag.h"
#include "ui/paint.h"
#include "ui/window_class.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

namespace {

constexpr wchar_t kSplitterClass[] = L"KxeSplitter";
constexpr wchar_t kGripClass[] = L"KxeSplitterGrip";
constexpr int kGripBeside = 3;     // at 96 dpi, on each side of the bar, which is too thin to be hit
constexpr int kKeyStep = 8;        // pixels that an arrow key moves a bar; with Ctrl one
constexpr int kAllTheWay = 20000;  // more than any window

// A bar: its window's id and name, and its setting, which has the value `first` at a first start.
struct SplitterRow {
    Splitter kind;
    int id;
    const wchar_t* name;  // for screen readers
    std::int32_t Settings::*setting;
    int first;                                 // of the output's bar: FirstOutputSplit
    std::int32_t Settings::*beyond = nullptr;  // gets what is more than `most`
    int most = 0;
};
constexpr SplitterRow kSplitters[] = {
    {Splitter::Output, IDC_SPLIT_OUTPUT, English(L"Height of the Output"), &Settings::splitter, 0},
    {Splitter::Side, IDC_SPLIT_ASM, English(L"Width of the Side Panes"), &Settings::aiSidebarWidth, kFirstSideWidth},
    {Splitter::Tree, IDC_SPLIT_TREE, English(L"Width of the Project Tree"), &Settings::projectTreeWidth, 200,
     &Settings::projectTreeExtra, 200},
    {Splitter::Debug, IDC_SPLIT_DEBUG, English(L"Width of the Debug Pane"), &Settings::debugPaneWidth, 0},
    {Splitter::ErrorList, IDC_SPLIT_ERROR_LIST, English(L"Height of the Error List"), &Settings::errorListHeight, 150},
    {Splitter::Results, IDC_SPLIT_RESULTS, English(L"Width of the Search Results"), &Settings::resultsWidth, 0},
    {Splitter::Outline, IDC_SPLIT_OUTLINE, English(L"Height of the Outline"), &Settings::outlineHeight, 0},
};
static_assert(std::size(kSplitters) == kSplitterCount);

struct Splitters {
    std::array<HWND, kSplitterCount> windows = {};  // in the order of kSplitters
    std::array<HWND, kSplitterCount> grips = {};    // of the windows
    bool dragged = false;
    POINT start = {};       // screen coordinates, because the bar itself moves
    int startValue = 0;     // of the drag, as it is shown
    int dragUndo = 0;       // of the setting when the drag began
    int undoValue = 0;      // the same when the bar got the keyboard
    HWND before = nullptr;  // had the keyboard before the bars
};
Splitters g_splitters;

const SplitterRow& RowOf(HWND window) {
    for (std::size_t i = 0; i < std::size(kSplitters); ++i)
        if (g_splitters.windows[i] == window) return kSplitters[i];
    return kSplitters[0];
}

void SetSplitter(const SplitterRow& row, int value) {
    const SettingsEdit edit;  // the change of a setting lays out the panes
    g_app.settings.*row.setting = row.beyond != nullptr ? std::min(value, row.most) : value;
    if (row.beyond != nullptr) g_app.settings.*row.beyond = std::max(value - row.most, 0);
}

int SplitterSetting(const SplitterRow& row) {
    return g_app.settings.*row.setting + (row.beyond != nullptr ? g_app.settings.*row.beyond : 0);
}

void BeginSplitterDrag(HWND window) {
    g_splitters.dragged = true;
    GetCursorPos(&g_splitters.start);
    g_splitters.startValue = SplitterValueOf(MainWindow_Placed(), RowOf(window).kind, g_app.dpi);
    g_splitters.dragUndo = SplitterSetting(RowOf(window));
    MouseDragBegin(window);
}

void DragSplitter(const SplitterRow& row) {
    if (!g_splitters.dragged) return;
    POINT now = {};
    GetCursorPos(&now);
    const auto moved = [](LONG from, LONG to) { return static_cast<int>(to - from); };
    SetSplitter(row, DraggedSplitter(row.kind, g_splitters.startValue, moved(g_splitters.start.x, now.x),
                                     moved(g_splitters.start.y, now.y), g_app.dpi));
    SizeStepPaintNow(g_app.hMainWnd);
}

void EndSplitterDrag() {
    if (std::exchange(g_splitters.dragged, false)) CaptureSplitterRatio();
    ReleaseCapture();
}

// The mouse was lost before its button went up. The bar stays where it is, but for Esc.
void OnSplitterLostMouse(const SplitterRow& row) {
    if (!std::exchange(g_splitters.dragged, false)) return;
    if (MouseDragIsTakenBack()) SetSplitter(row, g_splitters.dragUndo);
    CaptureSplitterRatio();
}

void RestoreSplitter(const SplitterRow& row) {
    SetSplitter(row, row.kind == Splitter::Output ? FirstOutputSplit() : row.first);
    CaptureSplitterRatio();
}

// ------------------------------------------------------------------------------------------------------------- keys

void LeaveSplitters() {
    CaptureSplitterRatio();
    const HWND before = std::exchange(g_splitters.before, nullptr);
    if (before != nullptr && IsWindowVisible(before) != FALSE)
        SetFocus(before);
    else
        FocusCurrentEditor();
    g_events.statusText(L"");
}

void FocusSplitterBeside(HWND window, bool forward) {
    const auto count = static_cast<int>(std::size(kSplitters));
    int at = window != nullptr ? 0 : count - 1;
    while (window != nullptr && at < count && g_splitters.windows[static_cast<std::size_t>(at)] != window) ++at;
    for (int i = 1; i <= count; ++i) {
        const auto next = static_cast<std::size_t>((at + (forward ? i : count - i)) % count);
        if (g_splitters.windows[next] == nullptr || IsWindowVisible(g_splitters.windows[next]) == FALSE) continue;
        SetFocus(g_splitters.windows[next]);
        return;
    }
}

void MoveByKey(const SplitterRow& row, int by) {
    const int now = SplitterValueOf(MainWindow_Placed(), row.kind, g_app.dpi);
    SetSplitter(row, DraggedSplitter(row.kind, now, by, by, g_app.dpi));
}

bool OnSplitterKey(HWND window, WPARAM key) {
    const SplitterRow& row = RowOf(window);
    const int step = GetKeyState(VK_CONTROL) < 0 ? 1 : kKeyStep;
    switch (key) {
        case VK_UP:
        case VK_LEFT: MoveByKey(row, -step); return true;
        case VK_DOWN:
        case VK_RIGHT: MoveByKey(row, step); return true;
        case VK_HOME: MoveByKey(row, -kAllTheWay); return true;
        case VK_END: MoveByKey(row, kAllTheWay); return true;
        case VK_BACK: RestoreSplitter(row); return true;
        case VK_TAB: FocusSplitterBeside(window, GetKeyState(VK_SHIFT) >= 0); return true;
        case VK_ESCAPE: SetSplitter(row, g_splitters.undoValue); [[fallthrough]];
        case VK_RETURN: LeaveSplitters(); return true;
        default: return false;
    }
}

void OnSplitterFocus(HWND window, bool has) {
    if (has) {
        g_splitters.undoValue = SplitterSetting(RowOf(window));
        g_events.statusText(
            Text(L"Arrows, Home and End move the bar, Tab goes to the next one, Enter ends, Esc takes it back"));
    }
    InvalidateRect(window, nullptr, TRUE);
}

LRESULT EraseSplitter(HWND window, HDC dc) {
    RECT area = {};
    GetClientRect(window, &area);
    FillArea(dc, area, GetFocus() == window ? ThemeCurrentChrome().accent : ThemeCurrentChrome().line);
    return 1;
}

// ------------------------------------------------------------------------------------------------------------ grips
// A grip lies over a bar and a little of the panes beside it. It paints nothing and hides nothing (WS_EX_TRANSPARENT), and
// gives the mouse to the bar.

LRESULT CALLBACK GripProc(HWND grip, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto bar = reinterpret_cast<HWND>(GetWindowLongPtrW(grip, GWLP_USERDATA));
    switch (message) {
        case WM_SETCURSOR:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: return SplitterProc(bar, message, wParam, lParam);
        case WM_ERASEBKGND: return 1;
        default: return DefWindowProcW(grip, message, wParam, lParam);
    }
}

HWND CreateGrip(HWND bar, const SplitterRow& row) {
    static const bool registered =
        WindowClassRegister({.name = kGripClass, .procedure = GripProc, .style = CS_DBLCLKS});
    if (!registered) return nullptr;
    const std::wstring name = TextWith(L"Grip: {1}", {Text(row.name)});  // for screen readers
    const HWND grip = CreateWindowExW(WS_EX_TRANSPARENT, kGripClass, name.c_str(), WS_CHILD, 0, 0, 0, 0, g_app.hMainWnd,
                                      nullptr, g_app.hInstance, nullptr);
    if (grip != nullptr) SetWindowLongPtrW(grip, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(bar));
    return grip;
}

constexpr UINT kQuietly = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOREDRAW;

bool IsShown(HWND window) { return (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0; }

HWND GripOf(HWND bar) {
    const auto at = std::ranges::find(g_splitters.windows, bar) - g_splitters.windows.begin();
    return at < kSplitterCount ? g_splitters.grips[static_cast<std::size_t>(at)] : nullptr;
}

RECT PlaceInFrame(HWND window) {
    RECT area = {};
    GetWindowRect(window, &area);
    MapWindowPoints(nullptr, g_app.hMainWnd, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

void HideGrip(HWND grip) {
    if (IsShown(grip)) SetWindowPos(grip, nullptr, 0, 0, 0, 0, kQuietly | SWP_NOMOVE | SWP_NOSIZE | SWP_HIDEWINDOW);
}

void PlaceGrip(HWND grip, HWND bar) {
    RECT area = PlaceInFrame(bar);
    const bool up = SplitterMovesUp(RowOf(bar).kind);
    InflateRect(&area, up ? 0 : UiScaled(kGripBeside), up ? UiScaled(kGripBeside) : 0);
    const RECT now = PlaceInFrame(grip);
    if (IsShown(grip) && EqualRect(&now, &area) != FALSE) return;
    SetWindowPos(grip, nullptr, area.left, area.top, area.right - area.left, area.bottom - area.top,
                 kQuietly | SWP_SHOWWINDOW);
}

// Above all other windows of the frame.
void RaiseGrips() {
    const auto isGrip = [](HWND window) {
        return window != nullptr && std::ranges::find(g_splitters.grips, window) != g_splitters.grips.end();
    };
    const auto grips = std::ranges::count_if(g_splitters.grips, [](HWND grip) { return grip != nullptr; });
    std::ptrdiff_t above = 0;
    for (HWND each = GetWindow(g_app.hMainWnd, GW_CHILD); isGrip(each); each = GetWindow(each, GW_HWNDNEXT)) ++above;
    if (above == grips) return;
    for (const HWND grip : g_splitters.grips)
        if (grip != nullptr)
            SetWindowPos(grip, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOREDRAW);
}

HWND CreateSplitter(const SplitterRow& row) {
    // EraseSplitter fills the bar, whatever the brush of its class.
    static const bool registered = WindowClassRegister({.name = kSplitterClass,
                                                        .procedure = SplitterProc,
                                                        .style = CS_DBLCLKS,
                                                        .background = reinterpret_cast<HBRUSH>(COLOR_BTNSHADOW + 1)});
    if (!registered) return nullptr;
    return CreateWindowExW(0, kSplitterClass, Text(row.name), WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0,
                           g_app.hMainWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(row.id)), g_app.hInstance,
                           nullptr);
}

}  // namespace

HWND SplitterWindow(Splitter kind, bool wanted) {
    for (std::size_t i = 0; i < std::size(kSplitters); ++i) {
        if (kSplitters[i].kind != kind) continue;
        HWND& window = g_splitters.windows[i];
        if (window == nullptr && wanted) window = CreateSplitter(kSplitters[i]);
        return window;
    }
    return nullptr;
}

// In a slow drag of the frame the grips are hidden until the hand is still: the mouse is busy, and under Wine each move of a
// grip paints once more what is beside its bar.
void SplittersPlaceGrips() {
    const bool later = SizeWaitsWithFrame(SplittersPlaceGrips);
    for (std::size_t i = 0; i < std::size(kSplitters); ++i) {
        const HWND bar = g_splitters.windows[i];
        HWND& grip = g_splitters.grips[i];
        if (bar == nullptr) continue;
        if (grip == nullptr) grip = CreateGrip(bar, kSplitters[i]);
        if (later || !IsShown(bar))
            HideGrip(grip);
        else
            PlaceGrip(grip, bar);
    }
    if (!later) RaiseGrips();
}

void SplittersTakeKeys() {
    const HWND focus = GetFocus();
    for (const HWND window : g_splitters.windows)
        if (window != nullptr && window == focus) return FocusSplitterBeside(focus, true);
    g_splitters.before = focus;
    FocusSplitterBeside(nullptr, true);
    if (GetFocus() == focus) g_events.statusText(Text(L"No pane is shown whose size could be changed"));
}

void SplittersRestoreSizes() {
    for (const SplitterRow& row : kSplitters) RestoreSplitter(row);
}

LRESULT CALLBACK SplitterProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const SplitterRow& row = RowOf(window);
    switch (message) {
        case WM_SETCURSOR:
            SetCursor(LoadCursorW(nullptr, SplitterMovesUp(row.kind) ? IDC_SIZENS : IDC_SIZEWE));
            return TRUE;
        case WM_WINDOWPOSCHANGING:
            // Under Wine the moves of the grip would leave strips of the frame's ground in the picture of the bar.
            if (IsShown(GripOf(window))) reinterpret_cast<WINDOWPOS*>(lParam)->flags |= SWP_NOCOPYBITS;
            return 0;
        case WM_ERASEBKGND: return EraseSplitter(window, reinterpret_cast<HDC>(wParam));
        case WM_LBUTTONDOWN: BeginSplitterDrag(window); return 0;
        case WM_LBUTTONDBLCLK: RestoreSplitter(row); return 0;
        case WM_MOUSEMOVE: DragSplitter(row); return 0;
        case WM_LBUTTONUP: EndSplitterDrag(); return 0;
        case WM_CAPTURECHANGED: OnSplitterLostMouse(row); return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: OnSplitterFocus(window, message == WM_SETFOCUS); return 0;
        case WM_KEYDOWN: return OnSplitterKey(window, wParam) ? 0 : DefWindowProcW(window, message, wParam, lParam);
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}
