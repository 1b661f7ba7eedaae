// Starts programs, for tests and measurements.
#pragma once

#include <windows.h>

#include <cstdio>
#include <functional>
#include <optional>
#include <string>

// Once in thousands of starts Wine loses the new process before its first instruction, and CreateProcess fails with
// ERROR_INTERNAL_ERROR. A second try hides no fault of the program, because none of its code has run. Any other failure
// is final.
inline constexpr int kStartTries = 4;
inline constexpr DWORD kStartPauseMs = 250;
// The text that the debugger reports for that failure.
inline constexpr wchar_t kLostText[] = L"Win32 error 1359";

// Calls `start` at most kStartTries times, until it returns true or `lost` returns false for the failure.
template <typename Start, typename Lost>
bool StartAgainIfLost(Start start, Lost lost) {
    for (int tries = 1;; ++tries) {
        if (start()) return true;
        if (!lost() || tries == kStartTries) return false;
        std::fprintf(stderr, "[start] Wine lost a program at its start (error %ld); try %d of %d\n",
                     ERROR_INTERNAL_ERROR, tries + 1, kStartTries);
        std::fflush(stderr);
        Sleep(kStartPauseMs);
    }
}

struct StartOptions {
    DWORD flags = 0;
    const wchar_t* folder = nullptr;  // working directory of the program; null: the caller's
    HANDLE output = nullptr;          // its standard output, inheritable; null: the caller's
    HANDLE errors = nullptr;          // its standard error; used only with `output`
    std::function<void()> beforeEachTry = {};
};

// Starts a process. The caller closes both handles of `*started`. On failure GetLastError() is the error of
// CreateProcess.
inline bool StartProcess(std::wstring line, PROCESS_INFORMATION* started, const StartOptions& options = {}) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    if (options.output != nullptr) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = options.output;
        startup.hStdError = options.errors;
    }
    DWORD error = ERROR_SUCCESS;
    const auto start = [&] {
        if (options.beforeEachTry) options.beforeEachTry();
        const BOOL done = CreateProcessW(nullptr, line.data(), nullptr, nullptr, options.output != nullptr,
                                         options.flags, nullptr, options.folder, &startup, started);
        error = done ? ERROR_SUCCESS : GetLastError();
        return done != FALSE;
    };
    const bool done = StartAgainIfLost(start, [&] { return error == ERROR_INTERNAL_ERROR; });
    SetLastError(error);
    return done;
}

// Runs a program without a window. Returns its exit code, or nothing when it did not start or was ended after
// `limitMs`.
inline std::optional<DWORD> RunToEnd(const std::wstring& line, const wchar_t* folder = nullptr, DWORD limitMs = 60000) {
    PROCESS_INFORMATION process = {};
    if (!StartProcess(line, &process, {.flags = CREATE_NO_WINDOW, .folder = folder})) return std::nullopt;
    const bool ended = WaitForSingleObject(process.hProcess, limitMs) == WAIT_OBJECT_0;
    if (!ended) TerminateProcess(process.hProcess, 99);
    DWORD code = 0;
    const bool known = GetExitCodeProcess(process.hProcess, &code) != FALSE;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return ended && known ? std::optional(code) : std::nullopt;
}
