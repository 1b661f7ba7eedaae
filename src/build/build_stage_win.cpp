#include "build/build_stage.h"

#include "app/app_state.h"
#include "app/log.h"
#include "app/shell.h"
#include "build/asm_pane.h"
#include "build/build.h"
#include "build/build_reader.h"
#include "build/child_process.h"
#include "build/output_feed.h"
#include "build/rich_lines.h"
#include "files/handles.h"
#include "files/wide_format.h"
#include "resources/ids.h"

#include <iterator>
#include <memory>

CRITICAL_SECTION g_buildCs;

namespace {

constexpr COLORREF kRed = 0x0000FF;
constexpr UINT kShowIntervalMs = 20;
constexpr UINT kProgressIntervalMs = 250;
constexpr std::size_t kLinesBesideReplaced = 10000;  // in the new pane while a replaced one still exists
constexpr DWORD kStopWaitMs = 150;  // Stop is answered at once; what is slower than this ends behind it
constexpr DWORD kEndWaitMs = 2000;  // from a reader's report to its clearing up
constexpr DWORD kShutdownWaitMs = 3000;

// The stage as the UI thread knows it.
struct CurrentStage {
    BuildStage stage = BuildStage::Idle;
    UniqueHandle reader;
    bool stopped = false;  // Stop was asked for
    bool ended = false;    // the reader has reported
    DWORD exitCode = 0;
    BuildEnd end = BuildEnd::Ended;
    ULONGLONG started = 0;  // tick count
};
CurrentStage g_stage;
bool g_showTimer = false;

class BuildLock {
public:
    BuildLock() { EnterCriticalSection(&g_buildCs); }
    ~BuildLock() { LeaveCriticalSection(&g_buildCs); }
    BuildLock(const BuildLock&) = delete;
    BuildLock& operator=(const BuildLock&) = delete;
};

void StoreState(const StageLaunch& launch, const ChildProcess& child, const FILETIME& startTime) {
    const BuildLock lock;
    BuildState& build = g_app.build;
    build.process = child.process;
    build.thread = child.thread;
    build.pipeRead = child.pipeRead;
    build.job = child.job;
    build.stage = launch.stage;
    build.building = launch.stage == BuildStage::Compile;
    build.preparing = !build.building;
    if (build.building) build.startTime = startTime;
    build.staged = launch.staged.copied;
    SafeCopyW(build.stagedPath, launch.staged.copied ? std::wstring_view(launch.staged.path) : std::wstring_view());
}

void ForgetState() {
    const BuildLock lock;
    BuildState& build = g_app.build;
    build.process = build.thread = build.pipeRead = build.job = nullptr;
    build.building = build.preparing = build.staged = false;
    build.stage = BuildStage::Idle;
}

void ShowProgress() { StatusBarSetProgress(BuildProgressText()); }

// Hands the end of the stage on when all its output is shown.
void DeliverEnd() {
    if (!g_stage.ended || !OutputFeedIsEmpty()) return;
    const StageResult result = {.stage = g_stage.stage,
                                .end = g_stage.stopped ? BuildEnd::Stopped : g_stage.end,
                                .exitCode = g_stage.exitCode,
                                .seconds = static_cast<double>(GetTickCount64() - g_stage.started) / 1000.0};
    g_stage = {};
    KillTimer(g_app.hMainWnd, TIMER_BUILD);
    ShowProgress();
    if (result.stage == BuildStage::Terminal)
        TerminalOnStageEnd(result);
    else
        BuildOnStageEnd(result);
    MenuUpdateState();
}

// When nothing else is to be done; but a long pane holds hundreds of megabytes, which must not come on top of a flood.
void DestroyReplacedPane(bool allShown) {
    if (!RichPaneIsReplaced()) return;
    const bool idle = allShown && g_stage.stage == BuildStage::Idle && HIWORD(GetQueueStatus(QS_INPUT)) == 0;
    if (idle || OutputFeedLinesShown() > kLinesBesideReplaced) RichPaneDestroyReplaced();
}

}  // namespace

void BuildInit() {
    InitializeCriticalSection(&g_buildCs);
    if (!ReaderInit()) AppLogMsg(L"FAIL: BuildInit error=%lu", GetLastError());
}

