// How columns and tabs share a width that may be too small for them. All lengths are pixels. Pure.
#pragma once

#include <span>
#include <vector>

struct ColumnRoom {
    int wanted = 0;
    int least = 0;  // not more than `wanted`
};
// Widths of columns beside each other. With room to spare the last one takes it; with too little each gives up the same
// part of what it can.
std::vector<int> FitColumns(std::span<const ColumnRoom> columns, int room);

// Tabs from `first` to before `end` are to be seen whole in a row.
struct TabSpan {
    int first = 0;
    int end = 0;
    bool operator==(const TabSpan&) const = default;
};
// As many as there is room for, the selected one among them, from `first` on if that is possible.
TabSpan FitTabs(std::span<const int> widths, int room, int selected, int first);

// Blanks on either side of each title in a row of tabs.
struct TabBlank {
    int pixels = 0;
    bool all = false;  // every title has room with at least the smallest blank
};
// `titles`: the width of all titles. The blank lies between `least` and `widest`.
TabBlank FitTabBlank(int room, int titles, int count, int least, int widest);
