// Refreshes the toolbar and the status bar when the message queue is empty. UI thread.
#include "app/main_window.h"

#include "app/app_state.h"
#include "commands/command_state.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"

static bool g_refreshWanted = false;

void MainWindow_RequestStateRefresh() { g_refreshWanted = true; }

void MainWnd_RunPendingRefresh() {
    MainWnd_ShowNotices();
    if (!g_refreshWanted || g_app.hToolbar == nullptr) return;
    g_refreshWanted = false;
    StatusBarUpdatePosition();
    ToolbarApplyState(CurrentCommandView());
}
