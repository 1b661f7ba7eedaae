// Chooses the buttons of a toolbar that is too narrow for all. Pure.
#include "commands/toolbar_fit.h"

#include <cstddef>

namespace {

constexpr std::size_t kNone = ~std::size_t{0};

// Shows the gaps that are between two shown buttons. Returns the width of all that is shown, in pixels.
int PlaceGaps(std::span<const BarItem> items, std::vector<bool>& shown) {
    int width = 0;
    bool any = false;
    std::size_t gap = kNone;  // the last gap since a button
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].gap) {
            shown[i] = false;
            if (any) gap = i;
            continue;
        }
        if (!shown[i]) continue;
        if (gap != kNone) {
            shown[gap] = true;
            width += items[gap].width;
            gap = kNone;
        }
        any = true;
        width += items[i].width;
    }
    return width;
}

std::size_t FirstToGo(std::span<const BarItem> items, const std::vector<bool>& shown) {
    std::size_t found = kNone;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].gap || !shown[i] || items[i].rank >= kStays) continue;
        if (found == kNone || items[i].rank <= items[found].rank) found = i;
    }
    return found;
}

}  // namespace

BarFit FitToolbar(std::span<const BarItem> items, int room, int moreWidth) {
    BarFit fit;
    for (const BarItem& item : items) fit.shown.push_back(item.wanted && !item.gap);
    while (PlaceGaps(items, fit.shown) > room - (fit.more ? moreWidth : 0)) {
        const std::size_t next = FirstToGo(items, fit.shown);
        if (next == kNone) break;
        fit.shown[next] = false;
        fit.more = true;
    }
    return fit;
}
