#include "ui/box_buttons.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

BoxButtons WiderBoxButtons(const BoxButtons& row, const std::vector<int>& wanted) {
    constexpr int kCentred = 4;      // pixels by which the two ends may differ
    constexpr int kLeastMargin = 8;  // pixels that stay free at either end
    if (row.buttons.empty()) return row;
    BoxButtons wider = row;
    const BoxButton& first = row.buttons.front();
    const BoxButton& last = row.buttons.back();
    const int atEnd = row.client - last.left - last.width;
    const int gap = row.buttons.size() > 1 ? std::max(0, row.buttons[1].left - first.left - first.width) : 0;
    int total = gap * (static_cast<int>(row.buttons.size()) - 1);
    for (std::size_t i = 0; i < row.buttons.size(); ++i) {
        BoxButton& button = wider.buttons[i];
        if (i < wanted.size()) button.width = std::max(button.width, wanted[i]);
        total += button.width;
    }
    const bool centred = std::abs(first.left - atEnd) <= kCentred;
    const int margin = std::min(std::max(gap, kLeastMargin), std::min(first.left, atEnd));
    wider.client = std::max(row.client, total + 2 * margin);
    int left = centred ? (wider.client - total) / 2 : wider.client - atEnd - total;
    left = std::max(left, std::min(margin, gap));
    for (BoxButton& button : wider.buttons) {
        button.left = left;
        left += button.width + gap;
    }
    return wider;
}
