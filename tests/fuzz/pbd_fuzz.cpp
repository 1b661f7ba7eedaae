// Any bytes as side file, code and source of a program with trap bytes. Start, traps and the paired map are compared
// with simple searches.
#include "program/basic_lines.h"
#include "program/pbd_map.h"

#include "support/pe_bytes.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

std::span<const std::uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::uint32_t Number(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value |= std::uint32_t{static_cast<std::uint8_t>(bytes[at + i])} << 8 * i;
    return value;
}

// The smallest address within the code among the values read at each offset from `from` to `end`; 0: none.
std::uint64_t Smallest(std::string_view side, const TextSectionInfo& text, std::size_t from, std::size_t end) {
    const std::uint32_t length = text.virtualSize != 0 ? text.virtualSize : text.rawSize;
    std::uint64_t best = 0;
    for (std::size_t at = from; at + 4 <= end; ++at) {
        const std::uint64_t value = Number(side, at);
        // Compares differences to the base, because a sum could wrap.
        if (value < text.imageBase) continue;
        const std::uint64_t rva = value - text.imageBase;
        if (rva <= std::uint64_t{text.virtualAddress} + 64 || rva >= std::uint64_t{text.virtualAddress} + length)
            continue;
        if (best == 0 || value < best) best = value;
    }
    return best;
}

std::uint32_t WantedStart(std::string_view side, const TextSectionInfo& text) {
    std::uint64_t best = 0;
    for (std::size_t at = 0; side.size() >= 4 && best == 0 && at + 6 <= side.size(); ++at)
        if (side.substr(at, 6) == "PBMAIN")
            best = Smallest(side, text, at > 4096 ? at - 4096 : 0, std::min(at + 4096, side.size() - 4));
    if (best == 0) best = Smallest(side, text, 0, side.size());
    return best == 0 ? text.virtualAddress : static_cast<std::uint32_t>(best - text.imageBase);
}

std::vector<std::uint32_t> WantedTraps(std::string_view program, const TextSectionInfo& text, std::uint32_t start) {
    std::vector<std::uint32_t> traps;
    if (text.rawOffset >= program.size()) return traps;
    const std::string_view code = program.substr(text.rawOffset, text.rawSize);
    std::size_t from = start > text.virtualAddress ? start - text.virtualAddress : 0;
    if (from >= code.size()) from = 0;
    bool before = false;
    for (std::size_t at = from; at < code.size() && traps.size() < 512; ++at) {
        const bool trap = code[at] == '\xCC';
        if (trap && !before) traps.push_back(text.virtualAddress + static_cast<std::uint32_t>(at));
        before = trap;
    }
    return traps;
}

// A side file with names, and with addresses at the limits of their range; three bytes of `orders` say what and where.
std::string Placed(std::string_view orders, std::uint32_t address) {
    std::string side(16400, '\0');
    std::size_t name = 0;
    for (; orders.size() >= 3; orders.remove_prefix(3)) {
        const auto what = static_cast<std::uint8_t>(orders[0]);
        const std::size_t where =
            static_cast<std::uint8_t>(orders[1]) * 48U + static_cast<std::uint8_t>(orders[2]) % 48U;
        const std::size_t edge = (what & 2) != 0 ? name + 4096 : name - std::min<std::size_t>(name, 4096);
        if ((what & 1) != 0)
            side.replace(name = where, 6, "PBMAIN");
        else
            pe_bytes::Put(&side, std::max<std::size_t>(edge + what / 4 % 16, 8) - 8, address + what);
    }
    return side;
}

void CheckParts(std::string_view program, std::string_view side, const TextSectionInfo& text) {
    const std::uint32_t start = PbdFindPbmainStartRva(Bytes(side), text);
    Require(start == WantedStart(side, text));
    std::vector<std::uint32_t> traps(512);
    const int count = CollectNativeTrapRvas(Bytes(program), text, start, traps.data(), 512);
    traps.resize(static_cast<std::size_t>(count));
    Require(traps == WantedTraps(program, text, start));
}

void CheckMap(std::string_view program, std::string_view side, std::string_view source) {
    SdbgMap map = {};
    PbdParts parts;
    const bool built = PbdBuildMap(Bytes(program), Bytes(side), source, &map, &parts);
    TextSectionInfo text;
    const bool usable = GetTextSectionInfo(Bytes(program).data(), program.size(), &text) && side.size() >= 7 &&
                        side.find("PBMAIN") != std::string_view::npos;
    const std::vector<std::uint32_t> traps =
        usable ? WantedTraps(program, text, WantedStart(side, text)) : std::vector<std::uint32_t>{};
    std::vector<std::uint32_t> lines(512);
    lines.resize(static_cast<std::size_t>(CollectPbmainLines(source, lines.data(), 512)));
    const std::size_t count = std::min(traps.size(), lines.size());
    Require(built == (count > 0) && static_cast<std::size_t>(map.lineCount) == count);
    Require((map.lines != nullptr) == built);
    for (std::size_t i = 0; i < count; ++i)
        Require(map.lines[i].fileId == 1 && map.lines[i].line == lines[i] && map.lines[i].rva == traps[i]);
    Require(map.nativeTrapMap == (built ? 1U : 0U) && map.neutralizeTraps == 0);
    SdbgFree(&map);
}

}  // namespace

// Four bytes set the text section, the next three the lengths of side file and code. The rest is side file, code and
// source.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 8) return 0;
    const std::string_view rest{reinterpret_cast<const char*>(data) + 8, size - 8};
    const std::size_t sideLength = std::min<std::size_t>(rest.size(), data[4] + 256U * (data[5] & 63U));
    std::string side{rest.substr(0, sideLength)};
    if ((data[7] & 1) != 0) side.insert(0, data[6] * 20U, 'x');  // beyond the reach of a name
    if ((data[7] & 2) != 0) side += "PBMAIN";
    if ((data[7] & 4) != 0) side.append(data[6] * 20U, '\0');
    const std::string_view code = rest.substr(sideLength, data[6] * 8U);
    const std::string_view source = rest.substr(sideLength + code.size());

    constexpr std::uint64_t kBases[] = {0x400000,           0,          0xFFFFF000, 0x100000000,
                                        0xFFFFFFFFFFFFFF00, 0x30303030, 0x10000000, 1};
    const TextSectionInfo text = {kBases[data[0] & 7], data[1] * 0x1000U + data[2], data[3] / 4U,
                                  data[0] * 4096U | 0xFF, (data[3] & 1) != 0 ? 0 : data[2] * 65536U};
    CheckParts(code, side, text);
    CheckParts(code, Placed(rest, 0x401100), {0x400000, 0x1000, 0, 0x1000, 0});
    CheckParts(code, side, {text.imageBase, 0xFFFFFF80U, text.rawOffset, 0xFFFFFFFFU, 0xFFFFFFFFU});

    const std::string program =
        pe_bytes::Image((data[7] & 8) != 0, text.imageBase, {{".text", text.virtualAddress, std::string{code}}});
    CheckMap(program, side, source);
    CheckMap(rest, side, source);
    return 0;
}
