// What the user does with a single address of a stopped program. UI thread only.
#pragma once

#include "debugger/debug_session.h"

#include <cstdint>

// Moves the instruction pointer of the stopped thread to an address of the program's own code; nothing is run. The stop
// is shown there from now on. False: the program is not stopped, the thread is in foreign code (inside a call that has
// to return first), the address has no line, or the thread refuses.
bool DebugSetNextStatement(DebuggerState* state, std::uint64_t address);
// True when the next instruction of the stopped thread is the one at the address.
bool DebugNextIsAt(const DebuggerState* state, std::uint64_t address);
// True when the stopped thread is on a line of a procedure whose own frame does not stand there yet, or no longer.
bool DebugFrameIsMissing(const DebuggerState* state);
// Runs to an address of code, past the program's own traps. False: not stopped, no code there, or the table is full.
bool DebugRunToAddress(DebuggerState* state, std::uint64_t address);
// Runs until the procedures inside a frame of a thread have returned: to the frame's address, when the stack pointer is at
// least `leastSp`. The same address is run to in each call of a procedure that calls itself.
bool DebugRunToFrame(DebuggerState* state, std::uint64_t address, std::uint32_t threadId, std::uint64_t leastSp);
// Sets a breakpoint that stays, as those of lines do. False: no code there, the table is full, or the memory cannot be
// written.
bool DebugSetBreakpointAt(DebuggerState* state, std::uint64_t address);
// The breakpoint at an address stops from its `count`th hit on; 0 and 1: at each. False: there is none.
bool DebugSetStopFrom(DebuggerState* state, std::uint64_t address, std::uint32_t count);
