// Lengths at the DPI of the main window's monitor. UI thread only.
#pragma once

#include "ui/scale.h"
#include "ui/ui_state.h"

// Converts a length at 96 dpi to pixels.
inline int UiScaled(int length) { return ScaledTo(length, g_ui.dpi); }
// Converts pixels to a length at 96 dpi, which is what the settings store.
inline int UiUnscaled(int pixels) { return MulDiv(pixels, 96, g_ui.dpi); }
// A length of the system's at that DPI, by its SM_ number. GetSystemMetrics would give it at the DPI of the login.
inline int UiMetric(int index) { return GetSystemMetricsForDpi(index, static_cast<UINT>(g_ui.dpi)); }
// The LOGFONT height of a font of that size in points.
inline int UiFontHeight(int points) { return -MulDiv(points, g_ui.dpi, 72); }
