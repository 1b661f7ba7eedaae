// Reads the headers of an executable from a file's bytes: their offsets, and the few fields that line maps need. For
// line maps the section table is expected after an optional header of the usual size for the image kind; the size that
// the header gives is ignored. Pure; any bytes are legal input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// --- Offsets of the headers

inline constexpr std::uint16_t kMagicPe32 = 0x10B;
inline constexpr std::uint16_t kMagicPe64 = 0x20B;
inline constexpr std::size_t kSectionHeaderSize = 40;

struct PeHeader {
    std::size_t at = 0;       // offset of the signature; at least 26 bytes follow it
    std::uint16_t magic = 0;  // of the optional header: kMagicPe32 or kMagicPe64
    bool isSigned = false;    // the signature is "PE\0\0"
};
// Returns false when the file is too short or has another magic.
bool PeFindHeader(std::span<const std::uint8_t> file, PeHeader* header);

struct PeSectionHeader {
    std::string_view name;  // 8 bytes, borrowed from the file
    std::uint32_t virtualSize = 0;
    std::uint32_t virtualAddress = 0;
    std::uint32_t rawSize = 0;    // SizeOfRawData
    std::uint32_t rawOffset = 0;  // PointerToRawData
    std::uint32_t flags = 0;
};
// Reads kSectionHeaderSize bytes from `at`.
PeSectionHeader PeReadSectionHeader(const std::uint8_t* at);

// --- For line maps and the debugger

struct TextSectionInfo {
    std::uint64_t imageBase = 0;
    std::uint32_t virtualAddress = 0;
    std::uint32_t rawOffset = 0;  // PointerToRawData
    std::uint32_t rawSize = 0;    // SizeOfRawData
    std::uint32_t virtualSize = 0;
};

// Returns the data of the section ".sdbg" within `file`. Null when there is no such section, when PointerToRawData +
// VirtualSize exceeds the file's size, or when VirtualSize is below 8. The out parameters are the section header's
// fields.
const std::uint8_t* FindSdbgSection(const std::uint8_t* file, std::size_t size, std::uint32_t* virtualSize,
                                    std::uint32_t* virtualAddress, std::uint32_t* rawOffset);
bool GetPeImageBase(const std::uint8_t* file, std::size_t size, std::uint64_t* base);
// The virtual address of ".text", or 0x1000 when there is none.
std::uint32_t GetTextBaseRva(const std::uint8_t* file, std::size_t size);
// Zeroes `out` first. Returns false when there is no ".text", or when its raw data are empty or begin outside the file.
bool GetTextSectionInfo(const std::uint8_t* file, std::size_t size, TextSectionInfo* out);
// The optional header's magic: 0x10B (PE32) or 0x20B (PE32+); 0 for any other value.
std::uint16_t GetPeMagic(const std::uint8_t* file, std::size_t size);
// The optional header's subsystem (2: GUI, 3: console), or 0.
std::uint16_t GetPeSubsystem(const std::uint8_t* file, std::size_t size);
