// Targets of steps. Must not know a process.
#include "debugger/step_rules.h"

#include "debugger/stop_rules.h"

namespace {

bool IsPrefix(std::uint8_t byte, bool x64) {
    constexpr std::uint8_t kPrefixes[] = {0x26, 0x2E, 0x36, 0x3E, 0x64, 0x65, 0x66, 0x67, 0xF0, 0xF2, 0xF3};
    for (const std::uint8_t prefix : kPrefixes)
        if (byte == prefix) return true;
    return x64 && (byte & 0xF0) == 0x40;  // REX
}

// INS, OUTS, MOVS, CMPS, STOS, LODS, SCAS. They have no operands.
bool IsStringInstruction(std::uint8_t opcode) {
    return (opcode >= 0x6C && opcode <= 0x6F) || (opcode >= 0xA4 && opcode <= 0xA7) ||
           (opcode >= 0xAA && opcode <= 0xAF);
}

}  // namespace

std::size_t RepeatedInstructionLength(std::span<const std::uint8_t> bytes, bool x64) {
    bool repeated = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (!IsPrefix(bytes[i], x64)) return repeated && IsStringInstruction(bytes[i]) ? i + 1 : 0;
        repeated = repeated || bytes[i] == 0xF2 || bytes[i] == 0xF3;
    }
    return 0;
}

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
