// The colours of the frame around the editors in an editor style. Pure.
#pragma once

#include "ui/theme_table.h"

// Made of the style's own page, text and accent, so that the frame belongs to the page. Every text has enough contrast to
// each background that it can stand on. `usual` is the program's own frame: it gives the hues of errors, changes and
// success.
ChromePalette ChromeOfStyle(const EditorPalette& page, Rgb accent, const ChromePalette& usual, bool dark);
