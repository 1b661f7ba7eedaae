// Starting a program, waiting for its stops and following it while it runs. The system lets only the thread that started
// a program wait for its events, so the window's own thread does: in place for a moment, because most steps end at once,
// and from then on in short looks from a timer. UI thread only.
#include "debugui/debug_run.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "commands/commands_state.h"
#include "compile/compile_state.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_list.h"
#include "debugui/debug_commands.h"
#include "debugui/debug_pane.h"
#include "debugui/debugui_state.h"
#include "debugui/location.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "output/last_build.h"
#include "program/line_map.h"
#include "resources/ids.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr DWORD kWaitInPlace = 200;        // ms that a command waits for its stop
constexpr ULONGLONG kStartInPlace = 1000;  // ms that a start waits for the first line
constexpr UINT kTimerInterval = 15;        // ms between two looks at a running program
constexpr ULONGLONG kLookLimit = 10;       // ms that one look may take, however much happens
constexpr ULONGLONG kLongRun = 30000;      // ms without a stop after which a line says so
constexpr ULONGLONG kPumpInterval = 20;
constexpr wchar_t kStarting[] = L"Starting the program...";

struct Follow {
    bool running = false;  // the timer asks for the next event
    bool told = false;     // that it takes long
    bool unseen = false;   // the stop is not shown, as another step was to follow at once
    ULONGLONG since = 0;   // of the resume
    std::wstring suffix;
};
Follow g_follow;

// A wait inside a command.
bool g_waiting = false;
ULONGLONG g_waitEnd = 0;
bool g_stopWanted = false;
bool g_closeWanted = false;
ULONGLONG g_lastPump = 0;
ULONGLONG g_startedAt = 0;

int g_consoleLooks = 0;  // left, by the timer
bool g_paneWasHidden = false;

void SetStatus(const std::wstring& text) { g_events.statusText(text.c_str()); }

// --- Waiting

class WaitScope {
public:
    explicit WaitScope(DebugWaitHook hook) : previous_(DebugSetWaitHook(hook)) { g_waiting = true; }
    ~WaitScope() {
        g_waiting = false;
        DebugSetWaitHook(previous_);
    }
    WaitScope(const WaitScope&) = delete;
    WaitScope& operator=(const WaitScope&) = delete;

private:
    DebugWaitHook previous_;
};

// Each event that is no stop starts the wait anew, so the whole of it is limited here.
bool IsWaitOver() { return GetTickCount64() >= g_waitEnd; }

int WaitFor(DWORD milliseconds, ULONGLONG limit) {
    g_waitEnd = GetTickCount64() + limit;
    const WaitScope scope(IsWaitOver);
    return g_debugger.awaits != DebugAwaits::Nothing ? DebugWaitStart(&g_debugger, milliseconds)
                                                     : DebugWaitEvent(&g_debugger, milliseconds);
}

bool IsStopKey(const MSG& message) {
    if (message.message != WM_KEYDOWN) return false;
    return message.wParam == VK_ESCAPE || message.wParam == VK_CANCEL ||
           (message.wParam == VK_F5 && GetKeyState(VK_SHIFT) < 0);
}

bool IsStopClick(const MSG& message) {
    POINT at = {static_cast<short>(LOWORD(message.lParam)), static_cast<short>(HIWORD(message.lParam))};
    const LRESULT index = SendMessageW(g_commands.hToolbar, TB_HITTEST, 0, reinterpret_cast<LPARAM>(&at));
    TBBUTTON button = {};
    if (index < 0 ||
        !SendMessageW(g_commands.hToolbar, TB_GETBUTTON, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&button)))
        return false;
    return button.idCommand == IDM_DEBUG_BUTTON_STOP || button.idCommand == IDM_DEBUG_STOP;
}

