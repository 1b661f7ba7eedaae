// The line map of a program: which address belongs to which source line. The loaders (line_map.h) build it, the
// debugger reads it. Pure. An RVA is an address relative to the image base.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

struct SdbgLine {
    std::uint32_t fileId = 0;  // 1 in maps of a single file
    std::uint32_t line = 0;    // line of the source, from 1
    std::uint32_t rva = 0;
};

struct SdbgFile {
    std::uint32_t fileId = 0;
    char* path = nullptr;  // heap text as the compiler wrote it; null when absent
};

// Plain data; all zero is the empty map. The map owns its arrays and paths (malloc); SdbgFree frees them.
struct SdbgMap {
    SdbgLine* lines = nullptr;  // in the order of the file; usually with ascending RVA
    std::int32_t lineCount = 0;
    SdbgFile* files = nullptr;  // null for version-1 sections and ".pbd" maps
    std::int32_t fileCount = 0;
    std::uint64_t imageBase = 0;        // the preferred base; the debugger stores the real load address here
    std::uint32_t textRva = 0;          // RVA of ".text"; 0x1000 when there is none
    std::uint32_t textSize = 0;         // 0: lookups are not limited to a range
    std::uint32_t nativeTrapMap = 0;    // 1 for a ".pbd" map: the program contains its own trap bytes
    std::uint32_t neutralizeTraps = 0;  // 1: the debugger overwrites those bytes; every loader leaves it 0
    // Made by SdbgIndex. When null, lookups scan all lines.
    std::uint32_t* byLine = nullptr;  // indexes into `lines`, sorted by (line, index)
    std::uint32_t ascending = 0;      // 1: no RVA is below the one before it
};

// --- Building
// Reads the bytes of a ".sdbg" section into the lines and files of an empty map. Returns false, and the map stays
// empty, for an unknown magic, no record, too few bytes, or no memory. A bad file table is read up to its fault.
bool SdbgParseSection(std::span<const std::uint8_t> section, SdbgMap* map);
// Makes the index over `lines`. Call it again after lines were changed. Without memory for it the map works, but more
// slowly.
void SdbgIndex(SdbgMap* map);
// Frees lines, paths, files and the index, and zeroes those fields.
void SdbgFree(SdbgMap* map);

// --- Lookups. They return 0 (null, -1) when nothing is found.
std::uint32_t SdbgRvaToLine(const SdbgMap* map, std::uint32_t rva);
std::uint32_t SdbgRvaToFileId(const SdbgMap* map, std::uint32_t rva);
const char* SdbgFileIdToPath(const SdbgMap* map, std::uint32_t fileId);
// The RVA of the first record in map order with that line, whatever its file.
std::uint32_t SdbgLineToRva(const SdbgMap* map, std::int32_t line);
// The RVA of the first record in map order with that file and line.
std::uint32_t SdbgFileLineToRva(const SdbgMap* map, std::uint32_t fileId, std::int32_t line);
// False for a line (from 1) outside the part of the source that the map of a program with traps of its own tells of. Its
// lines are those of PBMAIN, in ascending order.
bool SdbgCoversLine(const SdbgMap* map, std::int32_t line);
// The index of the last record at or below the RVA, or -1. `textSize` is not applied.
std::int32_t SdbgFindRecord(const SdbgMap* map, std::uint32_t rva);
// The record where a step over ends: of the records that have a line and another line or file than the given ones, the
// index of the one with the lowest RVA above `rva`, or -1. Addresses decide, not the flow of control. Of equal RVAs the
// first in map order is returned.
std::int32_t SdbgNextStop(const SdbgMap* map, std::uint32_t rva, std::uint32_t line, std::uint32_t fileId);
