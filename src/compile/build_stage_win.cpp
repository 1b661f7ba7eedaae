#include "compile/build_stage.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/worker.h"
#include "compile/build.h"
#include "compile/build_log.h"
#include "compile/build_reader.h"
#include "compile/build_sequence.h"
#include "compile/child_process.h"
#include "compile/compile_state.h"
#include "compile/program_input.h"
#include "compile/program_run.h"
#include "output/line_colours.h"
#include "output/output_credits.h"
#include "output/output_feed.h"
#include "resources/ids.h"
#include "ui/progress.h"
#include "ui/rich_lines.h"
#include "ui/ui_state.h"

#include <algorithm>

CRITICAL_SECTION g_buildCs;

namespace {

constexpr std::size_t kLinesBesideReplaced = 3000;  // the replaced pane is destroyed at last after so many lines
constexpr DWORD kStopWaitMs = 150;                  // Stop waits so long at most; a slower reader thread ends later
constexpr DWORD kEndWaitMs = 2000;  // longest wait from MSG_BUILD_FINISHED until the reader thread has cleaned up
constexpr DWORD kShutdownWaitMs = 3000;

// The stage as the UI thread knows it.
struct CurrentStage {
    BuildStage stage = BuildStage::Idle;
    Worker reader;
    bool stopped = false;  // the user chose Stop
    bool ended = false;    // MSG_BUILD_FINISHED has come
    DWORD exitCode = 0;
    BuildEnd end = BuildEnd::Ended;
    ULONGLONG started = 0;  // tick count
    std::wstring log;       // path
};
CurrentStage g_stage;

void StoreStageState(const StageLaunch& launch, const ChildProcess& child) {
    const BuildLock lock;
    BuildState& build = g_buildState;
    build.process = child.process;
    build.thread = child.thread;
    build.pipeRead = child.pipeRead;
    build.job = child.job;
    build.stage = launch.stage;
    build.building = launch.stage == BuildStage::Compile;
    build.preparing = !build.building;
    build.staged = launch.staged.copied;
    SafeCopyW(build.stagedPath, launch.staged.copied ? std::wstring_view(launch.staged.path) : std::wstring_view());
}

void ForgetStageState() {
    const BuildLock lock;
    BuildState& build = g_buildState;
    build.process = build.thread = build.pipeRead = build.job = nullptr;
    build.building = build.preparing = build.staged = false;
    build.stage = BuildStage::Idle;
}

// The reader is asked to end before the processes are ended, so that it reports them as stopped.
void StopReading() {
    WorkerAskToEnd(g_stage.reader);
    ReaderEndProcesses();
}

void ShowBuildProgress() {
    const bool runs = g_stage.stage != BuildStage::Idle;
    ProgressShow(ProgressOf::Build, runs ? StageProgressText(GetTickCount64() - g_stage.started) : L"");
}

// Reports the end of the stage when all its output is shown.
void DeliverStageEnd() {
    if (!g_stage.ended || !OutputFeedIsEmpty()) return;
    const StageResult result = {.stage = g_stage.stage,
                                .end = g_stage.stopped ? BuildEnd::Stopped : g_stage.end,
                                .exitCode = g_stage.exitCode,
                                .seconds = static_cast<double>(GetTickCount64() - g_stage.started) / 1000.0};
    CommandLogDone(g_stage.log, OutputFeedLeftLinesOut());
    g_stage = {};
    KillTimer(g_ui.hMainWnd, TIMER_BUILD);
    ShowBuildProgress();
    ProgramInputClose();
    switch (result.stage) {
        case BuildStage::Terminal: TerminalOnStageEnd(result); break;
        case BuildStage::Program: ProgramOnStageEnd(result); break;
        default: BuildOnStageEnd(result); break;
    }
    g_events.refreshNow();
}

// Destroys the replaced pane when nothing else is to be done. It is destroyed earlier when the new pane grows long,
// because a long pane holds hundreds of megabytes.
void DestroyReplacedPane(bool allShown) {
    if (!RichPaneIsReplaced()) return;
    const bool idle = allShown && g_stage.stage == BuildStage::Idle && HIWORD(GetQueueStatus(QS_INPUT)) == 0;
    if (idle || OutputFeedLinesShown() > kLinesBesideReplaced) RichPaneDestroyReplaced();
}

}  // namespace