bool StageStart(StageLaunch launch, DWORD* error) {
    FILETIME startTime = {};
    GetSystemTimeAsFileTime(&startTime);
    ChildProcess child;
    if (!ChildStart(launch.commandLine, launch.directory, &child, error)) {
        OutputFeedMessage(UnstageSource(&launch.staged), kRed);
        return false;
    }
    StoreState(launch, child, startTime);
    auto request = std::make_unique<ReaderRequest>(ReaderRequest{.stage = launch.stage,
                                                                 .target = g_app.hMainWnd,
                                                                 .limitMs = launch.limitMs,
                                                                 .staged = launch.staged,
                                                                 .logPath = launch.logPath,
                                                                 .logHeader = launch.logHeader});
    g_stage = {};
    g_stage.reader.Reset(ReaderStart(&request));
    if (!g_stage.reader) {
        *error = GetLastError();
        ForgetState();
        ChildTerminate(child.job, child.process);
        ChildClose(&child);
        OutputFeedMessage(UnstageSource(&launch.staged), kRed);
        return false;
    }
    g_stage.stage = launch.stage;
    g_stage.started = GetTickCount64();
    SetTimer(g_app.hMainWnd, TIMER_BUILD, kProgressIntervalMs, nullptr);
    ShowProgress();
    MenuUpdateState();
    return true;
}

bool StageRuns() {
    const BuildLock lock;
    return g_app.build.building || g_app.build.preparing;
}

void StageSettle(bool dropOutput) {
    if (StageRuns()) return;
    MSG message = {};
    while (PeekMessageW(&message, g_app.hMainWnd, MSG_BUILD_OUTPUT, MSG_BUILD_FINISHED, PM_REMOVE))
        DispatchMessageW(&message);
    if (dropOutput) OutputFeedDropWaiting();
    while (!OutputFeedIsEmpty()) OutputFeedShowNext();
    DeliverEnd();
}

void ShowTimerStart() {
    // Setting a timer that runs would start its time anew, and under a flood it would never fire.
    if (!g_showTimer) g_showTimer = SetTimer(g_app.hMainWnd, TIMER_OUTPUT, kShowIntervalMs, nullptr) != 0;
}

void CompilerKill() {
    if (g_stage.stage == BuildStage::Idle) return;
    g_stage.stopped = true;
    ReaderStopAll();
    WaitForSingleObject(g_stage.reader.Get(), kStopWaitMs);
}

void BuildOnOutput(wchar_t* heapText, COLORREF colour) { OutputFeedStream(heapText, colour); }

void BuildOnFinished(DWORD exitCode) {
    if (g_stage.stage == BuildStage::Idle || g_stage.ended) return;
    if (WaitForSingleObject(g_stage.reader.Get(), kEndWaitMs) != WAIT_OBJECT_0)
        AppLogMsg(L"FAIL: BuildOnFinished reader still runs");
    {
        const BuildLock lock;
        g_stage.end = g_app.build.end;
    }
    g_stage.exitCode = exitCode;
    g_stage.ended = true;
    OutputFeedStreamEnd();
}

void BuildOnTimer(UINT_PTR id) {
    if (id == TIMER_BUILD) {
        ShowProgress();
        return;
    }
    if (id != TIMER_OUTPUT) return;
    OutputFeedShowNext();
    AsmPaneShowNext();
    DeliverEnd();
    const bool shown = OutputFeedIsEmpty() && OutputFeedIsRevealed() && AsmPaneIsEmpty();
    DestroyReplacedPane(shown);
    if (shown && !RichPaneIsReplaced()) {
        KillTimer(g_app.hMainWnd, TIMER_OUTPUT);
        g_showTimer = false;
    }
}

void BuildShutdown() {
    g_stage.stopped = true;
    ReaderStopAll();
    if (g_stage.reader) WaitForSingleObject(g_stage.reader.Get(), kShutdownWaitMs);
    MSG message = {};
    while (PeekMessageW(&message, g_app.hMainWnd, MSG_BUILD_OUTPUT, MSG_BUILD_OUTPUT, PM_REMOVE) &&
           message.message == MSG_BUILD_OUTPUT)
        std::free(reinterpret_cast<void*>(message.wParam));
    OutputFeedForget();
    AsmPaneShutdown();
    g_stage = {};
}

const wchar_t* BuildProgressText() {
    static wchar_t text[32];
    text[0] = L'\0';
    if (g_stage.stage == BuildStage::Idle) return text;
    constexpr wchar_t marks[] = {L'|', L'/', L'-', L'\\'};
    const ULONGLONG elapsed = GetTickCount64() - g_stage.started;
    const auto seconds = static_cast<unsigned>(elapsed / 1000);
    FormatBufferW(text, L"%c %u:%02u", marks[elapsed / kProgressIntervalMs % std::size(marks)], seconds / 60,
                  seconds % 60);
    return text;
}
