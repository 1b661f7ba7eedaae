// Places of a stopped program in its source. Must not know a process.
#include "debugger/program_places.h"

#include "debugger/stop_rules.h"
#include "debugger/unwind.h"

#include <algorithm>

namespace {

bool HasLine(const ProgramImage& image, std::uint64_t address) {
    return PlaceInImage(*image.map, image.size, address).line != 0;
}

std::optional<NearestReturn> ReturnToLine(const ProgramImage& image, const RegisterSet& registers,
                                          const ProgramMemory& memory) {
    return NearestReturnToLine(
        registers, memory, [&](std::uint64_t address) { return HasLine(image, address); });
}

// From code without a line: the libraries between it and the program are left out.
std::vector<FrameLink> LinksFromLibrary(const ProgramImage& image, const RegisterSet& registers,
                                        const ProgramMemory& memory) {
    std::vector<FrameLink> chain = WalkFrames(registers, memory.read);
    const auto nearest = ReturnToLine(image, registers, memory);
    if (!nearest) return chain;
    const bool inChain = std::ranges::find(chain, nearest->address, &FrameLink::address) != chain.end();
    if (inChain && !nearest->framePointer) return chain;
    // A library may use the frame pointer for something else. Above the return address it can be that of the program.
    const std::uint64_t framePointer = registers.general[kBp];
    const bool above = framePointer > registers.general[kSp] + nearest->offset;
    return WalkFrames(registers, memory.read,
                      FrameLink{.address = nearest->address,
                                .framePointer = nearest->framePointer.value_or(above ? framePointer : 0)});
}

std::vector<FrameLink> FrameLinks(const ProgramImage& image, const RegisterSet& registers,
                                  const ProgramMemory& memory) {
    if (!HasLine(image, registers.ip)) return LinksFromLibrary(image, registers, memory);
    const auto caller = ReturnAddressWithoutFrame(registers, memory.read);
    if (!caller) return WalkFrames(registers, memory.read);
    return WalkFrames(registers, memory.read, FrameLink{.address = *caller, .framePointer = registers.general[kBp]});
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
    return nearest ? std::optional(nearest->address) : std::nullopt;
}

RegisterSet RegistersOfFrame(const RegisterSet& innermost, std::span<const DebugFrame> frames, std::size_t index,
                             const MemoryReader& read) {
    RegisterSet registers = innermost;
    if (index == 0 || index >= frames.size()) {
        if (ReturnAddressWithoutFrame(innermost, read)) registers.frame = FrameState::Coming;
        return registers;
    }
    registers.frame = FrameState::OfCaller;
    registers.general = {};
    registers.general[kBp] = frames[index].framePointer;
    registers.ip = frames[index].address;
    // The call has pushed its return address, and the procedure then the frame pointer that it links to. The second
    // frame may have been found without such a link.
    const std::uint64_t callee = frames[index - 1].framePointer;
    const std::uint64_t words = innermost.x64 ? 2 * sizeof(std::uint64_t) : 2 * sizeof(std::uint32_t);
    if (callee != 0 && callee != registers.general[kBp]) registers.general[kSp] = callee + words;
    return registers;
}
