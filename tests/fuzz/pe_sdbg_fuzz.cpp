// Any bytes as an executable with a ".sdbg" section: headers, records, file table. Every answer of the map is compared
// with that of the simplest search.
#include "program/pe_headers.h"
#include "program/sdbg_map.h"

#include "support/pe_bytes.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

std::uint32_t Number(std::span<const std::uint8_t> bytes, std::size_t at, int size) {
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i) value |= std::uint32_t{bytes[at + static_cast<std::size_t>(i)]} << 8 * i;
    return value;
}

// --- What the records must answer

struct Oracle {
    std::vector<SdbgLine> lines;
    std::uint32_t textRva, textSize;

    // The same binary search as the map's, because on unsorted records a scan would answer differently.
    int Find(std::uint32_t rva) const {
        int low = 0, high = static_cast<int>(lines.size()) - 1, best = -1;
        while (low <= high) {
            const int middle = (low + high) / 2;
            if (lines[static_cast<std::size_t>(middle)].rva > rva)
                high = middle - 1;
            else
                best = middle, low = middle + 1;
        }
        return best;
    }
    int LastAtOrBelow(std::uint32_t rva) const {
        int best = -1;
        for (std::size_t i = 0; i < lines.size(); ++i)
            if (lines[i].rva <= rva) best = static_cast<int>(i);
        return best;
    }
    bool InText(std::uint64_t rva) const {
        return textSize == 0 || (rva >= textRva && rva < std::uint64_t{textRva} + textSize);
    }
    std::uint32_t LineToRva(int line, const std::uint32_t* file) const {
        for (const SdbgLine& one : lines)
            if (line >= 1 && one.line == static_cast<std::uint32_t>(line) && (file == nullptr || one.fileId == *file))
                return one.rva;
        return 0;
    }
    int NextStop(std::uint32_t rva, std::uint32_t line, std::uint32_t file) const {
        int best = -1;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const SdbgLine& one = lines[i];
            if (one.line == 0 || one.rva <= rva || (one.line == line && one.fileId == file)) continue;
            if (best < 0 || one.rva < lines[static_cast<std::size_t>(best)].rva) best = static_cast<int>(i);
        }
        return best;
    }
};

void CheckQuery(const SdbgMap& map, const Oracle& oracle, std::uint32_t rva, std::uint32_t line, std::uint32_t file) {
    const int found = oracle.Find(rva);
    Require(SdbgFindRecord(&map, rva) == found);
    Require(map.ascending == 0 || found == oracle.LastAtOrBelow(rva));
    const bool known = found >= 0 && oracle.InText(rva);
    const SdbgLine record = known ? oracle.lines[static_cast<std::size_t>(found)] : SdbgLine{};
    Require(SdbgRvaToLine(&map, rva) == record.line);
    Require(SdbgRvaToFileId(&map, rva) == record.fileId);
    const auto signedLine = static_cast<std::int32_t>(line);
    Require(SdbgLineToRva(&map, signedLine) == oracle.LineToRva(signedLine, nullptr));
    Require(SdbgFileLineToRva(&map, file, signedLine) == oracle.LineToRva(signedLine, &file));
    Require(SdbgNextStop(&map, rva, line, file) == oracle.NextStop(rva, line, file));
}