void BuildInit() {
    InitializeCriticalSection(&g_buildCs);
    if (!OutputCreditsInit()) AppLogMsg(L"FAIL: BuildInit error=%lu", GetLastError());
}

bool StageStart(StageLaunch launch, DWORD* error) {
    ChildProcess child;
    const bool isProgram = launch.stage == BuildStage::Program;
    if (!ChildStart(launch.commandLine, launch.directory, &child, error, isProgram)) {
        OutputFeedMessage(UnstageSource(&launch.staged), kLineRed);
        return false;
    }
    if (launch.logPath.empty()) launch.logPath = CommandLogNew();
    OutputFeedBegin({.diagnostics = StageIsOfBuild(launch.stage),
                     .log = launch.logPath,
                     .logLines = static_cast<std::uint64_t>(std::ranges::count(launch.logHeader, L'\n'))});
    StoreStageState(launch, child);
    g_stage = {};
    g_stage.reader = WorkerStart<CompilerThread>(ReaderRequest{.stage = launch.stage,
                                                               .target = g_ui.hMainWnd,
                                                               .limitMs = launch.limitMs,
                                                               .staged = launch.staged,
                                                               .logPath = launch.logPath,
                                                               .logHeader = launch.logHeader});
    if (!g_stage.reader) {
        *error = GetLastError();
        ForgetStageState();
        ChildTerminate(child.job, child.process);
        ChildClose(&child);
        CommandLogDone(launch.logPath, false);
        OutputFeedMessage(UnstageSource(&launch.staged), kLineRed);
        return false;
    }
    if (isProgram) ProgramInputOpen(child.inputWrite);
    g_stage.stage = launch.stage;
    g_stage.log = launch.logPath;
    g_stage.started = GetTickCount64();
    SetTimer(g_ui.hMainWnd, TIMER_BUILD, kProgressIntervalMs, nullptr);
    ShowBuildProgress();
    g_events.refreshNow();
    return true;
}

bool StageIsProgram() { return g_stage.stage == BuildStage::Program; }

bool StageRuns() {
    const BuildLock lock;
    return g_buildState.building || g_buildState.preparing;
}

void StageSettle(bool dropOutput) {
    if (StageRuns()) return;
    MSG message = {};
    while (PeekMessageW(&message, g_ui.hMainWnd, MSG_BUILD_OUTPUT, MSG_BUILD_FINISHED, PM_REMOVE))
        DispatchMessageW(&message);
    if (dropOutput) OutputFeedDropWaiting();
    while (!OutputFeedIsEmpty()) OutputFeedShowNext();
    DeliverStageEnd();
}

void CompilerKill() {
    if (g_stage.stage == BuildStage::Idle) return;
    g_stage.stopped = true;
    StopReading();
    WorkerWait(g_stage.reader, kStopWaitMs);
}

void BuildOnOutput(wchar_t* heapText, COLORREF colour) { OutputFeedStream(heapText, colour); }

void BuildOnFinished(DWORD exitCode) {
    if (g_stage.stage == BuildStage::Idle || g_stage.ended) return;
    if (!WorkerWait(g_stage.reader, kEndWaitMs)) AppLogMsg(L"FAIL: BuildOnFinished reader still runs");
    {
        const BuildLock lock;
        g_stage.end = g_buildState.end;
    }
    g_stage.exitCode = exitCode;
    g_stage.ended = true;
    OutputFeedStreamEnd();
}

void BuildOnTimer() {
    ShowBuildProgress();
    ProgramInputPump();
    ProgramWatchInput();
}

bool BuildOnShown(bool allShown) {
    DeliverStageEnd();
    DestroyReplacedPane(allShown);
    return RichPaneIsReplaced();
}

void BuildShutdown() {
    g_stage.stopped = true;
    StopReading();
    WorkerWait(g_stage.reader, kShutdownWaitMs);
    WorkerDropPosts<HeapBlock<wchar_t>>(g_ui.hMainWnd, MSG_BUILD_OUTPUT);
    OutputFeedForget();
    ProgramInputClose();
    CommandLogsDelete();
    g_stage = {};
}
