// Walking a stack. Must not know a process.
#include "debugger/stack_walk.h"

#include "base/hex_text.h"
#include "base/texts.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>

namespace {

std::size_t WordBytes(bool x64) { return x64 ? sizeof(std::uint64_t) : sizeof(std::uint32_t); }

// Reads the caller's frame pointer and the return address, which stand at `framePointer`.
std::optional<FrameLink> CallerOf(std::uint64_t framePointer, std::size_t wordBytes, const MemoryReader& read) {
    FrameLink caller;
    if (!read(framePointer, &caller.framePointer, wordBytes)) return std::nullopt;
    if (!read(framePointer + wordBytes, &caller.address, wordBytes) || caller.address == 0) return std::nullopt;
    return caller;
}

// The code around the instruction pointer. Bytes that cannot be read are 0.
struct CodeAround {
    std::array<std::uint8_t, 8> at{};
    std::uint8_t before = 0;  // the byte before the instruction pointer
};

CodeAround ReadCode(std::uint64_t ip, const MemoryReader& read) {
    CodeAround code;
    for (std::size_t count = code.at.size(); count > 0 && !read(ip, code.at.data(), count); --count) continue;
    read(ip - 1, &code.before, 1);
    return code;
}

bool BeginsWithBytes(std::span<const std::uint8_t> bytes, std::initializer_list<std::uint8_t> wanted) {
    return bytes.size() >= wanted.size() && std::equal(wanted.begin(), wanted.end(), bytes.begin());
}

// True when a direct call ends at `address` and leads to `ip`, if need be by one jump.
bool CallLeadsTo(std::uint64_t address, std::uint64_t ip, const MemoryReader& read) {
    constexpr std::uint8_t kCall = 0xE8, kJump = 0xE9;
    constexpr std::uint64_t kLength = 5;
    const auto targetOf = [&](std::uint64_t at, std::uint8_t opcode, std::uint64_t* target) {
        std::array<std::uint8_t, kLength> bytes = {};
        std::int32_t distance = 0;
        if (!read(at, bytes.data(), bytes.size()) || bytes[0] != opcode) return false;
        std::memcpy(&distance, &bytes[1], sizeof(distance));
        *target = at + kLength + static_cast<std::uint64_t>(static_cast<std::int64_t>(distance));
        return true;
    };
    std::uint64_t target = 0;
    if (!targetOf(address - kLength, kCall, &target)) return false;
    return target == ip || (targetOf(target, kJump, &target) && target == ip);
}

// How many words above the stack pointer the return address is, by the instruction that comes next.
std::optional<std::size_t> WordsToReturnAddress(const CodeAround& code, bool x64) {
    constexpr std::uint8_t kPushBp = 0x55, kEnter = 0xC8, kRet = 0xC3, kRetAndPop = 0xC2;
    std::span<const std::uint8_t> at = code.at;
    if (BeginsWithBytes(at, {0xF3, 0x0F, 0x1E})) at = at.subspan(4);  // ENDBR, which marks an entry
    for (const std::uint8_t opcode : {kPushBp, kEnter, kRet, kRetAndPop})
        if (at[0] == opcode) return 0;
    if (code.before != kPushBp) return std::nullopt;
    if (x64 && at[0] == 0x48) at = at.subspan(1);
    const bool setsFrame = BeginsWithBytes(at, {0x89, 0xE5}) || BeginsWithBytes(at, {0x8B, 0xEC});  // MOV BP, SP
    return setsFrame ? std::optional<std::size_t>(1) : std::nullopt;
}

}  // namespace

std::optional<std::uint64_t> ReturnAddressWithoutFrame(const RegisterSet& registers, const MemoryReader& read) {
    const std::optional<std::size_t> known = WordsToReturnAddress(ReadCode(registers.ip, read), registers.x64);
    const std::size_t width = WordBytes(registers.x64);
    std::uint64_t address = 0;
    std::array<std::uint8_t, kLongestCall> before = {};
    if (!read(registers.general[kSp] + known.value_or(0) * width, &address, width)) return std::nullopt;
    if (address < kLongestCall || !read(address - kLongestCall, before.data(), before.size())) return std::nullopt;
    // At any other instruction the word may be anything, so only a call of this very place counts.
    const bool returns = known ? EndsWithCall(before) : CallLeadsTo(address, registers.ip, read);
    return returns ? std::optional(address) : std::nullopt;
}

std::vector<FrameLink> WalkFrames(const RegisterSet& registers, const MemoryReader& read,
                                  std::optional<FrameLink> second) {
    std::vector<FrameLink> frames = {{.address = registers.ip, .framePointer = registers.general[kBp]}};
    if (second) frames.push_back(*second);
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
    std::wstring text = Text(L"Call Stack:\r\n");
    FrameLink frame = {.address = rip, .framePointer = rbp};
    for (std::size_t i = 0; i < kMostFrames; ++i) {
        const auto rva = static_cast<std::uint32_t>(frame.address - static_cast<std::uint32_t>(map.imageBase));
        const std::uint32_t line = SdbgRvaToLine(&map, rva);
        text += L"  #" + std::to_wstring(i) + L"  0x" + HexText(frame.address, 1);
        text += line != 0 ? TextWith(L"  line {1}\r\n", {std::to_wstring(line)}) : Text(L"  (no source info)\r\n");
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

std::optional<StackWord> FindReturnAddress(std::span<const std::uint8_t> stack, std::size_t wordBytes,
                                           const std::function<bool(std::uint64_t)>& isReturnAddress) {
    for (std::size_t at = 0; at + wordBytes <= stack.size(); at += wordBytes) {
        std::uint64_t value = 0;
        std::memcpy(&value, stack.data() + at, wordBytes);
        if (isReturnAddress(value)) return StackWord{.value = value, .offset = at};
    }
    return std::nullopt;
}
