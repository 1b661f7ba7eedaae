// The few PE header fields that line maps need, read from a file's bytes. Pure; any bytes are legal input. The section
// table is taken to stand at its usual place for the image kind, whatever the header says of its own size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

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
