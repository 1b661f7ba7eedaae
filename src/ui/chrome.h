// The colours of the frame around the editors. UI thread only.
#pragma once

#include <windows.h>

// Colours of the frame around the editor in the current theme, as COLORREF: tab bar, status bar, panes.
struct ThemeChrome {
    COLORREF windowBack;  // behind the panes
    COLORREF paneBack;    // output, ASM and chat panes, tree, error list
    COLORREF paneText;
    COLORREF tabBack;  // tab strip and inactive tabs
    COLORREF tabActiveBack;
    COLORREF tabText;
    COLORREF tabActiveText;
    COLORREF accent;  // active tab's edge, focus, progress
    COLORREF line;    // hairlines between panes
    COLORREF statusBack;
    COLORREF statusText;
    COLORREF hover;     // hovered button or tab
    COLORREF error;     // error marks
    COLORREF modified;  // modified marks
    COLORREF success;   // build marks of what was built without errors
};
const ThemeChrome& ThemeCurrentChrome();
bool ThemeIsDark();
// Text of what is known but not in force: a hint, what is disabled, what is no longer true.
COLORREF ThemeQuietText();
