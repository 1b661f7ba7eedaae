// Owns the debug flow: starts a program, waits for its stops, follows it while it runs, and ends it. Most steps end at
// once, so a command first waits in place; then a timer takes short looks. UI thread only.
#include "debugui/debug_run.h"

#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "compile/build_source.h"
#include "compile/compile_state.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_list.h"
#include "debugui/debug_commands.h"
#include "debugui/debug_wait.h"
#include "debugui/kept_names.h"
#include "debugui/location.h"
#include "debugui/restart.h"
#include "debugui/stale_sources.h"
#include "documents/document_row.h"
#include "output/last_build.h"
#include "program/line_map.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace {

constexpr DWORD kWaitInPlaceMs = 200;   // that a command waits for its stop
constexpr UINT kTimerIntervalMs = 15;   // between two looks at a running program
constexpr ULONGLONG kLookLimitMs = 10;  // that one look may take, however many events come
constexpr UINT kAliveMs = 500;          // between two looks whether a stopped program is still there
constexpr const wchar_t* kStarting = English(L"Starting the program...");

DebugFlow g_flow;

bool AwaitsFirstLine() { return g_debugger.awaits != DebugAwaits::Nothing; }

void SetStatus(const std::wstring& text) { g_events.statusText(text.c_str()); }

// Sets the flags that other areas read.
void PublishSession(bool exists) {
    g_debug.debugging = exists;
    g_debug.debuggerActive = exists;
    g_compile.programInUse = exists;
}

std::wstring g_shownSource;  // of the program that is debugged; empty: none is

// The tab of the program's source shows that it is debugged; with an empty `source` none is.
void ShowDebugged(const std::wstring& source) {
    g_shownSource = source;
    for (DocumentTab& tab : g_documents.tabs) {
        const bool debugged = !source.empty() && tab.hasFile && PathEqualsIgnoreCase(tab.path, source);
        if (std::exchange(tab.debugged, debugged) != debugged) g_events.documentChanged(tab.id);
    }
}

// --- The end

void StopTimers() {
    if (g_flow.following) KillTimer(g_ui.hMainWnd, TIMER_DEBUG);
    if (g_flow.consoleLooks > 0) KillTimer(g_ui.hMainWnd, TIMER_DEBUG_CONSOLE);
    g_flow.following = false;
    g_flow.consoleLooks = 0;
}

void EndSession(const std::wstring& status) {
    StopTimers();
    KillTimer(g_ui.hMainWnd, TIMER_DEBUG_ALIVE);
    const bool closesPane = FlowClosesPane(&g_flow, PaneIsShown(PaneId::Debug));
    FlowEnded(&g_flow);
    if (DebugHasLeftBehind()) SetTimer(g_ui.hMainWnd, TIMER_DEBUG, kTimerIntervalMs, nullptr);
    PublishSession(false);
    ShowDebugged({});
    DebugClearLocation();
    DebugForgetFiles();
    ScopesForget();
    BreakpointsOnSessionEnd();
    if (closesPane) PaneShow(PaneId::Debug, false);
    SetStatus(status);
    g_events.refreshNow();
    g_events.debuggerChanged();
}

std::wstring ExitStatus() { return FormatW(Text(L"Exited with code %ld"), static_cast<long>(g_debugger.exitCode)); }

// --- Windows of the program

// Takes the foreground back from the program that was debugged. The user may have minimised the editor meanwhile.
void ComeToFront() {
    if (IsIconic(g_ui.hMainWnd)) ShowWindow(g_ui.hMainWnd, SW_RESTORE);
    DWORD owner = 0;
    GetWindowThreadProcessId(GetForegroundWindow(), &owner);
    if (owner != GetCurrentProcessId()) SetForegroundWindow(g_ui.hMainWnd);
}

// The last one is the Windows Terminal, in which consoles open by default since Windows 11.
constexpr const wchar_t* kConsoleClasses[] = {L"ConsoleWindowClass", L"WineConsoleClass",
                                              L"CASCADIA_HOSTING_WINDOW_CLASS"};

bool IsConsole(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return std::ranges::any_of(kConsoleClasses, [&](const wchar_t* one) { return wcscmp(name, one) == 0; });
}

