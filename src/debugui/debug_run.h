// The life of a session as the user sees it: start, waiting for a stop, following a program that runs on, the end. For
// the commands of the Debug menu. UI thread only.
#pragma once

#include "debugui/debug_flow.h"

// What the window does for a program now. Only debug_run_win.cpp changes it.
const DebugFlow& DebugFlowNow();
// Starts the program of the last build; DebugOnBuilt calls it.
void DebugRunStart();
// The program was resumed: waits for its next stop, briefly in place and then by the timer. The suffix follows the place
// of the stop, as in " (step into)"; empty: none.
void DebugRunFollow(const wchar_t* suffix);
// Ends the program and the session.
void DebugRunStop();
// The user asked for a pause of the running program; the next stop says so.
void DebugRunPaused();
// Shows the last stop if it was not shown because a step was to follow it. For a step that did not come about.
void DebugRunShowUnseen();
