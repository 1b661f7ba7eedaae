// Pairs the statements of a source with the trap bytes of its program. Each step reads its bytes once, even when a
// hostile side file contains PBMAIN very often. Pure.
#include "program/pbd_map.h"

#include "base/le_bytes.h"
#include "program/basic_lines.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

constexpr std::string_view kRoutine = "PBMAIN";
constexpr std::size_t kReach = 4096;     // the address is looked for in so many bytes before and after the name
constexpr std::uint64_t kPrologue = 64;  // no BASIC procedure begins in the first bytes of the section
constexpr std::uint8_t kTrap = 0xCC;

// The addresses that may be code of the program: low + kPrologue < v < high.
struct CodeRange {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
};

std::uint32_t SizeInMemory(const TextSectionInfo& text) {
    return text.virtualSize != 0 ? text.virtualSize : text.rawSize;
}

constexpr std::uint64_t kNoCandidate = std::numeric_limits<std::uint64_t>::max();

// Returns the smallest 32-bit value in the code range, of the values at offset `from` and after it that end at or
// before `end`.
std::uint64_t SmallestCandidate(std::span<const std::uint8_t> bytes, std::size_t from, std::size_t end,
                                const CodeRange& code) {
    std::uint64_t smallest = kNoCandidate;
    for (std::size_t at = from; at + 4 <= end; ++at) {
        const std::uint64_t value = ReadLe32(bytes.data() + at);
        if (code.low + kPrologue < value && value < code.high) smallest = std::min(smallest, value);
    }
    return smallest;
}

std::string_view AsText(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Returns the candidate near the first name that has one. Each offset is read once: later windows begin and end no
// earlier than earlier ones, and the offsets already read had no candidate.
std::uint64_t CandidateNearName(std::span<const std::uint8_t> sideFile, const CodeRange& code) {
    const std::string_view text = AsText(sideFile);
    std::size_t seen = 0;  // first offset not yet read
    for (std::size_t at = text.find(kRoutine); at != std::string_view::npos; at = text.find(kRoutine, at + 1)) {
        const std::size_t from = std::max(at, kReach) - kReach;
        const std::size_t end = std::min(at + kReach, sideFile.size() - 4);
        const std::uint64_t value = SmallestCandidate(sideFile, std::max(from, seen), end, code);
        if (value != kNoCandidate) return value;
        seen = std::max(seen, end < 3 ? 0 : end - 3);
    }
    return kNoCandidate;
}

SdbgLine* PairLines(const std::uint32_t* lines, const std::uint32_t* traps, std::size_t count) {
    auto* const pairs = static_cast<SdbgLine*>(std::calloc(count, sizeof(SdbgLine)));
    for (std::size_t i = 0; pairs != nullptr && i < count; ++i) pairs[i] = {1, lines[i], traps[i]};
    return pairs;
}

}  // namespace

bool PbdContainsPbmain(std::span<const std::uint8_t> sideFile) {
    return sideFile.size() > kRoutine.size() && AsText(sideFile).find(kRoutine) != std::string_view::npos;
}

std::uint32_t PbdFindPbmainStartRva(std::span<const std::uint8_t> sideFile, const TextSectionInfo& text) {
    // With an image base above 4 GB no 32-bit value is an address. The check also keeps the sums below from
    // overflowing.
    if (text.imageBase > std::numeric_limits<std::uint32_t>::max()) return text.virtualAddress;
    const std::uint64_t low = text.imageBase + text.virtualAddress;
    const CodeRange code = {low, low + SizeInMemory(text)};
    std::uint64_t start = CandidateNearName(sideFile, code);
    if (start == kNoCandidate) start = SmallestCandidate(sideFile, 0, sideFile.size(), code);
    return start == kNoCandidate ? text.virtualAddress : static_cast<std::uint32_t>(start - text.imageBase);
}

int CollectNativeTrapRvas(std::span<const std::uint8_t> program, const TextSectionInfo& text, std::uint32_t startRva,
                          std::uint32_t* out, int capacity) {
    if (text.rawOffset >= program.size()) return 0;
    program = program.subspan(text.rawOffset);
    program = program.first(std::min<std::size_t>(program.size(), text.rawSize));
    std::size_t at = startRva > text.virtualAddress ? startRva - text.virtualAddress : 0;
    if (at >= program.size()) at = 0;
    int count = 0;
    while (count < capacity && at < program.size()) {
        const void* const found = std::memchr(program.data() + at, kTrap, program.size() - at);
        if (found == nullptr) break;
        at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - program.data());
        out[count++] = text.virtualAddress + static_cast<std::uint32_t>(at);
        while (at < program.size() && program[at] == kTrap) ++at;
    }
    return count;
}

bool PbdBuildMap(std::span<const std::uint8_t> program, std::span<const std::uint8_t> sideFile, std::string_view source,
                 SdbgMap* map, PbdParts* parts) {
    TextSectionInfo text;
    if (!GetTextSectionInfo(program.data(), program.size(), &text) || !PbdContainsPbmain(sideFile)) return false;
    std::array<std::uint32_t, kMaxPbmainLines> lines;
    std::array<std::uint32_t, kMaxPbmainLines> traps;
    parts->startRva = PbdFindPbmainStartRva(sideFile, text);
    parts->lineCount = CollectPbmainLines(source, lines.data(), kMaxPbmainLines);
    parts->trapCount = CollectNativeTrapRvas(program, text, parts->startRva, traps.data(), kMaxPbmainLines);
    const int count = std::min(parts->lineCount, parts->trapCount);
    if (count < 1) return false;
    map->lines = PairLines(lines.data(), traps.data(), static_cast<std::size_t>(count));
    if (map->lines == nullptr) return false;
    map->lineCount = count;
    map->imageBase = text.imageBase;
    map->textRva = text.virtualAddress;
    map->textSize = SizeInMemory(text);
    map->nativeTrapMap = 1;
    return true;
}
