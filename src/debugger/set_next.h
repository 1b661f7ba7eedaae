// Sets the place where a stopped program goes on. UI thread only.
#pragma once

#include "debugger/debug_session.h"

#include <cstdint>

// Moves the instruction pointer of the stopped thread to an address of the program's own code; nothing is run. The stop
// is shown there from now on. False: the program is not stopped, the thread is in foreign code (inside a call that has
// to return first), the address has no line, or the thread refuses.
bool DebugSetNextStatement(DebuggerState* state, std::uint64_t address);
