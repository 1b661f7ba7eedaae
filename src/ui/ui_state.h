// What every window needs to know of the frame. UI thread only.
#pragma once

#include <windows.h>

struct UiState {
    HINSTANCE hInstance = nullptr;
    HWND hMainWnd = nullptr;
    int dpi = 96;  // of the monitor the main window is on

    // Panes that are shown; these last for one run.
    bool showOutput = true;
    bool showAsmPane = false;
    bool showDebugPane = false;
    int debugPaneWidth = 0;  // pixels wanted of the area below the editor, 0: half of it
};
// A part of `g_app` (app/app_state.h).
extern UiState& g_ui;
