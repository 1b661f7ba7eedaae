// The two small pictures of the project tree, drawn in the colours of the theme: asking the shell for the icon of every
// file is slow, on a network share very slow. UI thread.
#pragma once

#include "ui/chrome.h"

#include <windows.h>

#include <commctrl.h>

inline constexpr int kTreeIconFolder = 0;
inline constexpr int kTreeIconFile = 1;
inline constexpr int kTreeIconNone = 2;  // an empty place, for notes

// A new image list that the caller destroys, or null.
HIMAGELIST TreeIconsCreate(int dpi, const ThemeChrome& chrome);
