// What every window needs to know about the frame. UI thread only.
#pragma once

#include <windows.h>

#include <cstdint>

struct UiState {
    HINSTANCE hInstance = nullptr;
    HWND hMainWnd = nullptr;
    HWND hStartPage = nullptr;  // in the place of the editor; null while it is not shown
    int dpi = 96;               // of the main window's monitor

    std::uint32_t panesShown = 0;  // PaneBit of the shown panes without a setting (ui/panes.h)
};
// A part of `g_app` (app/app_state.h).
extern UiState& g_ui;
