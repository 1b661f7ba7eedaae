// A program under the debugger: start, wait, breakpoints, steps, end. UI thread only. Every function that takes a state
// returns 0, false or null when no session is active. Messages go to the output pane.
#pragma once

#include "debugger/debug_state.h"
#include "debugger/named_places.h"
#include "program/debug_say.h"

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>

// --- Waiting (debug_events_win.cpp)
// Waits for the next stop and returns a DebugWait (stop_rules.h). Events that are no stop are continued, and the
// time-out begins again. `timeoutMs` may be INFINITE. The wait is cut into slices of kDebugSliceMs; the hook is called
// after each, and at least that often while many events come.
int DebugWaitEvent(DebuggerState* state, DWORD timeoutMs);
inline constexpr DWORD kDebugSliceMs = 20;

// Called between slices. True ends the wait, which then returns kDebugTimeout, or kDebugNoSession when the hook ended
// the session. Null: none.
using DebugWaitHook = bool (*)();
DebugWaitHook DebugSetWaitHook(DebugWaitHook hook);  // returns the previous one

// --- Start and end (debug_session_win.cpp)
// Start a program and wait for its first line. True: there is a session. False: no line map, or the program did not
// start or has ended; the output pane says which.
bool DebugStart(const wchar_t* executable, DebuggerState* state);
bool DebugStartForCompiler(const wchar_t* executable, std::uint32_t compilerId, DebuggerState* state);
bool DebugStartLoaded(const wchar_t* executable, DebuggerState* state);  // `state->map` is loaded
// Goes on waiting for the first stop of a start, while `awaits` is not Nothing. Returns a DebugWait: after
// kDebugStopped and kDebugExited the start is over; after kDebugTimeout it is over when `awaits` is Nothing.
int DebugWaitStart(DebuggerState* state, DWORD timeoutMs);
// Called when the program is created and the breakpoint of its first line is planted, before the program runs.
using DebugPlantHook = void (*)(DebuggerState* state);
void DebugSetPlantHook(DebugPlantHook hook);
// From now on a start that reaches its first line tells so in the log only, because the caller shows the stop.
void DebugWindowSaysStart();
// What the next start adds to the command line, and the folder that it starts in; empty: that of the executable.
void DebugSetLaunch(const wchar_t* arguments, const wchar_t* folder);
// Ends the program and the session; takes at most about two seconds.
void DebugStop(DebuggerState* state);

// --- Programs whose end did not come within that time (debug_left_behind_win.cpp). They stay attached until their
// events are continued.
void DebugLeaveBehind(std::uint32_t processId);
bool DebugHasLeftBehind();
// Continues what events of such programs have come; waits for nothing. Only without a session: with one, its own wait
// does this.
void DebugDrainLeftBehind();

// --- Breakpoints (debug_breakpoints_win.cpp). Lines are from 1. Setting one fails on a line without code, with a full
// table, and where memory cannot be written.
bool DebugSetBreakpoint(DebuggerState* state, int line);  // first record of that line in any file
bool DebugSetBreakpointIn(DebuggerState* state, std::uint32_t fileId, int line);
bool DebugSetConditionalBreakpoint(DebuggerState* state, int line, const char* condition);  // null clears it
bool DebugSetTempBp(DebuggerState* state, std::uint64_t address, int line);                 // removed when hit
int DebugFindBp(const DebuggerState* state, std::uint64_t address);                         // index or -1
bool DebugRestoreBp(DebuggerState* state, std::uint64_t address);  // puts the byte back, keeps the entry
void DebugRearmBreakpoints(DebuggerState* state);                  // arms all but temporary ones
void DebugClearBreakpoints(DebuggerState* state);
bool DebugRemoveBreakpoint(DebuggerState* state, std::uint64_t address);  // puts the byte back, removes the entry
bool DebugSetCondition(DebuggerState* state, std::uint64_t address, const char* condition);  // null clears it
// True when the condition holds in the thread of the last stop. Null and a text without a comparison hold. Only the
// first 127 bytes count.
bool DebugCheckCondition(DebuggerState* state, const char* condition);
// Tells which names the user has given to places of the procedure in which the program stands. A condition that mentions
// one of them is read by NamedConditionHolds (named_places.h). The span is used before the hook is called again. Null:
// there are none.
using DebugNamesHook = std::span<const NamedPlace> (*)(const DebuggerState& state);
void DebugSetNamesHook(DebugNamesHook hook);

// --- Resuming (debug_steps_win.cpp). True when the program was resumed; the caller waits for its next stop.
bool DebugStepOver(DebuggerState* state);
bool DebugStepInto(DebuggerState* state);
bool DebugStepOut(DebuggerState* state);
bool DebugRunToLine(DebuggerState* state, int line);
bool DebugRunToLineIn(DebuggerState* state, std::uint32_t fileId, int line);
// Runs to the next breakpoint of the user. A breakpoint that the program stands on is left by one single step, after
// which all are armed.
bool DebugContinue(DebuggerState* state);
// Asks a running program to stop where it is; the stop arrives as an event.
bool DebugBreakIn(DebuggerState* state);

// --- Memory (debug_memory_win.cpp). Both move the whole count or return false. Armed breakpoints do not show in what
// is read, and stay when their byte is overwritten.
bool DebugReadMem(const DebuggerState* state, std::uint64_t address, void* out, std::size_t count);
bool DebugWriteMem(DebuggerState* state, std::uint64_t address, const void* bytes, std::size_t count);
// Reads like DebugReadMem, but up to the first unreadable page. Returns the number of bytes read.
std::size_t DebugReadSome(const DebuggerState* state, std::uint64_t address, void* out, std::size_t count);
bool DebugIsExecutable(const DebuggerState* state, std::uint64_t address);
// The three functions above, and where modules begin, for the pure parts. `state` must outlive it.
ProgramMemory DebugMemory(const DebuggerState& state);
