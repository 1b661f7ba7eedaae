// The process that runs now. Shared between the UI thread and the reader thread: every field, handles included, is read
// and written under `g_buildCs` only. output/last_build.h has what the UI thread knows of the last build.
#pragma once

#include "base/bounded_text.h"
#include "compile/build_values.h"

#include <windows.h>

#include <cstdint>

struct BuildState {
    bool building = false;   // the compiler runs: from process start until the reader thread has cleaned up
    bool preparing = false;  // a pre-build, post-build or terminal command, or a program, runs
    BuildStage stage = BuildStage::Idle;
    BuildEnd end = BuildEnd::Ended;  // how the last stage ended; written by the reader thread
    HANDLE process = nullptr;
    HANDLE thread = nullptr;
    HANDLE pipeRead = nullptr;
    HANDLE job = nullptr;  // every process that the stage started
    bool staged = false;
    wchar_t stagedPath[kPathCapacity] = {};  // the temporary copy of the source; deleted after the build
    wchar_t sourcePath[kPathCapacity] = {};
    wchar_t outputPath[kPathCapacity] = {};
    wchar_t listingPath[kPathCapacity] = {};
    FILETIME startTime = {};  // system time at launch; a side log older than this is from an earlier build
    std::uint32_t compilerId = 0;
    DWORD lastExitCode = 0;
    DWORD lastLaunchError = 0;
};

extern CRITICAL_SECTION g_buildCs;

// Holds `g_buildCs` for its scope. Hold it briefly, because the reader thread waits for it.
class BuildLock {
public:
    BuildLock() { EnterCriticalSection(&g_buildCs); }
    ~BuildLock() { LeaveCriticalSection(&g_buildCs); }
    BuildLock(const BuildLock&) = delete;
    BuildLock& operator=(const BuildLock&) = delete;
};
