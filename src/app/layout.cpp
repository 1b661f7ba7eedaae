// The pane arithmetic. Must not know a window.
#include "app/layout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMinimumEditorWidth = 200;  // at 96 dpi
constexpr int kMinimumSideWidth = 150;
constexpr int kMaximumSideWidth = 600;
constexpr int kMinimumTreeWidth = 100;
constexpr int kMinimumBottomWidth = 160;  // of the output pane and of the debug pane beside it
constexpr int kLineHeight = 26;           // input line, terminal line
constexpr int kSendWidth = 64;

int Scale(int length, int dpi) { return length * dpi / 96; }

int SidePaneCount(const LayoutInput& input) { return (input.showAsm ? 1 : 0) + (input.showAi ? 1 : 0); }

PaneRect Row(int left, int right, int top, int bottom) {
    PaneRect row{left, top, std::max(left, right), std::max(top, bottom)};
    return row;
}

// The right-hand panes, from the right edge inwards: chat, then ASM. Returns the x that is left for the rest.
int PlaceSidePanes(const LayoutInput& input, int top, int bottom, PaneLayout& layout) {
    int right = input.clientWidth;
    if (input.showAi) {
        const int left = right - layout.sideWidth;
        const int line = std::min(Scale(kLineHeight, input.dpi), (bottom - top) / 2);
        const int send = std::min(Scale(kSendWidth, input.dpi), layout.sideWidth / 2);
        layout.aiChat = Row(left, right, top, bottom - line);
        layout.aiInput = Row(left, right - send, bottom - line, bottom);
        layout.aiSend = Row(right - send, right, bottom - line, bottom);
        right = left - kSplitterThickness;
    }
    if (input.showAsm) {
        layout.asmPane = Row(right - layout.sideWidth, right, top, bottom);
        right = layout.asmPane.left - kSplitterThickness;
    }
    if (SidePaneCount(input) > 0) layout.sideSplitter = Row(right, right + kSplitterThickness, top, bottom);
    return right;
}

// The debug pane, right of the output or alone. Returns the x where the output ends.
int PlaceDebugPane(const LayoutInput& input, int left, int right, int top, int bottom, PaneLayout& layout) {
    if (!input.showDebug) return right;
    if (!input.showOutput) {
        layout.debugPane = Row(left, right, top, bottom);
        return left;
    }
    const int start = right - ClampDebugWidth(right - left, input.debugWidth, input.dpi);
    layout.debugPane = Row(start, right, top, bottom);
    layout.debugSplitter = Row(start - kSplitterThickness, start, top, bottom);
    return layout.debugSplitter.left;
}

// Output pane, error list and terminal line, from the bar down.
void PlaceBottomPanes(const LayoutInput& input, int left, int right, int top, int bottom, PaneLayout& layout) {
    int free = bottom - top;
    const int terminal = input.showTerminal ? std::min(Scale(kLineHeight, input.dpi), free / 2) : 0;
    free -= terminal;
    const int errors = input.showErrorList ? std::min(input.errorListHeight, free / 2) : 0;
    if (terminal > 0) layout.terminal = Row(left, right, bottom - terminal, bottom);
    if (errors > 0) layout.errorList = Row(left, right, bottom - terminal - errors, bottom - terminal);
    layout.output = Row(left, right, top, bottom - terminal - errors);
}

}  // namespace

int SidePaneSplitBudget(bool showAsm, bool showAi) {
    return (showAsm ? kSplitterThickness : 0) + (showAi ? kSplitterThickness : 0);
}

int ClampSplitter(int total, int top, int split) {
    const int span = total - top;
    if (span < 1) return split;
    if (span >= 103) return std::clamp(split, top + 50, total - 53);
    return top + span * 7 / 10;
}

int ClampDebugWidth(int total, int wanted, int dpi) {
    const int room = std::max(0, total - kSplitterThickness);
    const int least = std::min(Scale(kMinimumBottomWidth, dpi), room / 2);
    return std::clamp(wanted > 0 ? wanted : room / 2, least, room - least);
}

void ConstrainSidePaneWidths(const LayoutInput& input, int* sideWidth, int* treeWidth) {
    const int sides = SidePaneCount(input);
    const int bars = SidePaneSplitBudget(input.showAsm, input.showAi) + (input.showTree ? kSplitterThickness : 0);
    const int editor = Scale(kMinimumEditorWidth, input.dpi);
    int tree = input.showTree ? std::max(input.treeWidth, Scale(kMinimumTreeWidth, input.dpi)) : 0;
    int side = std::clamp(input.sideWidth, Scale(kMinimumSideWidth, input.dpi), Scale(kMaximumSideWidth, input.dpi));
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
    if (input.toolbarHeight > 0) layout.toolbar = Row(0, width, 0, top);
    if (input.statusHeight > 0) layout.status = Row(0, width, bottom, height);

    ConstrainSidePaneWidths(input, &layout.sideWidth, &layout.treeWidth);
    int left = 0;
    if (input.showTree) {
        layout.tree = Row(0, layout.treeWidth, top, bottom);
        layout.treeSplitter = Row(layout.treeWidth, layout.treeWidth + kSplitterThickness, top, bottom);
        left = layout.treeSplitter.right;
    }
    const int right = std::max(left, PlaceSidePanes(input, top, bottom, layout));

    layout.tabs = Row(left, right, top, std::min(bottom, top + input.tabHeight));
    const int documentTop = layout.tabs.bottom;
    int editorBottom = bottom;
    layout.outputSplit = input.outputSplit;
    if (input.showOutput || input.showDebug) {
        layout.outputSplit = ClampSplitter(bottom, documentTop, input.outputSplit);
        editorBottom = std::clamp(layout.outputSplit, documentTop, bottom);
        layout.outputSplitter = Row(left, right, editorBottom, std::min(bottom, editorBottom + kSplitterThickness));
        const int paneTop = layout.outputSplitter.bottom;
        const int outputRight = PlaceDebugPane(input, left, right, paneTop, bottom, layout);
        if (input.showOutput) PlaceBottomPanes(input, left, outputRight, paneTop, bottom, layout);
    }
    int editorTop = documentTop;
    if (input.stickyHeight > 0 && editorBottom - documentTop > 2 * input.stickyHeight) {
        layout.sticky = Row(left, right, documentTop, documentTop + input.stickyHeight);
        editorTop = layout.sticky.bottom;
    }
    layout.editor = Row(left, right, editorTop, editorBottom);
    return layout;
}

double RatioOf(int position, int start, int end) {
    return end > start ? static_cast<double>(position - start) / (end - start) : 0.0;
}

int PositionAt(double ratio, int start, int end) {
    return start + static_cast<int>(std::lround(ratio * (end - start)));
}

static int FitEdge(int edge, int extent, int workStart, int workEnd) {
    if (edge < workStart) return workStart;
    if (edge > workEnd) return std::max(workStart, workEnd - extent);
    return edge;
}

PaneRect FitToWorkArea(const PaneRect& window, const PaneRect& work) {
    const int left = FitEdge(window.left, window.width(), work.left, work.right);
    const int top = FitEdge(window.top, window.height(), work.top, work.bottom);
    return {left, top, left + window.width(), top + window.height()};
}
