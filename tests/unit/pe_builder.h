// Small executables made in memory, right or wrong in the ways that a test asks for.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace pe {

using Bytes = std::vector<std::uint8_t>;

inline void Put(Bytes& bytes, std::size_t at, std::uint64_t value, int count) {
    if (bytes.size() < at + static_cast<std::size_t>(count)) bytes.resize(at + static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
}

inline void PutText(Bytes& bytes, std::size_t at, const std::string& text) {
    if (bytes.size() < at + text.size() + 1) bytes.resize(at + text.size() + 1);
    std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

struct Section {
    std::string name;
    std::uint32_t rva = 0;
    std::uint32_t flags = 0;
    Bytes data = {};
    std::uint32_t rawSize = 0;  // claimed; 0: what there is
};

struct Directory {
    std::uint32_t index = 0;
    std::uint32_t rva = 0;
    std::uint32_t size = 0;
};

struct Program {
    bool x64 = true;
    std::uint32_t machine = 0;  // 0: by x64
    std::uint32_t entry = 0x1000;
    std::vector<Section> sections = {};
    std::vector<Directory> directories = {};
};

inline constexpr std::uint32_t kCode = 0x60000020;
inline constexpr std::uint32_t kData = 0xC0000040;
inline constexpr std::size_t kSectionTable64 = 0x80 + 24 + 0xF0;

inline Bytes Build(const Program& program) {
    Bytes file(0x400);
    PutText(file, 0, "MZ");
    Put(file, 0x3C, 0x80, 4);
    PutText(file, 0x80, "PE");
    const std::size_t optionalSize = program.x64 ? 0xF0 : 0xE0;
    Put(file, 0x84, program.machine != 0 ? program.machine : program.x64 ? 0x8664U : 0x14CU, 2);
    Put(file, 0x86, program.sections.size(), 2);
    Put(file, 0x94, optionalSize, 2);
    const std::size_t optional = 0x98;
    Put(file, optional, program.x64 ? 0x20B : 0x10B, 2);
    Put(file, optional + 16, program.entry, 4);
    program.x64 ? Put(file, optional + 24, 0x140000000, 8) : Put(file, optional + 28, 0x400000, 4);
    const std::size_t directories = optional + (program.x64 ? 112 : 96);
    Put(file, directories - 4, 16, 4);
    for (const Directory& directory : program.directories) {
        Put(file, directories + directory.index * std::size_t{8}, directory.rva, 4);
        Put(file, directories + directory.index * std::size_t{8} + 4, directory.size, 4);
    }
    std::size_t header = optional + optionalSize;
    for (const Section& section : program.sections) {
        PutText(file, header, section.name);
        const auto size = static_cast<std::uint32_t>(section.data.size());
        const std::uint32_t rawSize = section.rawSize != 0 ? section.rawSize : size;
        Put(file, header + 8, std::max(size, rawSize), 4);
        Put(file, header + 12, section.rva, 4);
        Put(file, header + 16, rawSize, 4);
        Put(file, header + 20, rawSize != 0 ? file.size() : 0, 4);
        Put(file, header + 36, section.flags, 4);
        file.insert(file.end(), section.data.begin(), section.data.end());
        header += 40;
    }
    return file;
}

}  // namespace pe
