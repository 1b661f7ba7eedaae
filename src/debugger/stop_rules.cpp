// Exceptions and traps as the session reads them. Must not know a process.
#include "debugger/stop_rules.h"

namespace {

constexpr std::uint32_t kBreakpoint = 0x80000003, kWow64Breakpoint = 0x4000001F;
constexpr std::uint32_t kSingleStep = 0x80000004, kWow64SingleStep = 0x4000001E;
constexpr std::uint32_t kFaults[] = {
    0xC0000005,  // access violation
    0xC0000006,  // page that cannot be read in
    0xC000001D,  // illegal instruction
    0xC000008C,  // array bounds
    0xC000008D,  // floating point: denormal operand,
    0xC000008E,  // divided by zero,
    0xC000008F,  // inexact,
    0xC0000090,  // invalid operation,
    0xC0000091,  // overflow,
    0xC0000092,  // stack of the unit,
    0xC0000093,  // underflow
    0xC0000094,  // whole number divided by zero
    0xC0000095,  // whole number overflow
    0xC0000096,  // privileged instruction
    0xC00000FD,  // stack overflow
    0xC00002B4,  // floating point in vector instructions of a 32-bit program: faults
    0xC00002B5,  // and traps
    0x80000002,  // misaligned data
};

}  // namespace

ExceptionKind ExceptionKindOf(std::uint32_t code) {
    switch (code) {
        case kBreakpoint:
        case kWow64Breakpoint: return ExceptionKind::Breakpoint;
        case kSingleStep:
        case kWow64SingleStep: return ExceptionKind::SingleStep;
        default: break;
    }
    for (const std::uint32_t fault : kFaults)
        if (fault == code) return ExceptionKind::Fault;
    return ExceptionKind::Other;
}

bool RvaOf(std::uint64_t address, std::uint64_t imageBase, std::uint32_t* rva) {
    const std::uint64_t distance = address - imageBase;
    *rva = static_cast<std::uint32_t>(distance);
    return address >= imageBase && distance <= 0xFFFFFFFFU;
}

SourcePlace PlaceOf(const SdbgMap& map, std::uint64_t address) {
    std::uint32_t rva = 0;
    if (!RvaOf(address, map.imageBase, &rva)) return {};
    return {SdbgRvaToLine(&map, rva), SdbgRvaToFileId(&map, rva)};
}

SourcePlace PlaceOfTrap(const SdbgMap& map, std::uint64_t address) {
    std::uint32_t rva = 0;
    if (map.textSize == 0 || !RvaOf(address, map.imageBase, &rva)) return {};
    if (rva < map.textRva || rva - map.textRva >= map.textSize) return {};
    for (const std::uint32_t tried : {rva, rva - 1, rva + 1, rva + 2})
        if (const std::uint32_t line = SdbgRvaToLine(&map, tried)) return {line, SdbgRvaToFileId(&map, tried)};
    return {};
}

bool IsRepeatedTrap(const SdbgMap& map, SourcePlace place, std::uint64_t address, std::int32_t lastLine,
                    std::uint64_t lastAddress) {
    return map.nativeTrapMap != 0 && place.line != 0 && static_cast<std::int64_t>(place.line) == lastLine &&
           address != lastAddress;
}
