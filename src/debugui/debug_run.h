// The life of a session as the user sees it: start, waiting for a stop, following a program that runs on, the end. For
// the commands of the Debug menu. UI thread only.
#pragma once

// Starts the program of the last build; DebugOnBuilt calls it.
void DebugRunStart();
// The program was resumed: waits for its next stop, briefly in place and then by the timer. The suffix goes behind the
// place of the stop, as in " (step into)"; empty: none.
void DebugRunFollow(const wchar_t* suffix);
// Ends the program and the session.
void DebugRunStop();
// A stop of a running program was asked for; the next stop says so.
void DebugRunPaused();
// Shows the stop after all, when the step that was to follow it did not come about.
void DebugRunShowUnseen();
