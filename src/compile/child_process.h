// Starts a process without a console window. Its standard output and error go to a pipe that the caller reads. The process and
// everything it starts are in one job. Any thread.
#pragma once

#include <windows.h>

#include <string>

struct ChildProcess {
    HANDLE process = nullptr;
    HANDLE thread = nullptr;      // its first thread
    HANDLE pipeRead = nullptr;    // for overlapped reading only
    HANDLE inputWrite = nullptr;  // its standard input, for overlapped writing; null for all but programs
    HANDLE job = nullptr;         // null when no job could be used; then only the process itself can be ended
};

// Starts `commandLine` in `directory` (empty: the working directory of the editor). The caller owns the handles and
// closes them with ChildClose. Returns false with the Win32 error in `error`; nothing is then left open.
// ERROR_FILENAME_EXCED_RANGE: the directory is longer than the system allows.
// `isProgram`: its windows are shown, and its standard input is a pipe.
bool ChildStart(std::wstring commandLine, const std::wstring& directory, ChildProcess* child, DWORD* error,
                bool isProgram);

// Why nothing was started, for the user, without a line break.
std::wstring ChildStartProblem(DWORD error, const std::wstring& directory);

// Whether a process of the job runs. False for null.
bool ChildJobRuns(HANDLE job);
// The processes of the job go on running when its handle is closed.
void ChildReleaseJob(HANDLE job);

// Ends the process and everything it started, at once.
void ChildTerminate(HANDLE job, HANDLE process);

// Closes all handles. Processes that are still running go on, unless ChildTerminate ended them.
void ChildClose(ChildProcess* child);
