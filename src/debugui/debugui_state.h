// The debug pane's part of the application's record. UI thread only.
#pragma once

#include <windows.h>

struct DebugUiState {
    HWND hDebugPane = nullptr;
};
// A part of `g_app` (app/app_state.h).
extern DebugUiState& g_debugUi;
