// The state of builds and of the terminal line. UI thread only, except the build state, which the reader thread shares
// under `g_buildCs`.
#pragma once

#include "compile/build_state.h"

#include <windows.h>

struct CompileState {
    BuildState build;           // under g_buildCs
    HWND hTerminal = nullptr;   // the terminal line
    bool programInUse = false;  // a debugger runs the built program, so its file cannot be written
};
// Parts of `g_app` (app/app_state.h).
extern CompileState& g_compile;
extern BuildState& g_buildState;
