// The line map of a program: which address belongs to which source line. Built by the loaders (line_map.h), asked by
// the session. Pure; an RVA is an address relative to the image base.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

struct SdbgLine {
    std::uint32_t fileId = 0;  // 1 in maps of a single file
    std::uint32_t line = 0;    // of the source, from 1
    std::uint32_t rva = 0;
};

struct SdbgFile {
    std::uint32_t fileId = 0;
    char* path = nullptr;  // heap text as the producer wrote it, may be absent
};

// Plain data: all zero is the empty map. Arrays and paths are owned (malloc); SdbgFree gives them back.
struct SdbgMap {
    SdbgLine* lines = nullptr;  // as the producer wrote them: ascending RVA
    std::int32_t lineCount = 0;
    SdbgFile* files = nullptr;  // empty for version-1 sections and ".pbd" maps
    std::int32_t fileCount = 0;
    std::uint64_t imageBase = 0;        // preferred; the session puts the real load address here
    std::uint32_t textRva = 0;          // of ".text"; 0x1000 when there is none
    std::uint32_t textSize = 0;         // 0: lookups are not limited to a range
    std::uint32_t nativeTrapMap = 0;    // from a ".pbd": the program carries its own trap bytes
    std::uint32_t neutralizeTraps = 0;  // asks the session to overwrite those; every loader leaves it 0
    // Made by SdbgIndex; null: lookups by line scan.
    std::uint32_t* byLine = nullptr;  // indexes into `lines` in the order of (line, index)
    std::uint32_t ascending = 0;      // no RVA is below its predecessor's
};

// --- Building
// What the bytes of a ".sdbg" section say: fills lines and files of an empty map. False, and the map still empty: no known
// magic, no record, too short, or no memory. A bad file table only ends the table.
bool SdbgParseSection(std::span<const std::uint8_t> section, SdbgMap* map);
// Makes the index over `lines`; again after lines were changed. Without memory the map works, only slower.
void SdbgIndex(SdbgMap* map);
// Frees lines, paths, files and index and zeroes those fields.
void SdbgFree(SdbgMap* map);

// --- Queries; all answer 0 (or null, or -1) for what they do not find.
std::uint32_t SdbgRvaToLine(const SdbgMap* map, std::uint32_t rva);
std::uint32_t SdbgRvaToFileId(const SdbgMap* map, std::uint32_t rva);
const char* SdbgFileIdToPath(const SdbgMap* map, std::uint32_t fileId);
// The first record in map order with that line, of whatever file: in a map of several files the first one wins.
std::uint32_t SdbgLineToRva(const SdbgMap* map, std::int32_t line);
// The first record in map order with that file and line.
std::uint32_t SdbgFileLineToRva(const SdbgMap* map, std::uint32_t fileId, std::int32_t line);
// Index of the last record at or below the RVA, regardless of the text range, or -1.
std::int32_t SdbgFindRecord(const SdbgMap* map, std::uint32_t rva);
// Where a step over ends: index of the record with the lowest RVA above `rva` among those that have a line and are not
// of the same line and file, or -1. By address, not by the flow of control. Of equal RVAs the first in map order.
std::int32_t SdbgNextStop(const SdbgMap* map, std::uint32_t rva, std::uint32_t line, std::uint32_t fileId);
