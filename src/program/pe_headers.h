// The headers of an executable, read from a file's bytes: where they are, and the few fields that line maps need. For line
// maps the section table is taken to stand at its usual place for the image kind, whatever the header says of its own size.
// Pure; any bytes are legal input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// --- Where things are

inline constexpr std::uint16_t kMagicPe32 = 0x10B;
inline constexpr std::uint16_t kMagicPe64 = 0x20B;
inline constexpr std::size_t kSectionHeaderSize = 40;

struct PeHeader {
    std::size_t at = 0;       // offset of the signature; at least 26 bytes follow from there
    std::uint16_t magic = 0;  // of the optional header: kMagicPe32 or kMagicPe64
    bool isSigned = false;    // the signature is that of an executable
};
// False: too short, or another magic.
bool PeFindHeader(std::span<const std::uint8_t> file, PeHeader* header);

struct PeSectionHeader {
    std::string_view name;  // 8 bytes, in the file's memory
    std::uint32_t virtualSize = 0;
    std::uint32_t virtualAddress = 0;
    std::uint32_t rawSize = 0;    // SizeOfRawData
    std::uint32_t rawOffset = 0;  // PointerToRawData
    std::uint32_t flags = 0;
};
// `at` has kSectionHeaderSize bytes.
PeSectionHeader PeReadSectionHeader(const std::uint8_t* at);

// --- For line maps and the debugger

struct TextSectionInfo {
    std::uint64_t imageBase = 0;
    std::uint32_t virtualAddress = 0;
    std::uint32_t rawOffset = 0;  // PointerToRawData
    std::uint32_t rawSize = 0;    // SizeOfRawData
    std::uint32_t virtualSize = 0;
};

// The data of the section ".sdbg" in the file, or null: none, or PointerToRawData + VirtualSize passes the file's end, or
// VirtualSize is below 8. The out parameters are the header's fields.
const std::uint8_t* FindSdbgSection(const std::uint8_t* file, std::size_t size, std::uint32_t* virtualSize,
                                    std::uint32_t* virtualAddress, std::uint32_t* rawOffset);
bool GetPeImageBase(const std::uint8_t* file, std::size_t size, std::uint64_t* base);
// Virtual address of ".text", or 0x1000.
std::uint32_t GetTextBaseRva(const std::uint8_t* file, std::size_t size);
// Zeroes `out` first. False: no ".text", its raw data do not begin in the file, or it has none.
bool GetTextSectionInfo(const std::uint8_t* file, std::size_t size, TextSectionInfo* out);
// The optional header's magic: 0x10B, 0x20B, or 0 for anything else.
std::uint16_t GetPeMagic(const std::uint8_t* file, std::size_t size);
// The optional header's subsystem (2: windows, 3: console), or 0.
std::uint16_t GetPeSubsystem(const std::uint8_t* file, std::size_t size);
