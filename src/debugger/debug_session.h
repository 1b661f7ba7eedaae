// A program under the debugger: start, wait, breakpoints, steps, end. UI thread only. Every function that takes a state
// returns 0, false or null when no session is active. Texts go to the output pane.
#pragma once

#include "debugger/debug_state.h"
#include "program/debug_say.h"

#include <windows.h>

#include <cstdint>
#include <string>

// --- Waiting (debug_events_win.cpp)
// Waits for the next stop; a DebugWait (stop_rules.h). Events that are no stop are continued, and the wait starts again
// with the same time-out. `timeoutMs` may be INFINITE. The wait goes in slices of kDebugSliceMs; the hook is asked after
// each, and at least that often while events pour in.
int DebugWaitEvent(DebuggerState* state, DWORD timeoutMs);
inline constexpr DWORD kDebugSliceMs = 20;

// Called between slices. True ends the wait, which then returns 3. Null: none.
using DebugWaitHook = bool (*)();
DebugWaitHook DebugSetWaitHook(DebugWaitHook hook);  // returns the previous one

// --- Start and end (debug_session_win.cpp)
bool DebugStart(const wchar_t* executable, DebuggerState* state);
bool DebugStartForCompiler(const wchar_t* executable, std::uint32_t compilerId, DebuggerState* state);
bool DebugStartLoaded(const wchar_t* executable, DebuggerState* state);  // the map is loaded
// Goes on with the wait of a start whose first stop did not come while it waited in place; `awaits` says so, and the
// session is active and runs. A DebugWait; after 1 and 2 the start is over, after 3 it may be.
int DebugWaitStart(DebuggerState* state, DWORD timeoutMs);
// Called once the program is created and its first line's breakpoint is planted, before it runs.
using DebugPlantHook = void (*)(DebuggerState* state);
void DebugSetPlantHook(DebugPlantHook hook);
// Ends the program and the session; at most about two seconds.
void DebugStop(DebuggerState* state);

// --- Breakpoints (debug_breakpoints_win.cpp)
bool DebugSetBreakpoint(DebuggerState* state, int line);  // first record of that line, of whatever file
bool DebugSetBreakpointIn(DebuggerState* state, std::uint32_t fileId, int line);
bool DebugSetConditionalBreakpoint(DebuggerState* state, int line, const char* condition);  // null clears it
bool DebugSetTempBp(DebuggerState* state, std::uint64_t address, int line);
int DebugFindBp(const DebuggerState* state, std::uint64_t address);  // index or -1
bool DebugRestoreBp(DebuggerState* state, std::uint64_t address);    // original byte back, entry kept
void DebugRearmBreakpoints(DebuggerState* state);
void DebugClearBreakpoints(DebuggerState* state);
bool DebugRemoveBreakpoint(DebuggerState* state, std::uint64_t address);                     // byte back, entry gone
bool DebugSetCondition(DebuggerState* state, std::uint64_t address, const char* condition);  // of a planted one
bool DebugCheckCondition(DebuggerState* state, const char* condition);

// --- Going on (debug_steps_win.cpp). True when the program was resumed; a wait follows.
bool DebugStepOver(DebuggerState* state);
bool DebugStepInto(DebuggerState* state);
bool DebugStepOut(DebuggerState* state);
bool DebugRunToLine(DebuggerState* state, int line);
bool DebugRunToLineIn(DebuggerState* state, std::uint32_t fileId, int line);
// To the next breakpoint of the user. Steps off the one it stands on by the trap flag, which arms all of them again.
bool DebugContinue(DebuggerState* state);
// Asks a running program to stop where it is; the stop arrives as an event.
bool DebugBreakIn(DebuggerState* state);

// --- Memory and registers (debug_memory_win.cpp)
bool DebugReadMem(const DebuggerState* state, std::uint64_t address, void* out, std::size_t count);
bool DebugWriteMem(DebuggerState* state, std::uint64_t address, const void* bytes, std::size_t count);
// As many of the bytes as can be read from the start; with breakpoints' bytes shown as the program has them.
std::size_t DebugReadSome(const DebuggerState* state, std::uint64_t address, void* out, std::size_t count);
bool DebugIsExecutable(const DebuggerState* state, std::uint64_t address);
