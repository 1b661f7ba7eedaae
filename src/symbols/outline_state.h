// The window of the outline. UI thread only.
#pragma once

#include <windows.h>

struct OutlineState {
    HWND hOutline = nullptr;  // null until it was shown
};
