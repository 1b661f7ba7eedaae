// Breakpoints in the program: plants and removes the trap bytes of the table's entries, and checks conditions. UI
// thread only.
#include "base/texts.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/expressions.h"
#include "debugger/named_places.h"
#include "debugger/program_places.h"
#include "debugger/registers.h"

#include "base/utf8.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

DebugNamesHook g_namesHook = nullptr;

DebugBreakpoint& EntryAt(DebuggerState* state, int index) {
    return state->breakpoints[static_cast<std::size_t>(index)];
}

// Index of the entry at the address; one is made when there is none. -1: the table is full, or the memory cannot be
// patched.
// An old entry that is disarmed is armed again, unless the program stands on it, because it would stop there at once.
// An old temporary entry becomes the user's when `temporary` is false.
int PlantAt(DebuggerState* state, std::uint64_t address, int line, bool temporary) {
    if (!DebugIsActive(state)) return -1;
    if (const int index = DebugFindBp(state, address); index >= 0) {
        DebugBreakpoint& found = EntryAt(state, index);
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
    EntryAt(state, state->breakpointCount) = made;
    return state->breakpointCount++;
}

bool PlantRva(DebuggerState* state, std::uint32_t rva, int line, bool temporary) {
    return rva != 0 && PlantAt(state, state->map.imageBase + rva, line, temporary) >= 0;
}

bool NamedHolds(const DebuggerState& state, std::string_view condition, std::span<const NamedPlace> names,
                const RegisterSet& innermost) {
    const ProgramMemory memory = DebugMemory(state);
    const RegisterSet registers = RegistersOfFrame(innermost, {}, 0, memory.read);
    const NamedVerdict verdict =
        NamedConditionHolds(condition, {.names = names, .registers = registers, .memory = memory});
    if (!verdict.problem.empty())
        DebugSay(kDebugOrange, Text(L"[Debug] The condition %s cannot be told: %s.\n"),
                 Utf8ToWideText(condition).c_str(), verdict.problem.c_str());
    return verdict.holds;
}

}  // namespace

bool DebugArm(DebuggerState* state, DebugBreakpoint* breakpoint) {
    if (breakpoint->armed != 0) return true;
    breakpoint->armed = DebugWriteRaw(*state, breakpoint->address, &kTrapByte, 1) ? 1 : 0;
    return breakpoint->armed != 0;
}

int DebugFindBp(const DebuggerState* state, std::uint64_t address) {
    return DebugIsActive(state) ? FindInTable(state->breakpoints, state->breakpointCount, address) : -1;
}

bool DebugWasRemoved(const DebuggerState& state, std::uint64_t address) {
    return std::ranges::find(state.removedTraps.addresses, address) != state.removedTraps.addresses.end();
}

void DebugForgetBreakpoint(DebuggerState* state, int index) {
    DebugRemovedTraps& removed = state->removedTraps;
    removed.addresses[removed.next++ % removed.addresses.size()] = EntryAt(state, index).address;
    state->breakpointCount = RemoveFromTable(&state->breakpoints, state->breakpointCount, index);
}

bool DebugRestoreBp(DebuggerState* state, std::uint64_t address) {
    const int index = DebugFindBp(state, address);
    if (index < 0) return false;
    DebugBreakpoint& bp = EntryAt(state, index);
    if (bp.armed == 0) return true;
    if (!DebugWriteRaw(*state, address, &bp.originalByte, 1)) return false;
    bp.armed = 0;
    return true;
}

bool DebugSetBreakpoint(DebuggerState* state, int line) {
    // A full table refuses even a line that has a breakpoint already.
    if (!DebugIsActive(state) || state->breakpointCount >= kMaxBreakpoints) return false;
    return PlantRva(state, SdbgLineToRva(&state->map, line), line, false);
}

bool DebugSetBreakpointIn(DebuggerState* state, std::uint32_t fileId, int line) {
    return DebugIsActive(state) && PlantRva(state, SdbgFileLineToRva(&state->map, fileId, line), line, false);
}

bool DebugSetTempBp(DebuggerState* state, std::uint64_t address, int line) {
    if (!DebugIsActive(state) || state->breakpointCount >= kMaxBreakpoints) return false;
    return PlantAt(state, address, line, true) >= 0;
}

bool DebugSetConditionalBreakpoint(DebuggerState* state, int line, const char* condition) {
    if (!DebugSetBreakpoint(state, line)) return false;
    for (int i = 0; i < state->breakpointCount; ++i) {
        DebugBreakpoint& bp = EntryAt(state, i);
        if (bp.temporary != 0 || bp.line != static_cast<std::uint32_t>(line)) continue;
        StoreCondition(&bp, condition);
        return true;
    }
    return false;
}

bool DebugSetCondition(DebuggerState* state, std::uint64_t address, const char* condition) {
    const int index = DebugFindBp(state, address);
    if (index < 0) return false;
    StoreCondition(&EntryAt(state, index), condition);
    return true;
}

bool DebugRemoveBreakpoint(DebuggerState* state, std::uint64_t address) {
    if (!DebugRestoreBp(state, address)) return false;
    DebugForgetBreakpoint(state, DebugFindBp(state, address));
    return true;
}

void DebugRearmBreakpoints(DebuggerState* state) {
    if (!DebugIsActive(state)) return;
    // The instruction that a thread is about to run alone must not become a trap again.
    const std::uint64_t underWay = DebugIsSteppingOff(*state) ? state->stepOff.address : 0;
    for (int i = 0; i < state->breakpointCount; ++i) {
        DebugBreakpoint& bp = EntryAt(state, i);
        if ((bp.temporary == 0 || bp.thread != 0 || bp.address == state->stepTarget) && bp.address != underWay)
            DebugArm(state, &bp);
    }
}

void DebugClearBreakpoints(DebuggerState* state) {
    if (!DebugIsActive(state)) return;
    for (int i = state->breakpointCount - 1; i >= 0; --i) DebugRestoreBp(state, EntryAt(state, i).address);
    state->breakpoints = {};
    state->breakpointCount = 0;
}

void DebugForgetTemporaries(DebuggerState* state) {
    for (int i = state->breakpointCount - 1; i >= 0; --i) {
        if (EntryAt(state, i).temporary == 0) continue;
        DebugRestoreBp(state, EntryAt(state, i).address);
        DebugForgetBreakpoint(state, i);
    }
}

void DebugSetNamesHook(DebugNamesHook hook) { g_namesHook = hook; }

bool DebugCheckCondition(DebuggerState* state, const char* condition) {
    if (condition == nullptr) return true;
    constexpr std::size_t kMostBytes = 127;
    const std::string_view text(condition, std::min(std::strlen(condition), kMostBytes));
    RegisterSet registers;
    const bool read = DebugGetRegisters(state, 0, &registers);
    const auto names = g_namesHook != nullptr && read ? g_namesHook(*state) : std::span<const NamedPlace>{};
    if (MentionsName(text, names)) return NamedHolds(*state, text, names, registers);
    const Condition parsed = ParseCondition(text);
    return parsed.op == Condition::Operator::None || ConditionHolds(parsed, read ? &registers : nullptr);
}
