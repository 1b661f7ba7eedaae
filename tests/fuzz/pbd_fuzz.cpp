// Any bytes as side file, code and source of a program with trap bytes. Start, traps and the paired map keep within
// what they are made of.
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

// The start and the traps lie in the code, and each trap is the first byte of a run.
void CheckParts(std::string_view program, std::string_view side, const TextSectionInfo& text) {
    const std::uint32_t start = PbdFindPbmainStartRva(Bytes(side), text);
    const std::uint64_t length = text.virtualSize != 0 ? text.virtualSize : text.rawSize;
    Require(start == text.virtualAddress ||
            (start > text.virtualAddress && start < std::uint64_t{text.virtualAddress} + length));
    std::vector<std::uint32_t> traps(512);
    const int count = CollectNativeTrapRvas(Bytes(program), text, start, traps.data(), 512);
    Require(count >= 0 && count <= 512);
    std::size_t previous = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const std::size_t at = traps[i] - text.virtualAddress;
        Require(at < text.rawSize && text.rawOffset + at < program.size());
        Require(program[text.rawOffset + at] == '\xCC');
        Require(i == 0 || (at > previous && program[text.rawOffset + at - 1] != '\xCC'));
        previous = at;
    }
}

// Statements and traps are paired by their order, as many as both have.
void CheckMap(std::string_view program, std::string_view side, std::string_view source) {
    SdbgMap map = {};
    PbdParts parts;
    const bool built = PbdBuildMap(Bytes(program), Bytes(side), source, &map, &parts);
    Require((map.lines != nullptr) == built && (map.lineCount > 0) == built);
    Require(map.nativeTrapMap == (built ? 1U : 0U) && map.neutralizeTraps == 0);
    std::vector<std::uint32_t> lines(512);
    lines.resize(static_cast<std::size_t>(CollectPbmainLines(source, lines.data(), 512)));
    if (built) Require(map.lineCount == std::min(parts.lineCount, parts.trapCount));
    for (int i = 0; i < map.lineCount; ++i)
        Require(map.lines[i].fileId == 1 && map.lines[i].line == lines[static_cast<std::size_t>(i)]);
    SdbgFree(&map);
}

}  // namespace

// Four bytes set the text section, the next three the lengths of side file and code; the rest are side file, code, source.
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
    CheckParts(code, side, {text.imageBase, 0xFFFFFF80U, text.rawOffset, 0xFFFFFFFFU, 0xFFFFFFFFU});

    const std::string program =
        pe_bytes::Image((data[7] & 8) != 0, text.imageBase, {{".text", text.virtualAddress, std::string{code}}});
    CheckMap(program, side, source);
    CheckMap(rest, side, source);
    return 0;
}
