// Lengths at the DPI of the monitor that the main window is on. UI thread only.
#pragma once

#include "ui/scale.h"
#include "ui/ui_state.h"

// Pixels of a length that is written for 96 dpi.
inline int UiScaled(int length) { return ScaledTo(length, g_ui.dpi); }
// The length at 96 dpi of so many pixels: what the settings keep.
inline int UiUnscaled(int pixels) { return MulDiv(pixels, 96, g_ui.dpi); }
// The height that LOGFONT wants for a font of so many points.
inline int UiFontHeight(int points) { return -MulDiv(points, g_ui.dpi, 72); }
