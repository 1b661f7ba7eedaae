// Windows that a dialog's template cannot make, in the places that it keeps for them. UI thread only.
#pragma once

#include "base/difference.h"

#include <windows.h>

#include <span>

// Puts the window where the template has its placeholder, with a border and in the order of the Tab key.
void DialogPutInPlace(HWND dialog, int placeholder, HWND window);

// Dialog units of height in pixels.
int DialogUnits(HWND dialog, int units);
// Moves a control down, or up with a negative number, by pixels.
void DialogMoveControl(HWND dialog, int control, int by);

// A pane for a difference, in the place of `placeholder`. Tab, Enter and Esc in it are the dialog's. Null when it cannot
// be made.
HWND DifferencePaneMake(HWND dialog, int placeholder);
// Shows the lines below what is there, from the top; what was removed and added has its colour.
void DifferencePaneShow(HWND pane, std::span<const DifferenceLine> difference);
