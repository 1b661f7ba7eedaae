// Dialogs on a monitor of another DPI: their font, their units, and the places of their controls. One place for all
// dialogs; one whose size the user can change places its controls itself. UI thread only.
#pragma once

#include <windows.h>

#include <span>

// Called for each dialog as it is made; again it changes nothing.
void DialogScaleBegin(HWND dialog);
void DialogScaleEnd(HWND dialog);  // it is destroyed
// Dialog units in pixels, at the DPI that the dialog has now.
SIZE DialogPixels(HWND dialog, int across, int down);
// Sets the tab stops of a list box, in dialog units, also at the scales that come.
void DialogListTabs(HWND dialog, int list, std::span<const UINT> stops);
// The dialog has come to a monitor of that DPI. `suggested` is the system's rectangle, of which the place is taken.
// False: the dialog's own procedure is to do it.
bool DialogRescale(HWND dialog, int dpi, const RECT& suggested);
