// A trap where the program ends itself, so that what it still holds - its console - can be looked at. It stands outside
// the table of breakpoints, of which the user has all 64. UI thread only.
#pragma once

#include "debugger/debug_state.h"

// Called when the program is about to end itself.
using DebugExitHook = void (*)(DebuggerState* state);
void DebugSetExitHook(DebugExitHook hook);  // null: none, and no trap is planted
// Plants the trap at ExitProcess when the address of that can be learnt. Called at the loader's stop.
void DebugPlantExitTrap(DebuggerState* state);
// A thread has run onto a trap at an address. True: it was this one; the hook was called, the trap is gone, and the event
// can be continued.
bool DebugOnExitTrap(DebuggerState* state, std::uint32_t threadId, std::uint64_t address);
