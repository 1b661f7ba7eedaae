// Refreshes the toolbar and the status bar when the message queue is empty. UI thread.
#include "app/main_window.h"

#include "ai/ai_requests.h"
#include "app/app_state.h"
#include "app/handover.h"
#include "app/pane_titles.h"
#include "commands/command_state.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "compile/build_stage.h"
#include "completion/completion.h"
#include "debugui/breakpoint_list.h"
#include "debugui/debug_run.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "output/mark_view.h"
#include "resources/ids.h"
#include "symbols/outline_pane.h"
#include "ui/late_size.h"
#include "ui/long_work.h"

#include <utility>

namespace {

constexpr ULONGLONG kPositionMs = 150;  // between two updates of the caret's place

struct Refresh {
    bool wanted = false;
    ULONGLONG positionAt = 0;    // GetTickCount64 value of the last update of the place
    bool positionWaits = false;  // TIMER_POSITION runs
};
Refresh g_refresh;

// What the status bar tells is no news any more once the user goes on; what lasts stays: work that runs, the diagnostic of
// the caret's line, a text that could not be saved, a replacement that waits.
void PassMessage() {
    const DocumentId active = ActiveDocumentId();
    const bool runs = CompilerIsBuilding() || StageRuns() || AiRequestsRun() || FileWorkRuns() || LongWorkRuns() ||
                      DebugFlowNow().phase != DebugPhase::None;
    const bool lasts = SourceMarksAreTold(active) || FileSaveHasFailed(active) ||
                       (g_app.aiDoPending && g_app.aiReplacement.target.document == active);
    if (!runs && !lasts) StatusBarPassText();
}

void ShowPosition() {
    if (std::exchange(g_refresh.positionWaits, false)) KillTimer(g_app.hMainWnd, TIMER_POSITION);
    g_refresh.positionAt = GetTickCount64();
    StatusBarUpdatePosition();
    PassMessage();
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

// A program that is debugged may take the editor along: its breakpoints are to come back whole, with the condition that
// was given a minute ago.
void KeepBreakpoints() {
    static std::uint64_t kept = 0;
    const std::uint64_t changes = BreakpointChanges();
    if (std::exchange(kept, changes) != changes) MainWnd_SaveSessionSoon();
}

}  // namespace

void MainWindow_RequestStateRefresh() { g_refresh.wanted = true; }

void MainWnd_OnPositionTimer() { ShowPosition(); }

void MainWnd_RunPendingRefresh() {
    SizeStepEnds();
    MainWnd_ShowNotices();
    HandoverOpenWaiting();
    CompletionGoOn();
    MainWnd_AskAboutFiles();
    if (!g_refresh.wanted || g_app.hToolbar == nullptr) return;
    g_refresh.wanted = false;
    KeepBreakpoints();
    PaneTitlesShowFocus();
    FollowPosition();
    ToolbarApplyState(CurrentCommandView());
}
