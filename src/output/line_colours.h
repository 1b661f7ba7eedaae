// Colours of lines in the output pane, as 0x00BBGGRR. 0 means the theme's text colour. Pure.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kLineRed = 0x0000FF;     // errors of compilers and of the editor
inline constexpr std::uint32_t kLineYellow = 0x00B4B4;  // warnings
inline constexpr std::uint32_t kLineTeal = 0x808000;    // what the editor says about its own work
