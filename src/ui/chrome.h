// The colours of the frame around the editors: the tab bar, the status bar and the panes. UI thread only.
#pragma once

#include <windows.h>

// The colours of the current theme, as COLORREF.
struct ThemeChrome {
    COLORREF windowBack;  // background of the main window
    COLORREF paneBack;    // output, ASM and chat panes, tree, error list
    COLORREF paneText;
    COLORREF tabBack;  // tab strip and inactive tabs
    COLORREF tabActiveBack;
    COLORREF tabText;
    COLORREF tabActiveText;
    COLORREF accent;  // edge of the active tab, focus, progress
    COLORREF line;    // thin lines between panes
    COLORREF statusBack;
    COLORREF statusText;
    COLORREF hover;     // button or tab below the mouse
    COLORREF error;     // error marks
    COLORREF modified;  // modified marks
    COLORREF success;   // build marks of documents that were built without errors
};
// The result stays valid, but the next call overwrites it.
const ThemeChrome& ThemeCurrentChrome();
bool ThemeIsDark();
// The system's high-contrast mode is on.
bool SystemHighContrast();
// Lines of output get colours that can be read on their pane, instead of the usual ones.
bool OutputIsReadable();
// The colour of quiet text: hints, and what is disabled or out of date.
COLORREF ThemeQuietText();
