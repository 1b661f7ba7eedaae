// Geometry and index arithmetic of the tab bar. Lengths are pixels at the DPI that the metrics were made for. Pure.
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
    int padding;    // between the tab's edges and what it holds
    int closeSize;  // the close button, a square
    int markSize;   // the build mark, a square
    int scroller;   // width of the two arrows
    int accent;     // the active tab's edge
    int dragStart;  // the pointer moves this far before a press becomes a drag
};
TabMetrics TabMetricsForDpi(int dpi);

// All tabs share the strip evenly within the limits; beyond that the strip scrolls.
int TabWidthFor(const TabMetrics& metrics, int stripWidth, int count);

TabRect TabCloseRect(const TabMetrics& metrics, const TabRect& tab);
TabRect TabMarkRect(const TabMetrics& metrics, const TabRect& tab);
// The label's place; narrower with a build mark before it and a button after it.
TabRect TabTextRect(const TabMetrics& metrics, const TabRect& tab, bool hasMark, bool hasButton);
// The arrows at the right end of a strip that overflows.
TabRect TabScrollerRect(const TabMetrics& metrics, int stripWidth);

// Index of the tab at a point, or -1.
int TabHit(std::span<const TabRect> tabs, int x, int y);

// Where the tab `from`, dragged to `x`, belongs: it changes places once the pointer passes a neighbour's middle.
int TabDropIndex(std::span<const TabRect> tabs, int from, int x);
