// The reader thread: takes what a build stage's process prints to the main window and says when it has ended. It
// touches no window but by posting, and nothing of `g_app` but the build state, under its lock. How much it may have
// on its way to the main window is bounded, so a process that prints faster than the pane can show is slowed down
// instead of filling the memory and the window's message queue.
#pragma once

#include "compile/build_state.h"
#include "compile/staging.h"

#include <windows.h>

#include <memory>
#include <string>

inline constexpr DWORD kCompilerLimitMs = 300000;  // a compiler that has not ended by then is ended
inline constexpr DWORD kCommandLimitMs = 30000;    // how long a pre- or post-build command is waited for

struct ReaderRequest {
    BuildStage stage = BuildStage::Idle;
    HWND target = nullptr;  // gets MSG_BUILD_OUTPUT and, once and last, MSG_BUILD_FINISHED
    DWORD limitMs = INFINITE;
    StagedSource staged;   // deleted before the end is reported
    std::wstring logPath;  // empty: no log
    std::wstring logHeader;
};

// Once, before any other call here.
bool ReaderInit();

// Starts the thread on the process whose handles stand in `g_buildState`; null when there is no thread to be had, and
// the request is then still the caller's.
HANDLE ReaderStart(std::unique_ptr<ReaderRequest>* request);

// Ends the running stage and all its processes, and the commands that an earlier stage left behind. UI thread.
void ReaderStopAll();

// The thread's body; `parameter` is a ReaderRequest that it owns.
DWORD WINAPI CompilerThread(LPVOID parameter);
