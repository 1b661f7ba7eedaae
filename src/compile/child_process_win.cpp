#include "compile/child_process.h"

#include "base/handles.h"
#include "base/wide_format.h"

#include <atomic>
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

// Creates a pipe whose read end allows overlapped reads, which the pipe of CreatePipe does not.
bool CreateOutputPipe(UniqueHandle* read, UniqueHandle* write) {
    static std::atomic<unsigned> serial = 0;
    const std::wstring name = FormatW(L"\\\\.\\pipe\\kvx-editor-%lu-%u", GetCurrentProcessId(), serial.fetch_add(1));
    read->Reset(
        CreateNamedPipeW(name.c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                         PIPE_TYPE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, 0, kPipeBytes, 0, nullptr));
    if (!*read) return false;
    SECURITY_ATTRIBUTES inheritable = {.nLength = sizeof(SECURITY_ATTRIBUTES), .bInheritHandle = TRUE};
    write->Reset(
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, &inheritable, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(*write);
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

bool CreateSuspended(std::wstring& commandLine, const std::wstring& directory, HANDLE output, HANDLE input,
                     PROCESS_INFORMATION* process) {
    const HandleList inherited(output, input);
    STARTUPINFOEXW start = {};
    start.StartupInfo.cb = inherited.Get() != nullptr ? sizeof(STARTUPINFOEXW) : sizeof(STARTUPINFOW);
    start.StartupInfo.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
    start.StartupInfo.wShowWindow = SW_HIDE;
    start.StartupInfo.hStdInput = input;
    start.StartupInfo.hStdOutput = output;
    start.StartupInfo.hStdError = output;
    start.lpAttributeList = inherited.Get();
    const DWORD flags =
        CREATE_SUSPENDED | CREATE_NO_WINDOW | (inherited.Get() != nullptr ? EXTENDED_STARTUPINFO_PRESENT : 0);
    return CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, flags, nullptr,
                          directory.empty() ? nullptr : directory.c_str(), &start.StartupInfo, process) != FALSE;
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

bool ChildStart(std::wstring commandLine, const std::wstring& directory, ChildProcess* child, DWORD* error) {
    UniqueHandle read;
    UniqueHandle write;
    if (!CreateOutputPipe(&read, &write)) {
        *error = GetLastError();
        return false;
    }
    ChildProcess started = {.pipeRead = read.Release()};
    UniqueHandle input = InheritableInput();
    PROCESS_INFORMATION process = {};
    bool ok = CreateSuspended(commandLine, directory, write.Get(), input.Get(), &process);
    *error = ok ? ERROR_SUCCESS : GetLastError();
    write.Reset();  // else the pipe would never end
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

void ChildClose(ChildProcess* child) {
    if (child->job != nullptr) {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
        SetInformationJobObject(child->job, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    }
    CloseAndClear(&child->pipeRead);
    CloseAndClear(&child->thread);
    CloseAndClear(&child->process);
    CloseAndClear(&child->job);
}
