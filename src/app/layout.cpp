// Computes the places of the panes. Pure.
#include "app/layout.h"

#include "ui/scale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMinimumEditorWidth = 200;  // all of these at 96 dpi
constexpr int kMinimumSideWidth = 150;
constexpr int kMaximumSideWidth = 600;
constexpr int kMinimumTreeWidth = 100;
constexpr int kMaximumTreeWidth = 200;    // for a drag; a setting may be larger
constexpr int kMinimumBottomWidth = 160;  // of the bottom, and of the bottom right beside it
constexpr int kLeastDebugHeight = 190;    // of the bottom right: a row of tabs, titles, and six rows

PaneRect AreaOf(int left, int right, int top, int bottom) {
    return {left, top, std::max(left, right), std::max(top, bottom)};
}

bool IsIn(const PaneWish& pane, PaneArea area) { return pane.shown && pane.area == area; }

// Divides an area evenly among its panes, beside each other or one below the other.
void ShareArea(const LayoutInput& input, PaneArea area, const PaneRect& whole, bool beside, PaneLayout& layout) {
    const int count = PanesIn(input, area);
    int at = 0;
    for (std::size_t i = 0; i < input.panes.size(); ++i) {
        if (!IsIn(input.panes[i], area)) continue;
        PaneRect part = whole;
        int& start = beside ? part.left : part.top;
        int& end = beside ? part.right : part.bottom;
        const int first = start, length = end - start;
        start = first + length * at / count;
        end = first + length * ++at / count;
        layout.panes[i] = part;
    }
}

// Places the panes of the right area from the right edge to the left, the last row of the table first. Returns the x at
// which the rest of the window ends.
int PlaceRight(const LayoutInput& input, int top, int bottom, PaneLayout& layout) {
    int right = input.clientWidth;
    for (std::size_t i = input.panes.size(); i-- > 0;) {
        if (!IsIn(input.panes[i], PaneArea::Right)) continue;
        layout.panes[i] = AreaOf(right - layout.sideWidth, right, top, bottom);
        right = layout.panes[i].left - kSplitterThickness;
    }
    if (PanesIn(input, PaneArea::Right) > 0)
        layout.sideSplitter = AreaOf(right, right + kSplitterThickness, top, bottom);
    return right;
}

// Places the bottom right area beside the bottom, or alone in `below`. Returns the x at which the bottom ends.
int PlaceBottomRight(const LayoutInput& input, const PaneRect& below, PaneLayout& layout) {
    if (PanesIn(input, PaneArea::BottomRight) == 0) return below.right;
    int start = below.left;
    if (PanesIn(input, PaneArea::Bottom) > 0) {
        start = below.right - ClampDebugWidth(below.width(), input.debugWidth, input.dpi);
        layout.debugSplitter = AreaOf(start - kSplitterThickness, start, below.top, below.bottom);
    }
    ShareArea(input, PaneArea::BottomRight, AreaOf(start, below.right, below.top, below.bottom), true, layout);
    return layout.debugSplitter.empty() ? below.left : layout.debugSplitter.left;
}

// Places the panes of the bottom and the rows below them, the last row of the table lowest. A row takes at most half of
// the height that is left.
void PlaceBottom(const LayoutInput& input, PaneRect area, PaneLayout& layout) {
    for (std::size_t i = input.panes.size(); i-- > 0;) {
        if (!IsIn(input.panes[i], PaneArea::BelowBottom)) continue;
        const int height = std::min(input.panes[i].height, area.height() / 2);
        if (height > 0) layout.panes[i] = AreaOf(area.left, area.right, area.bottom - height, area.bottom);
        area.bottom -= std::max(height, 0);
    }
    ShareArea(input, PaneArea::Bottom, area, true, layout);
}

// The lowest y at which the bottom right may begin: its views show some rows, and the editor keeps half of a small area.
// The wish of the user for the bar counts again when the bottom right is closed.
int LowestDebugTop(const PaneRect& document, int dpi) {
    return document.bottom - std::min(ScaledTo(kLeastDebugHeight, dpi), document.height() / 2);
}

// Places all panes below the editor, with their bars. Returns the y at which the editor ends.
int PlaceBelowEditor(const LayoutInput& input, const PaneRect& document, PaneLayout& layout) {
    const bool bottom = PanesIn(input, PaneArea::Bottom) > 0;
    if (!bottom && PanesIn(input, PaneArea::BottomRight) == 0) return document.bottom;
    layout.outputSplit = ClampSplitter(document.bottom, document.top, input.outputSplit);
    int end = std::clamp(layout.outputSplit, document.top, document.bottom);
    if (PanesIn(input, PaneArea::BottomRight) > 0) end = std::min(end, LowestDebugTop(document, input.dpi));
    layout.outputSplitter =
        AreaOf(document.left, document.right, end, std::min(document.bottom, end + kSplitterThickness));
    PaneRect below = AreaOf(document.left, document.right, layout.outputSplitter.bottom, document.bottom);
    below.right = PlaceBottomRight(input, below, layout);
    if (bottom) PlaceBottom(input, below, layout);
    return end;
}

}  // namespace

