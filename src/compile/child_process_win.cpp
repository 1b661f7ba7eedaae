#include "compile/child_process.h"

#include "base/handles.h"
#include "base/process_start.h"
#include "base/system_error.h"
#include "base/wide_format.h"
#include "files/start_path.h"

#include <atomic>
#include <iterator>
#include <memory>
#include <utility>

namespace {

constexpr DWORD kPipeBytes = 64 * 1024;

void CloseAndClear(HANDLE* handle) {
    if (*handle != nullptr) CloseHandle(*handle);
    *handle = nullptr;
}

// Creates a job with JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE, so that its processes end if the editor is killed.
HANDLE CreateEndingJob() {
    HANDLE job = CreateJobObjectW(nullptr, nullptr);
    if (job == nullptr) return nullptr;
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (!SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits))) CloseAndClear(&job);
    return job;
}

// Creates a pipe whose end in the editor allows overlapped reads or writes, which the pipe of CreatePipe does not. The
// other end is inheritable. The pipe of an input has no buffer, so a write is over when the child has read it.
bool CreateChildPipe(bool childWrites, UniqueHandle* own, UniqueHandle* childEnd) {
    static std::atomic<unsigned> serial = 0;
    const std::wstring name = FormatW(L"\\\\.\\pipe\\kvx-editor-%lu-%u", GetCurrentProcessId(), serial.fetch_add(1));
    const DWORD access = childWrites ? PIPE_ACCESS_INBOUND : PIPE_ACCESS_OUTBOUND;
    own->Reset(CreateNamedPipeW(name.c_str(), access | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                                PIPE_TYPE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, 0,
                                childWrites ? kPipeBytes : 0, 0, nullptr));
    if (!*own) return false;
    SECURITY_ATTRIBUTES inheritable = {.nLength = sizeof(SECURITY_ATTRIBUTES), .bInheritHandle = TRUE};
    childEnd->Reset(CreateFileW(name.c_str(), childWrites ? GENERIC_WRITE : GENERIC_READ, 0, &inheritable,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(*childEnd);
}

// The editor's standard input as an inheritable handle, or null: a program with a window usually has none.
UniqueHandle InheritableInput() {
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    HANDLE copy = nullptr;
    if (input == nullptr || input == INVALID_HANDLE_VALUE) return {};
    if (!DuplicateHandle(GetCurrentProcess(), input, GetCurrentProcess(), &copy, 0, TRUE, DUPLICATE_SAME_ACCESS))
        return {};
    return UniqueHandle(copy);
}

// The list of the handles that a child inherits. Other inheritable handles of the editor (Scintilla or the assistant
// may hold some) must not keep files or pipes open in the child.
class HandleList {
public:
    HandleList(HANDLE output, HANDLE input) : handles_{output, input} {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_ = std::make_unique<std::byte[]>(size);
        auto* list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.get());
        if (!InitializeProcThreadAttributeList(list, 1, 0, &size)) return;
        list_ = list;
        const SIZE_T bytes = (input == nullptr ? 1 : 2) * sizeof(HANDLE);
        ok_ = UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_, bytes, nullptr,
                                        nullptr) != FALSE;
    }
    ~HandleList() {
        if (list_ != nullptr) DeleteProcThreadAttributeList(list_);
    }
    HandleList(const HandleList&) = delete;
    HandleList& operator=(const HandleList&) = delete;
    LPPROC_THREAD_ATTRIBUTE_LIST Get() const { return ok_ ? list_ : nullptr; }

private:
    HANDLE handles_[2];
    std::unique_ptr<std::byte[]> memory_;
    LPPROC_THREAD_ATTRIBUTE_LIST list_ = nullptr;
    bool ok_ = false;
};

