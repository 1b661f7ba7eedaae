// The session and the workspace in use. UI thread only.
#pragma once

#include "base/bounded_text.h"

#include <windows.h>

struct SessionState {
    HWND hProjectTree = nullptr;
    wchar_t sessionPath[kPathCapacity] = {};    // current named session, empty with none
    wchar_t workspacePath[kPathCapacity] = {};  // current workspace, empty: the default beside the executable
    bool splitHorizontal = false;               // kept and restored by sessions
    bool fullScreen = false;                    // kept and restored by sessions
};
// A part of `g_app` (app/app_state.h).
extern SessionState& g_session;
