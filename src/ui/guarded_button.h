// Buttons of dialogs that give work up. UI thread only.
#pragma once

#include <windows.h>

// The system presses a dialog's button at its letter alone while another button has the keyboard, so that one key typed
// too much could lose work. The button takes its letter only with Alt from now on. Called when the dialog has all its
// controls.
void ButtonNeedsAlt(HWND dialog, int button);
