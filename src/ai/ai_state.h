// The windows of the AI chat pane. UI thread only.
#pragma once

#include <windows.h>

struct AiState {
    HWND hAiChat = nullptr;  // Rich Edit
    HWND hAiInput = nullptr;
    HWND hAiSend = nullptr;
};
// A part of `g_app` (app/app_state.h).
extern AiState& g_ai;
