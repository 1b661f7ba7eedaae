#include "compile/build_reader.h"

#include "base/decode.h"
#include "base/handles.h"
#include "base/texts.h"
#include "compile/build_log.h"
#include "compile/child_process.h"
#include "compile/compile_state.h"
#include "compile/read_course.h"
#include "output/line_colours.h"
#include "output/output_credits.h"
#include "resources/ids.h"

#include <cwchar>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr DWORD kChunkBytes = 4096;
constexpr DWORD kShortChunk = 1024;
constexpr int kPostTries = 100;
constexpr DWORD kPostPauseMs = 20;
constexpr DWORD kOthersWaitMs = 500;  // for the process of a console, which takes more than 100 on a busy machine
constexpr DWORD kOthersPauseMs = 10;
constexpr const wchar_t* kOthersRunLine =
    English(L"Processes that this build started are still running. Stop Build (Ctrl+Break) ends them.\r\n");

// The jobs of commands that outlived their stage, under g_buildCs. The vector is never destroyed, because the threads
// of those commands may run until the process ends.
std::vector<HANDLE>& g_leftJobs = *new std::vector<HANDLE>;
// The jobs of finished stages whose processes run on, under g_buildCs.
std::vector<HANDLE>& g_finishedJobs = *new std::vector<HANDLE>;

struct Reader {
    const ReaderRequest& request;
    const WorkerCancel& cancel;
    HANDLE pipe = nullptr;
    HANDLE process = nullptr;
    HANDLE job = nullptr;
    ReadCourse course;
    UniqueHandle readDone;  // event
    BuildLog log;
    std::string leadBytes;  // of the code page of the output
    std::string held;       // the start of a character, which waits for its other bytes
};

DWORD MsLeft(const Reader& reader) { return ReadMsLeft(reader.course, GetTickCount64()); }

// Posts a text for which a credit was taken. Returns the credit when the post fails.
void PostText(const Reader& reader, HeapBlock<wchar_t> text, LPARAM colour) {
    if (!WorkerPost(reader.request.target, MSG_BUILD_OUTPUT, std::move(text), colour)) OutputCreditsReturn(1);
}

// Posts the bytes read, for which a credit was taken. With `last`, nothing is held back.
void PostBytes(Reader& reader, std::string_view bytes, bool last) {
    reader.held += bytes;
    const std::size_t count = last ? reader.held.size() : ReadDecodable(reader.held, reader.leadBytes);
    HeapBlock<wchar_t> text(StageIsOfBuild(reader.request.stage) ? DecodeCompilerText(reader.held.data(), count)
                                                                 : DecodeConsoleText(reader.held.data(), count));
    reader.held.erase(0, count);
    if (text != nullptr) {
        BuildLogWrite(reader.log, text.get());
        PostText(reader, std::move(text), 0);
    } else {
        OutputCreditsReturn(1);
    }
}

// Waits until the main window can take one more chunk.
ReadStep WaitForCredit(const Reader& reader) {
    const HANDLE either[] = {reader.cancel.Event(), OutputCreditsHandle()};
    switch (WaitForMultipleObjects(2, either, FALSE, MsLeft(reader))) {
        case WAIT_OBJECT_0: return ReadStep::Stopped;
        case WAIT_OBJECT_0 + 1: return ReadStep::Go;
        default: return ReadStep::TimedOut;
    }
}

// Waits for the pending read.
ReadStep WaitForRead(Reader& reader, HANDLE readDone) {
    const HANDLE any[] = {reader.cancel.Event(), readDone, reader.process};
    for (;;) {
        const DWORD count = reader.course.processEnded ? 2 : 3;
        switch (WaitForMultipleObjects(count, any, FALSE, ReadPatience(reader.course, GetTickCount64()))) {
            case WAIT_OBJECT_0: return ReadStep::Stopped;
            case WAIT_OBJECT_0 + 1: return ReadStep::Go;
            case WAIT_OBJECT_0 + 2:
                reader.course.processEnded = true;
                reader.course.endedAt = GetTickCount64();
                break;
            default: return ReadNothingCame(reader.course, GetTickCount64());
        }
    }
}

