// Building the active document: starting and stopping the compiler, and the Compiler menu. UI thread only.
#pragma once

#include "base/command_handler.h"
#include "base/events.h"

#include <windows.h>

#include <cstdint>
#include <span>

// Initialises `g_buildCs`. Called once, before the main window is created.
void BuildInit();

int StartCompilerBuild(bool syntaxOnly, bool debug);  // 1 when its compiler or pre-build command was started, else 0
int CompilerBuild(std::uint32_t id, const wchar_t* source, const wchar_t* output, const wchar_t* flags,
                  bool wantListing);
void CompilerKill();  // ends the compiler and every process it started; may be called while a build is being started
bool CompilerIsBuilding();  // true also between two documents of a batch build
bool BuildCanBeStopped();   // also when nothing but processes of finished builds runs

// The commands of the Compiler menu, of the profiles and of the batch build.
std::span<const CommandHandler> BuildCommandHandlers();
// Carries out one of these commands. Returns false for any other command.
bool CmdHandle_Build(int command);

// At start-up, before a document is opened: puts back what a build that was cut off has left.
void BuildRecover();

// The main window calls these on MSG_BUILD_OUTPUT, MSG_BUILD_FINISHED and TIMER_BUILD.
void BuildOnOutput(wchar_t* heapText, COLORREF colour);
void BuildOnFinished(DWORD exitCode);
void BuildOnTimer();
// Called on TIMER_OUTPUT after the pane has got its next lines. Reports the end of a stage when all its output is in
// the pane. Returns true while a replaced pane is still to be destroyed: the timer must then go on.
bool BuildOnShown(bool allShown);

// The text of a document has changed: a build asks again to save it.
void BuildOnTextEdited(DocumentId document);

// Ends a running build and waits at most a few seconds for its reader thread. Called at shutdown.
void BuildShutdown();
