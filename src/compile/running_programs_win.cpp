#include "compile/running_programs.h"

#include "base/bounded_text.h"
#include "base/path.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "compile/held_console.h"
#include "files/file_identity.h"
#include "files/file_io.h"

#include <windows.h>

#include <tlhelp32.h>

#include <utility>

namespace {

constexpr ULONGLONG kEndMs = 2000;
constexpr DWORD kPauseMs = 20;

// The error of opening a file for writing. Somebody else may write it meanwhile.
DWORD ErrorOfWriting(const std::wstring& path, DWORD disposition, DWORD flags) {
    const UniqueHandle file(CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_WRITE | (flags != 0 ? DELETE : 0),
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, disposition,
                                        flags, nullptr));
    return file ? ERROR_SUCCESS : GetLastError();
}

// Windows refuses to write the file of a program that runs.
bool IsInUse(const std::wstring& program) {
    const DWORD error = ErrorOfWriting(program, OPEN_EXISTING, 0);
    return error == ERROR_SHARING_VIOLATION || error == ERROR_USER_MAPPED_FILE;
}

bool DiskIsFull(const std::wstring& folder) {
    constexpr ULONGLONG kLittle = 64 * 1024;  // bytes; few programs are smaller
    ULARGE_INTEGER room = {};
    return GetDiskFreeSpaceExW(PathForSystem(folder.c_str()).c_str(), &room, nullptr, nullptr) != FALSE &&
           room.QuadPart < kLittle;
}

bool Runs(HANDLE process, const std::wstring& program) {
    wchar_t path[kPathCapacity] = {};
    DWORD length = kPathCapacity;
    if (QueryFullProcessImageNameW(process, 0, path, &length) == FALSE) return false;
    if (SamePathText(path, program)) return true;
    const FileIdentity identity = FileIdentityOf(path);  // the path may have another name, as that of a mapped drive
    return identity.IsKnown() && identity == FileIdentityOf(program.c_str());
}

}  // namespace

std::vector<UniqueHandle> ProcessesOf(const std::wstring& program) {
    std::vector<UniqueHandle> processes;
    if (!IsInUse(program)) return processes;
    const UniqueHandle list(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    if (!list) return processes;
    for (BOOL more = Process32FirstW(list.Get(), &entry); more != FALSE; more = Process32NextW(list.Get(), &entry)) {
        if (!PathEqualsIgnoreCase(entry.szExeFile, FileNameOf(program))) continue;
        UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | PROCESS_TERMINATE | SYNCHRONIZE, FALSE,
                                         entry.th32ProcessID));
        if (process && Runs(process.Get(), program)) processes.push_back(std::move(process));
    }
    return processes;
}

bool EndProcesses(const std::vector<UniqueHandle>& processes, const std::wstring& program) {
    for (const UniqueHandle& process : processes) TerminateProcess(process.Get(), kEndedForBuild);
    const ULONGLONG until = GetTickCount64() + kEndMs;
    while (IsInUse(program)) {
        if (GetTickCount64() >= until) return false;
        Sleep(kPauseMs);
    }
    return true;
}

std::wstring WhyUnwritable(const std::wstring& program) {
    if (DiskIsFull(FolderOf(program))) return Text(L"the disk is full");
    DWORD error = ErrorOfWriting(program, OPEN_EXISTING, 0);
    if (error == ERROR_FILE_NOT_FOUND)  // a new file tells what its folder allows
        error = ErrorOfWriting(program + L".try", CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE);
    return error == ERROR_SUCCESS ? std::wstring() : SystemErrorText(error);
}
