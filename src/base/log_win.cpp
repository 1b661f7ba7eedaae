// The diagnostic log as a text stream. UI thread only.
#include "base/log.h"

#include "base/bounded_text.h"
#include "base/path.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>

namespace {

constexpr wchar_t kLogName[] = L"Editor_Detect.log";
constexpr wchar_t kOlderName[] = L"Editor_Detect.old.log";
constexpr ULONGLONG kFlushInterval = 1000;  // ms

struct LogState {
    FILE* file = nullptr;
    std::wstring folder;      // of the open file
    std::int64_t size = 0;    // bytes in the file, those not yet flushed included
    ULONGLONG flushedAt = 0;  // GetTickCount64
    bool pending = false;     // something is not flushed yet
    UINT_PTR timer = 0;       // flushes what is pending; 0: not armed
} g_log;

std::wstring FileIn(const std::wstring& folder, const wchar_t* name) {
    wchar_t path[kPathCapacity] = {};
    PathJoin(folder.c_str(), name, path, kPathCapacity);
    return path;
}

bool OpenIn(const wchar_t* folder) {
    FILE* opened = _wfopen(FileIn(folder, kLogName).c_str(), L"w, ccs=UTF-8");
    if (opened == nullptr) return false;
    g_log.file = opened;
    g_log.folder = folder;
    g_log.size = 3;  // the byte order mark
    g_log.pending = false;
    return true;
}

// Bytes of the text in UTF-8, with two for each line break. Half of a surrogate pair counts two of the pair's four.
std::int64_t BytesOf(const wchar_t* text) {
    std::int64_t bytes = 0;
    for (; *text != L'\0'; ++text) {
        const bool half = *text >= 0xD800 && *text < 0xE000;
        bytes += *text < 0x80 && *text != L'\n' ? 1 : *text < 0x800 || half ? 2 : 3;
    }
    return bytes;
}

void PutText(const wchar_t* text) {
    std::fputws(text, g_log.file);
    g_log.size += BytesOf(text);
}

void SetFullLogAside() {
    const std::wstring folder = g_log.folder;
    std::fclose(g_log.file);
    g_log.file = nullptr;
    // An earlier stream of "--log" keeps the file open and so stops the move, but not the copy.
    const std::wstring full = FileIn(folder, kLogName), older = FileIn(folder, kOlderName);
    if (MoveFileExW(full.c_str(), older.c_str(), MOVEFILE_REPLACE_EXISTING) == FALSE)
        CopyFileW(full.c_str(), older.c_str(), FALSE);
    OpenIn(folder.c_str());
}

VOID CALLBACK OnFlushTimer(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    g_log.timer = 0;
    LogFlush();
}

// Flushes when the last time is long enough ago. Otherwise a timer does it, because no further line may come.
void FlushSoon() {
    g_log.pending = true;
    if (GetTickCount64() - g_log.flushedAt >= kFlushInterval)
        LogFlush();
    else if (g_log.timer == 0)
        g_log.timer = SetTimer(nullptr, 0, static_cast<UINT>(kFlushInterval), OnFlushTimer);
}

LPTOP_LEVEL_EXCEPTION_FILTER g_nextFilter = nullptr;  // of the C runtime

// The last lines before a crash are the ones that matter.
LONG WINAPI FlushAtCrash(EXCEPTION_POINTERS* exception) {
    LogFlush();
    return g_nextFilter != nullptr ? g_nextFilter(exception) : EXCEPTION_CONTINUE_SEARCH;
}

// Once, because a log that is opened again would otherwise put itself before whoever calls this filter as the next.
void WatchForCrashes() {
    static const LPTOP_LEVEL_EXCEPTION_FILTER before = SetUnhandledExceptionFilter(FlushAtCrash);
    g_nextFilter = before;
}

}  // namespace

void OpenLog(const wchar_t* directory) {
    // An earlier stream is not closed: it stays open until the process ends. "--log" opens the log again to start an
    // empty file, and both streams then point to that file.
    LogFlush();
    g_log.file = nullptr;
    if (!OpenIn(directory)) {
        wchar_t temporary[MAX_PATH + 1] = {};
        if (GetTempPathW(MAX_PATH + 1, temporary) != 0) OpenIn(temporary);
    }
    WatchForCrashes();
}

bool LogIsOpen() { return g_log.file != nullptr; }

void AppLogMsg(const wchar_t* format, ...) {
    if (g_log.file == nullptr) return;
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
    PutText(stamp);
    PutText(text);
    PutText(L"\n");
    FlushSoon();
    if (std::wstring_view(text).starts_with(L"FAIL")) LogFlush();
    if (g_log.size >= kLogLimit) SetFullLogAside();
}

void LogFlush() {
    if (g_log.file == nullptr || !g_log.pending) return;
    std::fflush(g_log.file);
    g_log.pending = false;
    g_log.flushedAt = GetTickCount64();
}

void CloseLog() {
    if (g_log.timer != 0) KillTimer(nullptr, g_log.timer);
    if (g_log.file != nullptr) std::fclose(g_log.file);
    g_log = {};
}
