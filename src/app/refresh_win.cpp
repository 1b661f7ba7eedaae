// Refreshes the toolbar and the status bar when the message queue is empty. UI thread.
#include "app/main_window.h"

#include "app/app_state.h"
#include "commands/command_state.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "resources/ids.h"

namespace {

constexpr ULONGLONG kPositionMs = 100;  // between two updates of the caret's place

struct Refresh {
    bool wanted = false;
    ULONGLONG positionAt = 0;  // GetTickCount64 value of the last update of the place
};
Refresh g_refresh;

void ShowPosition() {
    KillTimer(g_app.hMainWnd, TIMER_POSITION);
    g_refresh.positionAt = GetTickCount64();
    StatusBarUpdatePosition();
}

// The first change is shown at once. While keys come one after the other, the status bar follows at intervals, because
// each paint of it reaches the screen together with the caret's line: a flush of all between the two takes longer than
// the key.
void FollowPosition() {
    const ULONGLONG since = GetTickCount64() - g_refresh.positionAt;
    if (since >= kPositionMs ||
        SetTimer(g_app.hMainWnd, TIMER_POSITION, static_cast<UINT>(kPositionMs - since), nullptr) == 0)
        ShowPosition();
}

}  // namespace

void MainWindow_RequestStateRefresh() { g_refresh.wanted = true; }

void MainWnd_OnPositionTimer() { ShowPosition(); }

void MainWnd_RunPendingRefresh() {
    MainWnd_ShowNotices();
    if (!g_refresh.wanted || g_app.hToolbar == nullptr) return;
    g_refresh.wanted = false;
    FollowPosition();
    ToolbarApplyState(CurrentCommandView());
}
