// What an exception of the program means to the session, and which line a trap of the program's own belongs to. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <cstdint>

enum class ExceptionKind : std::uint8_t {
    Breakpoint,
    SingleStep,
    Fault,  // of an instruction that runs again when it is continued as handled, and fails again
    Other,
};
// 32-bit programs report breakpoints and single steps by codes of their own on some systems.
ExceptionKind ExceptionKindOf(std::uint32_t code);

struct SourcePlace {
    std::uint32_t line = 0;  // 0: none
    std::uint32_t fileId = 0;
};
// Address relative to the image base; false when it is not within 32 bits of it.
bool RvaOf(std::uint64_t address, std::uint64_t imageBase, std::uint32_t* rva);
// Line and file that the map gives for an address.
SourcePlace PlaceOf(const SdbgMap& map, std::uint64_t address);
// The same for a trap of the program's own: only in the map's text range, tried at the address, before it and behind it.
SourcePlace PlaceOfTrap(const SdbgMap& map, std::uint64_t address);
// A run of trap bytes on one statement stops once.
bool IsRepeatedTrap(const SdbgMap& map, SourcePlace place, std::uint64_t address, std::int32_t lastLine,
                    std::uint64_t lastAddress);