// While a program starts, the window paints itself and listens to Stop, and to nothing else: any other message could
// lead back into the session that is being set up. Keys of that time are dropped; so it is short, and a program that
// takes longer to reach its first line is followed from the timer.
bool PumpWhileStarting() {
    const ULONGLONG now = GetTickCount64();
    const bool takesLong = g_debugger.awaits != DebugAwaits::Nothing && now - g_startedAt >= kStartInPlace;
    if (now - g_lastPump < kPumpInterval) return g_stopWanted || takesLong;
    g_lastPump = now;
    MSG message = {};
    while (PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE))
        if (IsStopKey(message)) g_stopWanted = true;
    while (PeekMessageW(&message, g_commands.hToolbar, WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, PM_REMOVE)) {
        // The second half of a double-click was meant for Start, which stood in the same place.
        if (message.message == WM_LBUTTONDOWN && IsStopClick(message)) g_stopWanted = true;
    }
    while (PeekMessageW(&message, g_ui.hMainWnd, WM_NCLBUTTONDOWN, WM_NCLBUTTONDBLCLK, PM_REMOVE))
        if (message.message == WM_NCLBUTTONDOWN && message.wParam == HTCLOSE) DebugStopWaiting(true);
    while (PeekMessageW(&message, g_ui.hMainWnd, WM_CLOSE, WM_CLOSE, PM_REMOVE)) DebugStopWaiting(true);
    for (int paints = 0; paints < 32 && PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE); ++paints)
        DispatchMessageW(&message);
    return g_stopWanted || takesLong;
}

// --- The program and its sources

bool WriteTime(const std::wstring& path, FILETIME* time) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data)) return false;
    *time = data.ftLastWriteTime;
    return true;
}

std::vector<std::wstring> g_saidOfFiles;  // in this session: each warning comes once

void WarnOnce(const wchar_t* format, const std::wstring& path) {
    wchar_t name[kPathCapacity] = {};
    PathGetFile(path.c_str(), name, kPathCapacity);
    const std::wstring text = FormatW(format, name);
    if (std::ranges::find(g_saidOfFiles, text) != g_saidOfFiles.end()) return;
    g_saidOfFiles.push_back(text);
    DebugSay(kDebugOrange, L"%s", text.c_str());
}

// Lines that the program does not have would be shown as if it had.
void WarnOfStaleFile(const std::wstring& path, const FILETIME& built) {
    FILETIME written = {};
    if (WriteTime(path, &written) && CompareFileTime(&written, &built) > 0)
        WarnOnce(L"[Debug] %s is newer than the program: its lines may not be those that run.\n", path);
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.modified && tab.hasFile && PathEqualsIgnoreCase(tab.path, path))
            WarnOnce(L"[Debug] %s has changes that are not saved: the program runs without them.\n", path);
}

// Of those that the user has before their eyes: a program may have thousands. The others' turn comes with their stops.
void WarnOfStaleFiles(const BuildRecord& program) {
    FILETIME built = {};
    if (!WriteTime(program.output, &built)) return;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.hasFile && DebugFileIdOfPath(&g_debugger, tab.path) != 0) WarnOfStaleFile(tab.path, built);
}

// The source may have been edited since the program was started.
void WarnOfStaleStop() {
    const std::wstring path = DebugFilePath(&g_debugger, g_debugger.currentFileId);
    FILETIME built = {};
    if (!path.empty() && WriteTime(LastBuild().output, &built)) WarnOfStaleFile(path, built);
}

// --- What comes of a wait

// The debug pane is opened for a session and goes again with it, unless the user had it open.
void ShowPaneForSession() {
    g_paneWasHidden = !PaneIsShown(PaneId::Debug);
    if (g_paneWasHidden) PaneShow(PaneId::Debug, true);
}

void HidePaneAfterSession() {
    if (std::exchange(g_paneWasHidden, false)) PaneShow(PaneId::Debug, false);
}

void StopFollowing() {
    if (g_follow.running || g_consoleLooks > 0) KillTimer(g_ui.hMainWnd, TIMER_DEBUG);
    g_follow.running = false;
    g_consoleLooks = 0;
}

