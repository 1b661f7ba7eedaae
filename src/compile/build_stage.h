// One process at a time that runs for the user: a build's pre-build command, compiler or post-build command, or a
// command of the terminal line. Starts it, follows it, stops it, and reports its end after everything it printed is
// shown. UI thread only.
#pragma once

#include "compile/build_values.h"
#include "compile/staging.h"

#include <windows.h>

#include <string>

struct StageLaunch {
    BuildStage stage = BuildStage::Idle;
    std::wstring commandLine;
    std::wstring directory;  // empty: ours
    DWORD limitMs = INFINITE;
    StagedSource staged;
    std::wstring logPath;  // empty: no log
    std::wstring logHeader;
};

// False with the Win32 error: nothing was started, nothing is left behind, the staged copy is gone.
bool StageStart(StageLaunch launch, DWORD* error);

bool StageRuns();  // from the process's start until its reader has cleared up

// Takes what the last stage has posted and shows it, so that its end is reported now. With `dropOutput` it is not shown:
// for a caller that clears the pane next, where showing the rest of a flood would take seconds. A no-op while one runs.
void StageSettle(bool dropOutput);

// The end of a stage, given to the builder or the terminal; it may start the next one.
void BuildOnStageEnd(const StageResult& result);
void TerminalOnStageEnd(const StageResult& result);
