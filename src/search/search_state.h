// The find dialog's window. UI thread only.
#pragma once

#include <windows.h>

struct SearchState {
    HWND hFilesPane = nullptr;   // results of a search over files; null until it was shown
    HWND hFindDialog = nullptr;  // modeless; null while closed
    HWND hFindBar = nullptr;     // null while closed
};
// A part of `g_app` (app/app_state.h).
extern SearchState& g_search;
