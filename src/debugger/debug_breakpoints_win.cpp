// The table of breakpoints and the bytes behind it. UI thread only.
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/expressions.h"
#include "debugger/registers.h"

#include <algorithm>
#include <cstring>

namespace {

bool Active(const DebuggerState* state) { return state != nullptr && state->active != 0; }

DebugBreakpoint& Entry(DebuggerState* state, int index) { return state->breakpoints[static_cast<std::size_t>(index)]; }

// Index of the entry at the address, made when there is none; -1: table full, or memory that cannot be patched. An entry
// that was hit and stands disarmed is armed again - unless the program stands on it, which would stop it at once. One
// that a step has left there becomes the user's when he wants it.
int Plant(DebuggerState* state, std::uint64_t address, int line, bool temporary) {
    if (!Active(state)) return -1;
    if (const int index = DebugFindBp(state, address); index >= 0) {
        DebugBreakpoint& found = Entry(state, index);
        if (!DebugStandsOn(*state, address)) DebugArm(state, &found);
        if (!temporary) found.temporary = 0;
        return index;
    }
    if (state->breakpointCount >= kMaxBreakpoints) return -1;
    DebugBreakpoint made;
    made.address = address;
    made.temporary = temporary ? 1 : 0;
    DebugLineAt(state, address, &made.fileId, &made.line);
    made.line = static_cast<std::uint32_t>(line);
    if (!DebugReadRaw(*state, address, &made.originalByte, 1) || !DebugArm(state, &made)) return -1;
    Entry(state, state->breakpointCount) = made;
    return state->breakpointCount++;
}

bool PlantRva(DebuggerState* state, std::uint32_t rva, int line, bool temporary) {
    return rva != 0 && Plant(state, state->map.imageBase + rva, line, temporary) >= 0;
}

void StoreCondition(DebugBreakpoint* breakpoint, const char* condition) {
    std::memset(breakpoint->condition, 0, sizeof(breakpoint->condition));
    if (condition == nullptr) return;
    std::memcpy(breakpoint->condition, condition, std::min(std::strlen(condition), kConditionCapacity - 1));
}

}  // namespace

bool DebugArm(DebuggerState* state, DebugBreakpoint* breakpoint) {
    if (breakpoint->armed != 0) return true;
    breakpoint->armed = DebugWriteRaw(*state, breakpoint->address, &kTrapByte, 1) ? 1 : 0;
    return breakpoint->armed != 0;
}

int DebugFindBp(const DebuggerState* state, std::uint64_t address) {
    if (!Active(state)) return -1;
    for (int i = 0; i < state->breakpointCount; ++i)
        if (state->breakpoints[static_cast<std::size_t>(i)].address == address) return i;
    return -1;
}

void DebugForgetBreakpoint(DebuggerState* state, int index) {
    const auto at = state->breakpoints.begin() + index;
    std::move(at + 1, state->breakpoints.begin() + state->breakpointCount, at);
    Entry(state, --state->breakpointCount) = {};
}

bool DebugRestoreBp(DebuggerState* state, std::uint64_t address) {
    const int index = DebugFindBp(state, address);
    if (index < 0) return false;
    DebugBreakpoint& bp = Entry(state, index);
    if (bp.armed == 0) return true;
    if (!DebugWriteRaw(*state, address, &bp.originalByte, 1)) return false;
    bp.armed = 0;
    return true;
}

bool DebugSetBreakpoint(DebuggerState* state, int line) {
    // A full table refuses even a line that has its breakpoint already.
    if (!Active(state) || state->breakpointCount >= kMaxBreakpoints) return false;
    return PlantRva(state, SdbgLineToRva(&state->map, line), line, false);
}

bool DebugSetBreakpointIn(DebuggerState* state, std::uint32_t fileId, int line) {
    return Active(state) && PlantRva(state, SdbgFileLineToRva(&state->map, fileId, line), line, false);
}

bool DebugSetTempBp(DebuggerState* state, std::uint64_t address, int line) {
    if (!Active(state) || state->breakpointCount >= kMaxBreakpoints) return false;
    return Plant(state, address, line, true) >= 0;
}

bool DebugSetConditionalBreakpoint(DebuggerState* state, int line, const char* condition) {
    if (!DebugSetBreakpoint(state, line)) return false;
    for (int i = 0; i < state->breakpointCount; ++i) {
        DebugBreakpoint& bp = Entry(state, i);
        if (bp.temporary != 0 || bp.line != static_cast<std::uint32_t>(line)) continue;
        StoreCondition(&bp, condition);
        return true;
    }
    return false;
}

bool DebugSetCondition(DebuggerState* state, std::uint64_t address, const char* condition) {
    const int index = DebugFindBp(state, address);
    if (index < 0) return false;
    StoreCondition(&Entry(state, index), condition);
    return true;
}

bool DebugRemoveBreakpoint(DebuggerState* state, std::uint64_t address) {
    if (!DebugRestoreBp(state, address)) return false;
    DebugForgetBreakpoint(state, DebugFindBp(state, address));
    return true;
}

void DebugRearmBreakpoints(DebuggerState* state) {
    if (!Active(state)) return;
    for (int i = 0; i < state->breakpointCount; ++i)
        if (Entry(state, i).temporary == 0) DebugArm(state, &Entry(state, i));
}

void DebugClearBreakpoints(DebuggerState* state) {
    if (!Active(state)) return;
    for (int i = state->breakpointCount - 1; i >= 0; --i) DebugRestoreBp(state, Entry(state, i).address);
    state->breakpoints = {};
    state->breakpointCount = 0;
}

void DebugForgetTemporaries(DebuggerState* state) {
    for (int i = state->breakpointCount - 1; i >= 0; --i) {
        if (Entry(state, i).temporary == 0) continue;
        DebugRestoreBp(state, Entry(state, i).address);
        DebugForgetBreakpoint(state, i);
    }
}

bool DebugCheckCondition(DebuggerState* state, const char* condition) {
    if (condition == nullptr) return true;
    constexpr std::size_t kMostBytes = 127;
    const std::string_view text(condition, std::min(std::strlen(condition), kMostBytes));
    const Condition parsed = ParseCondition(text);
    if (parsed.op == Condition::Operator::None) return true;
    RegisterSet registers;
    const bool read = DebugGetRegisters(state, 0, &registers);
    const auto value = [&](std::string_view side) { return read ? EvaluateExpression(registers, side) : 0; };
    return Compare(parsed.op, value(parsed.left), value(parsed.right));
}
