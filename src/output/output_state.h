// The diagnostics of the last build and the windows that show its output. UI thread only.
#pragma once

#include "output/diagnostics.h"

#include <windows.h>

struct OutputState {
    HWND hOutput = nullptr;     // Rich Edit
    HWND hErrorList = nullptr;  // list view
    CompilerErrors errors;      // the diagnostics of the last build
};
// A part of `g_app` (app/app_state.h).
extern OutputState& g_output;
