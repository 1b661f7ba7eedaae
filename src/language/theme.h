// Themes, styles and lexers of the editors: which colours and which lexer a document gets. UI thread for the
// Syntax... calls; the tables behind them are pure (theme_table.h).
#pragma once

#include <windows.h>

#include <cstdint>

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
// Of inline assembly in BASIC source.
COLORREF ThemeAssemblyColour();

// Lexer, keywords, colours, fonts and margins of one editor for a compiler's dialect, by the current theme, style
// preset and font settings. The file name picks the lexer (BASIC, C, assembly, none); null or empty: BASIC.
void SyntaxThemeApply(HWND editor, std::uint32_t compilerId, const wchar_t* path);
// The same for an editor that already belongs to a tab: its path is looked up in `g_app.tabs`.
void SyntaxThemeApplyDefault(HWND editor, std::uint32_t compilerId);
// All tabs. Called when the theme, the style preset, the font or the active compiler changes.
void SyntaxThemeApplyAll();
