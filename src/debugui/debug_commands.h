// The Debug menu, the toolbar's debug buttons and the life of a session as the user sees it. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <span>

std::span<const CommandHandler> DebugCommandHandlers();

// Connects the engine with the list of breakpoints. Once at start-up, after the main window exists.
void DebugUiInit();
// MSG_DEBUG_LAUNCH: the debug build that the start command asked for has succeeded.
void DebugOnBuilt();
// A build has ended. When the start command waits for it, a success posts MSG_DEBUG_LAUNCH.
void DebugOnBuildEnd(bool success, bool debug);
// TIMER_DEBUG: a running program is asked for its next event.
void DebugOnTimer();
// TIMER_DEBUG_CONSOLE: looks for the console of a program that was just started.
void DebugOnConsoleTimer();
// Ends a session without questions; before the main window goes.
void DebugShutdown();
// A wait is going on inside a command: no command but Stop may start.
bool DebugIsWaiting();
// The user asked for Stop, or for the window's close, during such a wait.
void DebugStopWaiting(bool thenClose);
