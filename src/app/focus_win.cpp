// Bringing the keyboard to the editor, and refreshing command state once the queue is empty. UI thread only.
#include "app/app_state.h"
#include "app/main_window.h"
#include "app/shell.h"
#include "resources/ids.h"
#include "toolbar/command_state.h"
#include "toolbar/toolbar.h"

namespace {

constexpr UINT kRetryInterval = 80;  // ms
constexpr int kRetries = 24;

int g_focusTicks = 0;
bool g_refreshWanted = false;

}  // namespace

void FocusCurrentEditor() {
    if (g_app.hEditor != nullptr && IsWindowVisible(g_app.hEditor) && GetFocus() != g_app.hEditor)
        SetFocus(g_app.hEditor);
}

void QueueFocusCurrentEditor() {
    g_focusTicks = 0;
    PostMessageW(g_app.hMainWnd, MSG_FOCUS_EDITOR, 0, 0);
    SetTimer(g_app.hMainWnd, TIMER_FOCUS, kRetryInterval, nullptr);
}

void MainWnd_OnFocusTimer(HWND window) {
    FocusCurrentEditor();
    if (++g_focusTicks >= kRetries || GetFocus() == g_app.hEditor) KillTimer(window, TIMER_FOCUS);
}

void MainWindow_RequestStateRefresh() { g_refreshWanted = true; }

void MainWnd_RunPendingRefresh() {
    if (!g_refreshWanted || g_app.hToolbar == nullptr) return;
    g_refreshWanted = false;
    StatusBarUpdatePosition();
    ToolbarApplyState(CurrentCommandView());
}
