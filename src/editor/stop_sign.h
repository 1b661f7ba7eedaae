// The sign of a stop at a breakpoint with a condition: the disc with the arrow on its left and the plus sign on its
// right, because in the middle they would hide each other. Pure.
#pragma once

#include "ui/theme_table.h"

#include <cstdint>
#include <vector>

struct StopSignColours {
    Rgb disc, plus;
    Rgb edge, arrow;  // of the arrow: its rim and its inside
};
// As SampledPicture. The disc reaches the edges and so covers the usual disc and arrow.
std::vector<std::uint8_t> StopAtConditionSign(int size, const StopSignColours& colours);
