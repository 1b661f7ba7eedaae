// Sets the place where a stopped program goes on. UI thread only.
#include "debugger/set_next.h"

#include "debugger/debug_process.h"

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
