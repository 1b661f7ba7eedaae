// The two small pictures of the project tree, drawn in the colours of the theme. The shell's icons are not used,
// because getting one for every file is slow, above all on a network share. UI thread.
#pragma once

#include "ui/chrome.h"

#include <windows.h>

#include <commctrl.h>

inline constexpr int kTreeIconFolder = 0;
inline constexpr int kTreeIconFile = 1;
inline constexpr int kTreeIconNone = 2;  // an empty picture, for notes

// A new image list that the caller destroys, or null.
HIMAGELIST TreeIconsCreate(int dpi, const ThemeChrome& chrome);
