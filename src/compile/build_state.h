// The records of a build: what runs now, and what the last one reported. `BuildState` is shared between the UI
// thread and the build's reader thread and is read and written under `g_buildCs` only, handles included.
#pragma once

#include "base/bounded_text.h"
#include "output/diagnostics.h"

#include <windows.h>

#include <cstdint>

// What runs for the user: a build goes through up to three stages, a command of the terminal line has one.
enum class BuildStage : std::uint8_t { Idle, PreBuild, Compile, PostBuild, Terminal };

enum class BuildEnd : std::uint8_t { Ended, Stopped, TimedOut };  // how a stage came to its end

struct BuildState {
    bool building = false;   // the compiler runs: from process start until the reader thread has cleaned up
    bool preparing = false;  // a pre-build, post-build or terminal command runs
    BuildStage stage = BuildStage::Idle;
    BuildEnd end = BuildEnd::Ended;  // of the stage that ended last, written by the reader thread
    HANDLE process = nullptr;
    HANDLE thread = nullptr;
    HANDLE pipeRead = nullptr;
    HANDLE job = nullptr;  // every process that the stage started
    bool staged = false;
    wchar_t stagedPath[kPathCapacity] = {};  // temporary copy of the source, deleted after the build
    wchar_t sourcePath[kPathCapacity] = {};
    wchar_t outputPath[kPathCapacity] = {};
    wchar_t listingPath[kPathCapacity] = {};
    FILETIME startTime = {};  // system time at launch; side logs older than it are not of this build
    std::uint32_t compilerId = 0;
    DWORD lastExitCode = 0;
    DWORD lastLaunchError = 0;
};

extern CRITICAL_SECTION g_buildCs;
