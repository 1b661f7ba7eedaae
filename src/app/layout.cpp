// Computes the places of the panes. Pure.
#include "app/layout.h"

#include "app/split_ratios.h"
#include "ui/scale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMinimumEditorWidth = 300;  // all of these at 96 dpi
constexpr int kMinimumSideWidth = 150;
constexpr int kMaximumSideWidth = 600;
constexpr int kMinimumTreeWidth = 100;
constexpr int kMaximumTreeWidth = 800;
constexpr int kMinimumBottomWidth = 160;  // of each pane of the bottom
constexpr int kLeastDebugHeight = 190;    // of the bottom right: a row of tabs, titles, and six rows
constexpr int kMinimumLeftHeight = 80;    // of each pane of the left
constexpr int kMinimumListHeight = 40;    // of the error list
constexpr int kLeastOutputHeight = 116;   // of the output above the error list: its title and five rows
constexpr int kLeastResultsHeight = 220;  // of the bottom with results beside the output: title, buttons, eight rows
constexpr int kLeastListHeight = 148;     // of the error list below it: title, header, four rows, scroll bar
constexpr int kMaximumListHeight = 2000;
constexpr int kMaximumSecond = 4000;
constexpr int kLeastStartPage = 160;  // its height below a document

// A length in pixels as one at 96 dpi.
int Unscaled(int pixels, int dpi) { return static_cast<int>(std::lround(pixels * 96.0 / dpi)); }

PaneRect AreaOf(int left, int right, int top, int bottom) {
    return {left, top, std::max(left, right), std::max(top, bottom)};
}

bool IsIn(const PaneWish& pane, PaneArea area) { return pane.shown && pane.area == area; }

// How two panes share an area, with a bar between them.
struct Sharing {
    bool beside = true;  // otherwise one below the other
    int second = 0;      // wanted length of the second one in pixels, 0: half
    int least = 0;       // of each, at 96 dpi
};

// Gives the whole area to its only pane, or divides it between its two panes. Returns the place of the bar.
PaneRect ShareArea(const LayoutInput& input, PaneArea area, const PaneRect& whole, const Sharing& how,
                   PaneLayout& layout) {
    PaneRect bar;
    PaneRect rest = whole;
    int left = PanesIn(input, area);
    for (std::size_t i = 0; i < input.panes.size(); ++i) {
        if (!IsIn(input.panes[i], area)) continue;
        PaneRect part = rest;
        if (--left > 0) {
            const int length = how.beside ? rest.width() : rest.height();
            const int second = ClampSecondPane(length, how.second, how.least, input.dpi);
            int& end = how.beside ? part.right : part.bottom;
            end -= std::min(length, second + kSplitterThickness);
            bar = rest;
            (how.beside ? bar.left : bar.top) = end;
            (how.beside ? rest.left : rest.top) = (how.beside ? rest.right : rest.bottom) - second;
            (how.beside ? bar.right : bar.bottom) = how.beside ? rest.left : rest.top;
        }
        layout.panes[i] = part;
    }
    return bar;
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
        start = below.right - ClampSecondPane(below.width(), input.debugWidth, kMinimumBottomWidth, input.dpi);
        layout.debugSplitter = AreaOf(start - kSplitterThickness, start, below.top, below.bottom);
    }
    ShareArea(input, PaneArea::BottomRight, AreaOf(start, below.right, below.top, below.bottom), {}, layout);
    return layout.debugSplitter.empty() ? below.left : layout.debugSplitter.left;
}

// Places the panes of the bottom and the rows below them, the last row of the table lowest. A row takes at most half of
// the height that is left.
void PlaceBottom(const LayoutInput& input, PaneRect area, PaneLayout& layout) {
    for (std::size_t i = input.panes.size(); i-- > 0;) {
        if (!IsIn(input.panes[i], PaneArea::BelowBottom)) continue;
        const int height = std::max(0, std::min(input.panes[i].height, area.height() / 2));
        if (height > 0) layout.panes[i] = AreaOf(area.left, area.right, area.bottom - height, area.bottom);
        area.bottom -= height;
        if (!input.panes[i].hasBar || height <= kSplitterThickness) continue;
        layout.panes[i].top += kSplitterThickness;
        layout.errorListSplitter = AreaOf(area.left, area.right, area.bottom, layout.panes[i].top);
    }
    layout.resultsSplitter =
        ShareArea(input, PaneArea::Bottom, area, {.second = input.resultsWidth, .least = kMinimumBottomWidth}, layout);
}

// The lowest y at which the bottom right may begin: its views show some rows, and the editor keeps half of a small area.
// The wish of the user for the bar counts again when the bottom right is closed.
int LowestDebugTop(const PaneRect& document, int dpi) {
    return document.bottom - std::min(ScaledTo(kLeastDebugHeight, dpi), document.height() / 2);
}

// Nobody has put the bar elsewhere than the editor does.
bool IsUnchosenSplit(const LayoutInput& input, const PaneRect& document) {
    return std::abs(input.outputSplit - PositionAt(kFirstOutputRatio, document.top, document.bottom)) <= 1;
}

