// Frames and return addresses on the stack of a stopped program. Memory is read by a function that the caller gives.
// Pure.
#pragma once

#include "debugger/registers.h"
#include "program/sdbg_map.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

inline constexpr std::size_t kMostFrames = 32;

// Reads the whole count of bytes, or answers false.
using MemoryReader = std::function<bool(std::uint64_t address, void* out, std::size_t count)>;
struct ProgramMemory {
    MemoryReader read;
    // Reads as many of the bytes as can be read from the start, and answers how many.
    std::function<std::size_t(std::uint64_t address, void* out, std::size_t count)> readSome;
    // Where the module begins that has the address; 0: none. Null: not known.
    std::function<std::uint64_t(std::uint64_t address)> moduleBase = nullptr;
    std::size_t wordBytes = 8;  // of the program's addresses: 8 or 4
};

struct FrameLink {
    std::uint64_t address = 0;  // of the frame's instruction
    std::uint64_t framePointer = 0;
};
// The frames by the chain of frame pointers, the innermost first; 1 to 32. `second` is the second frame when the chain
// does not have it; the chain goes on from its frame pointer.
std::vector<FrameLink> WalkFrames(const RegisterSet& registers, const MemoryReader& read,
                                  std::optional<FrameLink> second = {});

// The return address of a procedure whose own frame does not stand yet, or no longer: before its prologue, in the middle
// of it, and at its RET. Nothing: the thread is somewhere else. The frame pointer is still, or again, that of the caller.
std::optional<std::uint64_t> ReturnAddressWithoutFrame(const RegisterSet& registers, const MemoryReader& read);

// "Call Stack:" and a line for each frame, by the chain of frame pointers. `rbp` and `rip` are 0 for a 32-bit program.
// The second line repeats the first, because the first caller is read only after the second line is written.
std::wstring CallStackText(const SdbgMap& map, std::uint64_t rbp, std::uint64_t rip, const MemoryReader& read);

// True when `bytes` end with a call: a direct one, or one through a register or memory. They are the seven bytes before
// an address.
bool EndsWithCall(std::span<const std::uint8_t> bytes);
inline constexpr std::size_t kLongestCall = 7;

struct StackWord {
    std::uint64_t value = 0;
    std::size_t offset = 0;  // bytes from the start of `stack`
};
// The first word of the stack for which `isReturnAddress` is true. `wordBytes` is 8 or 4.
std::optional<StackWord> FindReturnAddress(std::span<const std::uint8_t> stack, std::size_t wordBytes,
                                           const std::function<bool(std::uint64_t)>& isReturnAddress);
