// Collects the input for ComputePaneLayout and moves the windows. Keeps the size and place of the main window. UI
// thread.
#include "app/layout.h"

#include "ai/ai_replace.h"
#include "app/app_state.h"
#include "app/main_window.h"
#include "app/move_order.h"
#include "app/pane_titles.h"
#include "app/panes.h"
#include "app/split_ratios.h"
#include "app/splitters.h"
#include "app/start_page.h"
#include "commands/quick_open.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "disasm/asm_pane.h"
#include "documents/document_row.h"
#include "documents/sticky_label.h"
#include "resources/ids.h"
#include "search/find_bar.h"
#include "tabs/tab_bar.h"
#include "ui/dpi.h"
#include "ui/late_size.h"
#include "ui/panes.h"

#include <iterator>
#include <optional>
#include <span>
#include <vector>

namespace {

SplitRatios g_ratios;
PaneLayout g_placed;  // by the last MainWindow_Layout

LayoutInput LayoutInputOf(int width, int height) {
    const Settings& settings = g_app.settings;
    return {.clientWidth = width,
            .clientHeight = height,
            .dpi = g_app.dpi,
            .toolbarHeight = settings.showToolbar != 0 ? ToolbarHeight() : 0,
            .statusHeight = settings.showStatusbar != 0 ? StatusBarHeight() : 0,
            .tabHeight = TabBarHeight(),
            .titleHeight = PaneTitleHeight(),
            .startPageBelow = StartPageBelow(),
            .stickyHeight = StickyHeaderHeight(),
            .findBarHeight = FindBarHeight(),
            .panes = PaneWishes(),
            .outputSplit = settings.splitter,
            .sideWidth = UiScaled(settings.aiSidebarWidth),
            .treeWidth = UiScaled(settings.projectTreeWidth + settings.projectTreeExtra),
            .debugWidth = UiScaled(settings.debugPaneWidth),
            .resultsWidth = UiScaled(settings.resultsWidth),
            .outlineHeight = UiScaled(settings.outlineHeight)};
}

PaneRect PlaceOf(HWND child) {
    RECT now = {};
    GetWindowRect(child, &now);
    MapWindowPoints(nullptr, g_app.hMainWnd, reinterpret_cast<POINT*>(&now), 2);
    return {now.left, now.top, now.right, now.bottom};
}

bool IsShown(HWND child) { return (GetWindowLongW(child, GWL_STYLE) & WS_VISIBLE) != 0; }

// What has to be done with a window. Nothing when it is where it should be: moving it there once more would cost several
// system calls.
std::optional<PaneMove> MoveOf(const PanePart& part) {
    if (part.window == nullptr) return std::nullopt;
    const bool shown = IsShown(part.window);
    const PaneRect now = shown ? PlaceOf(part.window) : PaneRect();
    if (part.area.empty() ? !shown : shown && now == part.area) return std::nullopt;
    return PaneMove{.from = now, .to = part.area};
}

// An empty rectangle hides the window. DeferWindowPos and SWP_DEFERERASE let a resize repaint only once.
void AddMove(HDWP& moves, HWND child, const PaneMove& move) {
    if (moves == nullptr) return;
    UINT flags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_DEFERERASE;
    flags |= move.to.empty() ? SWP_HIDEWINDOW | SWP_NOMOVE | SWP_NOSIZE : SWP_SHOWWINDOW;
    if (move.covered) flags |= SWP_NOCOPYBITS;
    moves = DeferWindowPos(moves, child, nullptr, move.to.left, move.to.top, move.to.width(), move.to.height(), flags);
}

void MoveParts(std::span<const PanePart> parts) {
    std::vector<HWND> windows;
    std::vector<PaneMove> moves;
    for (const PanePart& part : parts) {
        const std::optional<PaneMove> move = MoveOf(part);
        if (!move) continue;
        windows.push_back(part.window);
        moves.push_back(*move);
    }
    HDWP deferred = BeginDeferWindowPos(static_cast<int>(moves.size()));
    for (const std::size_t i : OrderMoves(moves)) AddMove(deferred, windows[i], moves[i]);
    if (deferred != nullptr) EndDeferWindowPos(deferred);
}

void PlaceChildren(const PaneLayout& layout) {
    PaneRect toolbar = layout.toolbar;
    if (!toolbar.empty()) toolbar.top += ToolbarInset();  // EraseFrame paints the strip above it
    const PanePart frame[] = {
        {g_app.hToolbar, toolbar},
        {g_app.hTabCtrl, layout.tabs},
        {g_app.hStickyHeader, layout.sticky},
        {FindBarWindow(), layout.findBar},
        {SplitterWindow(Splitter::Output, !layout.outputSplitter.empty()), layout.outputSplitter},
        {SplitterWindow(Splitter::Debug, !layout.debugSplitter.empty()), layout.debugSplitter},
        {SplitterWindow(Splitter::Side, !layout.sideSplitter.empty()), layout.sideSplitter},
        {SplitterWindow(Splitter::Tree, !layout.treeSplitter.empty()), layout.treeSplitter},
        {SplitterWindow(Splitter::ErrorList, !layout.errorListSplitter.empty()), layout.errorListSplitter},
        {SplitterWindow(Splitter::Results, !layout.resultsSplitter.empty()), layout.resultsSplitter},
        {SplitterWindow(Splitter::Outline, !layout.outlineSplitter.empty()), layout.outlineSplitter},
        {g_app.hStartPage, layout.startPage},
        {g_app.hStatusBar, layout.status},
        // Only the active editor is visible; another one is placed when it is shown.
        {g_app.hEditor, layout.editor},
    };
    // The panes are first, because a list that moves erases at once what the moves before it have uncovered.
    std::vector<PanePart> parts = PaneParts(layout);
    const std::vector<PanePart> titles = PaneTitleParts(layout);
    parts.insert(parts.end(), titles.begin(), titles.end());
    parts.insert(parts.end(), std::begin(frame), std::end(frame));
    MoveParts(parts);
    if (!layout.status.empty()) StatusBarLayout(layout.status.width());
}

}  // namespace

