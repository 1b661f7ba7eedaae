// Makes the line map of a program that contains trap bytes, from its side file (".pbd"), its code and its source. Pure;
// any bytes are legal input. For 32-bit programs: the side file is searched for 32-bit absolute addresses.
#pragma once

#include "program/pe_headers.h"
#include "program/sdbg_map.h"

#include <cstdint>
#include <span>
#include <string_view>

bool PbdContainsPbmain(std::span<const std::uint8_t> sideFile);
std::uint32_t PbdFindPbmainStartRva(std::span<const std::uint8_t> sideFile, const TextSectionInfo& text);
// Writes the RVA of the first byte of each run of CC from `startRva` on. Returns their number, at most `capacity`.
int CollectNativeTrapRvas(std::span<const std::uint8_t> program, const TextSectionInfo& text, std::uint32_t startRva,
                          std::uint32_t* out, int capacity);

struct PbdParts {  // for the log
    int lineCount = 0;
    int trapCount = 0;
    std::uint32_t startRva = 0;
};
// Pairs statements and traps by their order. Returns false, with an empty map, when there is nothing to pair, no usable
// ".text" or no PBMAIN.
bool PbdBuildMap(std::span<const std::uint8_t> program, std::span<const std::uint8_t> sideFile, std::string_view source,
                 SdbgMap* map, PbdParts* parts);