// The same for the bottom while results or the error list are in it. Rows of a fixed height, as the terminal, come on top.
int LowestListTop(const LayoutInput& input, const PaneRect& document) {
    const bool results = PanesIn(input, PaneArea::Bottom) > 1;
    int height = 0;
    bool list = false;
    for (const PaneWish& pane : input.panes) {
        if (!IsIn(pane, PaneArea::BelowBottom)) continue;
        list = list || pane.hasBar;
        height += pane.hasBar ? ScaledTo(kLeastListHeight, input.dpi) : pane.height;
    }
    if (!list && !results) return document.bottom;
    height += ScaledTo(results ? kLeastResultsHeight : kLeastOutputHeight, input.dpi) + kSplitterThickness;
    return document.bottom - std::min(height, document.height() / 2);
}

// Places all panes below the editor, with their bars. Returns the y at which the editor ends.
int PlaceBelowEditor(const LayoutInput& input, const PaneRect& document, PaneLayout& layout) {
    const bool bottom = PanesIn(input, PaneArea::Bottom) > 0;
    if (!bottom && PanesIn(input, PaneArea::BottomRight) == 0) return document.bottom;
    layout.outputSplit = ClampSplitter(document.bottom, document.top, input.outputSplit);
    int end = std::clamp(layout.outputSplit, document.top, document.bottom);
    if (PanesIn(input, PaneArea::BottomRight) > 0) end = std::min(end, LowestDebugTop(document, input.dpi));
    if (bottom && IsUnchosenSplit(input, document)) end = std::min(end, LowestListTop(input, document));
    layout.outputSplitter =
        AreaOf(document.left, document.right, end, std::min(document.bottom, end + kSplitterThickness));
    PaneRect below = AreaOf(document.left, document.right, layout.outputSplitter.bottom, document.bottom);
    below.right = PlaceBottomRight(input, below, layout);
    if (bottom) PlaceBottom(input, below, layout);
    return end;
}

// The title of a pane is the upper part of its place. A pane that would be nothing but its title has none.
void TakeTitles(const LayoutInput& input, PaneLayout& layout) {
    for (std::size_t i = 0; i < input.panes.size(); ++i) {
        PaneRect& pane = layout.panes[i];
        if (!input.panes[i].hasTitle || pane.empty() || pane.height() < 2 * input.titleHeight) continue;
        layout.titles[i] = AreaOf(pane.left, pane.right, pane.top, pane.top + input.titleHeight);
        pane.top = layout.titles[i].bottom;
    }
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

int ClampSecondPane(int total, int wanted, int least, int dpi) {
    const int room = std::max(0, total - kSplitterThickness);
    const int kept = std::min(ScaledTo(least, dpi), room / 2);
    return std::clamp(wanted > 0 ? wanted : room / 2, kept, room - kept);
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
        layout.outlineSplitter =
            ShareArea(input, PaneArea::Left, AreaOf(0, layout.treeWidth, top, bottom),
                      {.beside = false, .second = input.outlineHeight, .least = kMinimumLeftHeight}, layout);
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
    const int startHeight = document.height() - input.startPageBelow;
    if (input.startPageBelow == 0 ||
        (input.startPageBelow > 0 && startHeight >= ScaledTo(kLeastStartPage, input.dpi))) {
        layout.startPage = AreaOf(left, right, document.top + input.startPageBelow, document.bottom);
        document.bottom = layout.startPage.top;
    }
    layout.editor = document;
    TakeTitles(input, layout);
    return layout;
}

int ClampSideWidth(int width) { return std::clamp(width, kMinimumSideWidth, kMaximumSideWidth); }

int SplitterValueOf(const PaneLayout& layout, Splitter bar, int dpi) {
    switch (bar) {
        case Splitter::Output: return layout.outputSplitter.empty() ? layout.outputSplit : layout.outputSplitter.top;
        case Splitter::Side: return Unscaled(layout.sideWidth, dpi);
        case Splitter::Tree: return Unscaled(layout.treeWidth, dpi);
        case Splitter::Debug: return Unscaled(layout.pane(PaneId::Debug).width(), dpi);
        case Splitter::Results: return Unscaled(layout.pane(PaneId::FilesResults).width(), dpi);
        case Splitter::Outline:
            return Unscaled(layout.pane(PaneId::Outline).bottom - layout.outlineSplitter.bottom, dpi);
        case Splitter::ErrorList: break;
    }
    return Unscaled(layout.pane(PaneId::ErrorList).bottom - layout.errorListSplitter.top, dpi);
}

int DraggedSplitter(Splitter bar, int start, int movedX, int movedY, int dpi) {
    const auto unscaled = [dpi](int pixels) { return Unscaled(pixels, dpi); };
    switch (bar) {
        case Splitter::Output: return start + movedY;
        // ComputePaneLayout applies the other limits to the next three.
        case Splitter::Debug:
        case Splitter::Results: return std::clamp(start - unscaled(movedX), 1, kMaximumSecond);
        case Splitter::Outline: return std::clamp(start - unscaled(movedY), 1, kMaximumSecond);
        case Splitter::ErrorList: return std::clamp(start - unscaled(movedY), kMinimumListHeight, kMaximumListHeight);
        case Splitter::Tree: return std::clamp(start + unscaled(movedX), kMinimumTreeWidth, kMaximumTreeWidth);
        case Splitter::Side: break;
    }
    return ClampSideWidth(start - unscaled(movedX));
}
