// Decisions of an editing pane. Pure.
#include "editor/pane_rules.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kSliceSeconds = 0.003;
constexpr std::size_t kSmallestChunk = 4 << 10;
constexpr std::size_t kLargestChunk = 1 << 20;
constexpr std::ptrdiff_t kBraceReach = 16 << 10;  // bytes searched before and after the bracket

}  // namespace

std::size_t RoomBeyondText(std::size_t length) {
    return std::clamp<std::size_t>(length / 64, std::size_t{4} << 10, std::size_t{1} << 20);
}

int DecimalDigits(std::ptrdiff_t number) {
    int digits = 1;
    for (; number >= 10; number /= 10) ++digits;
    return digits;
}

std::size_t NextColourChunk(std::size_t chunk, double seconds) {
    if (chunk == 0) return kFirstColourChunk;
    const double scale = seconds > 0 ? std::clamp(kSliceSeconds / seconds, 0.5, 2.0) : 2.0;
    return std::clamp(static_cast<std::size_t>(static_cast<double>(chunk) * scale), kSmallestChunk, kLargestChunk);
}

std::ptrdiff_t ColourSliceEnd(std::ptrdiff_t from, std::ptrdiff_t wanted, std::ptrdiff_t lineStart,
                              std::ptrdiff_t length) {
    return lineStart > from && wanted < length ? lineStart : wanted;
}

ColourStep NextColourStep(std::ptrdiff_t coloured, std::ptrdiff_t length, bool paintIsDue) {
    if (coloured >= length) return ColourStep::Done;
    return paintIsDue ? ColourStep::Wait : ColourStep::Slice;
}

bool IsUnseen(PaneSpan slice, PaneSpan visible) { return slice.start >= visible.end || slice.end <= visible.start; }

std::vector<std::uint8_t> MarkerDot(int size, double radius, double ring, std::uint32_t discColour,
                                    std::uint32_t ringColour) {
    const int middle = size / 2;
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < size * size; ++i) {
        const int right = i % size - middle, down = i / size - middle;
        const double away = std::hypot(right, down);
        const std::uint32_t shown = away < radius + 0.5 ? discColour : ringColour;
        const double cover = std::clamp(radius + 1.0 + ring - away, 0.0, 1.0);
        for (const int shift : {16, 8, 0}) pixels.push_back(static_cast<std::uint8_t>(shown >> shift & 0xFF));
        pixels.push_back(static_cast<std::uint8_t>(cover * 255));
    }
    return pixels;
}

PaneSpan BraceReach(std::ptrdiff_t brace, std::ptrdiff_t length) {
    return {std::max<std::ptrdiff_t>(brace - kBraceReach, 0), std::min(brace + kBraceReach, length)};
}
