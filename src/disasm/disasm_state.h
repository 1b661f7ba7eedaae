// The window of the ASM pane. UI thread only.
#pragma once

#include <windows.h>

struct DisasmState {
    HWND hAsmPane = nullptr;  // Rich Edit
};
// A part of `g_app` (app/app_state.h).
extern DisasmState& g_disasm;
