// Draws menus in the dark theme, because the system draws them light, and menus with pictures in every theme. Their
// items become owner-drawn and keep their texts, so everything else about them stays as it is. The system draws the
// others. UI thread only.
#pragma once

#include <windows.h>

// For a window procedure: draws the items of the window's menu bar and of pop-up menus that it owns, and gives all other
// messages to `next`. The main window uses it in place of a subclass, which costs several system calls for each message:
// an edit of 200,000 lines notifies the window 200,000 times.
LRESULT MenuDrawAround(HWND window, UINT message, WPARAM wParam, LPARAM lParam, WNDPROC next);
// From now on, or until the detaching, the window draws the items of its menu bar and of pop-up menus that it owns.
void MenuDrawAttach(HWND window);
void MenuDrawDetach(HWND window);
// Prepares a pop-up menu whose owner gets no WM_INITMENUPOPUP for it.
void MenuDrawPrepare(HMENU menu);
// Draws the menu bar of such a window by the current theme.
void MenuBarApplyTheme(HWND window);
