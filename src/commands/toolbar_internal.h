// The seam between the toolbar and the menus that open below its buttons. Private to these files. UI thread only.
#pragma once

#include "commands/icons.h"

#include <windows.h>

#include <span>
#include <string>

// A button for which there is no room.
struct HiddenButton {
    int command = 0;  // 0: a gap between groups
    Icon icon = Icon::New;
    bool showsState = false;
    std::wstring tip;  // "Save (Ctrl+S)"
};

std::wstring ToolbarCompilerText();
// Below a button; `button` in client coordinates of the bar. The command that is chosen goes to the main window.
void ToolbarShowCompilerMenu(HWND bar, const RECT& button);
void ToolbarShowHiddenMenu(HWND bar, const RECT& button, std::span<const HiddenButton> buttons);

// A picture for bitmaps and image lists, with opacity; the caller deletes it. Null when there is no memory.
HBITMAP ToolbarPicture(Icon icon, int size, const IconInks& inks);
IconInks ToolbarInks(bool dark, bool enabled);
