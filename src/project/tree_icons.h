// The small pictures of the project tree, drawn in the colours of the theme. The shell's icons are not used, because
// getting one for every file is slow, above all on a network share. UI thread.
#pragma once

#include "project/tree_rules.h"
#include "ui/chrome.h"

#include <windows.h>

#include <commctrl.h>

// A new image list with the pictures in the order of TreePicture, which the caller destroys, or null.
HIMAGELIST TreeIconsCreate(int dpi, const ThemeChrome& chrome);
