// Steps: each plants a breakpoint where the program is to stop next, and resumes it. Steps set no trap flag, so a
// breakpoint that they step off stays disarmed until something arms it. UI thread only.
#include "base/texts.h"
#include "debugger/debug_follow.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/step_rules.h"
#include "disasm/disasm.h"

#include <array>

namespace {

constexpr std::size_t kLongestInstruction = 16;

bool CanStep(const DebuggerState* state) {
    return state != nullptr && state->active != 0 && state->run == DebugRun::Stopped;
}

// Resumes the program; disarms the breakpoint that it stands on, so that the instruction there runs.
bool LeaveStop(DebuggerState* state) {
    if (DebugStandsOn(*state, state->currentAddress)) DebugRestoreBp(state, state->currentAddress);
    return DebugResume(state);
}

// False when the target is no address, or when the breakpoint there cannot be planted. A full table is first cleared of
// the targets of earlier steps, which stay when a step stops elsewhere.
bool StepTo(DebuggerState* state, const StepTarget& target) {
    if (target.kind != StepTarget::Kind::Address) return false;
    if (state->breakpointCount >= kMaxBreakpoints) DebugForgetTemporaries(state);
    if (!DebugSetTempBp(state, target.address, static_cast<int>(target.line))) return false;
    state->stepTarget = target.address;
    return LeaveStop(state);
}

// At a stop in a library: runs to where it returns to the program. False: the stop is on a line of the program, or there
// is no such place.
bool StepOutOfLibrary(DebuggerState* state) {
    std::uint64_t caller = 0;
    return state->map.nativeTrapMap == 0 && DebugCallerOfLibrary(state, &caller) &&
           StepTo(state, StepTargetAt(state->map, caller));
}

// Runs to a line that the user names, past the program's own traps and the targets of earlier steps.
bool RunToTarget(DebuggerState* state, const StepTarget& target) {
    if (target.kind != StepTarget::Kind::Address) return false;
    DebugForgetTemporaries(state);
    if (!StepTo(state, target)) return false;
    state->runsToUserBreakpoint = 1;
    return true;
}

}  // namespace

bool DebugStepOver(DebuggerState* state) {
    if (!CanStep(state)) return false;
    if (StepOutOfLibrary(state)) return true;
    const StepTarget target = StepOverTarget(state->map, state->currentAddress);
    if (target.kind == StepTarget::Kind::NextTrap) return LeaveStop(state);
    if (target.kind == StepTarget::Kind::NoFurtherLine)
        DebugSay(kDebugOrange, Text(L"[Debug] No further source lines.\n"));
    return StepTo(state, target);
}

bool DebugStepInto(DebuggerState* state) {
    if (!CanStep(state)) return false;
    if (StepOutOfLibrary(state)) return true;
    std::array<std::uint8_t, kLongestInstruction> bytes = {};
    const std::size_t count = DebugReadSome(state, state->currentAddress, bytes.data(), bytes.size());
    const std::uint64_t callee =
        DisasmCallTarget(std::span(bytes).first(count), state->currentAddress, state->isX64 != 0);
    return StepTo(state, StepTargetAt(state->map, callee)) || DebugStepOver(state);
}

// The word at the stack pointer is the return address only until the procedure has set up its frame; later it may be
// anything. It is used only when it is an address of code, because a trap byte elsewhere would change the program's
// data.
bool DebugStepOut(DebuggerState* state) {
    if (!CanStep(state)) return false;
    if (StepOutOfLibrary(state)) return true;
    RegisterSet registers;
    std::uint64_t caller = 0;
    if (state->isX64 != 0 && DebugGetRegisters(state, 0, &registers) &&
        DebugReadMem(state, registers.general[kSp], &caller, sizeof(caller)) && DebugIsExecutable(state, caller) &&
        StepTo(state, StepTargetAt(state->map, caller)))
        return true;
    return DebugStepOver(state);
}

bool DebugRunToLine(DebuggerState* state, int line) {
    return CanStep(state) && RunToTarget(state, RunTarget(state->map, SdbgLineToRva(&state->map, line), line));
}

bool DebugRunToLineIn(DebuggerState* state, std::uint32_t fileId, int line) {
    return CanStep(state) &&
           RunToTarget(state, RunTarget(state->map, SdbgFileLineToRva(&state->map, fileId, line), line));
}

bool DebugContinue(DebuggerState* state) {
    if (!CanStep(state)) return false;
    DebugForgetTemporaries(state);  // targets of steps that stopped elsewhere
    state->runsToUserBreakpoint = 1;
    return DebugStepOffAndResume(state);
}

bool DebugBreakIn(DebuggerState* state) {
    if (state == nullptr || state->active == 0 || state->run != DebugRun::Running) return false;
    if (DebugFollowPause(state)) return true;
    // The trap of an earlier pause, which is still to come, serves this one too: the system sends no second trap.
    const bool underWay = state->pause != DebugPause::None;
    state->pause = DebugPause::Wanted;
    if (underWay || DebugBreakProcess(state->process)) return true;
    state->pause = DebugPause::None;
    return false;
}
