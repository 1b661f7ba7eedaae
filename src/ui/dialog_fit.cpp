#include "ui/dialog_fit.h"

#include <algorithm>

int FitDialogHeight(std::span<FitPart> parts, int excess, int least) {
    int taken = 0;
    while (taken < excess) {
        const auto length = [](const FitPart& part) { return part.rigid ? 0 : part.end - part.start; };
        const auto highest = std::ranges::max_element(parts, {}, length);
        if (highest == parts.end() || length(*highest) <= least) break;
        const int by = std::min(excess - taken, length(*highest) - least);
        const int end = highest->end;
        for (FitPart& part : parts) {
            if (part.start < end) continue;
            part.start -= by;
            part.end -= by;
        }
        highest->end -= by;
        taken += by;
    }
    return taken;
}

void FitDialogWidth(std::span<FitPart> parts, int width, int excess) {
    int edge = 0;
    for (const FitPart& part : parts) edge = std::max(edge, part.end);
    for (FitPart& part : parts) {
        const bool moves = part.rigid && part.start > width / 2;
        if (moves) part.start -= excess;
        part.end = moves ? part.end - excess : std::max(part.start, std::min(part.end, edge - excess));
    }
}
