// Colours of lines in the output pane, as 0x00BBGGRR; 0 is the theme's own. Pure.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kLineRed = 0x0000FF;     // errors, and what the program could not do
inline constexpr std::uint32_t kLineYellow = 0x00B4B4;  // warnings
inline constexpr std::uint32_t kLineTeal = 0x808000;    // what the program tells about its own doing
