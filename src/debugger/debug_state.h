// The debugger's record: one session at most, the member `debugger` of `g_app`. UI thread only, as the system requires:
// the thread that starts a program under the debugger is the one that must wait for its events.
#pragma once

#include "program/sdbg_map.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <vector>

inline constexpr int kMaxBreakpoints = 64;
inline constexpr std::size_t kConditionCapacity = 64;  // bytes with the terminator

struct DebugBreakpoint {
    std::uint64_t address = 0;  // absolute
    std::uint8_t originalByte = 0;
    std::uint32_t line = 0;
    std::uint32_t temporary = 0;              // removed when hit
    char condition[kConditionCapacity] = {};  // UTF-8, empty: none
    std::uint32_t fileId = 0;
    std::uint32_t armed = 0;  // the byte CC stands in the program
    std::uint32_t hits = 0;   // that were reported
};

struct DebugThread {
    std::uint32_t id = 0;
    HANDLE handle = nullptr;  // the event's own; given back when the thread ends
    std::uint64_t start = 0;  // start address, 0 for the main thread
};

// What the program is doing.
enum class DebugRun : std::uint8_t { None, Stopped, Running };

// A pause that was asked for comes as a trap that is not the program's. When the program stops for another reason
// first, the trap is still to come and means nothing any more.
enum class DebugPause : std::uint8_t { None, Wanted, Overtaken };

// What a start still waits for: the stop at the first line, or the first trap of the program's own that has a line.
enum class DebugAwaits : std::uint8_t { Nothing, FirstLine, FirstTrap };

// What the program reported between two stops: debug strings and exceptions. A flood of them must not fill the memory.
struct DebugReports {
    std::uint32_t shown = 0;
    std::size_t characters = 0;
    std::uint32_t leftOut = 0;
};

struct DebuggerState {
    SdbgMap map;  // `imageBase` is the real load address from process creation on
    HANDLE process = nullptr;
    HANDLE thread = nullptr;      // main thread
    std::uint32_t processId = 0;  // of the last event; every continue uses them
    std::uint32_t threadId = 0;
    std::uint32_t active = 0;
    std::int32_t currentLine = 0;  // of the last stop, 0 when unknown
    std::uint32_t currentFileId = 0;
    std::uint64_t currentAddress = 0;  // the breakpoint's, or the exception's
    std::array<DebugBreakpoint, kMaxBreakpoints> breakpoints{};
    std::int32_t breakpointCount = 0;
    std::uint32_t isX64 = 0;
    // Beyond the classic record:
    DebugRun run = DebugRun::None;
    std::uint32_t mainThreadId = 0;
    std::uint32_t stopThreadId = 0;   // thread of the last stop, 0 with none
    std::uint32_t imageSize = 0;      // of the executable in memory
    std::uint32_t exceptionCode = 0;  // of the last stop
    std::uint32_t eventPending = 0;   // an event was delivered and is not continued yet
    std::uint32_t exited = 0;         // a wait returned 2: `exitCode` is the program's
    std::uint32_t exitCode = 0;
    std::uint64_t stopSerial = 0;    // counts stops, so that views know when they are out of date
    std::uint64_t faultAddress = 0;  // of the exception that was reported last, and how often in a row
    std::uint32_t faultCount = 0;
    DebugPause pause = DebugPause::None;
    std::uint32_t runsToUserBreakpoint = 0;  // traps of the program's own are no stops until one is reached
    DebugAwaits awaits = DebugAwaits::Nothing;
    std::uint32_t startTries = 0;     // resumes of the start
    std::uint64_t startDeadline = 0;  // GetTickCount64 value at which it is given up
    std::uint64_t startAddress = 0;   // of the start's own breakpoint, 0: none
    DebugReports reports;
    HANDLE eventProcess = nullptr;  // the creation event's handle, given back at the end
    std::vector<DebugThread> threads;
};

// What the debugger keeps in the application's record beside it.
struct DebugFlags {
    bool debugging = false;        // a session exists
    bool debuggerActive = false;   // set and cleared with it
    bool debugAfterBuild = false;  // the build that runs was asked for by the start command
};

struct DebuggerArea {
    DebuggerState debugger;
    DebugFlags debug;
};
// Parts of `g_app` (app/app_state.h).
extern DebuggerState& g_debugger;
extern DebugFlags& g_debug;
