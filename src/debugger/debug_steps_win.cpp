// Steps: each prepares where the program is to stop next and lets it go on. They follow the order of addresses, not the
// flow of control, and set no trap flag; a breakpoint that they leave stays disarmed until something arms it. UI thread only.
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/stop_rules.h"
#include "disasm/disasm.h"

#include <array>

namespace {

constexpr std::size_t kLongestInstruction = 16;

bool Ready(const DebuggerState* state) {
    return state != nullptr && state->active != 0 && state->run == DebugRun::Stopped;
}

// The instruction under a breakpoint must run as it was.
bool GoOn(DebuggerState* state) {
    if (DebugStandsOn(*state, state->currentAddress)) DebugRestoreBp(state, state->currentAddress);
    return DebugResume(state);
}

// Targets of steps that ended elsewhere must not fill the table for ever.
bool RunTo(DebuggerState* state, std::uint64_t address, std::uint32_t line) {
    if (state->breakpointCount >= kMaxBreakpoints) DebugForgetTemporaries(state);
    return DebugSetTempBp(state, address, static_cast<int>(line)) && GoOn(state);
}

// To a line that the user names: traps of the program's own on the way there are no stops.
bool RunToRva(DebuggerState* state, std::uint32_t rva, int line) {
    if (rva == 0) return false;
    DebugForgetTemporaries(state);  // the way leads past the targets of earlier steps
    if (!RunTo(state, state->map.imageBase + rva, static_cast<std::uint32_t>(line))) return false;
    state->runsToUserBreakpoint = 1;
    return true;
}

}  // namespace

bool DebugStepOffAndResume(DebuggerState* state) {
    std::uint64_t ip = 0;
    // Behind a trap of the program's own it may stand before a breakpoint that was not met yet.
    const bool known = DebugGetIp(*state, state->stopThreadId, &ip) && ip == state->currentAddress;
    const int index = known ? DebugFindBp(state, ip) : -1;
    if (index >= 0) DebugRestoreBp(state, ip);
    for (int i = 0; i < state->breakpointCount; ++i) {
        DebugBreakpoint& bp = state->breakpoints[static_cast<std::size_t>(i)];
        if (i != index && bp.temporary == 0) DebugArm(state, &bp);
    }
    if (index >= 0) DebugSetIp(*state, state->stopThreadId, ip, true);
    return DebugResume(state);
}

bool DebugStepOver(DebuggerState* state) {
    if (!Ready(state)) return false;
    if (state->map.nativeTrapMap != 0) return GoOn(state);  // the next trap is the next statement
    std::uint32_t rva = 0;
    if (!RvaOf(state->currentAddress, state->map.imageBase, &rva)) return false;
    const std::uint32_t line = SdbgRvaToLine(&state->map, rva);
    if (line == 0) return false;
    const std::int32_t next = SdbgNextStop(&state->map, rva, line, SdbgRvaToFileId(&state->map, rva));
    if (next < 0) {
        DebugSay(kDebugOrange, L"[Debug] No further source lines.\n");
        return false;
    }
    const SdbgLine& target = state->map.lines[next];
    return RunTo(state, state->map.imageBase + target.rva, target.line);
}

bool DebugStepInto(DebuggerState* state) {
    if (!Ready(state)) return false;
    std::array<std::uint8_t, kLongestInstruction> bytes = {};
    const std::size_t count = DebugReadSome(state, state->currentAddress, bytes.data(), bytes.size());
    const std::uint64_t target =
        DisasmCallTarget(std::span(bytes).first(count), state->currentAddress, state->isX64 != 0);
    if (target != 0 && RunTo(state, target, PlaceOf(state->map, target).line)) return true;
    return DebugStepOver(state);
}

// The word at the stack pointer is the return address only until the procedure has set up its frame. Elsewhere it may be
// anything; a trap byte in the program's data would change them, so only code is taken for a return address.
bool DebugStepOut(DebuggerState* state) {
    if (!Ready(state)) return false;
    RegisterSet registers;
    std::uint64_t target = 0;
    if (state->isX64 != 0 && DebugGetRegisters(state, 0, &registers) &&
        DebugReadMem(state, registers.general[kSp], &target, sizeof(target)) && DebugIsExecutable(state, target) &&
        RunTo(state, target, PlaceOf(state->map, target).line))
        return true;
    return DebugStepOver(state);
}

bool DebugRunToLine(DebuggerState* state, int line) {
    return Ready(state) && RunToRva(state, SdbgLineToRva(&state->map, line), line);
}

bool DebugRunToLineIn(DebuggerState* state, std::uint32_t fileId, int line) {
    return Ready(state) && RunToRva(state, SdbgFileLineToRva(&state->map, fileId, line), line);
}

bool DebugContinue(DebuggerState* state) {
    if (!Ready(state)) return false;
    DebugForgetTemporaries(state);  // of steps that ended elsewhere
    state->runsToUserBreakpoint = 1;
    return DebugStepOffAndResume(state);
}

bool DebugBreakIn(DebuggerState* state) {
    if (state == nullptr || state->active == 0 || state->run != DebugRun::Running) return false;
    // The trap of an earlier one is still to come, and is the only one that will.
    const bool underWay = state->pause != DebugPause::None;
    state->pause = DebugPause::Wanted;
    if (underWay || DebugBreakProcess(state->process)) return true;
    state->pause = DebugPause::None;
    return false;
}
