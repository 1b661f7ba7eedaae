#include "ui/dialog_fit.h"

#include <algorithm>
#include <cstddef>
#include <vector>

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

namespace {

// Which parts move by `excess`: those beyond the middle, and those before them that would be covered.
std::vector<bool> MovedParts(std::span<const FitPart> parts, int middle, int excess) {
    std::vector<bool> moved;
    for (const FitPart& part : parts) moved.push_back(part.rigid && part.start > middle);
    const auto covers = [&](const FitPart& mover, const FitPart& part) {
        return mover.start >= part.end && mover.start - excess < part.end && mover.rowStart < part.rowEnd &&
               mover.rowEnd > part.rowStart;
    };
    for (bool more = true; more;) {
        more = false;
        for (std::size_t i = 0; i < parts.size(); ++i)
            for (std::size_t j = 0; !moved[i] && parts[i].rigid && j < parts.size(); ++j)
                if (moved[j] && covers(parts[j], parts[i])) more = moved[i] = true;
    }
    return moved;
}

}  // namespace

void FitDialogWidth(std::span<FitPart> parts, int width, int excess) {
    int edge = 0;
    for (const FitPart& part : parts) edge = std::max(edge, part.end);
    const std::vector<bool> moved = MovedParts(parts, width / 2, excess);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        FitPart& part = parts[i];
        if (moved[i]) part.start -= excess;
        part.end = moved[i] ? part.end - excess : std::max(part.start, std::min(part.end, edge - excess));
    }
}

int FreeEnd(const GrowPart& part, std::span<const GrowPart> others, int gap, int edge) {
    int end = edge;
    for (const GrowPart& other : others)
        if (other.start >= part.end) end = std::min(end, other.start - gap);
    return std::max(end, part.end);
}

int GrowDialogParts(std::span<GrowPart> parts, int length) {
    int grown = 0;
    for (GrowPart& part : parts) {
        const int lack = part.wanted - (part.end - part.start);
        if (lack <= 0) continue;
        const GrowPart before = part;
        for (GrowPart& other : parts) {
            if (other.end < before.end) continue;
            const bool column = other.start <= before.start;  // above or below it, and as wide at least
            const bool further = (other.start + other.end) / 2 > (length + grown) / 2;
            if (other.start >= before.end || (other.rigid && !column && further)) {
                other.start += lack;
                other.end += lack;
            } else if (!other.rigid || column) {
                other.end += lack;
            }
        }
        grown += lack;
    }
    return grown;
}
