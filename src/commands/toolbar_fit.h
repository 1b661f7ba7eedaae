// Which buttons of the toolbar have their place where there is not room for all. Pure.
#pragma once

#include <span>
#include <vector>

struct BarItem {
    int width = 0;        // pixels
    int rank = 0;         // of those that are too many the lowest rank goes first, and of it the last
    bool wanted = false;  // there is reason to show it now
    bool gap = false;     // between groups: shown only between two buttons, whatever is wanted of it
};
inline constexpr int kStays = 1 << 20;  // a rank that never goes

struct BarFit {
    std::vector<bool> shown;  // for each item
    bool more = false;        // wanted ones are left out: the button for these is shown, after all others
};
BarFit FitToolbar(std::span<const BarItem> items, int room, int moreWidth);
