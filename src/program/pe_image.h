// Reads an executable for its disassembly: sections, entry point, names from exports and imports. Here the section
// table is read where the header says, unlike for line maps (program/pe_headers.h). Pure; any bytes are legal input,
// and impossible entries are left out. The records borrow the file's bytes.
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
    std::uint32_t size = 0;              // in memory, from the header
    std::span<const std::uint8_t> data;  // its bytes in the file; empty: none, or outside the file
    bool isCode = false;
    bool outsideFile = false;  // its data are partly or wholly outside the file
};

struct PeImage {
    std::span<const std::uint8_t> file;
    std::uint16_t machine = 0;
    bool x64 = false;
    bool isDotNet = false;
    std::uint64_t base = 0;
    std::uint32_t entryRva = 0;     // 0: none, as in a DLL without code
    std::uint32_t directories = 0;  // file offset of the table of data directories; 0: none
    std::uint32_t directoryCount = 0;
    std::vector<PeSection> sections;
    std::unordered_map<std::uint32_t, std::string> imports;  // by RVA of the import slot: "kernel32!ExitProcess"
    std::unordered_map<std::uint32_t, std::string> exports;  // by RVA; the first name in the table
};

inline constexpr std::uint16_t kMachineX86 = 0x14C;
inline constexpr std::uint16_t kMachineX64 = 0x8664;

// Reads the headers and names. The part before a fault is kept.
PeImage PeImageRead(std::span<const std::uint8_t> file);

// Returns the section that contains an address, or null. `image` owns it.
const PeSection* PeSectionAt(const PeImage& image, std::uint32_t rva);
// The file's bytes from an address to the end of its section; empty for an address outside all sections.
std::span<const std::uint8_t> PeBytesAt(const PeImage& image, std::uint32_t rva);
