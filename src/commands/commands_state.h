// The windows of the toolbar and the status bar. UI thread only.
#pragma once

#include <windows.h>

struct CommandsState {
    HWND hToolbar = nullptr;
    HWND hStatusBar = nullptr;
};
// A part of `g_app` (app/app_state.h).
extern CommandsState& g_commands;
