// Lookups in a line map, and the index that makes lookups by line fast. Records in another order than by address give
// the same answers as plain searches. Pure.
#include "program/sdbg_map.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace {

std::span<const SdbgLine> Lines(const SdbgMap* map) {
    if (map->lines == nullptr || map->lineCount <= 0) return {};
    return {map->lines, static_cast<std::size_t>(map->lineCount)};
}

bool InTextRange(const SdbgMap* map, std::uint32_t rva) {
    return map->textSize == 0 || (rva >= map->textRva && rva - map->textRva < map->textSize);
}

const SdbgLine* RecordAt(const SdbgMap* map, std::uint32_t rva) {
    const std::int32_t found = InTextRange(map, rva) ? SdbgFindRecord(map, rva) : -1;
    return found < 0 ? nullptr : &map->lines[found];
}

// Returns the first record in map order that has this line and for which `fits` is true, or null.
template <typename Fits>
const SdbgLine* FirstOfLine(const SdbgMap* map, std::int32_t signedLine, Fits fits) {
    if (signedLine < 1) return nullptr;
    const auto line = static_cast<std::uint32_t>(signedLine);
    const std::span<const SdbgLine> lines = Lines(map);
    if (map->byLine == nullptr) {
        const auto found = std::find_if(lines.begin(), lines.end(),
                                        [&](const SdbgLine& record) { return record.line == line && fits(record); });
        return found == lines.end() ? nullptr : &*found;
    }
    const std::uint32_t* const begin = map->byLine;
    const std::uint32_t* const end = begin + lines.size();
    const std::uint32_t* at = std::lower_bound(
        begin, end, line, [&](std::uint32_t index, std::uint32_t wanted) { return lines[index].line < wanted; });
    for (; at != end && lines[*at].line == line; ++at)
        if (fits(lines[*at])) return &lines[*at];
    return nullptr;
}

}  // namespace

void SdbgIndex(SdbgMap* map) {
    std::free(map->byLine);
    map->byLine = nullptr;
    const std::span<const SdbgLine> lines = Lines(map);
    map->ascending =
        std::is_sorted(lines.begin(), lines.end(), [](const SdbgLine& a, const SdbgLine& b) { return a.rva < b.rva; });
    if (lines.empty()) return;
    map->byLine = static_cast<std::uint32_t*>(std::malloc(lines.size() * sizeof(std::uint32_t)));
    if (map->byLine == nullptr) return;
    std::iota(map->byLine, map->byLine + lines.size(), 0U);
    std::sort(map->byLine, map->byLine + lines.size(), [&](std::uint32_t a, std::uint32_t b) {
        return lines[a].line != lines[b].line ? lines[a].line < lines[b].line : a < b;
    });
}

void SdbgFree(SdbgMap* map) {
    for (std::int32_t i = 0; map->files != nullptr && i < map->fileCount; ++i) std::free(map->files[i].path);
    std::free(map->files);
    std::free(map->lines);
    std::free(map->byLine);
    map->lines = nullptr;
    map->lineCount = 0;
    map->files = nullptr;
    map->fileCount = 0;
    map->byLine = nullptr;
    map->ascending = 0;
}

bool SdbgCoversLine(const SdbgMap* map, std::int32_t line) {
    if (map->nativeTrapMap == 0 || map->lineCount < 1) return true;
    const auto wanted = static_cast<std::uint32_t>(line);
    return line > 0 && wanted >= map->lines[0].line && wanted <= map->lines[map->lineCount - 1].line;
}

std::int32_t SdbgFindRecord(const SdbgMap* map, std::uint32_t rva) {
    std::int32_t found = -1;
    std::int32_t low = 0;
    std::int32_t high = static_cast<std::int32_t>(Lines(map).size()) - 1;
    while (low <= high) {
        const std::int32_t middle = (low + high) / 2;  // no overflow: a section holds fewer than 2^30 records
        if (map->lines[middle].rva <= rva) {
            found = middle;
            low = middle + 1;
        } else {
            high = middle - 1;
        }
    }
    return found;
}

std::uint32_t SdbgRvaToLine(const SdbgMap* map, std::uint32_t rva) {
    const SdbgLine* const record = RecordAt(map, rva);
    return record == nullptr ? 0 : record->line;
}

std::uint32_t SdbgRvaToFileId(const SdbgMap* map, std::uint32_t rva) {
    const SdbgLine* const record = RecordAt(map, rva);
    return record == nullptr ? 0 : record->fileId;
}

const char* SdbgFileIdToPath(const SdbgMap* map, std::uint32_t fileId) {
    if (fileId == 0) return nullptr;
    for (std::int32_t i = 0; map->files != nullptr && i < map->fileCount; ++i)
        if (map->files[i].fileId == fileId) return map->files[i].path;
    return nullptr;
}

std::uint32_t SdbgLineToRva(const SdbgMap* map, std::int32_t line) {
    const SdbgLine* const record = FirstOfLine(map, line, [](const SdbgLine&) { return true; });
    return record == nullptr ? 0 : record->rva;
}

std::uint32_t SdbgFileLineToRva(const SdbgMap* map, std::uint32_t fileId, std::int32_t line) {
    const SdbgLine* const record =
        FirstOfLine(map, line, [fileId](const SdbgLine& one) { return one.fileId == fileId; });
    return record == nullptr ? 0 : record->rva;
}

std::int32_t SdbgNextStop(const SdbgMap* map, std::uint32_t rva, std::uint32_t line, std::uint32_t fileId) {
    const std::span<const SdbgLine> lines = Lines(map);
    const auto stops = [&](const SdbgLine& record) {
        return record.line != 0 && record.rva > rva && !(record.line == line && record.fileId == fileId);
    };
    // When the addresses ascend, the search begins after the RVA, and the first hit has the lowest address.
    std::size_t at = map->ascending != 0 ? static_cast<std::size_t>(SdbgFindRecord(map, rva) + 1) : 0;
    std::int32_t found = -1;
    for (; at < lines.size(); ++at) {
        if (!stops(lines[at]) || (found >= 0 && lines[at].rva >= lines[static_cast<std::size_t>(found)].rva)) continue;
        found = static_cast<std::int32_t>(at);
        if (map->ascending != 0) break;
    }
    return found;
}