void LookForConsole() {
    const bool came = IsConsole(GetForegroundWindow());
    const ConsoleLook look = FlowLookForConsole(&g_flow, came);
    if (came) SetForegroundWindow(g_ui.hMainWnd);
    if (look.raise && GetForegroundWindow() == g_ui.hMainWnd)
        SetWindowPos(g_ui.hMainWnd, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    if (look.last) KillTimer(g_ui.hMainWnd, TIMER_DEBUG_CONSOLE);
}

void WatchForConsole() {
    FlowWatchConsole(&g_flow);
    SetTimer(g_ui.hMainWnd, TIMER_DEBUG_CONSOLE, kConsoleInterval, nullptr);
    LookForConsole();
}

// --- A stop

// True when the next message is a step, as a command or as a held key.
bool AnotherStepWaits() {
    MSG message = {};
    if (PeekMessageW(&message, g_ui.hMainWnd, WM_COMMAND, WM_COMMAND, PM_NOREMOVE)) {
        const int command = LOWORD(message.wParam);
        return command == IDM_DEBUG_STEP_OVER || command == IDM_DEBUG_STEP_INTO;
    }
    return PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_NOREMOVE) &&
           (message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN) &&
           (message.wParam == VK_F10 || message.wParam == VK_F11);
}

// Shows a stop everywhere but in the output pane and in the source.
void ShowStopAround() {
    g_flow.unseen = false;
    ComeToFront();
    SetStatus(TextWith(L"Stopped at {1}", {DebugPlaceText(&g_debugger)}));
    WarnOfStaleStop();
    g_events.debuggerChanged();
    g_events.refreshWanted();
}

void OnStopped() {
    StopTimers();
    FlowStopped(&g_flow);
    BreakpointsDropStart(&g_debugger);
    const ULONGLONG now = GetTickCount64();
    const bool unseen = FlowMayPassUnseen(g_flow, now) && AnotherStepWaits();
    // PeekMessage delivers messages sent by other programs, whose commands may have resumed or ended the program.
    if (g_flow.phase != DebugPhase::Stopped) return;
    g_flow.unseen = unseen;
    if (unseen) {
        DebugSayLocation(&g_debugger, g_flow.suffix.c_str());
        return;
    }
    g_flow.lastSeen = now;
    DebugShowCurrentLocation(&g_debugger, g_flow.suffix.c_str());
    ShowStopAround();
}

// --- Waiting

void SayOtherSteps(bool ended) {
    if (FlowTakeStepHint(&g_flow, ended, GetTickCount64()))
        DebugSay(
            kDebugOrange,
            Text(L"[Debug] The step goes to the next line by address, which the program may never reach. To go where "
                 L"the program goes: Debug > Steps Follow the Program.\n"));
}

// True when the wait had a result; false when the program runs on.
bool HandleWait(int result) {
    switch (result) {
        case kDebugStopped: OnStopped(); return true;
        case kDebugExited:
            DebugSay(g_debugger.exitCode == 0 ? 0 : kDebugRed, Text(L"[Debug] Process exited.\n"));
            SayOtherSteps(true);
            EndSession(ExitStatus());
            return true;
        case kDebugNoSession: EndSession(Text(L"Debugging has ended")); return true;
        default: return false;
    }
}

void BeginFollowing() {
    g_flow.following = true;
    DebugClearLocation();
    SetStatus(AwaitsFirstLine() ? Text(kStarting) : Text(L"Running"));
    SetTimer(g_ui.hMainWnd, TIMER_DEBUG, kTimerIntervalMs, nullptr);
    g_events.debuggerChanged();
    g_events.refreshWanted();
}

// --- Start

// Starts the program. `g_debugger` shows whether that succeeded; the output pane says why it did not.
void StartProgram(const BuildRecord& program) {
    const DebugWaitScope scope(&g_flow, DebugPumpStart);
    g_events.refreshNow();  // so that the toolbar offers Stop
    UpdateWindow(g_ui.hMainWnd);
    DebugStartForCompiler(program.output.c_str(), program.compilerId, &g_debugger);
}

void StopAfterStart() {
    const bool close = g_flow.closeWanted;
    DebugRunStop();
    if (close) PostMessageW(g_ui.hMainWnd, WM_CLOSE, 0, 0);
}

}  // namespace

const DebugFlow& DebugFlowNow() { return g_flow; }

