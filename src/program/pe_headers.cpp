// Reads the headers of an executable from its bytes. Checks every offset: the bytes may be anything. Pure.
#include "program/pe_headers.h"

#include "base/le_bytes.h"

#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t kDosHeaderSize = 64;
constexpr std::size_t kNewHeaderAt = 60;  // holds the offset of the signature
// From the signature on:
constexpr std::size_t kSectionCountAt = 6;
constexpr std::size_t kMagicAt = 24;
constexpr std::size_t kMagicEnd = 26;
constexpr std::size_t kImageBase64At = 48;
constexpr std::size_t kImageBase32At = 52;
constexpr std::size_t kSections32At = 248;
constexpr std::size_t kSections64At = 264;

constexpr std::uint16_t kMagicPe32 = 0x10B;
constexpr std::uint16_t kMagicPe64 = 0x20B;

constexpr std::size_t kSectionHeaderSize = 40;
constexpr std::uint32_t kDefaultTextRva = 0x1000;
constexpr std::uint32_t kShortestSdbg = 8;

constexpr std::string_view kTextName = ".text";  // the rest of the 8 bytes may be anything
constexpr std::string_view kSdbgName{".sdbg\0\0\0", 8};

struct PeImage {
    std::size_t header = 0;  // offset of the signature
    std::uint16_t magic = 0;
};

// The two steps are apart because the image base is also read where the signature is not "PE".
bool LocateHeader(const std::uint8_t* file, std::size_t size, PeImage* image) {
    if (file == nullptr || size < kDosHeaderSize) return false;
    image->header = ReadLe32(file + kNewHeaderAt);
    if (image->header + kMagicEnd > size) return false;
    image->magic = ReadLe16(file + image->header + kMagicAt);
    return image->magic == kMagicPe32 || image->magic == kMagicPe64;
}

bool LocateSignedHeader(const std::uint8_t* file, std::size_t size, PeImage* image) {
    return LocateHeader(file, size, image) && std::memcmp(file + image->header, "PE\0\0", 4) == 0;
}

struct SectionHeader {
    std::uint32_t virtualSize, virtualAddress, rawSize, rawOffset;
};

// The first section whose name begins with `name`.
bool FindSection(const std::uint8_t* file, std::size_t size, std::string_view name, SectionHeader* found) {
    PeImage image;
    if (!LocateSignedHeader(file, size, &image)) return false;
    std::size_t at = image.header + (image.magic == kMagicPe32 ? kSections32At : kSections64At);
    for (int left = ReadLe16(file + image.header + kSectionCountAt); left > 0; --left, at += kSectionHeaderSize) {
        if (at + kSectionHeaderSize > size) return false;
        const std::uint8_t* const header = file + at;
        if (std::memcmp(header, name.data(), name.size()) != 0) continue;
        *found = {ReadLe32(header + 8), ReadLe32(header + 12), ReadLe32(header + 16), ReadLe32(header + 20)};
        return true;
    }
    return false;
}

}  // namespace

const std::uint8_t* FindSdbgSection(const std::uint8_t* file, std::size_t size, std::uint32_t* virtualSize,
                                    std::uint32_t* virtualAddress, std::uint32_t* rawOffset) {
    SectionHeader section = {};
    if (!FindSection(file, size, kSdbgName, &section)) return nullptr;
    if (section.virtualSize < kShortestSdbg) return nullptr;
    if (std::uint64_t{section.rawOffset} + section.virtualSize > size) return nullptr;
    *virtualSize = section.virtualSize;
    *virtualAddress = section.virtualAddress;
    *rawOffset = section.rawOffset;
    return file + section.rawOffset;
}

bool GetPeImageBase(const std::uint8_t* file, std::size_t size, std::uint64_t* base) {
    PeImage image;
    if (!LocateHeader(file, size, &image)) return false;
    const bool is32 = image.magic == kMagicPe32;
    const std::size_t at = image.header + (is32 ? kImageBase32At : kImageBase64At);
    if (at + (is32 ? 4 : 8) > size) return false;
    *base = is32 ? ReadLe32(file + at) : ReadLe64(file + at);
    return true;
}

std::uint32_t GetTextBaseRva(const std::uint8_t* file, std::size_t size) {
    SectionHeader section = {};
    return FindSection(file, size, kTextName, &section) ? section.virtualAddress : kDefaultTextRva;
}

bool GetTextSectionInfo(const std::uint8_t* file, std::size_t size, TextSectionInfo* out) {
    *out = {};
    SectionHeader section = {};
    std::uint64_t base = 0;
    if (!GetPeImageBase(file, size, &base) || !FindSection(file, size, kTextName, &section)) return false;
    if (section.rawOffset >= size || section.rawSize == 0) return false;
    *out = {base, section.virtualAddress, section.rawOffset, section.rawSize, section.virtualSize};
    return true;
}

std::uint16_t GetPeMagic(const std::uint8_t* file, std::size_t size) {
    PeImage image;
    return LocateSignedHeader(file, size, &image) ? image.magic : std::uint16_t{0};
}

std::uint16_t GetPeSubsystem(const std::uint8_t* file, std::size_t size) {
    constexpr std::size_t kSubsystemAt = 92;  // for both kinds of image
    PeImage image;
    if (!LocateSignedHeader(file, size, &image) || image.header + kSubsystemAt + 2 > size) return 0;
    return ReadLe16(file + image.header + kSubsystemAt);
}
