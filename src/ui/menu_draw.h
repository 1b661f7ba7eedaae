// Draws menus in the dark theme, because the system draws them light. The items become owner-drawn while the theme is
// dark and keep their texts, so everything else about them stays as it is. In the light theme the system draws them. UI
// thread only.
#pragma once

#include <windows.h>

// From now on, or until the detaching, the window draws the items of its menu bar and of pop-up menus that it owns.
void MenuDrawAttach(HWND window);
void MenuDrawDetach(HWND window);
// Prepares a pop-up menu whose owner gets no WM_INITMENUPOPUP for it.
void MenuDrawPrepare(HMENU menu);
// Draws the menu bar of an attached window by the current theme.
void MenuBarApplyTheme(HWND window);
