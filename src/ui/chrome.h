// The colours of the frame around the editors: the tab bar, the status bar and the panes. UI thread only.
#pragma once

#include "ui/high_contrast.h"

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
    COLORREF selected;  // background of the selected row while its list has the focus
    COLORREF quiet;     // text of hints, and of what is disabled or out of date
    COLORREF error;     // error marks
    COLORREF modified;  // modified marks
    COLORREF success;   // build marks of documents that were built without errors
};
// The result stays valid, but the next call overwrites it.
const ThemeChrome& ThemeCurrentChrome();
bool ThemeIsOwnStyle();  // the program's, not one of the others
bool ThemeChosenDark();  // the user's choice, which the high-contrast mode of the system overrules
// The background of the editors and panes is dark: pictures and colours of one's own have to suit it.
bool ThemeIsDark();
// The program draws menus, dialogs and controls itself, because the system would draw them light, and not in the colours of
// an editor style. Never in the high-contrast mode, whose colours the system's own drawing has.
bool ThemeDrawsControls();
bool ThemeDrawsDark();  // and in the dark theme: what the system draws, such as scroll bars, has to be dark, too
// Lines of output get colours that can be read on their pane, instead of the usual ones.
bool OutputIsReadable();
COLORREF ThemeQuietText();
// The ground of a selected row, and the colour of what is drawn on a ground: `usual` but on the selection of the
// high-contrast mode, which is the system's and has one colour for all.
COLORREF ThemeSelectedBack(bool focused);
COLORREF ThemeInkOn(COLORREF ground, COLORREF usual);

// The present colours as 0xRRGGBB. Both references stay valid; their colours change with the theme.
const EditorPalette& ThemeCurrentPalette();
const ChromePalette& ThemeCurrentChromePalette();

// The system's high-contrast mode as it was when ThemeUseSystem was last called; the first question asks the system.
bool SystemHighContrast();
// From now on shows the colours of such a system. Nothing is painted by it.
void ThemeUseSystem(const SystemLook& look);
const SystemLook& ThemeUsedSystem();
SystemLook ThemeReadSystem();  // asks the system
// The mode counts as on from now on, in the colours that the system has: for systems that cannot switch it on.
void ThemeAssumeHighContrast();
