// What every window needs to know of the frame. UI thread only.
#pragma once

#include <windows.h>

#include <cstdint>

struct UiState {
    HINSTANCE hInstance = nullptr;
    HWND hMainWnd = nullptr;
    int dpi = 96;  // of the monitor the main window is on

    std::uint32_t panesShown = 0;  // PaneBit of those that no setting keeps (ui/panes.h)
    int debugPaneWidth = 0;        // pixels wanted of the area below the editor, 0: half of it
};
// A part of `g_app` (app/app_state.h).
extern UiState& g_ui;
