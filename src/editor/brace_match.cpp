// Finds the partner of a bracket in a stretch of styled text. Pure.
#include "editor/brace_match.h"

#include <string_view>

namespace {

constexpr std::string_view kOpening = "([{";
constexpr std::string_view kClosing = ")]}";

}  // namespace

bool IsBrace(char character) {
    return kOpening.find(character) != std::string_view::npos || kClosing.find(character) != std::string_view::npos;
}

std::ptrdiff_t MatchBrace(std::span<const StyledByte> text, std::size_t at) {
    if (at >= text.size()) return -1;
    const StyledByte self = text[at];
    const std::size_t opening = kOpening.find(self.character);
    const bool forward = opening != std::string_view::npos;
    const std::size_t kind = forward ? opening : kClosing.find(self.character);
    if (kind == std::string_view::npos) return -1;
    const char partner = forward ? kClosing[kind] : kOpening[kind];

    int depth = 1;
    const auto count = static_cast<std::ptrdiff_t>(text.size());
    const std::ptrdiff_t step = forward ? 1 : -1;
    for (std::ptrdiff_t i = static_cast<std::ptrdiff_t>(at) + step; i >= 0 && i < count; i += step) {
        const StyledByte& other = text[static_cast<std::size_t>(i)];
        if (other.style != self.style) continue;
        if (other.character == self.character) ++depth;
        if (other.character == partner && --depth == 0) return i;
    }
    return -1;
}
