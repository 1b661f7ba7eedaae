// Chooses the buttons of a toolbar that is too narrow for all. Pure.
#pragma once

#include <span>
#include <vector>

struct BarItem {
    int width = 0;        // pixels
    int rank = 0;         // the lowest rank is left out first; within a rank the last button
    bool wanted = false;  // to be shown when there is room
    bool gap = false;     // between groups; shown only between two buttons; `wanted` is ignored
};
inline constexpr int kStays = 1 << 20;  // a rank that is never left out

struct BarFit {
    std::vector<bool> shown;  // for each item
    bool more = false;        // wanted buttons are left out, so the "more" button is shown
};
// `room` and `moreWidth`, the width of the "more" button, are in pixels.
BarFit FitToolbar(std::span<const BarItem> items, int room, int moreWidth);
