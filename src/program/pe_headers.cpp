// Reads the headers of an executable from its bytes, which may be anything: every offset is checked. Pure.
#include "program/pe_headers.h"

#include "base/le_bytes.h"

#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t kDosHeaderSize = 64;
constexpr std::size_t kNewHeaderAt = 60;  // offset of the field that holds the signature's offset
// Offsets from the signature:
constexpr std::size_t kSectionCountAt = 6;
constexpr std::size_t kMagicAt = 24;
constexpr std::size_t kMagicEnd = 26;
constexpr std::size_t kImageBase64At = 48;
constexpr std::size_t kImageBase32At = 52;
constexpr std::size_t kSections32At = 248;
constexpr std::size_t kSections64At = 264;

constexpr std::uint32_t kDefaultTextRva = 0x1000;
constexpr std::uint32_t kShortestSdbg = 8;

constexpr std::string_view kTextName = ".text";  // the other bytes of the 8 are ignored
constexpr std::string_view kSdbgName{".sdbg\0\0\0", 8};

bool FindSignedHeader(const std::uint8_t* file, std::size_t size, PeHeader* header) {
    return PeFindHeader({file, file == nullptr ? 0 : size}, header) && header->isSigned;
}

// Finds the first section whose name begins with `name`.
bool FindSection(const std::uint8_t* file, std::size_t size, std::string_view name, PeSectionHeader* found) {
    PeHeader header;
    if (!FindSignedHeader(file, size, &header)) return false;
    std::size_t at = header.at + (header.magic == kMagicPe32 ? kSections32At : kSections64At);
    for (int left = ReadLe16(file + header.at + kSectionCountAt); left > 0; --left, at += kSectionHeaderSize) {
        if (at + kSectionHeaderSize > size) return false;
        const PeSectionHeader section = PeReadSectionHeader(file + at);
        if (!section.name.starts_with(name)) continue;
        *found = section;
        return true;
    }
    return false;
}

}  // namespace

bool PeFindHeader(std::span<const std::uint8_t> file, PeHeader* header) {
    if (file.size() < kDosHeaderSize) return false;
    header->at = ReadLe32(file.data() + kNewHeaderAt);
    if (header->at + kMagicEnd > file.size()) return false;
    const std::uint8_t* const signature = file.data() + header->at;
    header->magic = ReadLe16(signature + kMagicAt);
    header->isSigned = std::memcmp(signature, "PE\0\0", 4) == 0;
    return header->magic == kMagicPe32 || header->magic == kMagicPe64;
}

PeSectionHeader PeReadSectionHeader(const std::uint8_t* at) {
    return {.name = {reinterpret_cast<const char*>(at), 8},
            .virtualSize = ReadLe32(at + 8),
            .virtualAddress = ReadLe32(at + 12),
            .rawSize = ReadLe32(at + 16),
            .rawOffset = ReadLe32(at + 20),
            .flags = ReadLe32(at + 36)};
}

const std::uint8_t* FindSdbgSection(const std::uint8_t* file, std::size_t size, std::uint32_t* virtualSize,
                                    std::uint32_t* virtualAddress, std::uint32_t* rawOffset) {
    PeSectionHeader section;
    if (!FindSection(file, size, kSdbgName, &section)) return nullptr;
    if (section.virtualSize < kShortestSdbg) return nullptr;
    if (std::uint64_t{section.rawOffset} + section.virtualSize > size) return nullptr;
    *virtualSize = section.virtualSize;
    *virtualAddress = section.virtualAddress;
    *rawOffset = section.rawOffset;
    return file + section.rawOffset;
}

bool GetPeImageBase(const std::uint8_t* file, std::size_t size, std::uint64_t* base) {
    PeHeader header;
    // The image base is read even when the signature is wrong.
    if (!PeFindHeader({file, file == nullptr ? 0 : size}, &header)) return false;
    const bool is32 = header.magic == kMagicPe32;
    const std::size_t at = header.at + (is32 ? kImageBase32At : kImageBase64At);
    if (at + (is32 ? 4 : 8) > size) return false;
    *base = is32 ? ReadLe32(file + at) : ReadLe64(file + at);
    return true;
}

std::uint32_t GetTextBaseRva(const std::uint8_t* file, std::size_t size) {
    PeSectionHeader section;
    return FindSection(file, size, kTextName, &section) ? section.virtualAddress : kDefaultTextRva;
}

bool GetTextSectionInfo(const std::uint8_t* file, std::size_t size, TextSectionInfo* out) {
    *out = {};
    PeSectionHeader section;
    std::uint64_t base = 0;
    if (!GetPeImageBase(file, size, &base) || !FindSection(file, size, kTextName, &section)) return false;
    if (section.rawOffset >= size || section.rawSize == 0) return false;
    *out = {base, section.virtualAddress, section.rawOffset, section.rawSize, section.virtualSize};
    return true;
}

std::uint16_t GetPeMagic(const std::uint8_t* file, std::size_t size) {
    PeHeader header;
    return FindSignedHeader(file, size, &header) ? header.magic : std::uint16_t{0};
}

std::uint16_t GetPeSubsystem(const std::uint8_t* file, std::size_t size) {
    constexpr std::size_t kSubsystemAt = 92;  // the same in PE32 and PE32+
    PeHeader header;
    if (!FindSignedHeader(file, size, &header) || header.at + kSubsystemAt + 2 > size) return 0;
    return ReadLe16(file + header.at + kSubsystemAt);
}
