// What all dialogs need of their controls and their screen before they are shown. UI thread only.
#pragma once

#include <windows.h>

// Makes the rows of a dialog even: combo boxes get the height of its fields, which a template cannot give
// them.
void DialogFitFields(HWND dialog);
// Gives labels, buttons and check boxes the room that their texts need; what is beside and below them moves, and the
// dialog grows. A dialog whose size the user can change places its controls itself.
void DialogFitTexts(HWND dialog);
// Makes a dialog that is larger than the work area of its monitor as large as that.
void DialogFitSize(HWND dialog);
// The same, and moves it into the work area.
void DialogFitScreen(HWND dialog);
