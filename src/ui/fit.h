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
