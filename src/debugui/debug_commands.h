// The Debug menu, the toolbar's debug buttons and the life of a session as the user sees it. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <span>

std::span<const CommandHandler> DebugCommandHandlers();

// Hooks of the engine, once at start-up, after the main window exists.
void DebugUiInit();
// MSG_DEBUG_LAUNCH: the debug build that the start command asked for has succeeded.
void DebugOnBuilt();
// A build has ended that the start command may wait for.
void DebugOnBuildEnd(bool success, bool debug);
// TIMER_DEBUG: a running program is asked for its next event.
void DebugOnTimer();
// Ends a session without questions; before the main window goes.
void DebugShutdown();
// A wait is going on inside a command: no command but Stop may start.
bool DebugIsWaiting();
// Stop, or the window's close, was asked for during such a wait.
void DebugStopWaiting(bool thenClose);
