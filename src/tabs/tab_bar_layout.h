// Geometry and index arithmetic of the tab bar. Lengths are pixels at the DPI of the metrics. Pure.
#pragma once

#include <span>
#include <vector>

struct TabRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    constexpr bool Contains(int x, int y) const { return x >= left && x < right && y >= top && y < bottom; }
};

struct TabMetrics {
    int height;
    int minWidth;     // of a tab whose name is cut
    int maxWidth;     // of a tab that is not the active one
    int pinnedWidth;  // the same of a pinned one
    int padding;      // between the tab's edges and its parts
    int closeSize;    // side of the square close button
    int markSize;     // side of the square status light
    int button;       // width of an arrow, and of the button of the list
    int accent;       // height of the line at the top of the active tab
    int dragStart;    // the pointer moves this far before a press becomes a drag
};
TabMetrics TabMetricsForDpi(int dpi);

// What the width of a tab depends on.
struct TabWish {
    int text = 0;  // width of its name
    bool pinned = false;
};

// The strip: tabs from left to right, then the arrows when there is no room for all tabs, then the button of the list.
struct TabStrip {
    std::vector<TabRect> tabs;  // those that are scrolled out are outside of 0..view
    int view = 0;               // right edge of the room for tabs
    int scroll = 0;             // pixels by which the tabs are moved to the left
    int mostScroll = 0;
    TabRect back, forth;  // the arrows; empty when all tabs fit
    TabRect list;
};
// Each tab is as wide as its name needs, up to a limit that is lower when there are many. The active one shows its whole
// name. `scroll` is limited to what there is.
TabStrip TabStripOf(const TabMetrics& metrics, int stripWidth, std::span<const TabWish> tabs, int active, int scroll);
// The value of `scroll` with which the tab is seen whole, moved no further than needed.
int TabScrollToShow(const TabStrip& strip, int index);

TabRect TabCloseRect(const TabMetrics& metrics, const TabRect& tab);
TabRect TabMarkRect(const TabMetrics& metrics, const TabRect& tab);
// The name's rectangle, between the status light and the close button. Without a button it goes on to the edge.
TabRect TabTextRect(const TabMetrics& metrics, const TabRect& tab, bool hasButton);

// Index of the tab at a point, or -1.
int TabHit(std::span<const TabRect> tabs, int x, int y);
int TabHit(const TabStrip& strip, int x, int y);  // -1 outside of the room for tabs, too

// New index of the tab `from` when the pointer drags it to `x`. It changes places with a neighbour when the pointer
// passes the neighbour's middle.
int TabDropIndex(std::span<const TabRect> tabs, int from, int x);
