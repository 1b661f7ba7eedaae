// Runs a debug session for the commands of the Debug menu: start, waiting for a stop, following a running program, the
// end. UI thread only.
#pragma once

#include "debugui/debug_flow.h"

// The state of the session in the window. Only debug_run_win.cpp changes it.
const DebugFlow& DebugFlowNow();
// Starts the program of the last build. DebugOnBuilt calls it.
void DebugRunStart();
// Call this after resuming the program: waits for its next stop, briefly in place and then by the timer. `suffix` is
// written after the place of the stop, as in " (step into)"; empty: none. `byAddress`: the program was resumed by a step
// to the next line by address; when that runs far, a line in the output pane names the other way to step.
void DebugRunFollow(const wchar_t* suffix, bool byAddress);
// Shows the stop anew after the place where the program goes on was changed.
void DebugRunShowAgain(const wchar_t* suffix);
// Ends the program and the session.
void DebugRunStop();
// Ends the session when another program has ended the stopped program, and says so. Returns whether that is the case.
bool DebugRunEndOutside();
void DebugOnAliveTimer();                                                  // TIMER_DEBUG_ALIVE
void DebugOnDocumentOpened();                                              // a new tab may show the debugged source
void DebugFollowRename(const std::wstring& from, const std::wstring& to);  // of a file or a folder
// Call this after pausing the running program, so that the next stop says so.
void DebugRunPaused();
// Shows the last stop if it was left out for a step that should follow it. Call this when that step fails.
void DebugRunShowUnseen();
