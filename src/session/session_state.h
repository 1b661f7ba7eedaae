// The project tree's window, and the session and workspace in use. UI thread only.
#pragma once

#include "base/bounded_text.h"

#include <windows.h>

struct SessionState {
    HWND hProjectTree = nullptr;
    wchar_t sessionPath[kPathCapacity] = {};    // current named session; empty: none
    wchar_t workspacePath[kPathCapacity] = {};  // current workspace; empty: the default beside the executable
    bool splitHorizontal = false;               // saved and restored with sessions
    bool fullScreen = false;                    // saved and restored with sessions
};
// A part of `g_app` (app/app_state.h).
extern SessionState& g_session;
