// A drag that ends before the button of the mouse goes up.
#pragma once

#include "harness.h"

// Client coordinates of the window.
void DragAndTakeBack(const Editor& editor, HWND window, POINT from, POINT to);   // by Esc
void DragAndLoseMouse(const Editor& editor, HWND window, POINT from, POINT to);  // as by another window in front
