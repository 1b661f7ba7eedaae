// The window of the project tree. UI thread only.
#pragma once

#include <windows.h>

struct ProjectState {
    HWND hProjectTree = nullptr;
};
// A part of `g_app` (app/app_state.h).
extern ProjectState& g_project;
