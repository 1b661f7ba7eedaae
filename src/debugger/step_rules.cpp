// Targets of steps. Must not know a process.
#include "debugger/step_rules.h"

#include "debugger/stop_rules.h"

StepTarget StepOverTarget(const SdbgMap& map, std::uint64_t currentAddress) {
    if (map.nativeTrapMap != 0) return {.kind = StepTarget::Kind::NextTrap};
    std::uint32_t rva = 0;
    if (!RvaOf(currentAddress, map.imageBase, &rva)) return {};
    const std::uint32_t line = SdbgRvaToLine(&map, rva);
    if (line == 0) return {};
    const std::int32_t next = SdbgNextStop(&map, rva, line, SdbgRvaToFileId(&map, rva));
    if (next < 0) return {.kind = StepTarget::Kind::NoFurtherLine};
    const SdbgLine& target = map.lines[next];
    return {.kind = StepTarget::Kind::Address, .address = map.imageBase + target.rva, .line = target.line};
}

StepTarget StepTargetAt(const SdbgMap& map, std::uint64_t address) {
    if (address == 0) return {};
    return {.kind = StepTarget::Kind::Address, .address = address, .line = PlaceOf(map, address).line};
}

StepTarget RunTarget(const SdbgMap& map, std::uint32_t rva, int line) {
    if (rva == 0) return {};
    return {
        .kind = StepTarget::Kind::Address, .address = map.imageBase + rva, .line = static_cast<std::uint32_t>(line)};
}