void EndSession(const std::wstring& status) {
    StopFollowing();
    g_debug.debugging = false;
    g_compile.programInUse = false;
    g_debug.debuggerActive = false;
    DebugClearLocation();
    DebugForgetFiles();
    BreakpointsOnSessionEnd();
    HidePaneAfterSession();
    SetStatus(status);
    g_events.refreshWanted();
    for (const int button : {IDM_DEBUG_STEP_OVER, IDM_DEBUG_RUN_TO_CURSOR})
        SendMessageW(g_commands.hToolbar, TB_ENABLEBUTTON, static_cast<WPARAM>(button), MAKELPARAM(FALSE, 0));
    DebugPaneInvalidate();
}

// A program that ran may have the screen.
void ComeToFront() {
    DWORD owner = 0;
    GetWindowThreadProcessId(GetForegroundWindow(), &owner);
    if (owner != GetCurrentProcessId()) SetForegroundWindow(g_ui.hMainWnd);
}

// The last one is Windows Terminal, where consoles open by default since Windows 11.
constexpr const wchar_t* kConsoleClasses[] = {L"ConsoleWindowClass", L"WineConsoleClass",
                                              L"CASCADIA_HOSTING_WINDOW_CLASS"};

bool IsConsole(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return std::ranges::any_of(kConsoleClasses, [&](const wchar_t* one) { return wcscmp(name, one) == 0; });
}

// The console of a program comes a moment after it has started, when its first line is reached and shown already. It
// takes the foreground first and the place above all windows a little later.
void WatchForConsole(bool begin) {
    constexpr UINT kInterval = 50;
    constexpr int kLooks = 40;
    constexpr int kLooksAfter = 6;
    if (begin) {
        g_consoleLooks = kLooks;
        SetTimer(g_ui.hMainWnd, TIMER_DEBUG, kInterval, nullptr);
    }
    const bool came = IsConsole(GetForegroundWindow());
    if (came) g_consoleLooks = std::min(g_consoleLooks, kLooksAfter);
    if (came) SetForegroundWindow(g_ui.hMainWnd);
    if (g_consoleLooks <= kLooksAfter && GetForegroundWindow() == g_ui.hMainWnd)
        SetWindowPos(g_ui.hMainWnd, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    if (--g_consoleLooks > 0) return;
    g_consoleLooks = 0;
    KillTimer(g_ui.hMainWnd, TIMER_DEBUG);
}

// A step that waits in the queue already, as a command or as a held key.
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

// Drawing a place costs more than reaching it; between steps that follow each other at once every twentieth of a second
// is enough to see it move.
bool MayPassUnseen() {
    constexpr ULONGLONG kSeenEvery = 50;
    static ULONGLONG lastSeen = 0;
    const ULONGLONG now = GetTickCount64();
    if (now - lastSeen < kSeenEvery && AnotherStepWaits()) return true;
    lastSeen = now;
    return false;
}

// What shows a stop beside the mark in its source.
void ShowStopAround() {
    g_follow.unseen = false;
    ComeToFront();
    SetStatus(L"Stopped at " + DebugPlaceText(&g_debugger));
    WarnOfStaleStop();
    DebugPaneInvalidate();
    g_events.refreshWanted();
}

void OnStopped() {
    StopFollowing();
    BreakpointsDropStart(&g_debugger);
    const bool unseen = MayPassUnseen();
    if (g_debugger.run != DebugRun::Stopped) return;  // a command that another program sent came in between
    if (unseen) {
        g_follow.unseen = true;
        DebugSayLocation(&g_debugger, g_follow.suffix.c_str());
        return;
    }
    DebugShowCurrentLocation(&g_debugger, g_follow.suffix.c_str());
    ShowStopAround();
}

std::wstring ExitStatus() { return FormatW(L"Exited with code %ld", static_cast<long>(g_debugger.exitCode)); }

void OnExited() {
    DebugSay(kDebugRed, L"[Debug] Process exited.\n");
    EndSession(ExitStatus());
}

// True when the wait had a result; false: the program runs on.
bool HandleWait(int result) {
    switch (result) {
        case kDebugStopped: OnStopped(); return true;
        case kDebugExited: OnExited(); return true;
        case kDebugNoSession: EndSession(L"Debugging has ended"); return true;
        default: return false;
    }
}

void BeginFollowing() {
    g_follow.running = true;
    DebugClearLocation();
    SetStatus(g_debugger.awaits != DebugAwaits::Nothing ? kStarting : L"Running");
    SetTimer(g_ui.hMainWnd, TIMER_DEBUG, kTimerInterval, nullptr);
    DebugPaneInvalidate();
    g_events.refreshWanted();
}

// --- Start

// Whether it succeeded, the state tells; why not, the output pane.
void StartProgram(const BuildRecord& program) {
    g_stopWanted = g_closeWanted = false;
    g_lastPump = 0;
    g_startedAt = GetTickCount64();
    const WaitScope scope(PumpWhileStarting);
    DebugStartForCompiler(program.output.c_str(), program.compilerId, &g_debugger);
}

// A stop or a close that was asked for while the session came up.
bool StoppedDuringStart() {
    if (!g_stopWanted) return false;
    DebugRunStop();
    if (g_closeWanted) PostMessageW(g_ui.hMainWnd, WM_CLOSE, 0, 0);
    return true;
}

}  // namespace

