// Where steps end. They follow the order of addresses, not the flow of control. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <cstdint>

struct StepTarget {
    enum class Kind : std::uint8_t {
        None,           // the program stands on no line
        NoFurtherLine,  // on the last one
        NextTrap,       // the program's own next trap is the next statement: it only goes on
        Address,
    } kind = Kind::None;
    std::uint64_t address = 0;
    std::uint32_t line = 0;  // of the target, 0: none
};
// Of a step over, from the address of the last stop.
StepTarget StepOverTarget(const SdbgMap& map, std::uint64_t currentAddress);
// At an address that a step into or out of a procedure leads to; 0 gives None.
StepTarget StepTargetAt(const SdbgMap& map, std::uint64_t address);
// At a line that the user names, whose code is at `rva`; 0, no code, gives None.
StepTarget RunTarget(const SdbgMap& map, std::uint32_t rva, int line);