bool CreateSuspended(std::wstring& commandLine, const std::wstring& directory, HANDLE output, HANDLE input, bool shown,
                     PROCESS_INFORMATION* process) {
    const HandleList inherited(output, input);
    STARTUPINFOEXW start = {};
    start.StartupInfo.cb = inherited.Get() != nullptr ? sizeof(STARTUPINFOEXW) : sizeof(STARTUPINFOW);
    start.StartupInfo.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
    start.StartupInfo.wShowWindow = shown ? SW_SHOWNORMAL : SW_HIDE;
    start.StartupInfo.hStdInput = input;
    start.StartupInfo.hStdOutput = output;
    start.StartupInfo.hStdError = output;
    start.lpAttributeList = inherited.Get();
    const DWORD flags =
        CREATE_SUSPENDED | CREATE_NO_WINDOW | (inherited.Get() != nullptr ? EXTENDED_STARTUPINFO_PRESENT : 0);
    return StartAgainIfLost([&] {
        return CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, flags, nullptr,
                              directory.empty() ? nullptr : directory.c_str(), &start.StartupInfo, process) != FALSE;
    });
}

// Puts the suspended process into the job, so that everything it starts is in the job too, and resumes it. Returns
// false when it could not be resumed.
bool ReleaseIntoJob(ChildProcess* child) {
    if (child->job != nullptr && !AssignProcessToJobObject(child->job, child->process)) CloseAndClear(&child->job);
    if (ResumeThread(child->thread) != static_cast<DWORD>(-1)) return true;
    TerminateProcess(child->process, 1);
    return false;
}

}  // namespace

std::wstring ChildStartProblem(DWORD error, const std::wstring& directory) {
    if (error == ERROR_FILENAME_EXCED_RANGE && directory.size() > kLongestStartPath) return LongFolderText(directory);
    return SystemErrorText(error);
}

bool ChildStart(std::wstring commandLine, const std::wstring& directory, ChildProcess* child, DWORD* error,
                bool isProgram) {
    const std::wstring folder = WorkingFolderOf(directory);
    if (folder.empty() != directory.empty()) {
        *error = ERROR_FILENAME_EXCED_RANGE;
        return false;
    }
    UniqueHandle read;
    UniqueHandle write;
    UniqueHandle input;
    UniqueHandle inputWrite;
    if (!CreateChildPipe(true, &read, &write) || (isProgram && !CreateChildPipe(false, &inputWrite, &input))) {
        *error = GetLastError();
        return false;
    }
    if (!isProgram) input = InheritableInput();
    ChildProcess started = {.pipeRead = read.Release(), .inputWrite = inputWrite.Release()};
    PROCESS_INFORMATION process = {};
    bool ok = CreateSuspended(commandLine, folder, write.Get(), input.Get(), isProgram, &process);
    *error = ok ? ERROR_SUCCESS : GetLastError();
    write.Reset();  // else the pipe would never end
    input.Reset();
    if (ok) {
        started.process = process.hProcess;
        started.thread = process.hThread;
        started.job = CreateEndingJob();
        ok = ReleaseIntoJob(&started);
        if (!ok) *error = GetLastError();
    }
    if (!ok) {
        ChildClose(&started);
        return false;
    }
    *child = started;
    return true;
}

void ChildTerminate(HANDLE job, HANDLE process) {
    // TerminateJobObject ends all processes of the job. TerminateProcess is for the case without a job.
    if (job != nullptr) TerminateJobObject(job, 1);
    if (process != nullptr) TerminateProcess(process, 1);
}

bool ChildJobRuns(HANDLE job) {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION info = {};
    return job != nullptr &&
           QueryInformationJobObject(job, JobObjectBasicAccountingInformation, &info, sizeof(info), nullptr) &&
           info.ActiveProcesses > 0;
}

void ChildReleaseJob(HANDLE job) {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
}

void ChildClose(ChildProcess* child) {
    if (child->job != nullptr) ChildReleaseJob(child->job);
    CloseAndClear(&child->pipeRead);
    CloseAndClear(&child->inputWrite);
    CloseAndClear(&child->thread);
    CloseAndClear(&child->process);
    CloseAndClear(&child->job);
}
