// Which lines of the source the frames of a stopped program stand on, and where a thread is in the program's own code. Pure.
#pragma once

#include "debugger/registers.h"
#include "debugger/stack_walk.h"
#include "program/sdbg_map.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// The executable's image and its lines.
struct ProgramImage {
    const SdbgMap* map = nullptr;  // never null
    std::uint32_t size = 0;        // 0: not known
};

struct DebugFrame {
    std::uint64_t address = 0;  // of the frame's instruction
    std::uint64_t framePointer = 0;
    std::uint32_t line = 0;  // 0: no source
    std::uint32_t fileId = 0;
    bool operator==(const DebugFrame&) const = default;
};
// The frames, the innermost first, with their lines: by the chain of frame pointers. The caller of a procedure without
// a frame, and the program's nearest frame of a thread in a library, are found on the stack when the chain leaves them
// out.
std::vector<DebugFrame> FramesWithLines(const ProgramImage& image, const RegisterSet& registers,
                                        const ProgramMemory& memory);

// The instruction pointer when it is on a line of the program, else the nearest return address on the stack that belongs
// to one. Nothing: neither.
std::optional<std::uint64_t> AddressInProgram(const ProgramImage& image, const RegisterSet& registers,
                                              const ProgramMemory& memory);

// The registers of the frame `index` of FramesWithLines. Those of a caller are what its frame gives; see FrameState.
RegisterSet RegistersOfFrame(const RegisterSet& innermost, std::span<const DebugFrame> frames, std::size_t index,
                             const MemoryReader& read);
