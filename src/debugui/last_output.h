// What a program wrote to its console last. UI thread only.
#pragma once

#include "debugger/debug_state.h"

// Called when the program is about to end: its console, which closes with it, can still be read. Writes the last lines of
// the console to the output pane.
void SayLastOutput(DebuggerState* state);
