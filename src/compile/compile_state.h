// What runs for the user. UI thread only, but for the build state, which the reader thread shares under `g_buildCs`.
#pragma once

#include "compile/build_state.h"

#include <windows.h>

struct CompileState {
    BuildState build;           // under g_buildCs
    HWND hTerminal = nullptr;   // the terminal line
    bool programInUse = false;  // a debugger runs the built program, so that its file cannot be written
};
// Parts of `g_app` (app/app_state.h).
extern CompileState& g_compile;
extern BuildState& g_buildState;
