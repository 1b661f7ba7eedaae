#include "ui/fit.h"

#include <algorithm>

std::vector<int> FitColumns(std::span<const ColumnRoom> columns, int room) {
    int wanted = 0, spare = 0;
    for (const ColumnRoom& column : columns) {
        wanted += column.wanted;
        spare += column.wanted - column.least;
    }
    const int lack = std::clamp(wanted - room, 0, spare);
    std::vector<int> widths;
    int left = room;
    for (const ColumnRoom& column : columns) {
        const int given = spare > 0 ? (column.wanted - column.least) * lack / spare : 0;
        widths.push_back(column.wanted - given);
        left -= widths.back();
    }
    if (!widths.empty()) widths.back() = std::max(widths.back() + left, columns.back().least);
    return widths;
}

TabSpan FitTabs(std::span<const int> widths, int room, int selected, int first) {
    const int count = static_cast<int>(widths.size());
    const auto endFrom = [&](int start) {
        int left = room, end = start;
        while (end < count && widths[static_cast<std::size_t>(end)] <= left)
            left -= widths[static_cast<std::size_t>(end++)];
        return end;
    };
    first = std::clamp(first, 0, std::max(selected, 0));
    while (first < selected && endFrom(first) <= selected) ++first;
    while (first > 0 && endFrom(first - 1) == count) --first;  // so that no room stays empty after the last tab
    return {first, std::max(endFrom(first), std::min(first + 1, count))};
}

TabBlank FitTabBlank(int room, int titles, int count, int least, int widest) {
    const int blank = count > 0 ? (room - titles) / (2 * count) : widest;
    return {std::clamp(blank, least, widest), blank >= least};
}

TabRowWidth FitTabRow(int width, int titles, int count, const TabRowLimits& limits) {
    const TabBlank blank = FitTabBlank(width - limits.edges, titles, count, limits.leastBlank, limits.widestBlank);
    return {blank, blank.all ? width : 2 * (titles + 2 * count * limits.leastBlank)};
}

TabRowSpot PlaceTabRow(int width, const TabRowWidth& fitted, std::span<const TabExtent> tabs, int selected, int first,
                       const TabRowLimits& limits) {
    std::vector<int> widths;
    for (const TabExtent& tab : tabs) widths.push_back(tab.right - tab.left);
    const int room = fitted.blank.all ? fitted.control : width - limits.more;
    const TabSpan shown = FitTabs(widths, room, std::max(selected, 0), first);
    const int left = shown.first > 0 ? tabs[static_cast<std::size_t>(shown.first)].left : 0;
    return {shown, left, std::min(tabs[static_cast<std::size_t>(shown.end) - 1].right - left, room)};
}
