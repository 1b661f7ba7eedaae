// The breakpoints of a session as a table: address, condition, and the program's byte under the trap. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <span>

inline constexpr int kMaxBreakpoints = 64;
inline constexpr std::size_t kConditionCapacity = 64;  // bytes with the terminator

struct DebugBreakpoint {
    std::uint64_t address = 0;  // absolute
    std::uint8_t originalByte = 0;
    std::uint32_t line = 0;                   // from 1; 0: none
    std::uint32_t temporary = 0;              // 1: removed when hit
    char condition[kConditionCapacity] = {};  // UTF-8, empty: none
    std::uint32_t fileId = 0;
    std::uint32_t armed = 0;     // 1: the trap byte stands in the program
    std::uint32_t hits = 0;      // how often it was reached while its condition held
    std::uint32_t stopFrom = 0;  // stops from this hit on; 0 and 1: at each
    // A temporary one that holds only for a thread whose stack pointer is in the range (debug_follow.h); 0: for all.
    std::uint32_t thread = 0;
    std::uint64_t leastSp = 0, mostSp = 0;
};
using BreakpointTable = std::array<DebugBreakpoint, kMaxBreakpoints>;

// Index of the entry at an address among the first `count`, or -1.
int FindInTable(const BreakpointTable& table, int count, std::uint64_t address);
// Removes an entry; later ones move down. Returns the new count.
int RemoveFromTable(BreakpointTable* table, int count, int index);
// Keeps at most 63 bytes of the condition; null clears it.
void StoreCondition(DebugBreakpoint* breakpoint, const char* condition);

// Puts the bytes that armed breakpoints cover back into `bytes`, which were read from the program at `address`.
void ShowOriginalBytes(const BreakpointTable& table, int count, std::uint64_t address, std::span<std::uint8_t> bytes);
// Stores `bytes`, which were just written to the program at `address`, as the original bytes of the entries there.
// Returns a bit mask by index: the armed entries, whose trap byte must be written again.
std::uint64_t NoteOverwritten(BreakpointTable* table, int count, std::uint64_t address,
                              std::span<const std::uint8_t> bytes);
