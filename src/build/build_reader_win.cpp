#include "build/build_reader.h"

#include "app/app_state.h"
#include "build/build_log.h"
#include "build/child_process.h"
#include "build/decode.h"
#include "files/handles.h"
#include "resources/ids.h"

#include <algorithm>
#include <cwchar>
#include <vector>

namespace {

constexpr DWORD kChunkBytes = 4096;
constexpr DWORD kPollMs = 5;                     // between looks at a pipe that is empty
constexpr ULONGLONG kQuietMs = 500;              // a pipe held open by others is given up when silent for so long
constexpr std::size_t kLateBytes = 1024 * 1024;  // and when so much came after the process's own end
constexpr int kPostTries = 100;
constexpr DWORD kPostPauseMs = 20;

UniqueHandle g_stop;             // set: the reader is to end
UniqueHandle g_credits;          // semaphore: chunks that may still be posted
std::vector<HANDLE> g_leftJobs;  // of commands that outlived their stage; under g_buildCs

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
    ULONGLONG quietSince = 0;   // tick count of the last output, or of the process's end
    std::size_t lateBytes = 0;  // read since that end
    bool processEnded = false;
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
    ReleaseSemaphore(g_credits.Get(), 1, nullptr);
}

// Waits until the main window can take one more chunk.
Step WaitForCredit(const Reader& reader) {
    const HANDLE either[] = {g_stop.Get(), g_credits.Get()};
    switch (WaitForMultipleObjects(2, either, FALSE, MsLeft(reader))) {
        case WAIT_OBJECT_0: return Step::Stopped;
        case WAIT_OBJECT_0 + 1: return Step::Go;
        default: return Step::TimedOut;
    }
}

Step ReadChunk(Reader& reader, DWORD available) {
    const Step credit = WaitForCredit(reader);
    if (credit != Step::Go) return credit;
    char bytes[kChunkBytes];
    DWORD count = 0;
    const bool ok = ReadFile(reader.pipe, bytes, std::min(available, kChunkBytes), &count, nullptr) != FALSE;
    wchar_t* text = ok ? DecodeCompilerText(bytes, count) : nullptr;
    if (text != nullptr) {
        BuildLogWrite(reader.log, text);
        PostText(reader, text, 0);
    } else {
        ReleaseSemaphore(g_credits.Get(), 1, nullptr);
    }
    reader.quietSince = GetTickCount64();
    reader.lateBytes += reader.processEnded ? count : 0;
    return ok ? Step::Go : Step::PipeEnd;
}

// The pipe is empty but open. A process that was started by ours and lives on may hold it for ever: once ours has
// ended, silence is taken for the end.
Step WaitForOutput(Reader& reader) {
    const HANDLE either[] = {g_stop.Get(), reader.process};
    const DWORD result = WaitForMultipleObjects(reader.processEnded ? 1 : 2, either, FALSE, kPollMs);
    if (result == WAIT_OBJECT_0) return Step::Stopped;
    if (result == WAIT_OBJECT_0 + 1 && !reader.processEnded) {
        reader.processEnded = true;
        reader.quietSince = GetTickCount64();
        return Step::Go;
    }
    if (reader.processEnded && GetTickCount64() - reader.quietSince >= kQuietMs) return Step::PipeEnd;
    return MsLeft(reader) == 0 ? Step::TimedOut : Step::Go;
}

Step ReadToEnd(Reader& reader) {
    for (;;) {
        DWORD available = 0;
        if (WaitForSingleObject(g_stop.Get(), 0) == WAIT_OBJECT_0) return Step::Stopped;
        if (!PeekNamedPipe(reader.pipe, nullptr, 0, nullptr, &available, nullptr) || reader.lateBytes > kLateBytes)
            return Step::PipeEnd;
        const Step step = available > 0 ? ReadChunk(reader, available) : WaitForOutput(reader);
        if (step != Step::Go) return step;
        if (MsLeft(reader) == 0) return Step::TimedOut;
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
    DWORD available = 0;
    char bytes[kChunkBytes];
    while (PeekNamedPipe(child->pipeRead, nullptr, 0, nullptr, &available, nullptr)) {
        DWORD count = 0;
        if (available > 0 && !ReadFile(child->pipeRead, bytes, std::min(available, kChunkBytes), &count, nullptr))
            break;
        if (available == 0 && WaitForSingleObject(child->process, 50) == WAIT_OBJECT_0) break;
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
    BuildState& build = g_app.build;
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
    g_credits.Reset(CreateSemaphoreW(nullptr, kMaxPostedChunks, kMaxPostedChunks, nullptr));
    return g_stop && g_credits;
}

HANDLE ReaderStart(std::unique_ptr<ReaderRequest>* request) {
    ResetEvent(g_stop.Get());
    HANDLE thread = CreateThread(nullptr, 0, CompilerThread, request->get(), 0, nullptr);
    if (thread != nullptr) request->release();
    return thread;
}

void ReaderReturnCredits(int count) {
    // One by one: a release beyond the maximum is refused whole, and a text that was posted without a credit (a notice
    // after Stop) is returned here like any other.
    for (int i = 0; i < count; ++i) ReleaseSemaphore(g_credits.Get(), 1, nullptr);
}

void ReaderStopAll() {
    const BuildLock lock;
    SetEvent(g_stop.Get());
    if (g_app.build.process != nullptr) ChildTerminate(g_app.build.job, g_app.build.process);
    for (HANDLE job : g_leftJobs) ChildTerminate(job, nullptr);
}

DWORD WINAPI CompilerThread(LPVOID parameter) {
    const std::unique_ptr<ReaderRequest> request(static_cast<ReaderRequest*>(parameter));
    Reader reader = {.request = *request};
    {
        const BuildLock lock;
        reader.pipe = g_app.build.pipeRead;
        reader.process = g_app.build.process;
        reader.job = g_app.build.job;
    }
    reader.deadline = request->limitMs == INFINITE ? ~0ULL : GetTickCount64() + request->limitMs;
    reader.quietSince = GetTickCount64();
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
        g_app.build.lastExitCode = exitCode;
        g_app.build.end = end;
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
