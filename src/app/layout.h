// Where every pane goes for a given client area: arithmetic only. Pure. All lengths are pixels.
#pragma once

#include "ui/pane_id.h"

#include <array>
#include <cstdint>

struct PaneWish {
    PaneArea area = PaneArea::Bottom;
    bool shown = false;
    int height = 0;  // of a pane below the bottom
};

struct LayoutInput {
    int clientWidth = 0;
    int clientHeight = 0;
    int dpi = 96;
    int toolbarHeight = 0;  // 0 = hidden
    int statusHeight = 0;   // 0 = hidden
    int tabHeight = 0;
    int stickyHeight = 0;                    // 0 = no header line
    std::array<PaneWish, kPaneCount> panes;  // by PaneId
    int outputSplit = 0;                     // wanted top of the bar above the bottom
    int sideWidth = 0;                       // wanted width of one pane on the right
    int treeWidth = 0;                       // of the left
    int debugWidth = 0;                      // of the bottom right, 0: half of the area below the editor
};

// Every rectangle of a hidden pane is empty. No two visible ones overlap, and all lie in the client area.
struct PaneLayout {
    PaneRect toolbar, status, tabs, sticky, editor;
    PaneRect treeSplitter, sideSplitter, outputSplitter, debugSplitter;
    std::array<PaneRect, kPaneCount> panes;  // by PaneId
    int outputSplit = 0;                     // as it came out after the limits
    int sideWidth = 0;
    int treeWidth = 0;
    const PaneRect& pane(PaneId id) const { return panes[PaneIndex(id)]; }
};

inline constexpr int kSplitterThickness = 3;
inline constexpr int kLineHeight = 30;  // of a line of input, at 96 dpi

// How many panes the area has to show. Those below the bottom count only where there is a bottom.
int PanesIn(const LayoutInput& input, PaneArea area);

// Width that the bars of `sides` visible side panes take: 3 pixels each.
int SidePaneSplitBudget(int sides);

// The output split within its limits for an area from `top` to `total`: [top + 50, total - 53] from a span of 103
// up, seven tenths of the way down below that; unchanged when there is no span at all.
int ClampSplitter(int total, int top, int split);

// Width of the bottom right in an area of `total` pixels that it shares with the bottom: both keep 160 (at 96 dpi), and
// half of the area each where that is not to be had.
int ClampDebugWidth(int total, int wanted, int dpi);

// Side and tree widths that leave the editor a usable width; the side panes give way first.
void ConstrainSidePaneWidths(const LayoutInput& input, int* sideWidth, int* treeWidth);

PaneLayout ComputePaneLayout(const LayoutInput& input);

// --- Bars between the panes
enum class Splitter : std::uint8_t { Output, Side, Tree, Debug };
// What the bar's setting becomes when the mouse has gone so far from where it took the bar at `start`: output and debug in
// pixels, side and tree at 96 dpi.
int DraggedSplitter(Splitter bar, int start, int movedX, int movedY, int dpi);
// A side width, at 96 dpi, within what the settings allow.
int ClampSideWidth(int width);

// The splitters as parts of the area they divide, so that they keep their place when the window changes size.
struct LayoutRatios {
    double output = 0.0;  // (split - top) / (bottom - top); 0: nothing captured yet
    double side = 0.0;    // side width / client width
};
double RatioOf(int position, int start, int end);
int PositionAt(double ratio, int start, int end);

// A stored window position moved into a monitor's work area, its size kept.
PaneRect FitToWorkArea(const PaneRect& window, const PaneRect& work);
