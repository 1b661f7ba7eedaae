// The state of the debugger: one session at most. UI thread only, because WaitForDebugEvent works only in the thread
// that started the program.
#pragma once

#include "debugger/breakpoint_table.h"
#include "debugger/stop_rules.h"
#include "program/sdbg_map.h"

#include <windows.h>

#include <cstdint>
#include <vector>

struct DebugThread {
    std::uint32_t id = 0;
    HANDLE handle = nullptr;  // from the event; debug_threads_win.cpp says who closes it
    std::uint64_t start = 0;  // start address, 0 for the main thread
};

struct DebuggerState {
    SdbgMap map;  // `imageBase` is the real load address from process creation on
    HANDLE process = nullptr;
    HANDLE thread = nullptr;       // main thread
    std::uint32_t processId = 0;   // of the program
    std::uint32_t threadId = 0;    // of the last event
    std::uint32_t active = 0;      // a session exists
    std::int32_t currentLine = 0;  // of the last stop, 0 when unknown
    std::uint32_t currentFileId = 0;
    std::uint64_t currentAddress = 0;  // the breakpoint's, or the exception's
    BreakpointTable breakpoints{};
    std::int32_t breakpointCount = 0;
    std::uint32_t isX64 = 0;
    DebugRun run = DebugRun::None;
    std::uint32_t mainThreadId = 0;
    std::uint32_t stopThreadId = 0;  // thread of the last stop, 0: none yet
    std::uint32_t imageSize = 0;     // of the executable in memory
    std::uint32_t eventPending = 0;  // 1: an event was delivered and is not continued yet
    std::uint32_t exited = 0;        // 1: a wait returned kDebugExited, and `exitCode` is valid
    std::uint32_t exitCode = 0;
    std::uint64_t stopSerial = 0;  // counts stops over all sessions, so that views know when they are out of date
    DebugFaults faults;
    DebugPause pause = DebugPause::None;
    std::uint32_t runsToUserBreakpoint = 0;  // 1: the program's own traps are no stops until one is reached
    DebugAwaits awaits = DebugAwaits::Nothing;
    std::uint32_t startTries = 0;     // how often the start has resumed the program
    std::uint64_t startDeadline = 0;  // GetTickCount64 value at which the start is given up
    std::uint64_t startAddress = 0;   // of the start's own breakpoint, 0: none
    DebugReports reports;
    HANDLE eventProcess = nullptr;  // from the creation event; debug_threads_win.cpp says who closes it
    std::vector<DebugThread> threads;
};

// Flags for areas that cannot ask for the phase of the session (debugui/debug_flow.h); debug_run_win.cpp sets the first
// two.
struct DebugFlags {
    bool debugging = false;        // a session exists
    bool debuggerActive = false;   // the same
    bool debugAfterBuild = false;  // the running build was asked for by the start command
};

struct DebuggerArea {
    DebuggerState debugger;
    DebugFlags debug;
};
// Parts of `g_app` (app/app_state.h).
extern DebuggerState& g_debugger;
extern DebugFlags& g_debug;