int PanesIn(const LayoutInput& input, PaneArea area) {
    if (area == PaneArea::BelowBottom && PanesIn(input, PaneArea::Bottom) == 0) return 0;
    return static_cast<int>(
        std::ranges::count_if(input.panes, [area](const PaneWish& pane) { return IsIn(pane, area); }));
}

int ClampSplitter(int total, int top, int split) {
    const int span = total - top;
    if (span < 1) return split;
    if (span >= 103) return std::clamp(split, top + 50, total - 53);
    return top + span * 7 / 10;
}

int SidePaneSplitBudget(int sides) { return sides * kSplitterThickness; }

int ClampDebugWidth(int total, int wanted, int dpi) {
    const int room = std::max(0, total - kSplitterThickness);
    const int least = std::min(ScaledTo(kMinimumBottomWidth, dpi), room / 2);
    return std::clamp(wanted > 0 ? wanted : room / 2, least, room - least);
}

void ConstrainSidePaneWidths(const LayoutInput& input, int* sideWidth, int* treeWidth) {
    const int sides = PanesIn(input, PaneArea::Right);
    const bool left = PanesIn(input, PaneArea::Left) > 0;
    const int bars = SidePaneSplitBudget(sides) + (left ? kSplitterThickness : 0);
    const int editor = ScaledTo(kMinimumEditorWidth, input.dpi);
    int tree = left ? std::max(input.treeWidth, ScaledTo(kMinimumTreeWidth, input.dpi)) : 0;
    int side =
        std::clamp(input.sideWidth, ScaledTo(kMinimumSideWidth, input.dpi), ScaledTo(kMaximumSideWidth, input.dpi));
    const int room = std::max(0, input.clientWidth - editor - bars);
    if (sides > 0) side = std::min(side, std::max(0, room - tree) / sides);
    tree = std::min(tree, std::max(0, room - side * sides));
    *sideWidth = side;
    *treeWidth = tree;
}

PaneLayout ComputePaneLayout(const LayoutInput& input) {
    PaneLayout layout;
    const int width = std::max(0, input.clientWidth);
    const int height = std::max(0, input.clientHeight);
    const int top = std::min(input.toolbarHeight, height);
    const int bottom = std::max(top, height - input.statusHeight);
    if (input.toolbarHeight > 0) layout.toolbar = AreaOf(0, width, 0, top);
    if (input.statusHeight > 0) layout.status = AreaOf(0, width, bottom, height);

    ConstrainSidePaneWidths(input, &layout.sideWidth, &layout.treeWidth);
    int left = 0;
    if (PanesIn(input, PaneArea::Left) > 0) {
        ShareArea(input, PaneArea::Left, AreaOf(0, layout.treeWidth, top, bottom), false, layout);
        layout.treeSplitter = AreaOf(layout.treeWidth, layout.treeWidth + kSplitterThickness, top, bottom);
        left = layout.treeSplitter.right;
    }
    const int right = std::max(left, PlaceRight(input, top, bottom, layout));

    layout.tabs = AreaOf(left, right, top, std::min(bottom, top + input.tabHeight));
    layout.outputSplit = input.outputSplit;
    PaneRect document = AreaOf(left, right, layout.tabs.bottom, bottom);
    document.bottom = PlaceBelowEditor(input, document, layout);
    if (input.stickyHeight > 0 && document.height() > 2 * input.stickyHeight) {
        layout.sticky = AreaOf(left, right, document.top, document.top + input.stickyHeight);
        document.top = layout.sticky.bottom;
    }
    if (input.findBarHeight > 0) {
        layout.findBar =
            AreaOf(left, right, document.top, std::min(document.bottom, document.top + input.findBarHeight));
        document.top = layout.findBar.bottom;
    }
    layout.editor = document;
    return layout;
}

int ClampSideWidth(int width) { return std::clamp(width, kMinimumSideWidth, kMaximumSideWidth); }

int DraggedSplitter(Splitter bar, int start, int movedX, int movedY, int dpi) {
    const auto unscaled = [dpi](int pixels) { return static_cast<int>(std::lround(pixels * 96.0 / dpi)); };
    switch (bar) {
        case Splitter::Output: return start + movedY;
        case Splitter::Debug: return std::max(1, start - movedX);  // ComputePaneLayout applies the other limits
        case Splitter::Tree: return std::clamp(start + unscaled(movedX), kMinimumTreeWidth, kMaximumTreeWidth);
        case Splitter::Side: break;
    }
    return ClampSideWidth(start - unscaled(movedX));
}
