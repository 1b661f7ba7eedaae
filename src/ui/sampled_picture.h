// Small pictures from shapes, with smooth edges. Pure.
#pragma once

#include "ui/theme_table.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

// The colour at a place, or nothing outside the shape. Coordinates go from -1 to 1, downwards.
using ShapeColour = std::function<std::optional<Rgb>(double x, double y)>;

// A picture of `size` x `size` pixels, 4 bytes (RGBA) for each, the colours not multiplied by the opacity.
std::vector<std::uint8_t> SampledPicture(int size, const ShapeColour& colourAt);
