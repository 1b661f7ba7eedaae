#include "selftest/tested_copy.h"

#include "base/handles.h"
#include "base/process_start.h"
#include "base/system_error.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "files/user_folder.h"
#include "selftest/samples.h"
#include "settings/compiler_table.h"
#include "settings/settings_store.h"

#include <windows.h>

#include <array>
#include <cwchar>
#include <iterator>
#include <vector>

namespace {

constexpr ULONGLONG kSilenceMs = 90'000;
constexpr DWORD kPauseMs = 20, kEndMs = 5000;
constexpr wchar_t kFolderName[] = L"KVX-Editor self-test ";  // and the number of the process
constexpr std::size_t kSectionCapacity = 32767;              // characters, the most that the system gives

std::wstring ProgramPath() {
    std::wstring path(kPathCapacity, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

std::wstring ProgramFolder() {
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    const std::wstring text = folder;
    return text.empty() || text.back() == L'\\' ? text : text + L'\\';
}

// Calls `found` for each entry of a folder but "." and "..".
void EachEntry(const std::wstring& pattern, const std::function<void(const WIN32_FIND_DATAW&)>& found) {
    WIN32_FIND_DATAW entry = {};
    const HANDLE search = FindFirstFileW(PathForSystem(pattern.c_str()).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        const std::wstring_view name = entry.cFileName;
        if (name != L"." && name != L"..") found(entry);
    } while (FindNextFileW(search, &entry) != FALSE);
    FindClose(search);
}

bool CopyProgram(const std::wstring& folder) {
    const std::wstring from = ProgramFolder(), program = ProgramPath();
    const auto copy = [&](const std::wstring& path, const std::wstring& name) {
        return CopyFileW(PathForSystem(path.c_str()).c_str(), PathForSystem((folder + name).c_str()).c_str(), FALSE) !=
               FALSE;
    };
    bool copied = copy(program, program.substr(program.rfind(L'\\') + 1));
    EachEntry(from + L"*.dll",
              [&](const WIN32_FIND_DATAW& entry) { copied = copy(from + entry.cFileName, entry.cFileName) && copied; });
    return copied;
}

// The full path of a compiler: that of the user's settings, or where the program finds it by itself.
std::wstring CompilerOfUser(const wchar_t* ini, const CompilerProfile& compiler) {
    std::array<wchar_t, kPathCapacity> path = {};
    ReadIniText(ini, compiler.section, L"Path", L"", path.data(), path.size());
    ResolveExeRelative(path.data(), path.data(), path.size());
    if (path[0] != L'\0' && FileExists(path.data())) return path.data();
    const std::wstring folder = ProgramFolder();
    const std::wstring found =
        FindCompiler(compiler.id, folder.c_str(), [](const wchar_t* file) { return FileExists(file); });
    ResolveExeRelative(found.c_str(), path.data(), path.size());
    return path.data();
}

// The user's compilers with their flags; all else is as in a new installation.
void WriteSettings(const std::wstring& folder) {
    std::array<wchar_t, kPathCapacity> users = {};
    GetIniPath(nullptr, users.data(), users.size());
    const std::wstring ini = folder + L"Editor.ini";
    for (const wchar_t* key : {L"AutoSaveEnabled", L"RestoreLastSession"})
        WriteIniText(ini.c_str(), L"Editor", key, L"0");
    std::vector<wchar_t> section(kSectionCapacity);
    for (const CompilerProfile& compiler : g_compilers) {
        GetPrivateProfileSectionW(compiler.section, section.data(), kSectionCapacity, users.data());
        WritePrivateProfileSectionW(compiler.section, section.data(), ini.c_str());
        WriteIniText(ini.c_str(), compiler.section, L"Path", CompilerOfUser(users.data(), compiler).c_str());
        WriteIniText(ini.c_str(), compiler.section, L"RegisterExtension", L"0");
    }
}

std::wstring WriteSample(const std::wstring& folder, std::string_view name) {
    std::wstring path = folder + Utf8ToWideText(name);
    const UniqueHandle file{CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr)};
    const std::string bytes = SelfTestSample(name);
    DWORD put = 0;
    if (file) WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &put, nullptr);
    return path;
}

struct RunningCopy {
    UniqueHandle process, job, output;
};

// What the copy starts is in the job, too, and all of it ends with the last handle, so also when this process is killed.
HANDLE MakeJob() {
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (job != nullptr) SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

bool Start(const std::wstring& folder, const SelfTestModule& module, RunningCopy* copy) {
    const std::wstring program = ProgramPath();
    std::wstring line = L"\"" + folder + program.substr(program.rfind(L'\\') + 1) + L"\"";
    std::string_view names = module.documents;
    while (!names.empty()) {
        const std::size_t blank = names.find(' ');
        line += L" --open \"" + WriteSample(folder, names.substr(0, blank)) + L"\"";
        names = blank == std::string_view::npos ? std::string_view{} : names.substr(blank + 1);
    }
    SetEnvironmentVariableW(kSelfTestVariable, Utf8ToWideText(module.name).c_str());
    const std::wstring own = folder + L"user";
    EnsureFolder(own);
    SetEnvironmentVariableW(L"LOCALAPPDATA", own.c_str());

    SECURITY_ATTRIBUTES inherited = {
        .nLength = sizeof(inherited), .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
    HANDLE read = nullptr, write = nullptr;
    if (CreatePipe(&read, &write, &inherited, 0) == FALSE) return false;
    copy->output.Reset(read);
    const UniqueHandle theirs{write};
    SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = write;
    PROCESS_INFORMATION started = {};
    if (!StartAgainIfLost([&] {
            return CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                                  folder.c_str(), &startup, &started) != FALSE;
        }))
        return false;
    copy->process.Reset(started.hProcess);
    const UniqueHandle thread{started.hThread};
    copy->job.Reset(MakeJob());
    if (copy->job) AssignProcessToJobObject(copy->job.Get(), started.hProcess);
    ResumeThread(started.hThread);
    return true;
}

void End(const RunningCopy& copy) {
    if (copy.job) TerminateJobObject(copy.job.Get(), 1);
    TerminateProcess(copy.process.Get(), 1);
    WaitForSingleObject(copy.process.Get(), kEndMs);
}

// Gives whole lines; the rest stays in `*text`.
void TakeLines(std::string* text, const std::function<void(const CheckLine&)>& take) {
    for (std::size_t end = text->find('\n'); end != std::string::npos; end = text->find('\n')) {
        if (const auto line = ParseCheckLine(std::string_view(*text).substr(0, end))) take(*line);
        text->erase(0, end + 1);
    }
}

// What is in the pipe now. False when there was nothing.
bool ReadPipe(HANDLE pipe, std::string* text) {
    DWORD waiting = 0;
    if (PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr) == FALSE || waiting == 0) return false;
    std::string part(waiting, '\0');
    DWORD got = 0;
    if (ReadFile(pipe, part.data(), waiting, &got, nullptr) == FALSE) return false;
    text->append(part, 0, got);
    return true;
}

std::string EndOf(HANDLE process) {
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    return code <= 1 ? std::string{} : ToUtf8(FormatW(L"the editor ended with 0x%08lX", code));
}

void RemoveAll(const std::wstring& folder) {  // with a backslash at the end
    EachEntry(folder + L"*", [&](const WIN32_FIND_DATAW& entry) {
        const std::wstring path = folder + entry.cFileName;
        const DWORD kind = entry.dwFileAttributes;
        const bool inner = (kind & FILE_ATTRIBUTE_DIRECTORY) != 0 && (kind & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
        if (inner) return RemoveAll(path + L"\\");
        // The copy of a read-only file is one, too.
        if ((kind & FILE_ATTRIBUTE_READONLY) != 0)
            SetFileAttributesW(PathForSystem(path.c_str()).c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW(PathForSystem(path.c_str()).c_str());
    });
    RemoveDirectoryW(PathForSystem(folder.substr(0, folder.size() - 1).c_str()).c_str());
}

bool ProcessRuns(DWORD id) {
    const UniqueHandle process{OpenProcess(SYNCHRONIZE, FALSE, id)};
    if (!process) return GetLastError() != ERROR_INVALID_PARAMETER;  // it may not be opened, but is there
    return WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT;
}

// The folders of self-tests that were killed.
void RemoveAbandoned(const std::wstring& temporary) {
    EachEntry(
        temporary + kFolderName + L"*",
        [&](const WIN32_FIND_DATAW& entry) {
            const DWORD id = std::wcstoul(entry.cFileName + std::size(kFolderName) - 1, nullptr, 10);
            if (id != 0 && !ProcessRuns(id)) RemoveAll(temporary + entry.cFileName + L"\\");
        });
}

}  // namespace

std::wstring TestedCopyMake(std::string* why) {
    wchar_t temporary[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, temporary);
    RemoveAbandoned(temporary);
    const std::wstring folder = FormatW(L"%s%s%lu", temporary, kFolderName, GetCurrentProcessId());
    if (!EnsureFolder(folder) || !CopyProgram(folder + L"\\")) {
        *why = ToUtf8(folder + L": " + SystemErrorText(GetLastError()));
        TestedCopyRemove(folder + L"\\");
        return {};
    }
    WriteSettings(folder + L"\\");
    return folder + L"\\";
}

void TestedCopyRemove(const std::wstring& folder) { RemoveAll(folder); }

std::string TestedCopyRun(const std::wstring& folder, const SelfTestModule& module,
                          const std::function<void(const CheckLine&)>& take) {
    RunningCopy copy;
    if (!Start(folder, module, &copy)) return "it cannot be started: " + ToUtf8(SystemErrorText(GetLastError()));
    std::string text;
    for (ULONGLONG heard = GetTickCount64();;) {
        const bool ended = WaitForSingleObject(copy.process.Get(), kPauseMs) == WAIT_OBJECT_0;
        while (ReadPipe(copy.output.Get(), &text)) heard = GetTickCount64();
        TakeLines(&text, take);
        if (ended) return EndOf(copy.process.Get());
        if (GetTickCount64() - heard < kSilenceMs) continue;
        End(copy);
        return "no answer for " + std::to_string(kSilenceMs / 1000) + " seconds";
    }
}
