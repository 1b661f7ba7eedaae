// What the user does with a single address of a stopped program. UI thread only.
#include "debugger/at_address.h"

#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/stack_walk.h"

#include <limits>

bool DebugSetNextStatement(DebuggerState* state, std::uint64_t address) {
    std::uint64_t ip = 0;
    if (!DebugIsActive(state) || state->run != DebugRun::Stopped || !DebugGetIp(*state, state->stopThreadId, &ip))
        return false;
    const SourcePlace from = PlaceInImage(state->map, state->imageSize, ip);
    const SourcePlace place = PlaceInImage(state->map, state->imageSize, address);
    if (from.line == 0 || place.line == 0) return false;
    // A trap of the program's own would stop there again at once.
    std::uint8_t byte = 0;
    const bool ownTrap = state->map.nativeTrapMap != 0 && DebugReadMem(state, address, &byte, 1) && byte == kTrapByte;
    if (!DebugSetIp(*state, state->stopThreadId, ownTrap ? address + 1 : address, false)) return false;
    state->currentAddress = address;
    state->currentLine = static_cast<std::int32_t>(place.line);
    state->currentFileId = place.fileId;
    ++state->stopSerial;
    return true;
}

bool DebugNextIsAt(const DebuggerState* state, std::uint64_t address) {
    return DebugIsActive(state) && DebugStandsOn(*state, address);
}

bool DebugFrameIsMissing(const DebuggerState* state) {
    RegisterSet registers;
    if (!DebugGetRegisters(state, 0, &registers)) return false;
    if (PlaceInImage(state->map, state->imageSize, registers.ip).line == 0) return false;
    return ReturnAddressWithoutFrame(registers, DebugMemory(*state).read).has_value();
}

bool DebugRunToAddress(DebuggerState* state, std::uint64_t address) { return DebugRunToFrame(state, address, 0, 0); }

bool DebugRunToFrame(DebuggerState* state, std::uint64_t address, std::uint32_t threadId, std::uint64_t leastSp) {
    if (!DebugIsActive(state) || state->run != DebugRun::Stopped || !DebugIsExecutable(state, address)) return false;
    DebugForgetTemporaries(state);
    if (!DebugSetTempBp(state, address, static_cast<int>(PlaceInImage(state->map, state->imageSize, address).line)))
        return false;
    DebugBreakpoint& made = state->breakpoints[static_cast<std::size_t>(DebugFindBp(state, address))];
    if (made.temporary != 0 && leastSp != 0) {
        made.thread = threadId != 0 ? threadId : state->stopThreadId;
        made.leastSp = leastSp;
        made.mostSp = std::numeric_limits<std::uint64_t>::max();
    }
    state->stepTarget = address;
    state->runsToUserBreakpoint = 1;
    return DebugStepOffAndResume(state);
}

bool DebugSetBreakpointAt(DebuggerState* state, std::uint64_t address) {
    if (!DebugIsActive(state) || !DebugIsExecutable(state, address)) return false;
    if (!DebugSetTempBp(state, address, static_cast<int>(PlaceInImage(state->map, state->imageSize, address).line)))
        return false;
    state->breakpoints[static_cast<std::size_t>(DebugFindBp(state, address))].temporary = 0;
    return true;
}

bool DebugSetStopFrom(DebuggerState* state, std::uint64_t address, std::uint32_t count) {
    const int index = DebugFindBp(state, address);
    if (index < 0) return false;
    state->breakpoints[static_cast<std::size_t>(index)].stopFrom = count;
    return true;
}
