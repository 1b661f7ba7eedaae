// The state of the debugger: one session at most. UI thread only, because WaitForDebugEvent works only in the thread
// that started the program.
#pragma once

#include "debugger/breakpoint_table.h"
#include "debugger/follow_rules.h"
#include "debugger/stop_rules.h"
#include "program/sdbg_map.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <vector>

struct DebugThread {
    std::uint32_t id = 0;
    HANDLE handle = nullptr;  // from the event; debug_threads_win.cpp says who closes it
    std::uint64_t start = 0;  // start address, 0 for the main thread
    // The breakpoint at which this thread has stopped and whose instruction it may not have run yet; 0: none.
    std::uint64_t stoppedAt = 0;
    bool held = false;  // suspended while another thread steps off a breakpoint
};

// One thread runs the one instruction under a breakpoint, whose trap byte is out meanwhile. The other threads are
// suspended, because they would pass the place unnoticed.
struct DebugStepOff {
    std::uint32_t threadId = 0;  // 0: none
    std::uint64_t address = 0;   // of the instruction
    // A repeated string instruction raises a single step after each repetition. Therefore a trap after it is used
    // instead of the trap flag. 0: the trap flag is used.
    std::uint64_t landing = 0;
    std::uint8_t landingByte = 0;  // the program's byte there; CC: nothing was written
    std::uint64_t since = 0;       // GetTickCount64 value
};

// An instruction pointer that could not be written. The program must not run on before it is.
struct DebugOwedIp {
    std::uint32_t threadId = 0;  // 0: none
    std::uint64_t address = 0;
};

// Addresses of the breakpoints that were removed last. A thread may have hit one before, and its event is still to
// come.
struct DebugRemovedTraps {
    std::array<std::uint64_t, 64> addresses{};
    std::size_t next = 0;
};

// The trap at ExitProcess (debug_exit_trap.h).
struct DebugExitTrap {
    std::uint64_t address = 0;  // 0: none
    std::uint8_t originalByte = 0;
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
    DebugRemovedTraps removedTraps;
    DebugStepOff stepOff;
    DebugOwedIp owedIp;
    DebugExitTrap exitTrap;
    std::uint64_t stepTarget = 0;  // of the step under way: a stop there whatever its condition says. 0: none
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
    std::uint32_t passPending = 0;  // 1: the pending exception goes to the program's own handlers
    DebugPause pause = DebugPause::None;
    std::uint32_t runsToUserBreakpoint = 0;  // 1: the program's own traps are no stops until one is reached
    DebugAwaits awaits = DebugAwaits::Nothing;
    std::uint32_t startTries = 0;     // how often the start has resumed the program
    std::uint64_t startDeadline = 0;  // GetTickCount64 value at which the start is given up
    std::uint64_t startAddress = 0;   // of the start's own breakpoint, 0: none
    DebugReports reports;
    Follow follow;                  // the step under way that follows the program
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
