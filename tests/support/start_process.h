// Starts programs, for tests and measurements.
#pragma once

#include "base/process_start.h"

#include <functional>
#include <optional>
#include <string>

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
    return StartAgainIfLost([&] {
        if (options.beforeEachTry) options.beforeEachTry();
        return CreateProcessW(nullptr, line.data(), nullptr, nullptr, options.output != nullptr, options.flags, nullptr,
                              options.folder, &startup, started) != FALSE;
    });
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
