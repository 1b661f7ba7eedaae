// Building the active document: starting and stopping the compiler, and the Compiler menu. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <cstdint>
#include <span>

// Prepares the build lock; once, before the main window.
void BuildInit();

int StartCompilerBuild(bool syntaxOnly, bool debug);  // 1 when a compiler process was started (or its pre-build runs)
int CompilerBuild(std::uint32_t id, const wchar_t* source, const wchar_t* output, const wchar_t* flags,
                  bool wantListing);
void CompilerKill();        // ends the compiler and every process it started, also during start
bool CompilerIsBuilding();  // also between two documents of a batch build

// The Compiler menu, the profiles and the batch build.
std::span<const CommandHandler> BuildCommandHandlers();

// The main window's part: MSG_BUILD_OUTPUT, MSG_BUILD_FINISHED, TIMER_BUILD.
void BuildOnOutput(wchar_t* heapText, COLORREF colour);
void BuildOnFinished(DWORD exitCode);
void BuildOnTimer();
// On TIMER_OUTPUT, after the pane has got its next lines: reports the end of a stage when all it printed is in the pane. True: a
// pane that was replaced is still to be destroyed, so the timer must go on.
bool BuildOnShown(bool allShown);

// Ends a running build and waits (bounded) for its reader; at shut-down.
void BuildShutdown();

// "0:07" and a moving mark for the status bar while a build runs; empty text otherwise.
const wchar_t* BuildProgressText();
