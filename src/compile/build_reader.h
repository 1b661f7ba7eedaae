// The reader thread of a build stage, a worker (base/worker.h). It posts the output of the process to the main window,
// and at last the end of the process. Of `g_app` it uses only the build state, under `g_buildCs`. Each posted chunk
// takes a credit (output/output_credits.h), so a process that prints faster than the pane can show is slowed down.
#pragma once

#include "base/worker.h"
#include "compile/build_values.h"
#include "compile/staging.h"

#include <windows.h>

#include <string>

struct ReaderRequest {
    BuildStage stage = BuildStage::Idle;
    HWND target = nullptr;  // receives any number of MSG_BUILD_OUTPUT, then one MSG_BUILD_FINISHED
    DWORD limitMs = INFINITE;
    StagedSource staged;   // the copy is deleted before MSG_BUILD_FINISHED is posted
    std::wstring logPath;  // empty: no log
    std::wstring logHeader;
};

// The thread's body, for WorkerStart. It follows the process whose handles are in `g_buildState`.
void CompilerThread(ReaderRequest& request, const WorkerCancel& cancel);

// Ends all processes of the running stage, and the commands that earlier stages left running. UI thread only.
void ReaderEndProcesses();

// Whether processes of earlier stages run: commands that exceeded their time limit, and what a finished stage of a build
// has started. The second function ends them. UI thread only.
bool ReaderLeftProcesses();
void ReaderEndLeftProcesses();
