// Computes the places of the panes in a client area. Lengths are pixels unless they say "at 96 dpi". Pure.
#pragma once

#include "ui/pane_id.h"

#include <array>
#include <cstdint>

// What the layout needs to know of a pane.
struct PaneWish {
    PaneArea area = PaneArea::Bottom;
    bool shown = false;
    int height = 0;  // only for a pane below the bottom
    bool hasTitle = false;
    bool hasBar = false;  // above a pane below the bottom: its height can be changed
};

struct LayoutInput {
    int clientWidth = 0;
    int clientHeight = 0;
    int dpi = 96;
    int toolbarHeight = 0;  // 0: hidden
    int statusHeight = 0;   // 0: hidden
    int tabHeight = 0;
    int titleHeight = 0;                     // of a pane's title
    int startPageBelow = -1;                 // height that the editor keeps above the start page; -1: no start page
    int stickyHeight = 0;                    // 0: no sticky header
    int findBarHeight = 0;                   // 0: closed
    std::array<PaneWish, kPaneCount> panes;  // by PaneId
    int outputSplit = 0;                     // wanted y of the bar above the bottom
    int sideWidth = 0;                       // wanted width of one pane on the right
    int treeWidth = 0;                       // wanted width of the left
    int debugWidth = 0;                      // wanted width of the bottom right, 0: half of the width below the editor
    int resultsWidth = 0;                    // of the second pane of the bottom, 0: half
    int outlineHeight = 0;                   // of the second pane of the left, 0: half
};

// Every rectangle of a hidden pane is empty. No two visible ones overlap, and all lie in the client area.
struct PaneLayout {
    PaneRect toolbar, status, tabs, sticky, findBar, editor, startPage;
    PaneRect treeSplitter, sideSplitter, outputSplitter, debugSplitter;
    PaneRect errorListSplitter, resultsSplitter, outlineSplitter;
    std::array<PaneRect, kPaneCount> panes;   // by PaneId, below their titles
    std::array<PaneRect, kPaneCount> titles;  // by PaneId; empty where there is none
    int outputSplit = 0;                      // these three: after the limits
    int sideWidth = 0;
    int treeWidth = 0;
    const PaneRect& pane(PaneId id) const { return panes[PaneIndex(id)]; }
};

inline constexpr int kSplitterThickness = 3;
inline constexpr int kMinimumWidth = 480;  // of the whole window, at 96 dpi
inline constexpr int kMinimumHeight = 320;
inline constexpr int kLineHeight = 30;       // of an input line, at 96 dpi
inline constexpr int kFirstSideWidth = 300;  // of a pane on the right at a first start, at 96 dpi

// Number of panes shown in the area. Panes below the bottom count only when the bottom has a pane.
int PanesIn(const LayoutInput& input, PaneArea area);

// Total width of the bars of `sides` visible side panes.
int SidePaneSplitBudget(int sides);

// The output split limited for an area from `top` to `total`: to [top + 50, total - 53] in an area of at least 103
// pixels. In a smaller area it is at 7/10 of the height. In an empty area it is not changed.
int ClampSplitter(int total, int top, int split);

// Length of the second of two panes that share `total` pixels with a bar between them. Both keep at least `least` (at 96
// dpi), or half of the area when there is no room for that. `wanted` 0: half.
int ClampSecondPane(int total, int wanted, int least, int dpi);

// Limits the side and tree widths so that the editor keeps 200 (at 96 dpi). The side panes get narrower before the
// tree.
void ConstrainSidePaneWidths(const LayoutInput& input, int* sideWidth, int* treeWidth);

PaneLayout ComputePaneLayout(const LayoutInput& input);
const PaneLayout& MainWindow_Placed();  // what the last MainWindow_Layout has made (layout_win.cpp)

// --- Bars between the panes
enum class Splitter : std::uint8_t { Output, Side, Tree, Debug, ErrorList, Results, Outline };
inline constexpr int kSplitterCount = 7;
// Whether the bar lies across and moves up and down.
constexpr bool SplitterMovesUp(Splitter bar) {
    return bar == Splitter::Output || bar == Splitter::ErrorList || bar == Splitter::Outline;
}
// The new value of the bar's setting when the drag began at the value `start` and the mouse has moved by `movedX` and
// `movedY` pixels. The value of output is pixels; the others are at 96 dpi.
int DraggedSplitter(Splitter bar, int start, int movedX, int movedY, int dpi);
// The value of a bar's setting by its place, which the limits of the window may have moved.
int SplitterValueOf(const PaneLayout& layout, Splitter bar, int dpi);
// A side width (at 96 dpi) within 150..600.
int ClampSideWidth(int width);
