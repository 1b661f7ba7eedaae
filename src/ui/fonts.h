// The fonts of the frame and its panes, and their sizes; within a DpiScope (ui/dpi.h) those of another window. Callers
// must not delete the fonts. UI thread only.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <vector>

// The message font of the system at the current DPI.
HFONT UiFont();
// The same, bold.
HFONT UiBoldFont();
// The fixed-pitch font of the setting OutputFont at the current DPI.
HFONT UiFixedFont();
// DEFAULT_GUI_FONT at the current DPI.
HFONT UiStockFont();

// `wanted`, or the name of a font of fixed pitch when that has none.
std::wstring UiFixedFace(const wchar_t* wanted);

// In pixels.
struct UiFontSizes {
    int textWidth = 1;    // an average character of UiFont
    int textHeight = 1;   // a line of UiFont
    int fixedWidth = 1;   // every character of UiFixedFont
    int fixedHeight = 1;  // a line of UiFixedFont
};
const UiFontSizes& UiSizes();

// Makes the fonts anew, after a change of the DPI, of the system's font or of the setting. The old fonts stay valid
// until the next call, because windows use them until they get the new ones.
void UiFontsRenew();

// For a window whose monitor has another DPI than the main window's.
HFONT UiMakeTextFont(int dpi);   // the message font of the system; the caller deletes it
int UiTextHeightOf(HFONT font);  // of a line, in pixels

int UiTextWidth(const wchar_t* text, int length);  // pixels, in UiFont; `length` characters
std::vector<int> UiTextWidths(std::span<const std::wstring> texts);