void DebugRunStart() {
    if (g_flow.phase != DebugPhase::None || g_flow.waiting) return;
    const BuildRecord program = LastBuild();  // a copy, because another build may begin during the wait
    if (program.output.empty()) return;
    DebugSetSourcePath(program.source.c_str());
    DebugRememberSource(program.source);
    const ProgramStart start = ProgramStartOf(program.output);
    DebugSetLaunch(start.arguments.c_str(), start.folder.c_str());
    DebugForgetFiles();
    ScopesForget();
    NamesReadAgain();
    FlowStart(&g_flow, GetTickCount64());
    PublishSession(true);
    ShowDebugged(program.source);
    SetStatus(Text(kStarting));
    StartProgram(program);
    if (g_flow.stopWanted) {
        StopAfterStart();
        return;
    }
    if (g_debugger.active == 0) {
        EndSession(g_debugger.exited != 0 ? ExitStatus() : Text(L"Debugging did not start"));
        return;
    }
    if (FlowOpensPane(&g_flow, PaneIsShown(PaneId::Debug))) PaneShow(PaneId::Debug, true);
    WarnOfStaleSources(program);
    SetTimer(g_ui.hMainWnd, TIMER_DEBUG_ALIVE, kAliveMs, nullptr);
    FlowResume(&g_flow, Text(L" (start)"), GetTickCount64());
    if (g_debugger.run == DebugRun::Stopped) {
        OnStopped();
        WatchForConsole();
    } else {
        BeginFollowing();
    }
    g_events.refreshNow();
}

void DebugRunFollow(const wchar_t* suffix, bool byAddress) {
    StopTimers();
    FlowResume(&g_flow, suffix, GetTickCount64());
    g_flow.byAddress = byAddress;
    if (!HandleWait(DebugWaitInPlace(&g_flow, kWaitInPlaceMs, kWaitInPlaceMs))) BeginFollowing();
}

void DebugRunShowUnseen() {
    if (!g_flow.unseen) return;
    DebugMarkLocation(&g_debugger);
    ShowStopAround();
}

void DebugRunShowAgain(const wchar_t* suffix) {
    DebugShowCurrentLocation(&g_debugger, suffix);
    ShowStopAround();
}

void DebugRunPaused() { g_flow.suffix = Text(L" (paused)"); }

void DebugRunStop() {
    StopTimers();
    FlowEnding(&g_flow);
    if (g_debugger.active != 0) {
        const DebugWaitScope scope(&g_flow, nullptr);
        DebugStop(&g_debugger);
    }
    EndSession(Text(L"Debugging stopped"));
}

// A program that has stopped tells of its end only when it goes on.
bool DebugRunEndOutside() {
    if (WaitForSingleObject(g_debugger.process, 0) != WAIT_OBJECT_0) return false;
    DebugSay(kDebugRed, Text(L"[Debug] The program has been ended from outside.\n"));
    DebugRunStop();
    return true;
}

void DebugOnAliveTimer() {
    if (g_flow.phase == DebugPhase::Stopped && !g_flow.waiting) DebugRunEndOutside();
}

void DebugOnDocumentOpened() {
    if (!g_shownSource.empty()) ShowDebugged(std::wstring(g_shownSource));
}

void DebugFollowRename(const std::wstring& from, const std::wstring& to) {
    if (!g_shownSource.empty()) ShowDebugged(PathAfterMove(g_shownSource, from, to));
}

// Without a session the timer runs for a program that was told to end and has not.
void DebugOnTimer() {
    if (g_flow.phase == DebugPhase::None && g_debugger.active == 0) {
        DebugDrainLeftBehind();
        if (!DebugHasLeftBehind()) KillTimer(g_ui.hMainWnd, TIMER_DEBUG);
        return;
    }
    if (!g_flow.following || g_flow.waiting) return;
    const bool starting = AwaitsFirstLine();
    if (HandleWait(DebugWaitInPlace(&g_flow, 0, kLookLimitMs))) return;
    if (!AwaitsFirstLine()) FlowStartGivenUp(&g_flow);
    SayOtherSteps(false);
    if (FlowTakeLongRun(&g_flow, starting, GetTickCount64()))
        DebugSay(0, Text(L"[Debug] No stop within 30 seconds; the program is still running.\n"));
}

void DebugOnConsoleTimer() {
    if (g_flow.consoleLooks > 0 && !g_flow.waiting) LookForConsole();
}

bool DebugIsWaiting() { return g_flow.waiting; }

void DebugStopWaiting(bool thenClose) { FlowWantStop(&g_flow, thenClose); }

void DebugShutdown() {
    if (g_flow.waiting) {
        // During a wait the session must not be touched, but the program must not outlive the window.
        if (g_debugger.process != nullptr) TerminateProcess(g_debugger.process, 0);
        return;
    }
    if (g_flow.phase != DebugPhase::None || g_debugger.active != 0) DebugRunStop();
}
