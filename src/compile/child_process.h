// A process without a window, its standard output and error on a pipe of ours, it and everything it starts in one job.
// Knows nothing of builds. Any thread.
#pragma once

#include <windows.h>

#include <string>

struct ChildProcess {
    HANDLE process = nullptr;
    HANDLE thread = nullptr;    // its first thread
    HANDLE pipeRead = nullptr;  // for overlapped reading only
    HANDLE job = nullptr;       // null when the system refused one: then only the process itself can be ended
};

// Starts `commandLine` in `directory` (empty: ours). False with the Win32 error; nothing is then left behind.
bool ChildStart(std::wstring commandLine, const std::wstring& directory, ChildProcess* child, DWORD* error);

// Ends the process and everything it started, at once.
void ChildTerminate(HANDLE job, HANDLE process);

// Closes all handles. What the process started and left running goes on, unless ChildTerminate ended it.
void ChildClose(ChildProcess* child);
