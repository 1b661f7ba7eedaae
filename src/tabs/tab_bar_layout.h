// Geometry and index arithmetic of the tab bar. Lengths are pixels at the DPI of the metrics. Pure.
#pragma once

#include <span>

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
    int minWidth;
    int maxWidth;
    int padding;    // between the tab's edges and its parts
    int closeSize;  // side of the square close button
    int markSize;   // side of the square build mark
    int scroller;   // width of the two arrows
    int accent;     // height of the line at the top of the active tab
    int dragStart;  // the pointer moves this far before a press becomes a drag
};
TabMetrics TabMetricsForDpi(int dpi);

// Width of each tab: an equal share of the strip, between minWidth and maxWidth.
int TabWidthFor(const TabMetrics& metrics, int stripWidth, int count);

TabRect TabCloseRect(const TabMetrics& metrics, const TabRect& tab);
TabRect TabMarkRect(const TabMetrics& metrics, const TabRect& tab);
// The label's rectangle, between the build mark and the close button when the tab has them.
TabRect TabTextRect(const TabMetrics& metrics, const TabRect& tab, bool hasMark, bool hasButton);
// The arrows at the right end of a strip that has no room for all tabs.
TabRect TabScrollerRect(const TabMetrics& metrics, int stripWidth);

// Index of the tab at a point, or -1.
int TabHit(std::span<const TabRect> tabs, int x, int y);

// New index of the tab `from` when the pointer drags it to `x`. It changes places with a neighbour when the pointer
// passes the neighbour's middle.
int TabDropIndex(std::span<const TabRect> tabs, int from, int x);
