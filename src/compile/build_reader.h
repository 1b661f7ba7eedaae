// The reader thread of a build stage, a worker (base/worker.h): it posts what the process prints to the main window, and at
// the end that the process has ended. Of the program's record it touches the build state alone, under `g_buildCs`. The number
// of chunks on their way to the window has a limit (output/output_credits.h), because a process may print faster than the pane
// can show: such a process is slowed down, and neither memory nor the message queue grows.
#pragma once

#include "base/worker.h"
#include "compile/build_values.h"
#include "compile/staging.h"

#include <windows.h>

#include <string>

struct ReaderRequest {
    BuildStage stage = BuildStage::Idle;
    HWND target = nullptr;  // gets any number of MSG_BUILD_OUTPUT, then one MSG_BUILD_FINISHED
    DWORD limitMs = INFINITE;
    StagedSource staged;   // deleted before the end is reported
    std::wstring logPath;  // empty: no log
    std::wstring logHeader;
};

// The thread's body, for WorkerStart: follows the process whose handles stand in `g_buildState`.
void CompilerThread(ReaderRequest& request, const WorkerCancel& cancel);

// Ends all processes of the running stage, and the commands that an earlier stage left running. UI thread.
void ReaderEndProcesses();
