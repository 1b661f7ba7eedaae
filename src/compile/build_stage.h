// Runs one process at a time: a build's pre-build command, compiler or post-build command, a command of the terminal
// line, or a program in the output pane. Starts it, follows it, stops it, and reports its end after all its output is shown. UI thread only.
#pragma once

#include "compile/build_values.h"
#include "compile/staging.h"

#include <windows.h>

#include <string>

struct StageLaunch {
    BuildStage stage = BuildStage::Idle;
    std::wstring commandLine;
    std::wstring directory;  // empty: the editor's working directory
    DWORD limitMs = INFINITE;
    StagedSource staged;
    std::wstring logPath;  // empty: no log
    std::wstring logHeader;
};

// Starts a process. Returns false with the Win32 error in `error` when nothing was started; the staged copy is then
// deleted.
bool StageStart(StageLaunch launch, DWORD* error);

bool StageRuns();       // true from the start of the process until its reader thread has cleaned up
bool StageIsProgram();  // a program runs in the output pane

// Takes the messages that the last stage posted and shows its output, so that its end is reported now. With
// `dropOutput` the output is dropped, for a caller that clears the pane next; showing a very long output would take
// seconds. Does nothing while a stage runs.
void StageSettle(bool dropOutput);

// Called with the end of a stage of a build (BuildOnStageEnd), of a terminal command or of a program. BuildOnStageEnd may start the
// next stage.
void BuildOnStageEnd(const StageResult& result);
void TerminalOnStageEnd(const StageResult& result);
void ProgramOnStageEnd(const StageResult& result);
