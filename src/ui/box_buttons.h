// Where the buttons of a message box stand when they have longer names than the system's. Pure.
#pragma once

#include <vector>

// Pixels of the box's client area.
struct BoxButton {
    int left = 0;
    int width = 0;
};
struct BoxButtons {
    int client = 0;                  // the width of the area
    std::vector<BoxButton> buttons;  // from left to right
};

// The row with buttons at least as wide as `wanted` tells, as far from each other as they were, and in the middle or at
// the right edge as before. The area grows when they would not fit.
BoxButtons WiderBoxButtons(const BoxButtons& row, const std::vector<int>& wanted);