void MainWindow_Layout() {
    RECT client = {};
    if (g_app.hMainWnd == nullptr || !GetClientRect(g_app.hMainWnd, &client) || IsIconic(g_app.hMainWnd)) return;
    SizeStepBegins();
    CreateWantedPanes();
    PanesRemember();
    const PaneSpec* focused = PaneOfWindow(GetFocus());
    g_placed = ComputePaneLayout(LayoutInputOf(client.right, client.bottom));
    PlaceChildren(g_placed);
    SplittersPlaceGrips();
    AsmPaneOnPlaced();
    QuickOpenPlace();
    AiRenewMarks();
    // A hidden pane would keep the keyboard focus.
    if (focused != nullptr && IsWindowVisible(*focused->window) == FALSE) FocusCurrentEditor();
}

const PaneLayout& MainWindow_Placed() { return g_placed; }

// What the bars divide in a client area of this size.
static BarArea BarAreaOf(int width, int height) {
    const Settings& settings = g_app.settings;
    return {.top = (settings.showToolbar != 0 ? ToolbarHeight() : 0) + TabBarHeight(),
            .bottom = height - (settings.showStatusbar != 0 ? StatusBarHeight() : 0),
            .width = width,
            .dpi = g_app.dpi};
}

static BarArea BarAreaNow() {
    RECT client = {};
    GetClientRect(g_app.hMainWnd, &client);
    return BarAreaOf(static_cast<int>(client.right), static_cast<int>(client.bottom));
}

int FirstOutputSplit() {
    const BarArea area = BarAreaNow();
    return PositionAt(kFirstOutputRatio, area.top, area.bottom);
}

void CaptureSplitterRatio() { RatiosCapture(g_ratios, g_app.settings, BarAreaNow()); }

void RestoreSplitterRatio() { RatiosRestore(g_ratios, g_app.settings, BarAreaNow()); }

void ApplyLayoutRatios(int width, int height) { RatiosApply(g_ratios, g_app.settings, BarAreaOf(width, height)); }

void MainWnd_OnSize(WPARAM kind, int width, int height) {
    if (kind != SIZE_MINIMIZED) ApplyLayoutRatios(width, height);
    MainWnd_NotePlace(g_app.hMainWnd);
    MainWindow_Layout();
    SizeStepPaint(g_app.hMainWnd);
}

void MainWnd_OnMinMaxInfo(MINMAXINFO& info) {
    info.ptMinTrackSize = {UiScaled(kMinimumWidth), UiScaled(kMinimumHeight)};
}