void CheckQueries(SdbgMap* map, const Oracle& oracle) {
    const bool ordered = std::is_sorted(oracle.lines.begin(), oracle.lines.end(),
                                        [](const SdbgLine& a, const SdbgLine& b) { return a.rva < b.rva; });
    for (const bool indexed : {false, true}) {
        if (indexed) {
            SdbgIndex(map);
            Require(map->byLine != nullptr && (map->ascending != 0) == ordered);
        }
        // Asks for all records of a short map and for some of a long one, because each question costs a scan.
        const std::size_t stride = oracle.lines.size() / 32 + 1;
        for (std::size_t i = 0; i < oracle.lines.size(); i += stride) {
            const SdbgLine& record = oracle.lines[i];
            for (std::uint32_t off = 0; off < 3; ++off)
                CheckQuery(*map, oracle, record.rva + off - 1, record.line + off / 2, record.fileId);
            CheckQuery(*map, oracle, record.rva, record.line, oracle.lines[oracle.lines.size() - 1 - i].fileId);
        }
        for (const std::uint32_t edge : {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
            CheckQuery(*map, oracle, edge, edge, edge);
    }
}

// --- What the section must become

struct WantedFile {
    std::uint32_t id = 0;
    bool hasPath = false;
    std::string path;
};

std::vector<WantedFile> WantedFiles(std::span<const std::uint8_t> rest) {
    if (rest.size() < 4) return {};
    const std::uint32_t count = Number(rest, 0, 4);
    if (count == 0 || count > 65535) return {};
    std::vector<WantedFile> files(count);
    std::size_t at = 4;
    for (WantedFile& file : files) {
        if (rest.size() - at < 8) break;
        const std::uint32_t length = Number(rest, at + 4, 4);
        if (length > 32767 || rest.size() - at - 8 < length) break;
        file = {Number(rest, at, 4), length > 0, {}};
        file.path.assign(reinterpret_cast<const char*>(rest.data()) + at + 8, length);
        at += 8 + length;
    }
    return files;
}

void CheckFiles(const SdbgMap& map, const std::vector<WantedFile>& files) {
    Require(static_cast<std::size_t>(map.fileCount) == files.size());
    Require((map.files == nullptr) == files.empty());
    for (std::size_t i = 0; i < files.size(); ++i) {
        Require(map.files[i].fileId == files[i].id);
        Require((map.files[i].path != nullptr) == files[i].hasPath);
        Require(!files[i].hasPath ||
                std::memcmp(map.files[i].path, files[i].path.c_str(), files[i].path.size() + 1) == 0);
        if (i > 64) continue;
        const auto first = std::find_if(files.begin(), files.end(), [&](const auto& f) { return f.id == files[i].id; });
        const char* const path = SdbgFileIdToPath(&map, files[i].id);
        Require(path == (files[i].id == 0 ? nullptr : map.files[first - files.begin()].path));
    }
}

void CheckSection(std::span<const std::uint8_t> section, std::uint32_t textRva, std::uint32_t textSize) {
    SdbgMap map = {};
    const bool built = SdbgParseSection(section, &map);
    const std::size_t recordSize = section.size() < 8                            ? 0
                                   : std::memcmp(section.data(), "SDBG", 4) == 0 ? 6
                                   : std::memcmp(section.data(), "SDB2", 4) == 0 ? 12
                                                                                 : 0;
    const std::uint64_t count = recordSize == 0 ? 0 : Number(section, 4, 4);
    Require(built == (count > 0 && 8 + count * recordSize <= section.size()));
    if (!built) {
        Require(map.lines == nullptr && map.lineCount == 0 && map.files == nullptr && map.fileCount == 0);
        return;
    }
    Oracle oracle = {{}, textRva, textSize};
    for (std::size_t at = 8; oracle.lines.size() < count; at += recordSize)
        if (recordSize == 6)
            oracle.lines.push_back({1, Number(section, at, 2), Number(section, at + 2, 4)});
        else
            oracle.lines.push_back({Number(section, at, 4), Number(section, at + 4, 4), Number(section, at + 8, 4)});
    Require(static_cast<std::uint64_t>(map.lineCount) == count);
    Require(std::memcmp(map.lines, oracle.lines.data(), count * sizeof(SdbgLine)) == 0);
    CheckFiles(map, recordSize == 6 ? std::vector<WantedFile>{}
                                    : WantedFiles(section.subspan(8 + static_cast<std::size_t>(count) * 12)));
    map.textRva = textRva;
    map.textSize = textSize;
    CheckQueries(&map, oracle);
    SdbgFree(&map);
    Require(map.lines == nullptr && map.lineCount == 0 && map.files == nullptr && map.byLine == nullptr);
}

void CheckImage(const std::string& image) {
    const std::vector<std::uint8_t> file(image.begin(),
                                         image.end());  // exact, so that the sanitizer sees a read after the last byte
    const std::uint8_t* const bytes = file.data();
    std::uint64_t base = 0;
    const bool hasBase = GetPeImageBase(bytes, file.size(), &base);
    const std::uint16_t magic = GetPeMagic(bytes, file.size());
    const std::uint32_t textRva = GetTextBaseRva(bytes, file.size());
    TextSectionInfo text;
    if (GetTextSectionInfo(bytes, file.size(), &text)) {
        Require(hasBase && text.imageBase == base && text.virtualAddress == textRva);
        Require(magic != 0 && text.rawOffset < file.size() && text.rawSize > 0);
    }
    std::uint32_t length = 0, rva = 0, offset = 0;
    const std::uint8_t* const section = FindSdbgSection(bytes, file.size(), &length, &rva, &offset);
    if (section == nullptr) return;
    Require(magic != 0 && length >= 8 && section == bytes + offset);
    Require(std::uint64_t{offset} + length <= file.size());
    CheckSection({section, length}, textRva, 0);
}

// Changes a header (of either kind). Three bytes say where, with what kind of value, and which value.
void Change(std::string* file, const char* order) {
    const auto where = static_cast<std::uint8_t>(order[0]);
    const auto which = static_cast<std::uint8_t>(order[2]);
    const auto size = static_cast<std::uint32_t>(file->size());
    const std::uint32_t values[] = {0,    1,        7,         8,          0x10B,      0x20B,
                                    size, size - 1, size - 40, 0x7FFFFFFF, 0xFFFFFFFF, 0xFFFFFFF0};
    const std::size_t at = where < 8 ? 60 : pe_bytes::kHeader + 2U * where;
    if (order[1] == 'c') file->resize(std::min<std::size_t>(size, 60 + 2U * which));
    if (at + 4 > file->size()) return;
    if ((order[1] & 1) != 0)
        pe_bytes::Put(file, at, values[which % std::size(values)]);
    else
        (*file)[at + (static_cast<std::uint8_t>(order[1]) >> 1) % 4] = order[2];
}

}  // namespace

// The first byte says what the rest is: an executable, the section of a valid one, or changes to a valid one's headers.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::string rest(data + 1, data + size);
    const bool is64 = (data[0] & 4) != 0;
    switch (data[0] & 3) {
        case 0: CheckImage(rest); break;
        case 1: CheckSection({data + 1, size - 1}, data[0] * 16U, data[0] / 8 * 64U); break;
        case 2:
            CheckImage(pe_bytes::Image(is64, 0x400000, {{".text", 0x1000, "code"}, {".sdbg", 0x2000, rest}}));
            break;
        default: {
            std::string file = pe_bytes::Image(
                is64, 0x400000,
                {{".text", 0x1000, "code"}, {".sdbg", 0x2000, pe_bytes::Sdbg2({{1, 1, 0x1000}, {1, 2, 0x1004}})}});
            for (std::size_t i = 0; i + 3 <= rest.size(); i += 3) Change(&file, &rest[i]);
            CheckImage(file);
        }
    }
    return 0;
}
