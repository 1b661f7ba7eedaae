// The header of a list view, drawn in the colours of the frame. UI thread only.
#pragma once

#include <windows.h>

// Draws the header of the list by the current theme from now on. The list must have a header.
void ListHeaderApplyTheme(HWND list);
