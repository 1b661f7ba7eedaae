// The caret's colour on a background. Pure.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kCaretBlack = 0x000000;
inline constexpr std::uint32_t kCaretWhite = 0xFFFFFF;

// The luma of a 0x00BBGGRR colour, 0..255, in integer arithmetic.
constexpr int ColourLuma(std::uint32_t colour) {
    const int red = static_cast<int>(colour & 0xFF);
    const int green = static_cast<int>(colour >> 8 & 0xFF);
    const int blue = static_cast<int>(colour >> 16 & 0xFF);
    return (red * 299 + green * 587 + blue * 114) / 1000;
}

// Black on a light background, white on a dark one. The middle, 127, counts as dark.
constexpr std::uint32_t CaretColourOn(std::uint32_t background) {
    return ColourLuma(background) > 127 ? kCaretBlack : kCaretWhite;
}
