// Stepping off breakpoints: one thread runs the instruction under a breakpoint while the others wait. UI thread only.
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/step_rules.h"

#include "base/log.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr ULONGLONG kMostAloneMs = 200;  // that one instruction may keep the other threads suspended
constexpr std::size_t kLongestInstruction = 16;

DebugThread* ThreadOf(DebuggerState* state, std::uint32_t id) {
    const auto thread = std::ranges::find(state->threads, id, &DebugThread::id);
    return thread == state->threads.end() ? nullptr : &*thread;
}

void Hold(DebugThread* thread) {
    if (thread->held) return;
    thread->held = SuspendThread(thread->handle) != static_cast<DWORD>(-1);
    if (!thread->held) AppLogMsg(L"FAIL: SuspendThread id=%lu error=%lu", thread->id, GetLastError());
}

void ReleaseAll(DebuggerState* state) {
    for (DebugThread& thread : state->threads) {
        if (thread.held && ResumeThread(thread.handle) == static_cast<DWORD>(-1))
            AppLogMsg(L"FAIL: ResumeThread id=%lu error=%lu", thread.id, GetLastError());
        thread.held = false;
    }
}

void ArmUserBreakpoints(DebuggerState* state, std::uint64_t except) {
    for (int i = 0; i < state->breakpointCount; ++i) {
        DebugBreakpoint& bp = state->breakpoints[static_cast<std::size_t>(i)];
        if (bp.temporary == 0 && bp.address != except) DebugArm(state, &bp);
    }
}

// Puts a trap after a repeated string instruction. False: the instruction is none, or the trap cannot be written.
bool PutLanding(DebuggerState* state) {
    DebugStepOff& stepOff = state->stepOff;
    std::array<std::uint8_t, kLongestInstruction> bytes = {};
    const std::size_t count = DebugReadSome(state, stepOff.address, bytes.data(), bytes.size());
    const std::size_t length = RepeatedInstructionLength(std::span(bytes).first(count), state->isX64 != 0);
    if (length == 0) return false;
    const std::uint64_t landing = stepOff.address + length;
    if (!DebugReadRaw(*state, landing, &stepOff.landingByte, 1)) return false;
    if (stepOff.landingByte != kTrapByte && !DebugWriteRaw(*state, landing, &kTrapByte, 1)) return false;
    stepOff.landing = landing;
    return true;
}

void TakeLandingAway(DebuggerState* state) {
    DebugStepOff& stepOff = state->stepOff;
    if (stepOff.landing == 0 || stepOff.landingByte == kTrapByte) return;
    if (!DebugWriteRaw(*state, stepOff.landing, &stepOff.landingByte, 1))
        AppLogMsg(L"FAIL: TakeLandingAway error=%lu", GetLastError());
}

// True: the thread will run the instruction at the address alone, once the pending event is continued.
bool BeginStepOff(DebuggerState* state, std::uint32_t threadId, std::uint64_t address) {
    if (!DebugRestoreBp(state, address)) return false;
    state->stepOff = {.threadId = threadId, .address = address, .since = GetTickCount64()};
    const bool landing = PutLanding(state);
    if (!landing && !DebugSetIp(*state, threadId, address, true)) {
        state->stepOff = {};
        return false;
    }
    for (DebugThread& thread : state->threads)
        if (thread.id != threadId) Hold(&thread);
    return true;
}

// The next thread that stopped at a breakpoint and still stands on it. Two threads can: the second one's event was
// under way when the first one was resumed.
bool BeginNextStepOff(DebuggerState* state) {
    for (DebugThread& thread : state->threads) {
        const std::uint64_t address = std::exchange(thread.stoppedAt, 0);
        std::uint64_t ip = 0;
        if (address == 0 || DebugFindBp(state, address) < 0) continue;
        if (DebugGetIp(*state, thread.id, &ip) && ip == address && BeginStepOff(state, thread.id, address)) return true;
    }
    return false;
}

}  // namespace

bool DebugStepOffAndResume(DebuggerState* state) {
    std::uint64_t ip = 0;
    // After a trap of the program's own, the instruction pointer is past `currentAddress`, and a breakpoint there was
    // not reached yet.
    const bool known = DebugGetIp(*state, state->stopThreadId, &ip) && ip == state->currentAddress;
    const bool stands = known && DebugFindBp(state, ip) >= 0;
    ArmUserBreakpoints(state, stands ? ip : 0);
    DebugNoteStoppedAt(state, state->stopThreadId, stands ? ip : 0);
    BeginNextStepOff(state);
    return DebugResume(state);
}

void DebugFinishStepOff(DebuggerState* state) {
    TakeLandingAway(state);
    state->stepOff = {};
    DebugRearmBreakpoints(state);
    if (!BeginNextStepOff(state)) ReleaseAll(state);
}

void DebugAbandonStepOff(DebuggerState* state) {
    if (!DebugIsSteppingOff(*state)) return;
    TakeLandingAway(state);
    DebugNoteStoppedAt(state, state->stepOff.threadId, state->stepOff.address);
    state->stepOff = {};
    ReleaseAll(state);
}

void DebugRepeatStepOff(DebuggerState* state, std::uint32_t threadId) {
    const DebugStepOff& stepOff = state->stepOff;
    std::uint64_t ip = 0;
    if (stepOff.threadId != threadId || stepOff.landing != 0) return;
    if (DebugGetIp(*state, threadId, &ip) && ip == stepOff.address) DebugSetIp(*state, threadId, ip, true);
}

void DebugNoteStoppedAt(DebuggerState* state, std::uint32_t threadId, std::uint64_t address) {
    if (DebugThread* thread = ThreadOf(state, threadId)) thread->stoppedAt = address;
}

bool DebugIsHeld(const DebuggerState& state, std::uint32_t threadId) {
    const auto thread = std::ranges::find(state.threads, threadId, &DebugThread::id);
    return thread != state.threads.end() && thread->held;
}

// A trap after the instruction would stop the others too, so with one they wait on. Such an instruction never waits.
void DebugCheckStepOffTime(DebuggerState* state) {
    if (!DebugIsSteppingOff(*state) || state->stepOff.landing != 0) return;
    if (GetTickCount64() - state->stepOff.since >= kMostAloneMs) ReleaseAll(state);
}

void DebugHoldNewThread(DebuggerState* state, std::uint32_t threadId) {
    DebugThread* thread = ThreadOf(state, threadId);
    if (DebugIsSteppingOff(*state) && thread != nullptr) Hold(thread);
}
