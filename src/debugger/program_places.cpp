// Places of a stopped program in its source. Must not know a process.
#include "debugger/program_places.h"

#include "debugger/stop_rules.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kStackBytes = 8192;  // of the stack that are searched

bool HasLine(const ProgramImage& image, std::uint64_t address) {
    return PlaceInImage(*image.map, image.size, address).line != 0;
}

// The nearest return address on the stack that belongs to a line; its offset counts from the stack pointer.
std::optional<StackWord> ReturnToLine(const ProgramImage& image, const RegisterSet& registers,
                                      const ProgramMemory& memory) {
    const auto returnsToLine = [&](std::uint64_t address) {
        std::array<std::uint8_t, kLongestCall> before = {};
        return HasLine(image, address - 1) && memory.read(address - kLongestCall, before.data(), before.size()) &&
               EndsWithCall(before);
    };
    std::vector<std::uint8_t> stack(kStackBytes);
    stack.resize(memory.readSome(registers.general[kSp], stack.data(), stack.size()));
    return FindReturnAddress(stack, registers.x64 ? sizeof(std::uint64_t) : sizeof(std::uint32_t), returnsToLine);
}

std::vector<FrameLink> FrameLinks(const ProgramImage& image, const RegisterSet& registers,
                                  const ProgramMemory& memory) {
    const std::uint64_t framePointer = registers.general[kBp];
    if (const auto caller = ReturnAddressWithoutFrame(registers, memory.read))
        return WalkFrames(registers, memory.read, FrameLink{.address = *caller, .framePointer = framePointer});
    std::vector<FrameLink> chain = WalkFrames(registers, memory.read);
    if (HasLine(image, registers.ip)) return chain;
    const auto nearest = ReturnToLine(image, registers, memory);
    if (!nearest || std::ranges::find(chain, nearest->value, &FrameLink::address) != chain.end()) return chain;
    // A library may use the frame pointer for something else. Above the return address it can be that of the program.
    const bool above = framePointer > registers.general[kSp] + nearest->offset;
    return WalkFrames(registers, memory.read,
                      FrameLink{.address = nearest->value, .framePointer = above ? framePointer : 0});
}

}  // namespace

std::vector<DebugFrame> FramesWithLines(const ProgramImage& image, const RegisterSet& registers,
                                        const ProgramMemory& memory) {
    std::vector<DebugFrame> frames;
    for (const FrameLink& link : FrameLinks(image, registers, memory)) {
        // A caller's address is that after its call, where the next line may begin already.
        const std::uint64_t inLine = frames.empty() ? link.address : link.address - 1;
        const SourcePlace place = PlaceInImage(*image.map, image.size, inLine);
        frames.push_back({.address = link.address, .framePointer = link.framePointer});
        if (place.line == 0) continue;
        frames.back().line = place.line;
        frames.back().fileId = place.fileId;
    }
    return frames;
}

std::optional<std::uint64_t> AddressInProgram(const ProgramImage& image, const RegisterSet& registers,
                                              const ProgramMemory& memory) {
    if (HasLine(image, registers.ip)) return registers.ip;
    const auto nearest = ReturnToLine(image, registers, memory);
    return nearest ? std::optional(nearest->value) : std::nullopt;
}
