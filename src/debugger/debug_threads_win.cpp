// Threads and handles of the program, and continuing it. UI thread only.
//
// Events carry handles of threads and of the process. Windows closes them when the end event is continued. They must
// not be closed before that, because Windows would then close whatever handle has got the same number. Where the system
// does not close them, they are still valid after the end event and are closed here.
#include "debugger/debug_process.h"

#include "base/log.h"
#include "base/texts.h"

#include <algorithm>
#include <utility>

namespace {

constexpr DWORD kControl64 = 0x100001;  // CONTEXT_CONTROL of the two kinds of program
constexpr DWORD kControl32 = 0x10001;
constexpr DWORD kTrapFlag = 0x100;

void CloseIfOpen(HANDLE handle) {
    if (handle != nullptr) CloseHandle(handle);
}

void CloseThreadHandle(const DebugThread& thread) {
    if (thread.handle != nullptr && GetThreadId(thread.handle) == thread.id) CloseHandle(thread.handle);
}

std::uint32_t ImageSizeOf(const DebuggerState& state) {
    std::uint32_t header = 0;
    std::uint32_t size = 0;
    const std::uint64_t base = state.map.imageBase;
    constexpr std::uint64_t kHeaderField = 60, kSizeOfImage = 80;  // the same offset for both kinds of image
    if (!DebugReadRaw(state, base + kHeaderField, &header, sizeof(header))) return 0;
    return DebugReadRaw(state, base + header + kSizeOfImage, &size, sizeof(size)) ? size : 0;
}

void OnCreateProcess(DebuggerState* state, const CREATE_PROCESS_DEBUG_INFO& info, DWORD threadId) {
    CloseIfOpen(info.hFile);
    state->eventProcess = info.hProcess;
    state->mainThreadId = threadId;
    state->threads.push_back({.id = threadId, .handle = info.hThread});
    if (info.lpBaseOfImage != nullptr) state->map.imageBase = reinterpret_cast<std::uint64_t>(info.lpBaseOfImage);
    state->imageSize = ImageSizeOf(*state);
}

template <typename Context, typename Get, typename Set>
bool ChangeIp(Context* context, Get get, Set set, std::uint64_t address, bool trapOnce) {
    if (!get(context)) return false;
    if constexpr (sizeof(Context) == sizeof(CONTEXT))
        context->Rip = address;
    else
        context->Eip = static_cast<DWORD>(address);
    if (trapOnce) context->EFlags |= kTrapFlag;
    return set(context);
}

}  // namespace

HANDLE DebugThreadHandle(const DebuggerState& state, std::uint32_t threadId) {
    const auto thread = std::ranges::find(state.threads, threadId, &DebugThread::id);
    if (thread != state.threads.end()) return thread->handle;
    return threadId == state.mainThreadId ? state.thread : nullptr;
}

bool DebugGetIp(const DebuggerState& state, std::uint32_t threadId, std::uint64_t* address) {
    HANDLE thread = DebugThreadHandle(state, threadId);
    if (state.isX64 != 0) {
        CONTEXT context = {};
        context.ContextFlags = kControl64;
        if (!GetThreadContext(thread, &context)) return false;
        *address = context.Rip;
        return true;
    }
    WOW64_CONTEXT context = {};
    context.ContextFlags = kControl32;
    if (!Wow64GetThreadContext(thread, &context)) return false;
    *address = context.Eip;
    return true;
}

bool DebugStandsOn(const DebuggerState& state, std::uint64_t address) {
    std::uint64_t ip = 0;
    return state.run == DebugRun::Stopped && DebugGetIp(state, state.stopThreadId, &ip) && ip == address;
}

bool DebugSetIp(const DebuggerState& state, std::uint32_t threadId, std::uint64_t address, bool trapOnce) {
    HANDLE thread = DebugThreadHandle(state, threadId);
    bool done = false;
    if (state.isX64 != 0) {
        CONTEXT context = {};
        context.ContextFlags = kControl64;
        done = ChangeIp(
            &context, [thread](CONTEXT* c) { return GetThreadContext(thread, c) != 0; },
            [thread](CONTEXT* c) { return SetThreadContext(thread, c) != 0; }, address, trapOnce);
    } else {
        WOW64_CONTEXT context = {};
        context.ContextFlags = kControl32;
        done = ChangeIp(
            &context, [thread](WOW64_CONTEXT* c) { return Wow64GetThreadContext(thread, c) != 0; },
            [thread](WOW64_CONTEXT* c) { return Wow64SetThreadContext(thread, c) != 0; }, address, trapOnce);
    }
    if (!done) {
        const DWORD error = GetLastError();
        AppLogMsg(L"FAIL: DebugSetIp thread=%lu error=%lu", threadId, error);
        SetLastError(error);
    }
    return done;
}

