// The diagnostic log as a text stream. UI thread only.
#include "base/log.h"

#include "base/bounded_text.h"
#include "base/path.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>
#include <iterator>

static FILE* g_logFile = nullptr;

static FILE* OpenIn(const wchar_t* directory) {
    wchar_t path[kPathCapacity] = {};
    PathJoin(directory, L"Editor_Detect.log", path, kPathCapacity);
    return _wfopen(path, L"w, ccs=UTF-8");
}

void OpenLog(const wchar_t* directory) {
    FILE* opened = OpenIn(directory);
    if (opened == nullptr) {
        wchar_t temporary[MAX_PATH + 1] = {};
        if (GetTempPathW(MAX_PATH + 1, temporary) != 0) opened = OpenIn(temporary);
    }
    // An earlier stream is not closed: it stays open until the process ends. "--log" opens the log again to start an
    // empty file, and both streams then point to that file.
    g_logFile = opened;
}

bool LogIsOpen() { return g_logFile != nullptr; }

void AppLogMsg(const wchar_t* format, ...) {
    if (g_logFile == nullptr) return;
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    // _vsnwprintf takes `%s` for wide text; fwprintf of this toolchain takes it for narrow text.
    wchar_t text[4096];
    std::va_list args;
    va_start(args, format);
    const int written = _vsnwprintf(text, std::size(text) - 1, format, args);
    va_end(args);
    text[std::size(text) - 1] = L'\0';
    if (written < 0 && text[0] == L'\0') return;
    wchar_t stamp[16];
    _snwprintf(stamp, std::size(stamp), L"[%02d:%02d:%02d] ", now.wHour, now.wMinute, now.wSecond);
    stamp[std::size(stamp) - 1] = L'\0';
    std::fputws(stamp, g_logFile);
    std::fputws(text, g_logFile);
    std::fputws(L"\n", g_logFile);
    std::fflush(g_logFile);  // so that a crash does not lose the last lines
}

void CloseLog() {
    if (g_logFile == nullptr) return;
    std::fclose(g_logFile);
    g_logFile = nullptr;
}
