// Lengths at the DPI of the main window's monitor, or of another window's (DpiScope). UI thread only.
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

// A top-level window has that DPI from now on; one of which nothing is known has that of the main window.
void WindowDpiKeep(HWND window, int dpi);
void WindowDpiForget(HWND window);  // it is destroyed
// The DPI of the top-level window to which `window` belongs.
int WindowDpi(HWND window);

// While it lives, the lengths and the fonts (ui/fonts.h) are those of that window: for drawing and measuring only.
// Nothing that may paint another window is called meanwhile.
class DpiScope {
public:
    explicit DpiScope(HWND window) : outer_(g_ui.dpi) { g_ui.dpi = WindowDpi(window); }
    ~DpiScope() { g_ui.dpi = outer_; }
    DpiScope(const DpiScope&) = delete;
    DpiScope& operator=(const DpiScope&) = delete;

private:
    int outer_;
};
