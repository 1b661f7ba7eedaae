// Where steps end. They follow the order of addresses, not the flow of control. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <cstddef>
#include <cstdint>
#include <span>

struct StepTarget {
    enum class Kind : std::uint8_t {
        None,           // the program stands on no line
        NoFurtherLine,  // the program stands on the last line
        NextTrap,       // the program is just resumed, because its own next trap marks the next statement
        Address,
    } kind = Kind::None;
    std::uint64_t address = 0;
    std::uint32_t line = 0;  // of the target, 0: none
};
// Target of a step over, from the address of the last stop.
StepTarget StepOverTarget(const SdbgMap& map, std::uint64_t currentAddress);
// Target of a step into or out of a procedure, at `address`; 0 gives None.
StepTarget StepTargetAt(const SdbgMap& map, std::uint64_t address);
// Length in bytes of the instruction at the start of `bytes` when it is a string instruction that REP repeats; 0 for any
// other.
std::size_t RepeatedInstructionLength(std::span<const std::uint8_t> bytes, bool x64);
// Target of a run to a line, whose code is at `rva`; 0 (no code) gives None.
StepTarget RunTarget(const SdbgMap& map, std::uint32_t rva, int line);