// Reads once and posts the bytes read. The caller has taken a credit for them.
ReadStep ReadChunk(Reader& reader) {
    char bytes[kChunkBytes];
    DWORD count = 0;
    OVERLAPPED read = {};
    read.hEvent = reader.readDone.Get();
    ReadStep step = ReadStep::PipeEnd;
    if (ReadFile(reader.pipe, bytes, kChunkBytes, nullptr, &read) || GetLastError() == ERROR_IO_PENDING) {
        step = WaitForRead(reader, read.hEvent);
        if (step != ReadStep::Go) CancelIo(reader.pipe);
        // The system may write to the buffer until GetOverlappedResult returns. A cancelled read may still have read
        // something.
        if (!GetOverlappedResult(reader.pipe, &read, &count, TRUE) && step == ReadStep::Go) step = ReadStep::PipeEnd;
    }
    PostBytes(reader, {bytes, count}, false);
    // Some runtimes write one line or less at a time, and each small write would cost a message and two thread
    // switches. A wait of 1 ms makes the next chunk larger.
    if (step == ReadStep::Go && count < kShortChunk && !reader.course.processEnded &&
        WaitForSingleObject(reader.cancel.Event(), 1) == 0)
        return ReadStep::Stopped;
    return ReadPieceCame(reader.course, count, step, GetTickCount64());
}

ReadStep ReadToEnd(Reader& reader) {
    for (;;) {
        ReadStep step = WaitForCredit(reader);
        if (step == ReadStep::Go) step = ReadChunk(reader);
        if (step != ReadStep::Go) return step;
    }
}

BuildEnd ReadAndWait(Reader& reader) {
    ReadStep step = ReadToEnd(reader);
    if (step == ReadStep::PipeEnd) {
        const HANDLE either[] = {reader.cancel.Event(), reader.process};
        const DWORD result = WaitForMultipleObjects(2, either, FALSE, MsLeft(reader));
        step = result == WAIT_OBJECT_0       ? ReadStep::Stopped
               : result == WAIT_OBJECT_0 + 1 ? ReadStep::PipeEnd
                                             : ReadStep::TimedOut;
    }
    return ReadEndOf(step);
}

