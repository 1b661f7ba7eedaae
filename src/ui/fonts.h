// The two fonts of the frame and its panes, and their sizes. Both are owned here. UI thread only.
#pragma once

#include <windows.h>

// The system's message font at the current DPI.
HFONT UiFont();
// The fixed-pitch font of the settings (OutputFont) at the current DPI.
HFONT UiFixedFont();

// Sizes in pixels.
struct UiFontSizes {
    int textWidth = 1;    // of an average character of UiFont
    int textHeight = 1;   // of its lines
    int fixedWidth = 1;   // of every character of UiFixedFont
    int fixedHeight = 1;  // of its lines
};
const UiFontSizes& UiSizes();

// After a change of DPI, of the system's font or of the setting: makes both fonts anew. The old ones stay valid until the
// next call, because windows hold them until they are given the new ones.
void UiFontsRenew();

int UiTextWidth(const wchar_t* text, int length);  // pixels in UiFont
