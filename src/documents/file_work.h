// Reading and writing files on a worker, while the window waits for it inside a command: it paints, answers other
// programs, shows the progress after a second, and Esc cancels. No command runs meanwhile, so whoever waits finds its
// documents as they were. UI thread only.
#pragma once

#include "files/file_progress.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct Worker;

struct FileWork {
    const wchar_t* verb;  // "Opening"
    const wchar_t* label;
    std::shared_ptr<FileProgress> progress;
    std::function<void()> work;     // on the worker; what it uses it must own or share
    const Worker* begun = nullptr;  // does the work already; null or empty: a new one does it
    std::uint64_t began = 0;        // tick count when the command began, from which the second counts; 0: now
};

// Returns true when the work has ended, also when it was cancelled. False: it was cancelled and hangs, on a share that
// went away; it ends by itself some time, and its result must not be used.
bool FileWorkRun(const FileWork& work);

bool FileWorkRuns();
// Asks the work that runs to stop. `close`: the user wants to close the main window, which gets WM_CLOSE afterwards.
void FileWorkCancel(bool close);
// True between the end of work that the user left by closing the main window and that close: nothing is to be begun.
bool FileWorkCloseIsQueued();

// --- file_work.cpp: pure
inline constexpr std::uint64_t kQuietMs = 1000;  // no word about what takes less; typed keys wait until then
inline constexpr std::uint64_t kHangsMs = 2000;  // work that does not end within this time after it was cancelled hangs
// What whoever waits for work does next. Times are tick counts in milliseconds.
struct WorkWatch {
    std::uint64_t began = 0;
    std::uint64_t cancelled = 0;  // when it was first seen to be cancelled; 0: it is not
};
bool WorkIsShown(const WorkWatch& watch, std::uint64_t now);
// True when the work hangs and is left behind. Work that may no longer be cancelled is waited for.
bool WorkHangs(WorkWatch& watch, const FileProgress& progress, std::uint64_t now);
std::wstring FileWorkText(const wchar_t* verb, const wchar_t* label, const FileProgress& progress);
