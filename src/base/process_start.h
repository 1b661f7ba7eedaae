// Starting a process that the system may lose. Any thread but the user interface thread, because it may sleep.
#pragma once

#include <windows.h>

inline constexpr int kStartTries = 4;
inline constexpr DWORD kStartPauseMs = 250;

// Calls `start`, which calls CreateProcess and returns whether that worked. Wine loses one new process in thousands
// before its first instruction, and CreateProcess fails with ERROR_INTERNAL_ERROR. Nothing of that process has run, so
// `start` is called again, at most kStartTries times in all. Any other failure is final. Returns what the last call
// returned; GetLastError() is its error.
template <typename Start>
bool StartAgainIfLost(Start start) {
    for (int tries = 1;; ++tries) {
        if (start()) return true;
        if (GetLastError() != ERROR_INTERNAL_ERROR || tries == kStartTries) return false;
        Sleep(kStartPauseMs);
    }
}
