// Parses the ".sdbg" section: magic, count, packed records, and in version 2 a file table. Pure. The bytes may be
// anything; memory is allocated only for records that are present.
#include "base/le_bytes.h"
#include "program/sdbg_map.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kHeaderSize = 8;  // magic and record count
constexpr std::size_t kRecordSize1 = 6;
constexpr std::size_t kRecordSize2 = 12;
constexpr std::uint32_t kMostFiles = 65535;
constexpr std::uint32_t kPathLimit = 32768;  // a path of this length or more is refused
constexpr std::size_t kFileHeaderSize = 8;   // file id and path length

SdbgLine Record1(const std::uint8_t* at) { return {1, ReadLe16(at), ReadLe32(at + 2)}; }
SdbgLine Record2(const std::uint8_t* at) { return {ReadLe32(at), ReadLe32(at + 4), ReadLe32(at + 8)}; }

bool ReadRecords(std::span<const std::uint8_t> section, std::uint32_t count, bool version2, SdbgMap* map) {
    const std::size_t recordSize = version2 ? kRecordSize2 : kRecordSize1;
    map->lines = static_cast<SdbgLine*>(std::calloc(count, sizeof(SdbgLine)));
    if (map->lines == nullptr) return false;
    map->lineCount = static_cast<std::int32_t>(count);
    const std::uint8_t* at = section.data() + kHeaderSize;
    for (std::uint32_t i = 0; i < count; ++i, at += recordSize) map->lines[i] = version2 ? Record2(at) : Record1(at);
    return true;
}

// Returns false only without memory. A faulty table is read up to its fault.
bool ReadFileTable(std::span<const std::uint8_t> rest, SdbgMap* map) {
    if (rest.size() < 4) return true;
    const std::uint32_t count = ReadLe32(rest.data());
    if (count < 1 || count > kMostFiles) return true;
    map->files = static_cast<SdbgFile*>(std::calloc(count, sizeof(SdbgFile)));
    if (map->files == nullptr) return false;
    map->fileCount = static_cast<std::int32_t>(count);
    rest = rest.subspan(4);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (rest.size() < kFileHeaderSize) return true;
        const std::uint32_t id = ReadLe32(rest.data());
        const std::uint32_t length = ReadLe32(rest.data() + 4);
        rest = rest.subspan(kFileHeaderSize);
        if (length >= kPathLimit || length > rest.size()) return true;
        map->files[i].fileId = id;
        if (length == 0) continue;
        map->files[i].path = static_cast<char*>(std::malloc(length + std::size_t{1}));
        if (map->files[i].path == nullptr) return false;
        std::memcpy(map->files[i].path, rest.data(), length);
        map->files[i].path[length] = '\0';
        rest = rest.subspan(length);
    }
    return true;
}

}  // namespace

bool SdbgParseSection(std::span<const std::uint8_t> section, SdbgMap* map) {
    if (section.size() < kHeaderSize) return false;
    const bool version2 = std::memcmp(section.data(), "SDB2", 4) == 0;
    if (!version2 && std::memcmp(section.data(), "SDBG", 4) != 0) return false;
    const std::uint32_t count = ReadLe32(section.data() + 4);
    const std::uint64_t end = kHeaderSize + std::uint64_t{count} * (version2 ? kRecordSize2 : kRecordSize1);
    if (count == 0 || end > section.size()) return false;
    if (ReadRecords(section, count, version2, map) &&
        (!version2 || ReadFileTable(section.subspan(static_cast<std::size_t>(end)), map)))
        return true;
    SdbgFree(map);
    return false;
}
