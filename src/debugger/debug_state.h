// The debugger's record: one session at most, the member `debugger` of `g_app`. UI thread only, because the system lets
// only the thread that started a program wait for its debugging events.
#pragma once

#include "debugger/breakpoint_table.h"
#include "debugger/stop_rules.h"
#include "program/sdbg_map.h"

#include <windows.h>

#include <cstdint>
#include <vector>

struct DebugThread {
    std::uint32_t id = 0;
    HANDLE handle = nullptr;  // that the event carried (debug_threads_win.cpp)
    std::uint64_t start = 0;  // start address, 0 for the main thread
};

struct DebuggerState {
    SdbgMap map;  // `imageBase` is the real load address from process creation on
    HANDLE process = nullptr;
    HANDLE thread = nullptr;      // main thread
    std::uint32_t processId = 0;  // of the last event, as `threadId` is; every continue uses both
    std::uint32_t threadId = 0;
    std::uint32_t active = 0;      // a session exists
    std::int32_t currentLine = 0;  // of the last stop, 0 when unknown
    std::uint32_t currentFileId = 0;
    std::uint64_t currentAddress = 0;  // the breakpoint's, or the exception's
    BreakpointTable breakpoints{};
    std::int32_t breakpointCount = 0;
    std::uint32_t isX64 = 0;
    // What the session keeps besides:
    DebugRun run = DebugRun::None;
    std::uint32_t mainThreadId = 0;
    std::uint32_t stopThreadId = 0;  // thread of the last stop, 0: none yet
    std::uint32_t imageSize = 0;     // of the executable in memory
    std::uint32_t eventPending = 0;  // an event was delivered and is not continued yet
    std::uint32_t exited = 0;        // a wait returned kDebugExited, and `exitCode` is the program's
    std::uint32_t exitCode = 0;
    std::uint64_t stopSerial = 0;  // counts stops over all sessions, so that views know when they are out of date
    DebugFaults faults;
    DebugPause pause = DebugPause::None;
    std::uint32_t runsToUserBreakpoint = 0;  // traps of the program's own are no stops until one is reached
    DebugAwaits awaits = DebugAwaits::Nothing;
    std::uint32_t startTries = 0;     // resumes of the start
    std::uint64_t startDeadline = 0;  // GetTickCount64 value at which it is given up
    std::uint64_t startAddress = 0;   // of the start's own breakpoint, 0: none
    DebugReports reports;
    HANDLE eventProcess = nullptr;  // that the creation event carried (debug_threads_win.cpp)
    std::vector<DebugThread> threads;
};

// What the debugger keeps in the application's record beside it. The window itself asks for the phase of the session
// (debugui/debug_flow.h); the first two flags only follow it.
struct DebugFlags {
    bool debugging = false;        // a session exists
    bool debuggerActive = false;   // the same
    bool debugAfterBuild = false;  // the start command asked for the build that runs
};

struct DebuggerArea {
    DebuggerState debugger;
    DebugFlags debug;
};
// Parts of `g_app` (app/app_state.h).
extern DebuggerState& g_debugger;
extern DebugFlags& g_debug;
