// The image has a fixed base, no relocations, 16 data directories (readers of line maps require that), and the sections
// .text, .data and, when there is a line map, .sdbg with its exact length as VirtualSize.
#include "pe_writer.h"

#include <algorithm>

namespace standin {
namespace {

constexpr uint32_t kFileAlign = 0x200;
constexpr uint32_t kSectionAlign = 0x1000;
constexpr uint64_t kImageBase64 = 0x140000000;
constexpr uint32_t kHeaderOffset = 0x80;
constexpr uint32_t kHeadersSize = 0x400;

uint32_t AlignUp(uint32_t value, uint32_t to) { return (value + to - 1) / to * to; }

struct Section {
    std::string_view name;
    const std::vector<uint8_t>* bytes;
    uint32_t virtualSize;
    uint32_t flags;
    uint32_t rva = 0, fileOffset = 0;
};

void Put(std::string& out, uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out += i < 8 ? static_cast<char>(value >> (8 * i)) : '\0';
}

void Patch(std::vector<uint8_t>& bytes, size_t at, uint32_t add) {
    uint32_t value = 0;
    for (size_t i = 4; i-- > 0;) value = value << 8 | bytes[at + i];
    value += add;
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

void PutHeaders(std::string& out, const Image& image, const std::vector<Section>& sections) {
    const Section& data = sections[1];
    const int word = image.x64 ? 8 : 4;
    out += "MZ";
    out.resize(0x3C, '\0');
    Put(out, kHeaderOffset, 4);
    out.resize(kHeaderOffset, '\0');
    out += std::string_view("PE\0\0", 4);
    Put(out, image.x64 ? 0x8664 : 0x14C, 2);
    Put(out, sections.size(), 2);
    Put(out, 0, 12);                           // time stamp (none: equal sources give equal files), symbols
    Put(out, image.x64 ? 240 : 224, 2);        // size of the optional header
    Put(out, image.x64 ? 0x0023 : 0x0103, 2);  // executable, no relocations; large addresses or 32 bit
    Put(out, image.x64 ? 0x20B : 0x10B, 2);
    Put(out, 1, 2);  // linker version
    Put(out, AlignUp(static_cast<uint32_t>(image.text.size()), kFileAlign), 4);
    Put(out, AlignUp(static_cast<uint32_t>(image.data.size()), kFileAlign), 4);
    Put(out, 0, 4);
    Put(out, kTextRva, 4);  // the entry point is the first byte of code
    Put(out, kTextRva, 4);
    if (!image.x64) Put(out, data.rva, 4);
    Put(out, image.x64 ? kImageBase64 : kImageBase32, word);
    Put(out, kSectionAlign, 4);
    Put(out, kFileAlign, 4);
    Put(out, 6, 4);  // operating system 6.0
    Put(out, 0, 4);
    Put(out, 6, 4);  // subsystem 6.0
    Put(out, 0, 4);
    Put(out, AlignUp(sections.back().rva + sections.back().virtualSize, kSectionAlign), 4);
    Put(out, kHeadersSize, 4);
    Put(out, 0, 4);
    Put(out, 3, 2);       // console
    Put(out, 0x8100, 2);  // no-execute data, terminal server aware
    Put(out, kStackReserve, word);
    Put(out, 0x10000, word);
    Put(out, 0x100000, word);
    Put(out, 0x1000, word);
    Put(out, 0, 4);
    Put(out, 16, 4);
    for (int directory = 0; directory < 16; ++directory) {
        const bool imports = directory == 1, table = directory == 12;
        Put(out, imports ? data.rva + image.imports : table ? data.rva + image.addressTable : 0, 4);
        Put(out, imports ? image.importsSize : table ? image.addressTableSize : 0, 4);
    }
}

}  // namespace

std::string LinkImage(Image& image) {
    std::vector<Section> sections = {
        {".text", &image.text, static_cast<uint32_t>(image.text.size()), 0x60000020},
        {".data", &image.data, image.dataSize, 0xC0000040},
    };
    if (!image.sdbg.empty())
        sections.push_back({".sdbg", &image.sdbg, static_cast<uint32_t>(image.sdbg.size()), 0x42000040});
    uint32_t rva = kTextRva, fileOffset = kHeadersSize;
    for (Section& section : sections) {
        section.rva = rva;
        section.fileOffset = fileOffset;
        rva += AlignUp(std::max(section.virtualSize, 1u), kSectionAlign);
        fileOffset += AlignUp(static_cast<uint32_t>(section.bytes->size()), kFileAlign);
    }
    const uint32_t dataRva = sections[1].rva;
    for (const uint32_t at : image.dataRvaFixups) Patch(image.data, at, dataRva);
    const uint32_t next = kTextRva + image.dataBaseAt + 4;  // on x64 relative to the end of the instruction
    Patch(image.text, image.dataBaseAt, image.x64 ? dataRva - next : kImageBase32 + dataRva);

    std::string out;
    PutHeaders(out, image, sections);
    for (const Section& section : sections) {
        out += section.name;
        out.append(8 - section.name.size(), '\0');
        Put(out, section.virtualSize, 4);
        Put(out, section.rva, 4);
        Put(out, AlignUp(static_cast<uint32_t>(section.bytes->size()), kFileAlign), 4);
        Put(out, section.fileOffset, 4);
        Put(out, 0, 12);
        Put(out, section.flags, 4);
    }
    for (const Section& section : sections) {
        out.resize(section.fileOffset, '\0');
        out.append(section.bytes->begin(), section.bytes->end());
    }
    out.resize(AlignUp(static_cast<uint32_t>(out.size()), kFileAlign), '\0');
    return out;
}

}  // namespace standin