// A command that exceeded its time limit goes on running. Its output is read and dropped, because it would otherwise
// block on a full pipe. It stays in its job, so that it ends when a build is stopped or the editor ends.
void DrainPipe(ChildProcess& child, const WorkerCancel&) {
    const UniqueHandle readDone(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    char bytes[kChunkBytes];
    for (bool open = true; open;) {
        DWORD count = 0;
        OVERLAPPED read = {};
        read.hEvent = readDone.Get();
        open = (ReadFile(child.pipeRead, bytes, kChunkBytes, nullptr, &read) || GetLastError() == ERROR_IO_PENDING) &&
               GetOverlappedResult(child.pipeRead, &read, &count, TRUE);
    }
    WaitForSingleObject(child.process, INFINITE);
    const BuildLock lock;
    std::erase(g_leftJobs, child.job);
    ChildClose(&child);
}

void LeaveRunning(ChildProcess child) {
    {
        const BuildLock lock;
        g_leftJobs.push_back(child.job);
    }
    if (WorkerStart<DrainPipe>(child)) return;
    const BuildLock lock;
    std::erase(g_leftJobs, child.job);
    ChildTerminate(child.job, child.process);
    ChildClose(&child);
}

void PostFinished(HWND target, DWORD exitCode) {
    // Without this message the main window would believe that the build runs for ever.
    for (int attempt = 0; attempt < kPostTries; ++attempt) {
        if (PostMessageW(target, MSG_BUILD_FINISHED, exitCode, 0) || !IsWindow(target)) return;
        Sleep(kPostPauseMs);
    }
}

void PostNotice(const Reader& reader, const std::wstring& notice, LPARAM colour) {
    if (notice.empty() || WaitForCredit(reader) == ReadStep::TimedOut) return;
    if (HeapBlock<wchar_t> text{_wcsdup(notice.c_str())}) PostText(reader, std::move(text), colour);
}

// A process may end with the code STILL_ACTIVE (259), so the code alone does not tell that it runs.
DWORD ExitCodeOf(HANDLE process) {
    DWORD exitCode = 1;
    return WaitForSingleObject(process, 0) == WAIT_OBJECT_0 && GetExitCodeProcess(process, &exitCode) ? exitCode : 1;
}

// Whether processes that the stage started outlive it. The console's own process may take a moment to end.
bool OthersRun(const Reader& reader) {
    for (DWORD waited = 0; ChildJobRuns(reader.job); waited += kOthersPauseMs)
        if (waited >= kOthersWaitMs || WaitForSingleObject(reader.cancel.Event(), kOthersPauseMs) == WAIT_OBJECT_0)
            return ChildJobRuns(reader.job);
    return false;
}

// Keeps the job of processes that outlive their stage, so that the user can still stop them.
void CloseOrKeepJob(ChildProcess& child, bool keep) {
    HANDLE job = child.job;
    if (keep) child.job = nullptr;
    ChildClose(&child);
    if (!keep) return;
    ChildReleaseJob(job);
    const BuildLock lock;
    g_finishedJobs.push_back(job);
}

// Takes the handles out of the build state, which afterwards says that nothing runs.
ChildProcess TakeOverHandles() {
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

void ReaderEndProcesses() {
    const BuildLock lock;
    if (g_buildState.process != nullptr) ChildTerminate(g_buildState.job, g_buildState.process);
    for (HANDLE job : g_leftJobs) ChildTerminate(job, nullptr);
}

bool ReaderLeftProcesses() {
    const BuildLock lock;
    std::erase_if(g_finishedJobs, [](HANDLE job) { return !ChildJobRuns(job) && CloseHandle(job) != FALSE; });
    return !g_leftJobs.empty() || !g_finishedJobs.empty();
}

void ReaderEndLeftProcesses() {
    const BuildLock lock;
    for (HANDLE job : g_leftJobs) ChildTerminate(job, nullptr);
    for (HANDLE job : g_finishedJobs) ChildTerminate(job, nullptr);
}

void CompilerThread(ReaderRequest& request, const WorkerCancel& cancel) {
    Reader reader = {.request = request, .cancel = cancel};
    {
        const BuildLock lock;
        reader.pipe = g_buildState.pipeRead;
        reader.process = g_buildState.process;
        reader.job = g_buildState.job;
    }
    if (request.limitMs != INFINITE) reader.course.deadline = GetTickCount64() + request.limitMs;
    if (request.stage == BuildStage::Compile) reader.course.silenceMs = request.limitMs;
    reader.leadBytes = LeadBytesOf(StageIsOfBuild(request.stage) ? CP_ACP : CP_OEMCP);
    reader.readDone.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    reader.log = BuildLogOpen(request.logPath);
    BuildLogWrite(reader.log, request.logHeader);

    const BuildEnd end = ReadAndWait(reader);
    if (!reader.held.empty() && WaitForCredit(reader) != ReadStep::TimedOut) PostBytes(reader, {}, true);
    const bool leave = ReadLeavesRunning(request.stage, end);
    if (end != BuildEnd::Ended && !leave) {
        ChildTerminate(reader.job, reader.process);
        WaitForSingleObject(reader.process, 1000);
    }
    const DWORD exitCode = leave ? 1 : ExitCodeOf(reader.process);
    const bool othersLeft = end == BuildEnd::Ended && StageIsOfBuild(request.stage) && OthersRun(reader);
    PostNotice(reader, UnstageSource(&request.staged), kLineRed);
    if (othersLeft) PostNotice(reader, Text(kOthersRunLine), kLineTeal);
    {
        const BuildLock lock;
        g_buildState.lastExitCode = exitCode;
        g_buildState.end = end;
    }
    // The message is posted before the state is cleared, because a thread that finds nothing running must find the
    // message in the queue.
    PostFinished(request.target, exitCode);
    ChildProcess child = TakeOverHandles();
    if (leave)
        LeaveRunning(child);
    else
        CloseOrKeepJob(child, othersLeft);
}
