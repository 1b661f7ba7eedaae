// The Debug menu, the toolbar's debug buttons and the life of a session as the user sees it. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <span>

// Commands 1901..1912 and 1501..1512.
std::span<const CommandHandler> DebugCommandHandlers();
// Carries out one of these commands. False: the number is none of them.
bool CmdHandle_Debug(int command);

// Builds the active document for debugging and starts it when that succeeds; nothing when a session exists.
void DebugBuildAndStart();

// Connects the engine with the list of breakpoints. Called once at start-up, when the main window exists.
void DebugUiInit();
// MSG_DEBUG_LAUNCH: the debug build that the start command asked for has succeeded.
void DebugOnBuilt();
// Called when a build has ended. When the start command waits for it, a success posts MSG_DEBUG_LAUNCH.
void DebugOnBuildEnd(bool success, bool debug);
// TIMER_DEBUG: asks a running program for its next event.
void DebugOnTimer();
// TIMER_DEBUG_CONSOLE: looks for the console of a program that was just started.
void DebugOnConsoleTimer();
// Ends a session without asking. Called before the main window is destroyed.
void DebugShutdown();
// True while a command waits for the program: no command but Stop may start then.
bool DebugIsWaiting();
// Called when the user asks for Stop, or closes the window (`thenClose`), during such a wait.
void DebugStopWaiting(bool thenClose);
