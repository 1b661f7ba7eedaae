// The find dialog. UI thread only.
#pragma once

#include <windows.h>

struct SearchState {
    HWND hFindDialog = nullptr;  // modeless, empty while closed
};
// A part of `g_app` (app/app_state.h).
extern SearchState& g_search;
