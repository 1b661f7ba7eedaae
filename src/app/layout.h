// Where every pane goes for a given client area: arithmetic only. Pure. All lengths are pixels.
#pragma once

#include <cstdint>

struct PaneRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool empty() const { return right <= left || bottom <= top; }
};

struct LayoutInput {
    int clientWidth = 0;
    int clientHeight = 0;
    int dpi = 96;
    int toolbarHeight = 0;  // 0 = hidden
    int statusHeight = 0;   // 0 = hidden
    int tabHeight = 0;
    int stickyHeight = 0;  // 0 = no header line
    bool showOutput = true;
    bool showErrorList = false;
    bool showTerminal = false;
    bool showAsm = false;
    bool showAi = false;
    bool showTree = false;
    bool showDebug = false;
    int outputSplit = 0;  // wanted top of the bar above the output pane
    int sideWidth = 0;    // wanted width of one right-hand pane
    int treeWidth = 0;
    int errorListHeight = 0;
    int debugWidth = 0;  // wanted width of the debug pane, 0: half of the area below the editor
};

// Every rectangle of a hidden pane is empty. No two visible ones overlap, and all lie in the client area.
struct PaneLayout {
    PaneRect toolbar, status, tree, treeSplitter, tabs, sticky, editor, outputSplitter, output, errorList, terminal,
        sideSplitter, asmPane, aiChat, aiInput, aiSend, debugSplitter, debugPane;
    int outputSplit = 0;  // as it came out after the limits
    int sideWidth = 0;
    int treeWidth = 0;
};

inline constexpr int kSplitterThickness = 3;

// Width that the bars of the visible side panes take: 3 pixels each.
int SidePaneSplitBudget(bool showAsm, bool showAi);

// The output split within its limits for an area from `top` to `total`: [top + 50, total - 53] from a span of 103
// up, seven tenths of the way down below that; unchanged when there is no span at all.
int ClampSplitter(int total, int top, int split);

// Width of the debug pane in an area of `total` pixels that it shares with the output: both keep 160 (at 96 dpi), and half
// of the area each where that is not to be had.
int ClampDebugWidth(int total, int wanted, int dpi);

// Side and tree widths that leave the editor a usable width; the side panes give way first.
void ConstrainSidePaneWidths(const LayoutInput& input, int* sideWidth, int* treeWidth);

PaneLayout ComputePaneLayout(const LayoutInput& input);

// The splitters as parts of the area they divide, so that they keep their place when the window changes size.
struct LayoutRatios {
    double output = 0.0;  // (split - top) / (bottom - top); 0: nothing captured yet
    double side = 0.0;    // side width / client width
};
double RatioOf(int position, int start, int end);
int PositionAt(double ratio, int start, int end);

// A stored window position moved into a monitor's work area, its size kept.
PaneRect FitToWorkArea(const PaneRect& window, const PaneRect& work);
