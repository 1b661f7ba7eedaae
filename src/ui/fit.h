// Divides a width that may be too small among columns or tabs. All lengths are pixels. Pure; any thread.
#pragma once

#include <span>
#include <vector>

struct ColumnRoom {
    int wanted = 0;
    int least = 0;  // at most `wanted`
};
// The widths of columns beside each other. When there is room to spare, the last column takes it. When there is too
// little, each column gives up the same part of the difference between `wanted` and `least`.
std::vector<int> FitColumns(std::span<const ColumnRoom> columns, int room);

// The tabs of a row that are shown whole: from `first` to before `end`.
struct TabSpan {
    int first = 0;
    int end = 0;
    bool operator==(const TabSpan&) const = default;
};
// As many tabs as there is room for, with the selected one among them. They begin at `first` if that is possible.
TabSpan FitTabs(std::span<const int> widths, int room, int selected, int first);

// The blank on either side of each title in a row of tabs.
struct TabBlank {
    int pixels = 0;
    bool all = false;  // all titles fit with a blank of at least `least`
};
// `titles` is the width of all titles together, and `count` is their number. The blank lies between `least` and
// `widest`.
TabBlank FitTabBlank(int room, int titles, int count, int least, int widest);

// The places in a row of tabs whose end has a button for the tabs without room. The tab control is always as wide as
// all its tabs, so tabs without room lie beyond the edges of the pane.
struct TabRowLimits {
    int leastBlank = 0, widestBlank = 0;  // on either side of a title
    int edges = 0;                        // what the control needs beside its tabs; else it shows arrows of its own
    int more = 0;                         // width of the button
};
struct TabRowWidth {
    TabBlank blank;
    int control = 0;
};
TabRowWidth FitTabRow(int width, int titles, int count, const TabRowLimits& limits);
struct TabRowSpot {
    TabSpan shown;
    int left = 0;  // what of the control lies beyond the left edge
    int end = 0;   // where the button begins; it covers the tab that would be cut
};
struct TabExtent {
    int left = 0, right = 0;  // in the control
};
// `first` is the first tab shown so far.
TabRowSpot PlaceTabRow(int width, const TabRowWidth& fitted, std::span<const TabExtent> tabs, int selected, int first,
                       const TabRowLimits& limits);
