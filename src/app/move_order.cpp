#include "app/move_order.h"

#include <algorithm>
#include <cstdint>
#include <tuple>

namespace {

std::int64_t SharedPixels(const PaneRect& a, const PaneRect& b) {
    const std::int64_t width = std::min(a.right, b.right) - std::max(a.left, b.left);
    const std::int64_t height = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
    return width > 0 && height > 0 ? width * height : 0;
}

// What the window takes along. Nothing of a picture that is lost has to be spared.
PaneRect PictureOf(const PaneMove& move) {
    if (move.covered || move.to.empty()) return {};
    return {move.from.left, move.from.top, move.from.left + std::min(move.from.width(), move.to.width()),
            move.from.top + std::min(move.from.height(), move.to.height())};
}

struct Harm {
    std::int64_t lost = 0;   // pixels of pictures
    std::int64_t below = 0;  // pixels of windows that are still there
    bool operator<(const Harm& other) const { return std::tie(lost, below) < std::tie(other.lost, other.below); }
};

Harm HarmOf(const PaneMove& move, std::span<const PaneMove> moves, std::span<const std::size_t> left) {
    Harm harm;
    for (const std::size_t other : left) {
        if (&moves[other] == &move) continue;
        harm.lost += SharedPixels(move.to, PictureOf(moves[other]));
        harm.below += SharedPixels(move.to, moves[other].from);
    }
    return harm;
}

// The first of those that are left which does no harm, else the one that does the least.
std::size_t NextOf(std::span<const PaneMove> moves, std::span<const std::size_t> left) {
    std::size_t best = 0;
    Harm least = {INT64_MAX, INT64_MAX};
    for (std::size_t i = 0; i < left.size() && Harm() < least; ++i) {
        const Harm harm = HarmOf(moves[left[i]], moves, left);
        if (harm < least) best = i;
        least = std::min(least, harm);
    }
    return best;
}

}  // namespace

std::vector<std::size_t> OrderMoves(std::span<PaneMove> moves) {
    std::vector<std::size_t> left(moves.size()), order;
    for (std::size_t i = 0; i < left.size(); ++i) left[i] = i;
    while (!left.empty()) {
        const std::size_t next = NextOf(moves, left), moved = left[next];
        left.erase(left.begin() + static_cast<std::ptrdiff_t>(next));
        order.push_back(moved);
        for (const std::size_t other : left)
            if (SharedPixels(moves[moved].to, PictureOf(moves[other])) > 0) moves[other].covered = true;
    }
    return order;
}