bool DebugMoveIp(DebuggerState* state, std::uint32_t threadId, std::uint64_t address) {
    if (DebugSetIp(*state, threadId, address, false)) return true;
    state->owedIp = {.threadId = threadId, .address = address};
    DebugSay(
        kDebugRed,
        Text(L"[Debug] The instruction pointer of thread %lu cannot be set to 0x%llX (Win32 error %lu). The program is "
             L"held, because it would run on inside an instruction.\n"),
        static_cast<unsigned long>(threadId), address, GetLastError());
    return false;
}

bool DebugResume(DebuggerState* state) {
    if (const DebugOwedIp owed = std::exchange(state->owedIp, {}); owed.threadId != 0)
        if (!DebugMoveIp(state, owed.threadId, owed.address)) return false;
    const DWORD status = std::exchange(state->passPending, 0) != 0 ? kPassStatus : kContinueStatus;
    if (!ContinueDebugEvent(state->processId, state->threadId, status)) {
        AppLogMsg(L"FAIL: ContinueDebugEvent error=%lu", GetLastError());
        return false;
    }
    state->eventPending = 0;
    state->run = DebugRun::Running;
    return true;
}

void DebugNoteEvent(DebuggerState* state, const DEBUG_EVENT& event) {
    switch (event.dwDebugEventCode) {
        case CREATE_PROCESS_DEBUG_EVENT: OnCreateProcess(state, event.u.CreateProcessInfo, event.dwThreadId); break;
        case CREATE_THREAD_DEBUG_EVENT: {
            const CREATE_THREAD_DEBUG_INFO& info = event.u.CreateThread;
            state->threads.push_back({.id = event.dwThreadId,
                                      .handle = info.hThread,
                                      .start = reinterpret_cast<std::uint64_t>(info.lpStartAddress)});
            DebugHoldNewThread(state, event.dwThreadId);
            break;
        }
        case LOAD_DLL_DEBUG_EVENT: CloseIfOpen(event.u.LoadDll.hFile); break;
        default: break;
    }
}

void DebugCloseThread(DebuggerState* state, std::uint32_t threadId) {
    const auto thread = std::ranges::find(state->threads, threadId, &DebugThread::id);
    if (thread == state->threads.end()) return;
    CloseThreadHandle(*thread);
    state->threads.erase(thread);
}

bool DebugDropEvent(DebuggerState* state, const DEBUG_EVENT& event) {
    DebugThread thread = {.id = event.dwThreadId};
    HANDLE process = nullptr;
    switch (event.dwDebugEventCode) {
        case CREATE_PROCESS_DEBUG_EVENT:
            CloseIfOpen(event.u.CreateProcessInfo.hFile);
            process = event.u.CreateProcessInfo.hProcess;
            thread.handle = event.u.CreateProcessInfo.hThread;
            break;
        case CREATE_THREAD_DEBUG_EVENT: thread.handle = event.u.CreateThread.hThread; break;
        case LOAD_DLL_DEBUG_EVENT: CloseIfOpen(event.u.LoadDll.hFile); break;
        default: break;
    }
    ContinueDebugEvent(event.dwProcessId, event.dwThreadId, kContinueStatus);
    if (event.dwProcessId == state->processId) {
        if (process != nullptr) state->eventProcess = process;
        if (thread.handle != nullptr) state->threads.push_back(thread);
        if (event.dwDebugEventCode == EXIT_THREAD_DEBUG_EVENT) DebugCloseThread(state, event.dwThreadId);
    }
    return event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT && event.dwProcessId == state->processId;
}

void DebugEndSession(DebuggerState* state) {
    for (const DebugThread& thread : state->threads) CloseThreadHandle(thread);
    if (state->eventProcess != nullptr && GetProcessId(state->eventProcess) == state->processId)
        CloseHandle(state->eventProcess);
    CloseIfOpen(state->process);
    CloseIfOpen(state->thread);
    SdbgFree(&state->map);
    const std::uint64_t serial = state->stopSerial + 1;
    *state = {};
    state->stopSerial = serial;
}