void DebugRunStart() {
    if (g_waiting || g_debug.debugging) return;
    const BuildRecord program = LastBuild();  // a copy: a build may begin while this waits
    if (program.output.empty()) return;
    DebugSetSourcePath(program.source.c_str());
    DebugForgetFiles();
    g_saidOfFiles.clear();
    g_follow = {};
    g_debug.debugging = g_debug.debuggerActive = true;
    g_compile.programInUse = true;
    SetStatus(kStarting);
    g_events.refreshNow();
    UpdateWindow(g_ui.hMainWnd);
    StartProgram(program);
    if (StoppedDuringStart()) return;
    if (g_debugger.active == 0) {
        EndSession(g_debugger.exited != 0 ? ExitStatus() : L"Debugging did not start");
        return;
    }
    ShowPaneForSession();
    WarnOfStaleFiles(program);
    g_follow.since = GetTickCount64();
    if (g_debugger.run == DebugRun::Stopped) {
        OnStopped();
        WatchForConsole(true);
    } else {
        BeginFollowing();
    }
    g_events.refreshWanted();
}

void DebugRunFollow(const wchar_t* suffix) {
    StopFollowing();
    g_follow = {.running = false, .told = false, .since = GetTickCount64(), .suffix = suffix};
    if (!HandleWait(WaitFor(kWaitInPlace, kWaitInPlace))) BeginFollowing();
}

void DebugRunShowUnseen() {
    if (!g_follow.unseen) return;
    DebugMarkLocation(&g_debugger);
    ShowStopAround();
}

void DebugRunPaused() { g_follow.suffix = L" (paused)"; }

void DebugRunStop() {
    StopFollowing();
    if (g_debugger.active != 0) {
        const WaitScope scope(nullptr);
        DebugStop(&g_debugger);
    }
    EndSession(L"Debugging stopped");
}

void DebugOnTimer() {
    if (g_waiting) return;
    if (!g_follow.running) {
        WatchForConsole(false);
        return;
    }
    const bool starting = g_debugger.awaits != DebugAwaits::Nothing;
    if (HandleWait(WaitFor(0, kLookLimit))) return;
    g_follow.told = g_follow.told || starting;  // the start has a line of its own for that
    if (g_follow.told || GetTickCount64() - g_follow.since < kLongRun) return;
    g_follow.told = true;
    DebugSay(0, L"[Debug] No stop within 30 seconds; the program is still running.\n");
}

bool DebugIsWaiting() { return g_waiting; }

void DebugStopWaiting(bool thenClose) {
    g_stopWanted = true;
    g_closeWanted = g_closeWanted || thenClose;
}

void DebugShutdown() {
    if (g_waiting) {
        // Inside a wait nothing of the session may be touched; the program must not outlive the window all the same.
        if (g_debugger.process != nullptr) TerminateProcess(g_debugger.process, 0);
        return;
    }
    if (g_debug.debugging || g_debugger.active != 0) DebugRunStop();
}
