// Any bytes as an executable with a ".sdbg" section: headers, records, file table. Beside the absence of faults: what a
// map answers stays within it and is the same with and without the index.
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

// --- What may be asked of a map, and what must hold of each answer

struct Question {
    std::uint32_t rva, line, file;
};

std::vector<std::uint32_t> Answers(const SdbgMap& map, const std::vector<Question>& questions) {
    std::vector<std::uint32_t> answers;
    for (const auto& [rva, line, file] : questions) {
        const auto signedLine = static_cast<std::int32_t>(line);
        for (const std::uint32_t answer :
             {static_cast<std::uint32_t>(SdbgFindRecord(&map, rva)), SdbgRvaToLine(&map, rva),
              SdbgRvaToFileId(&map, rva), SdbgLineToRva(&map, signedLine), SdbgFileLineToRva(&map, file, signedLine),
              static_cast<std::uint32_t>(SdbgNextStop(&map, rva, line, file))})
            answers.push_back(answer);
    }
    return answers;
}

void CheckAnswers(const SdbgMap& map, const Question& question) {
    const auto& [rva, line, file] = question;
    const int count = map.lineCount;
    const int found = SdbgFindRecord(&map, rva);
    Require(found >= -1 && found < count);
    Require(found < 0 || map.lines[found].rva <= rva);
    if (map.ascending != 0) Require(found + 1 == count || map.lines[found + 1].rva > rva);
    const std::uint32_t there = SdbgRvaToLine(&map, rva);
    Require(there == 0 || (found >= 0 && map.lines[found].line == there));
    const int next = SdbgNextStop(&map, rva, line, file);
    Require(next >= -1 && next < count);
    if (next >= 0) {
        const SdbgLine& stop = map.lines[next];
        Require(stop.line != 0 && stop.rva > rva && (stop.line != line || stop.fileId != file));
    }
    const std::uint32_t start = SdbgFileLineToRva(&map, file, static_cast<std::int32_t>(line));
    Require(start == 0 || std::any_of(map.lines, map.lines + count, [&](const SdbgLine& one) {
                return one.rva == start && one.line == question.line && one.fileId == question.file;
            }));
}

// The index changes no answer: without it they come of plain scans.
void CheckQueries(SdbgMap* map) {
    std::vector<Question> questions;
    const int stride = map->lineCount / 32 + 1;  // all of a short map, a few of a long one
    for (int i = 0; i < map->lineCount; i += stride) {
        const SdbgLine& record = map->lines[i];
        for (std::uint32_t off = 0; off < 3; ++off)
            questions.push_back({record.rva + off - 1, record.line + off / 2, record.fileId});
        questions.push_back({record.rva, record.line, map->lines[map->lineCount - 1 - i].fileId});
    }
    for (const std::uint32_t edge : {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        questions.push_back({edge, edge, edge});
    const std::vector<std::uint32_t> scanned = Answers(*map, questions);
    SdbgIndex(map);
    Require(map->byLine != nullptr && Answers(*map, questions) == scanned);
    for (const Question& question : questions) CheckAnswers(*map, question);
}

void CheckSection(std::span<const std::uint8_t> section, std::uint32_t textRva, std::uint32_t textSize) {
    SdbgMap map = {};
    if (SdbgParseSection(section, &map)) {
        Require(map.lineCount > 0 && 8 + static_cast<std::size_t>(map.lineCount) * 6 <= section.size());
        Require((map.files == nullptr) == (map.fileCount == 0));
        for (int i = 0; i < map.fileCount; ++i) {
            if (map.files[i].path != nullptr) Require(std::strlen(map.files[i].path) <= 32767);
            if (i > 64) continue;
            const char* const path = SdbgFileIdToPath(&map, map.files[i].fileId);
            Require(path == nullptr || map.files[i].fileId != 0);
        }
        map.textRva = textRva;
        map.textSize = textSize;
        CheckQueries(&map);
        SdbgFree(&map);
    }
    Require(map.lines == nullptr && map.lineCount == 0 && map.files == nullptr && map.fileCount == 0);
}

void CheckImage(const std::string& image) {
    const std::vector<std::uint8_t> file(image.begin(), image.end());  // reads behind the last byte are seen
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

// Three bytes: where in the headers (of either kind), with what kind of value, which one.
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

// The first byte says what the rest is: an executable, the section of a sound one, or changes to a sound one's headers.
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
