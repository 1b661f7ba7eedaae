// What every window needs to know about the frame. UI thread only.
#pragma once

#include <windows.h>

#include <cstdint>

struct UiState {
    HINSTANCE hInstance = nullptr;
    HWND hMainWnd = nullptr;
    int dpi = 96;  // of the main window's monitor

    std::uint32_t panesShown = 0;  // PaneBit of the shown panes without a setting (ui/panes.h)
    int debugPaneWidth = 0;        // pixels, wanted width below the editor; 0: half of it
};
// A part of `g_app` (app/app_state.h).
extern UiState& g_ui;
