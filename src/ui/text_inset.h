// The blank between a text and the edge of its window, for controls that have none of their own. UI thread only.
#pragma once

#include <windows.h>

// Shows the text of a field of one line in the middle of its height; the control itself shows it at the top.
void TextInsetCentre(HWND field);
// Gives the text of a Rich Edit pane a blank to its left and above it. The pane has no size yet.
void TextInsetPane(HWND pane);
