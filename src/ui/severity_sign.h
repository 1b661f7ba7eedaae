// The signs of errors and warnings, the same in the margin of an editor and in lists: an error is a rounded square with
// a cross, a warning a triangle with an exclamation mark. Pure.
#pragma once

#include "ui/theme_table.h"

#include <cstdint>
#include <vector>

// The colour of an error or a warning in an editor: its texts can be read, also on the line of the caret.
Rgb SeverityColour(const EditorPalette& palette, const ChromePalette& chrome, bool error);

// As SampledPicture (ui/sampled_picture.h). `inside` is the colour of the cross and of the exclamation mark.
std::vector<std::uint8_t> SeveritySign(int size, bool error, Rgb colour, Rgb inside);
