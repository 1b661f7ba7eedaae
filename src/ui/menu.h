// Menus that pop up at a place. UI thread only.
#pragma once

#include <windows.h>

#include <span>

struct MenuItem {
    UINT id = 0;  // 0: a separator
    const wchar_t* text = nullptr;
    bool enabled = true;
    bool checked = false;
    HBITMAP picture = nullptr;  // stays the caller's
};

// Shows the items until one is chosen; 0: none was. The corner at `screen` is the left one, with TPM_RIGHTALIGN the right
// one. Messages are handled meanwhile: what the caller looked up before may be gone. `owner` hears WM_INITMENUPOPUP and
// may set the states of its commands there.
UINT ShowPopupMenu(HWND owner, std::span<const MenuItem> items, POINT screen, UINT flags = TPM_LEFTALIGN);
