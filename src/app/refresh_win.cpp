// Refreshes the toolbar and the status bar when the message queue is empty. UI thread.
#include "app/main_window.h"

#include "app/app_state.h"
#include "app/handover.h"
#include "app/pane_titles.h"
#include "commands/command_state.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "completion/completion.h"
#include "resources/ids.h"
#include "symbols/outline_pane.h"

#include <utility>

namespace {

constexpr ULONGLONG kPositionMs = 150;  // between two updates of the caret's place

struct Refresh {
    bool wanted = false;
    ULONGLONG positionAt = 0;    // GetTickCount64 value of the last update of the place
    bool positionWaits = false;  // TIMER_POSITION runs
};
Refresh g_refresh;

void ShowPosition() {
    if (std::exchange(g_refresh.positionWaits, false)) KillTimer(g_app.hMainWnd, TIMER_POSITION);
    g_refresh.positionAt = GetTickCount64();
    StatusBarUpdatePosition();
    OutlineOnCaret();
}

// The first change is shown at once. While keys come one after the other, the status bar follows at intervals. The caret's
// line and the status bar would otherwise be copied to the screen together with all that lies between them, which takes
// longer than the key. The timer is armed once, because arming it costs a system call.
void FollowPosition() {
    const ULONGLONG since = GetTickCount64() - g_refresh.positionAt;
    if (since < kPositionMs && !g_refresh.positionWaits)
        g_refresh.positionWaits =
            SetTimer(g_app.hMainWnd, TIMER_POSITION, static_cast<UINT>(kPositionMs - since), nullptr) != 0;
    if (!g_refresh.positionWaits || since >= kPositionMs) ShowPosition();
}

}  // namespace

void MainWindow_RequestStateRefresh() { g_refresh.wanted = true; }

void MainWnd_OnPositionTimer() { ShowPosition(); }

void MainWnd_RunPendingRefresh() {
    MainWnd_ShowNotices();
    HandoverOpenWaiting();
    CompletionGoOn();
    MainWnd_AskAboutFiles();
    if (!g_refresh.wanted || g_app.hToolbar == nullptr) return;
    g_refresh.wanted = false;
    PaneTitlesShowFocus();
    FollowPosition();
    ToolbarApplyState(CurrentCommandView());
}
