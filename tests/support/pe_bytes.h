// Makes executables for tests as bytes: headers, sections and ".sdbg" contents as compilers write them, or wrong in the
// ways that a test wants. They are read, never run.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pe_bytes {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint32_t kHeader = 64;        // offset of the signature
inline constexpr std::uint32_t kFirstData = 0x400;  // offset of the first section's data
inline constexpr std::uint32_t kCode = 0x60000020;  // flags of a code section
inline constexpr std::uint32_t kData = 0xC0000040;

// Writes a number of `width` bytes, little-endian. `bytes` is a string or a vector, which grows if the number exceeds
// its end.
template <typename Container>
void PutNumber(Container* bytes, std::size_t at, std::uint64_t value, std::size_t width) {
    if (bytes->size() < at + width) bytes->resize(at + width);
    for (std::size_t i = 0; i < width; ++i)
        (*bytes)[at + i] = static_cast<typename Container::value_type>(value >> 8 * i & 0xFF);
}

template <typename Container, typename Number>
void Put(Container* bytes, std::size_t at, Number value) {
    PutNumber(bytes, at, static_cast<std::uint64_t>(value), sizeof(Number));
}

template <typename Container, typename Number>
void Append(Container* bytes, Number value) {
    Put(bytes, bytes->size(), value);
}

inline void PutText(Bytes* bytes, std::size_t at, std::string_view text) {
    if (bytes->size() < at + text.size()) bytes->resize(at + text.size());
    std::copy(text.begin(), text.end(), bytes->begin() + static_cast<std::ptrdiff_t>(at));
}

// A section's contents, given as text or as bytes.
struct Contents {
    Bytes bytes;
    Contents() = default;
    Contents(Bytes data) : bytes(std::move(data)) {}
    Contents(std::string_view text) : bytes(text.begin(), text.end()) {}
    Contents(const std::string& text) : Contents(std::string_view(text)) {}
    Contents(const char* text) : Contents(std::string_view(text)) {}
};

struct Section {
    std::string_view name;  // at most 8 characters
    std::uint32_t rva = 0;
    Contents data = {};
    std::uint32_t rawSize = 0;  // SizeOfRawData in the header; 0: the size of `data`
    std::uint32_t flags = kCode;
};

struct Directory {
    std::uint32_t index = 0;
    std::uint32_t rva = 0;
    std::uint32_t size = 0;
};

struct Program {
    bool x64 = true;
    std::uint32_t machine = 0;  // 0: the machine for `x64`
    std::uint32_t entry = 0x1000;
    std::uint64_t base = x64 ? 0x140000000 : 0x400000;
    std::vector<Section> sections = {};  // at most 16
    std::vector<Directory> directories = {};
};

constexpr std::uint32_t OptionalSize(bool x64) { return x64 ? 240 : 224; }
// The file offset of a section's header; `index` from 0.
constexpr std::uint32_t SectionAt(bool x64, std::uint32_t index) {
    return kHeader + 24 + OptionalSize(x64) + 40 * index;
}

inline Bytes Build(const Program& program) {
    Bytes file(kFirstData);
    const std::size_t optional = kHeader + 24, directories = optional + (program.x64 ? 112 : 96);
    PutText(&file, 0, "MZ");
    PutNumber(&file, 60, kHeader, 4);
    PutText(&file, kHeader, "PE");
    PutNumber(&file, kHeader + 4, program.machine != 0 ? program.machine : program.x64 ? 0x8664U : 0x14CU, 2);
    PutNumber(&file, kHeader + 6, program.sections.size(), 2);
    PutNumber(&file, kHeader + 20, OptionalSize(program.x64), 2);
    PutNumber(&file, optional, program.x64 ? 0x20B : 0x10B, 2);
    PutNumber(&file, optional + 16, program.entry, 4);
    program.x64 ? PutNumber(&file, optional + 24, program.base, 8) : PutNumber(&file, optional + 28, program.base, 4);
    PutNumber(&file, directories - 4, 16, 4);
    for (const Directory& directory : program.directories) {
        PutNumber(&file, directories + directory.index * std::size_t{8}, directory.rva, 4);
        PutNumber(&file, directories + directory.index * std::size_t{8} + 4, directory.size, 4);
    }
    std::uint32_t index = 0;
    for (const Section& section : program.sections) {
        const std::size_t header = SectionAt(program.x64, index++), size = section.data.bytes.size();
        const std::size_t rawSize = section.rawSize != 0 ? section.rawSize : size;
        PutText(&file, header, section.name);
        PutNumber(&file, header + 8, std::max(size, rawSize), 4);
        PutNumber(&file, header + 12, section.rva, 4);
        PutNumber(&file, header + 16, rawSize, 4);
        PutNumber(&file, header + 20, rawSize != 0 ? file.size() : 0, 4);
        PutNumber(&file, header + 36, section.flags, 4);
        file.insert(file.end(), section.data.bytes.begin(), section.data.bytes.end());
    }
    return file;
}

// Returns the bytes of Build as a string.
inline std::string Image(bool is64, std::uint64_t base, const std::vector<Section>& sections) {
    const Bytes file = Build({.x64 = is64, .base = base, .sections = sections});
    return {file.begin(), file.end()};
}

struct Record {
    std::uint32_t fileId, line, rva;
};

inline std::string Sdbg1(const std::vector<Record>& records) {
    std::string bytes = "SDBG";
    Append(&bytes, static_cast<std::uint32_t>(records.size()));
    for (const Record& record : records) {
        Append(&bytes, static_cast<std::uint16_t>(record.line));
        Append(&bytes, record.rva);
    }
    return bytes;
}

// `tail` are the bytes after the records.
inline std::string Sdbg2(const std::vector<Record>& records, std::string_view tail = {}) {
    std::string bytes = "SDB2";
    Append(&bytes, static_cast<std::uint32_t>(records.size()));
    for (const Record& record : records) {
        Append(&bytes, record.fileId);
        Append(&bytes, record.line);
        Append(&bytes, record.rva);
    }
    return bytes.append(tail);
}

struct File {
    std::uint32_t id;
    std::string_view path;
};

inline std::string FileTable(const std::vector<File>& files) {
    std::string bytes;
    Append(&bytes, static_cast<std::uint32_t>(files.size()));
    for (const File& file : files) {
        Append(&bytes, file.id);
        Append(&bytes, static_cast<std::uint32_t>(file.path.size()));
        bytes.append(file.path);
    }
    return bytes;
}

}  // namespace pe_bytes
