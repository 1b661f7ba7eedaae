// Pop-up menus. UI thread only.
#pragma once

#include <windows.h>

#include <span>

// Gives a menu of the resources the texts of the program's language, with all menus in it.
void MenuTranslate(HMENU menu);

struct MenuItem {
    UINT id = 0;  // 0: a separator
    const wchar_t* text = nullptr;
    bool enabled = true;
    bool checked = false;
    HBITMAP picture = nullptr;  // owned by the caller
};

// Shows the items and returns the id of the chosen one, or 0 for none. `screen` is the upper left corner, or with
// TPM_RIGHTALIGN the upper right one. Messages are dispatched while the menu is open, so objects that the caller has
// looked up before may be gone. `owner` gets WM_INITMENUPOPUP, in which it may set the states of its commands.
UINT ShowPopupMenu(HWND owner, std::span<const MenuItem> items, POINT screen, UINT flags = TPM_LEFTALIGN);
