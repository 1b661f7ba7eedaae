// Walking a stack. Must not know a process.
#include "debugger/stack_walk.h"

#include "base/hex_text.h"

#include <cstring>

namespace {

std::size_t WordBytes(bool x64) { return x64 ? sizeof(std::uint64_t) : sizeof(std::uint32_t); }

// Reads the caller's frame pointer and the return address, which stand at `framePointer`.
std::optional<FrameLink> CallerOf(std::uint64_t framePointer, std::size_t wordBytes, const MemoryReader& read) {
    FrameLink caller;
    if (!read(framePointer, &caller.framePointer, wordBytes)) return std::nullopt;
    if (!read(framePointer + wordBytes, &caller.address, wordBytes) || caller.address == 0) return std::nullopt;
    return caller;
}

}  // namespace

std::vector<FrameLink> WalkFrames(const RegisterSet& registers, const MemoryReader& read) {
    std::vector<FrameLink> frames = {{.address = registers.ip, .framePointer = registers.general[kBp]}};
    while (frames.size() < kMostFrames) {
        std::optional<FrameLink> caller = CallerOf(frames.back().framePointer, WordBytes(registers.x64), read);
        if (!caller) break;
        // Frame pointers ascend from callee to caller. The first one that does not ends the walk.
        if (caller->framePointer <= frames.back().framePointer) caller->framePointer = 0;
        frames.push_back(*caller);
    }
    return frames;
}

std::wstring CallStackText(const SdbgMap& map, std::uint64_t rbp, std::uint64_t rip, const MemoryReader& read) {
    std::wstring text = L"Call Stack:\r\n";
    FrameLink frame = {.address = rip, .framePointer = rbp};
    for (std::size_t i = 0; i < kMostFrames; ++i) {
        const auto rva = static_cast<std::uint32_t>(frame.address - static_cast<std::uint32_t>(map.imageBase));
        const std::uint32_t line = SdbgRvaToLine(&map, rva);
        text += L"  #" + std::to_wstring(i) + L"  0x" + HexText(frame.address, 1);
        text += line != 0 ? L"  line " + std::to_wstring(line) + L"\r\n" : L"  (no source info)\r\n";
        if (i == 0) continue;
        const std::optional<FrameLink> caller = CallerOf(frame.framePointer, sizeof(std::uint64_t), read);
        if (!caller) break;
        frame = *caller;
    }
    return text;
}

bool EndsWithCall(std::span<const std::uint8_t> bytes) {
    constexpr std::uint8_t kCallDirect = 0xE8, kCallIndirect = 0xFF, kOperation = 0x38, kCallOperation = 0x10;
    if (bytes.size() < kLongestCall) return false;
    bytes = bytes.last(kLongestCall);
    if (bytes[kLongestCall - 5] == kCallDirect) return true;
    for (const std::size_t length : {2, 3, 4, 6, 7}) {
        const std::size_t at = kLongestCall - length;
        if (bytes[at] == kCallIndirect && (bytes[at + 1] & kOperation) == kCallOperation) return true;
    }
    return false;
}

std::optional<std::uint64_t> FindReturnAddress(std::span<const std::uint8_t> stack, std::size_t wordBytes,
                                               const std::function<bool(std::uint64_t)>& isReturnAddress) {
    for (std::size_t at = 0; at + wordBytes <= stack.size(); at += wordBytes) {
        std::uint64_t value = 0;
        std::memcpy(&value, stack.data() + at, wordBytes);
        if (isReturnAddress(value)) return value;
    }
    return std::nullopt;
}
