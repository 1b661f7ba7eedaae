#include "compile/build_reader.h"

#include "base/decode.h"
#include "base/handles.h"
#include "compile/build_log.h"
#include "compile/child_process.h"
#include "compile/compile_state.h"
#include "output/output_credits.h"
#include "resources/ids.h"

#include <algorithm>
#include <cwchar>
#include <vector>

namespace {

constexpr DWORD kChunkBytes = 4096;
constexpr DWORD kShortChunk = 1024;
constexpr ULONGLONG kLateMs = 500;  // how long a pipe that others hold open is read after the process's end
constexpr std::size_t kLateBytes = 1024 * 1024;  // and how much; far more than a pipe holds
constexpr int kPostTries = 100;
constexpr DWORD kPostPauseMs = 20;

UniqueHandle g_stop;  // set: the reader is to end
// Of commands that outlived their stage; under g_buildCs. Never destroyed: their threads may outlive the program's end.
std::vector<HANDLE>& g_leftJobs = *new std::vector<HANDLE>;

class BuildLock {
public:
    BuildLock() { EnterCriticalSection(&g_buildCs); }
    ~BuildLock() { LeaveCriticalSection(&g_buildCs); }
    BuildLock(const BuildLock&) = delete;
    BuildLock& operator=(const BuildLock&) = delete;
};

struct Reader {
    const ReaderRequest& request;
    HANDLE pipe = nullptr;
    HANDLE process = nullptr;
    HANDLE job = nullptr;
    ULONGLONG deadline = 0;     // tick count
    ULONGLONG endedAt = 0;      // tick count at the process's end
    std::size_t lateBytes = 0;  // read since that end
    bool processEnded = false;
    UniqueHandle readDone;  // event
    BuildLog log;
};

enum class Step { Go, PipeEnd, Stopped, TimedOut };

DWORD MsLeft(const Reader& reader) {
    const ULONGLONG now = GetTickCount64();
    return now >= reader.deadline ? 0 : static_cast<DWORD>(std::min<ULONGLONG>(reader.deadline - now, INFINITE - 1));
}

// Takes over `text`: posts it, or frees it where there is no one to receive it.
void PostText(const Reader& reader, wchar_t* text, LPARAM colour) {
    if (PostMessageW(reader.request.target, MSG_BUILD_OUTPUT, reinterpret_cast<WPARAM>(text), colour)) return;
    std::free(text);
    OutputCreditsReturn(1);
}

// Waits until the main window can take one more chunk.
Step WaitForCredit(const Reader& reader) {
    const HANDLE either[] = {g_stop.Get(), OutputCreditsHandle()};
    switch (WaitForMultipleObjects(2, either, FALSE, MsLeft(reader))) {
        case WAIT_OBJECT_0: return Step::Stopped;
        case WAIT_OBJECT_0 + 1: return Step::Go;
        default: return Step::TimedOut;
    }
}

// Waits for the read that is under way. A process that was started by ours and lives on may hold the pipe open for
// ever: once ours has ended, the others get only a moment more, long enough for all that ours left in the pipe.
Step WaitForRead(Reader& reader, HANDLE readDone) {
    const HANDLE any[] = {g_stop.Get(), readDone, reader.process};
    for (;;) {
        const ULONGLONG late = reader.processEnded ? GetTickCount64() - reader.endedAt : 0;
        const DWORD patience = reader.processEnded ? static_cast<DWORD>(kLateMs - std::min(late, kLateMs)) : INFINITE;
        const DWORD result =
            WaitForMultipleObjects(reader.processEnded ? 2 : 3, any, FALSE, std::min(patience, MsLeft(reader)));
        if (result == WAIT_OBJECT_0) return Step::Stopped;
        if (result == WAIT_OBJECT_0 + 1) return Step::Go;
        if (result != WAIT_OBJECT_0 + 2) return MsLeft(reader) == 0 ? Step::TimedOut : Step::PipeEnd;
        reader.processEnded = true;
        reader.endedAt = GetTickCount64();
    }
}

// Reads once and posts what came; a credit has been taken for it.
Step ReadChunk(Reader& reader) {
    char bytes[kChunkBytes];
    DWORD count = 0;
    OVERLAPPED read = {};
    read.hEvent = reader.readDone.Get();
    Step step = Step::PipeEnd;
    if (ReadFile(reader.pipe, bytes, kChunkBytes, nullptr, &read) || GetLastError() == ERROR_IO_PENDING) {
        step = WaitForRead(reader, read.hEvent);
        if (step != Step::Go) CancelIo(reader.pipe);
        // The buffer is the system's until this returns; a cancelled read may have got something all the same.
        if (!GetOverlappedResult(reader.pipe, &read, &count, TRUE) && step == Step::Go) step = Step::PipeEnd;
    }
    wchar_t* text = reader.request.stage == BuildStage::Terminal ? DecodeConsoleText(bytes, count)
                                                                 : DecodeCompilerText(bytes, count);
    if (text != nullptr) {
        BuildLogWrite(reader.log, text);
        PostText(reader, text, 0);
    } else {
        OutputCreditsReturn(1);
    }
    reader.lateBytes += reader.processEnded ? count : 0;
    // Some runtimes write a line, or a part of one, at a time. A moment's wait lets them get ahead, so that the next
    // chunk is a large one; without it each tiny write costs a message and two switches of the processor.
    if (step == Step::Go && count < kShortChunk && !reader.processEnded && WaitForSingleObject(g_stop.Get(), 1) == 0)
        return Step::Stopped;
    return step;
}

Step ReadToEnd(Reader& reader) {
    for (;;) {
        Step step = WaitForCredit(reader);
        if (step == Step::Go) step = ReadChunk(reader);
        if (step != Step::Go) return step;
        if (MsLeft(reader) == 0) return Step::TimedOut;
        if (reader.lateBytes > kLateBytes) return Step::PipeEnd;
    }
}

BuildEnd ReadAndWait(Reader& reader) {
    Step step = ReadToEnd(reader);
    if (step == Step::PipeEnd) {
        const HANDLE either[] = {g_stop.Get(), reader.process};
        const DWORD result = WaitForMultipleObjects(2, either, FALSE, MsLeft(reader));
        step = result == WAIT_OBJECT_0 ? Step::Stopped : result == WAIT_OBJECT_0 + 1 ? Step::PipeEnd : Step::TimedOut;
    }
    if (step == Step::Stopped) return BuildEnd::Stopped;
    return step == Step::TimedOut ? BuildEnd::TimedOut : BuildEnd::Ended;
}

// A command that outlived its time goes on without us; reading what it prints keeps it from being stuck on a full
// pipe. It stays in its job, so that stopping a build or leaving the program ends it.
DWORD WINAPI DrainThread(LPVOID parameter) {
    std::unique_ptr<ChildProcess> child(static_cast<ChildProcess*>(parameter));
    const UniqueHandle readDone(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    char bytes[kChunkBytes];
    for (bool open = true; open;) {
        DWORD count = 0;
        OVERLAPPED read = {};
        read.hEvent = readDone.Get();
        open = (ReadFile(child->pipeRead, bytes, kChunkBytes, nullptr, &read) || GetLastError() == ERROR_IO_PENDING) &&
               GetOverlappedResult(child->pipeRead, &read, &count, TRUE);
    }
    WaitForSingleObject(child->process, INFINITE);
    const BuildLock lock;
    std::erase(g_leftJobs, child->job);
    ChildClose(child.get());
    return 0;
}

void LeaveRunning(const ChildProcess& child) {
    auto owned = std::make_unique<ChildProcess>(child);
    {
        const BuildLock lock;
        g_leftJobs.push_back(child.job);
    }
    const UniqueHandle thread(CreateThread(nullptr, 0, DrainThread, owned.get(), 0, nullptr));
    if (thread) {
        owned.release();
        return;
    }
    const BuildLock lock;
    std::erase(g_leftJobs, child.job);
    ChildTerminate(owned->job, owned->process);
    ChildClose(owned.get());
}

void PostFinished(HWND target, DWORD exitCode) {
    // Without this message the main window would take the build for running for ever.
    for (int attempt = 0; attempt < kPostTries; ++attempt) {
        if (PostMessageW(target, MSG_BUILD_FINISHED, exitCode, 0) || !IsWindow(target)) return;
        Sleep(kPostPauseMs);
    }
}

void PostNotice(const Reader& reader, const std::wstring& notice) {
    if (notice.empty() || WaitForCredit(reader) == Step::TimedOut) return;
    if (wchar_t* text = _wcsdup(notice.c_str())) PostText(reader, text, RGB(255, 0, 0));
}

// Takes the handles out of the build state, which then shows nothing running.
ChildProcess ClearState() {
    const BuildLock lock;
    BuildState& build = g_buildState;
    const ChildProcess child = {
        .process = build.process, .thread = build.thread, .pipeRead = build.pipeRead, .job = build.job};
    build.process = build.thread = build.pipeRead = build.job = nullptr;
    build.staged = false;
    build.stagedPath[0] = L'\0';
    build.building = false;
    build.preparing = false;
    build.stage = BuildStage::Idle;
    return child;
}

}  // namespace

bool ReaderInit() {
    g_stop.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    return OutputCreditsInit() && g_stop;
}

HANDLE ReaderStart(std::unique_ptr<ReaderRequest>* request) {
    ResetEvent(g_stop.Get());
    HANDLE thread = CreateThread(nullptr, 0, CompilerThread, request->get(), 0, nullptr);
    if (thread != nullptr) request->release();
    return thread;
}

void ReaderStopAll() {
    const BuildLock lock;
    SetEvent(g_stop.Get());
    if (g_buildState.process != nullptr) ChildTerminate(g_buildState.job, g_buildState.process);
    for (HANDLE job : g_leftJobs) ChildTerminate(job, nullptr);
}

DWORD WINAPI CompilerThread(LPVOID parameter) {
    const std::unique_ptr<ReaderRequest> request(static_cast<ReaderRequest*>(parameter));
    Reader reader = {.request = *request};
    {
        const BuildLock lock;
        reader.pipe = g_buildState.pipeRead;
        reader.process = g_buildState.process;
        reader.job = g_buildState.job;
    }
    reader.deadline = request->limitMs == INFINITE ? ~0ULL : GetTickCount64() + request->limitMs;
    reader.readDone.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    reader.log = BuildLogOpen(request->logPath);
    BuildLogWrite(reader.log, request->logHeader);

    const BuildEnd end = ReadAndWait(reader);
    const bool command = request->stage == BuildStage::PreBuild || request->stage == BuildStage::PostBuild;
    const bool leave = end == BuildEnd::TimedOut && command;
    if (end != BuildEnd::Ended && !leave) {
        ChildTerminate(reader.job, reader.process);
        WaitForSingleObject(reader.process, 1000);
    }
    DWORD exitCode = 1;
    if (!leave && (!GetExitCodeProcess(reader.process, &exitCode) || exitCode == STILL_ACTIVE)) exitCode = 1;
    PostNotice(reader, UnstageSource(&request->staged));
    {
        const BuildLock lock;
        g_buildState.lastExitCode = exitCode;
        g_buildState.end = end;
    }
    // First the report, then the clearing: whoever finds nothing running finds the report in the queue.
    PostFinished(request->target, exitCode);
    ChildProcess child = ClearState();
    if (leave)
        LeaveRunning(child);
    else
        ChildClose(&child);
    return 0;
}
