// Gathers what the pane arithmetic asks for and moves the windows. UI thread only.
#include "app/layout.h"

#include "app/app_state.h"
#include "app/main_window.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "debugui/debug_pane.h"
#include "resources/ids.h"
#include "tabs/tab_bar.h"

#include <algorithm>

namespace {

constexpr int kStickyHeight = 22;   // at 96 dpi
constexpr int kMinimumWidth = 480;  // of the whole window, at 96 dpi
constexpr int kMinimumHeight = 320;

LayoutRatios g_ratios;

int Scaled(int length) { return MulDiv(length, g_app.dpi, 96); }

LayoutInput InputOf(int width, int height) {
    const Settings& settings = g_app.settings;
    return {.clientWidth = width,
            .clientHeight = height,
            .dpi = g_app.dpi,
            .toolbarHeight = settings.showToolbar != 0 ? ToolbarHeight() : 0,
            .statusHeight = settings.showStatusbar != 0 ? StatusBarHeight() : 0,
            .tabHeight = TabBarHeight(),
            // Always there: a line that came and went with its text would make the editor jump.
            .stickyHeight = Scaled(kStickyHeight),
            .showOutput = g_app.showOutput,
            .showErrorList = settings.showErrorList != 0,
            .showTerminal = settings.showTerminal != 0,
            .showAsm = g_app.showAsmPane,
            .showAi = settings.showAiSidebar != 0,
            .showTree = settings.showProjectTree != 0,
            .showDebug = g_app.showDebugPane && g_app.hDebugPane != nullptr,
            .outputSplit = settings.splitter,
            .sideWidth = Scaled(settings.aiSidebarWidth),
            .treeWidth = Scaled(settings.projectTreeWidth),
            .errorListHeight = Scaled(settings.errorListHeight),
            .debugWidth = g_app.debugPaneWidth};
}

// Moves one child; an empty rectangle hides it. The deferral keeps a resize to one repaint.
void Place(HDWP& moves, HWND child, const PaneRect& area) {
    if (child == nullptr || moves == nullptr) return;
    if (area.empty()) {
        moves = DeferWindowPos(moves, child, nullptr, 0, 0, 0, 0,
                               SWP_HIDEWINDOW | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        return;
    }
    moves = DeferWindowPos(moves, child, nullptr, area.left, area.top, area.width(), area.height(),
                           SWP_SHOWWINDOW | SWP_NOZORDER | SWP_NOACTIVATE);
}

void PlaceAll(const PaneLayout& layout) {
    PaneRect toolbar = layout.toolbar;
    if (!toolbar.empty()) toolbar.top += ToolbarInset();  // the window paints the strip above it
    HDWP moves = BeginDeferWindowPos(20);
    const struct {
        HWND child;
        const PaneRect& area;
    } places[] = {
        {g_app.hToolbar, toolbar},
        {g_app.hTabCtrl, layout.tabs},
        {g_app.hStickyHeader, layout.sticky},
        {GetDlgItem(g_app.hMainWnd, IDC_SPLIT_OUTPUT), layout.outputSplitter},
        {g_app.hOutput, layout.output},
        {g_app.hErrorList, layout.errorList},
        {g_app.hTerminal, layout.terminal},
        {GetDlgItem(g_app.hMainWnd, IDC_SPLIT_DEBUG), layout.debugSplitter},
        {g_app.hDebugPane, layout.debugPane},
        {GetDlgItem(g_app.hMainWnd, IDC_SPLIT_ASM), layout.sideSplitter},
        {g_app.hAsmPane, layout.asmPane},
        {g_app.hAiChat, layout.aiChat},
        {g_app.hAiInput, layout.aiInput},
        {g_app.hAiSend, layout.aiSend},
        {GetDlgItem(g_app.hMainWnd, IDC_SPLIT_TREE), layout.treeSplitter},
        {g_app.hProjectTree, layout.tree},
        {g_app.hStatusBar, layout.status},
    };
    for (const auto& place : places) Place(moves, place.child, place.area);
    // Only the active editor is on the screen; the others take their place when they are shown.
    Place(moves, g_app.hEditor, layout.editor);
    if (moves != nullptr) EndDeferWindowPos(moves);
    if (!layout.status.empty()) StatusBarLayout(layout.status.width());
}

}  // namespace

void MainWindow_Layout() {
    RECT client = {};
    if (g_app.hMainWnd == nullptr || !GetClientRect(g_app.hMainWnd, &client) || IsIconic(g_app.hMainWnd)) return;
    // Made when it is first shown: a start should not pay for windows that it does not show.
    if (g_app.showDebugPane && g_app.hDebugPane == nullptr)
        g_app.hDebugPane = DebugPaneCreate(g_app.hMainWnd, IDC_DEBUG_PANE);
    const PaneLayout layout = ComputePaneLayout(InputOf(client.right, client.bottom));
    PlaceAll(layout);
}

// The part of the client area that the output bar divides.
static void OutputSpan(int height, int* top, int* bottom) {
    const Settings& settings = g_app.settings;
    *top = (settings.showToolbar != 0 ? ToolbarHeight() : 0) + TabBarHeight();
    *bottom = height - (settings.showStatusbar != 0 ? StatusBarHeight() : 0);
}

void CaptureSplitterRatio() {
    RECT client = {};
    if (!GetClientRect(g_app.hMainWnd, &client) || client.right <= 0) return;
    int top = 0;
    int bottom = 0;
    OutputSpan(client.bottom, &top, &bottom);
    g_app.settings.splitter = ClampSplitter(bottom, top, g_app.settings.splitter);
    g_ratios.output = RatioOf(g_app.settings.splitter, top, bottom);
    g_ratios.side = RatioOf(Scaled(g_app.settings.aiSidebarWidth), 0, client.right);
}

void ApplyLayoutRatios(int width, int height) {
    if (g_ratios.output <= 0.0) return;
    int top = 0;
    int bottom = 0;
    OutputSpan(height, &top, &bottom);
    if (bottom > top) g_app.settings.splitter = ClampSplitter(bottom, top, PositionAt(g_ratios.output, top, bottom));
    const int side = MulDiv(PositionAt(g_ratios.side, 0, width), 96, g_app.dpi);
    g_app.settings.aiSidebarWidth = std::clamp(side, 150, 600);
}

void MainWnd_NotePlace(HWND window) {
    WINDOWPLACEMENT place = {};
    place.length = sizeof place;
    if (GetWindowPlacement(window, &place) == FALSE) return;
    const RECT& normal = place.rcNormalPosition;
    g_app.windowPlace = {.known = true,
                         .left = static_cast<int>(normal.left),
                         .top = static_cast<int>(normal.top),
                         .width = static_cast<int>(normal.right - normal.left),
                         .height = static_cast<int>(normal.bottom - normal.top),
                         .maximised = place.showCmd == SW_SHOWMAXIMIZED};
}

void MainWnd_OnSize(WPARAM kind, int width, int height) {
    if (kind != SIZE_MINIMIZED) ApplyLayoutRatios(width, height);
    MainWnd_NotePlace(g_app.hMainWnd);
    MainWindow_Layout();
}

void MainWnd_OnMinMaxInfo(MINMAXINFO& info) { info.ptMinTrackSize = {Scaled(kMinimumWidth), Scaled(kMinimumHeight)}; }
