// The tab control's window. UI thread only.
#pragma once

#include <windows.h>

struct TabsState {
    HWND hTabCtrl = nullptr;
};
// A part of `g_app` (app/app_state.h).
extern TabsState& g_tabs;
