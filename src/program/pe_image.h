// An executable as its disassembly needs it: sections, entry point, names from exports and imports. Here the section table
// stands where the header says, unlike for line maps (program/pe_headers.h). Pure; any bytes are legal input, and what cannot
// be true is left out. The records borrow the file's bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

struct PeSection {
    std::string name;  // control characters made visible
    std::uint32_t rva = 0;
    std::uint32_t size = 0;              // as the header says, in memory
    std::span<const std::uint8_t> data;  // what the file holds of it; empty: nothing, or it lies outside the file
    bool isCode = false;
    bool outsideFile = false;  // its data, or a part of them
};

struct PeImage {
    std::span<const std::uint8_t> file;
    std::uint16_t machine = 0;
    bool x64 = false;
    bool isDotNet = false;
    std::uint64_t base = 0;
    std::uint32_t entryRva = 0;     // 0: none, as in a library of data
    std::uint32_t directories = 0;  // offset in the file of the table of data directories, 0: none
    std::uint32_t directoryCount = 0;
    std::vector<PeSection> sections;
    std::unordered_map<std::uint32_t, std::string> imports;  // by RVA of the slot: "kernel32!ExitProcess"
    std::unordered_map<std::uint32_t, std::string> exports;  // by RVA: the first name in the table
};

inline constexpr std::uint16_t kMachineX86 = 0x14C;
inline constexpr std::uint16_t kMachineX64 = 0x8664;

// Reads the headers and names. What is there before a fault stays readable.
PeImage PeImageRead(std::span<const std::uint8_t> file);

// The section that holds an address, or null.
const PeSection* PeSectionAt(const PeImage& image, std::uint32_t rva);
// The file's bytes from an address on to the end of their section; empty outside.
std::span<const std::uint8_t> PeBytesAt(const PeImage& image, std::uint32_t rva);
