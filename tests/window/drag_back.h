// A drag that Esc ends before the button of the mouse goes up.
#pragma once

#include "harness.h"

// Client coordinates of the window.
void DragAndTakeBack(const Editor& editor, HWND window, POINT from, POINT to);
