#include "recovery/crash.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "files/libraries.h"
#include "files/user_folder.h"
#include "recovery/snapshots.h"
#include "settings/version.h"

#include <windows.h>

#include <dbghelp.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <vector>

namespace {

constexpr DWORD kTerminated = 0xE0004B58;  // an exception of C++ that nobody caught
constexpr std::size_t kMostReports = 5;
constexpr wchar_t kLatest[] = L"latest.txt";  // names the report that the user has not been told about

LPTOP_LEVEL_EXCEPTION_FILTER g_nextFilter = nullptr;
DWORD g_watchingThread = 0;  // the UI thread, whose documents it alone may touch
std::atomic<DWORD> g_crashedThread{0};
constexpr int kCrashSteps = 3;
int g_crashStep = 0;       // of that thread: the one that comes next
std::wstring g_crashName;  // the path of report and dump without its end

std::wstring CrashFolder() {
    const std::wstring user = UserFolder();
    const std::wstring folder = user + L"Crashes";
    return !user.empty() && EnsureFolder(folder) ? folder + L'\\' : std::wstring{};
}

std::wstring ReportText(const EXCEPTION_RECORD& fault) {
    wchar_t module[kPathCapacity] = L"?";
    HMODULE base = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<const wchar_t*>(fault.ExceptionAddress), &base) != FALSE)
        GetModuleFileNameW(base, module, kPathCapacity);
    const auto offset =
        reinterpret_cast<std::uintptr_t>(fault.ExceptionAddress) - reinterpret_cast<std::uintptr_t>(base);
    return FormatW(L"KVX-Editor " KVX_VERSION L"\r\nException %08lX at %p\r\n%s + %llX\r\nThread %lu%s\r\n",
                   fault.ExceptionCode, fault.ExceptionAddress, module, static_cast<unsigned long long>(offset),
                   GetCurrentThreadId(), GetCurrentThreadId() == g_watchingThread ? L" (user interface)" : L"");
}

void WriteReport(const EXCEPTION_RECORD& fault) {
    const std::wstring folder = CrashFolder();
    if (folder.empty()) return;
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    g_crashName = folder + FormatW(L"Crash %04d-%02d-%02d %02d.%02d.%02d", now.wYear, now.wMonth, now.wDay, now.wHour,
                                   now.wMinute, now.wSecond);
    const std::string text = ToUtf8(ReportText(fault)), report = ToUtf8(g_crashName + L".txt");
    WriteFileUtf8((g_crashName + L".txt").c_str(), text.data(), text.size());
    WriteFileUtf8((folder + kLatest).c_str(), report.data(), report.size());
}

void WriteDump(EXCEPTION_POINTERS* exception) {
    if (g_crashName.empty()) return;
    const UniqueModule library{LoadSystemLibrary(L"dbghelp.dll")};
    if (!library) return;
    const auto write = reinterpret_cast<decltype(&MiniDumpWriteDump)>(
        reinterpret_cast<void (*)()>(GetProcAddress(library.Get(), "MiniDumpWriteDump")));
    const UniqueHandle file{CreateFileW(PathForSystem((g_crashName + L".dmp").c_str()).c_str(), GENERIC_WRITE, 0,
                                        nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (write == nullptr || !file) return;
    MINIDUMP_EXCEPTION_INFORMATION information = {GetCurrentThreadId(), exception, FALSE};
    write(GetCurrentProcess(), GetCurrentProcessId(), file.Get(),
          static_cast<MINIDUMP_TYPE>(MiniDumpNormal | MiniDumpFilterMemory), &information, nullptr, nullptr);
}

// The report comes first, because it needs little, and the dump last, because it can take many seconds: by then the texts
// are safe, if the user ends the program meanwhile. After a fault the memory may be damaged: a second fault within one step
// comes here again and goes on with the next one.
LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
    const DWORD thread = GetCurrentThreadId();
    DWORD first = 0;
    if (!g_crashedThread.compare_exchange_strong(first, thread) && first != thread)
        Sleep(INFINITE);  // that one ends it
    while (g_crashStep < kCrashSteps) {
        switch (g_crashStep++) {
            case 0: WriteReport(*exception->ExceptionRecord); break;
            case 1:
                if (thread == g_watchingThread) SnapshotsWriteNow();
                break;
            default: WriteDump(exception); break;
        }
    }
    if (g_nextFilter != nullptr) g_nextFilter(exception);  // the log's
    return EXCEPTION_EXECUTE_HANDLER;                      // ends the process: all that can be said is written
}

void OnTerminate() { RaiseException(kTerminated, EXCEPTION_NONCONTINUABLE, 0, nullptr); }

void RemoveOldReports(const std::wstring& folder) {
    std::vector<std::wstring> names;  // they sort by time
    WIN32_FIND_DATAW found = {};
    const UniqueFind search{FindFirstFileW(PathForSystem((folder + L"Crash *").c_str()).c_str(), &found)};
    if (!search) return;
    do names.emplace_back(found.cFileName);
    while (FindNextFileW(search.Get(), &found) != FALSE);
    std::ranges::sort(names, std::greater{});
    for (std::size_t i = 2 * kMostReports; i < names.size(); ++i)  // a report and a dump each
        DeleteFileW(PathForSystem((folder + names[i]).c_str()).c_str());
}

}  // namespace

void CrashWatch() {
    g_watchingThread = GetCurrentThreadId();
    std::set_terminate(OnTerminate);
    g_nextFilter = SetUnhandledExceptionFilter(OnCrash);
}

std::wstring CrashReportTake() {
    constexpr std::size_t kMost = 4096;  // bytes
    const std::wstring user = UserFolderPath();
    const std::wstring folder = user + L"Crashes\\";
    std::string report;
    if (user.empty() || !FileExists((folder + kLatest).c_str()) || !ReadSharedFile(folder + kLatest, kMost, &report))
        return {};
    DeleteFileW(PathForSystem((folder + kLatest).c_str()).c_str());
    RemoveOldReports(folder);
    return Utf8ToWideText(report);
}

std::wstring CrashNotice(const std::wstring& report) {
    return TextWith(
        L"The editor ended because of a fault the last time. What is known about it stands in:\n\n{1}\n\nand in the "
        L".dmp file beside it, for whoever is to mend it. Neither holds text of your documents.",
        {report});
}

std::wstring CrashNoticeShort(const std::wstring& report) {
    return TextWith(
        L"The editor ended because of a fault the last time. What is known about it, without text of your documents, "
        L"stands in {1} and in the .dmp file beside it.",
        {report});
}
