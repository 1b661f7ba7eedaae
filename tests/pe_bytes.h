// Executables for tests, made as bytes: headers, sections and ".sdbg" contents as the compilers would write them. They
// are read, never run.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pe_bytes {

inline constexpr std::uint32_t kHeader = 64;   // offset of the signature
inline constexpr std::uint32_t kData = 0x400;  // offset of the first section's data

template <typename Number>
void Append(std::string* bytes, Number value) {
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        bytes->push_back(static_cast<char>(static_cast<std::uint64_t>(value) >> 8 * i));
}

template <typename Number>
void Put(std::string* bytes, std::size_t at, Number value) {
    std::string text;
    Append(&text, value);
    bytes->replace(at, text.size(), text);
}

struct Section {
    std::string_view name;  // at most 8 characters
    std::uint32_t rva = 0;
    std::string data;
};

inline std::uint32_t SectionAt(bool is64, std::uint32_t index) { return kHeader + (is64 ? 264 : 248) + 40 * index; }

// At most 16 sections. VirtualSize and SizeOfRawData are the data's length.
inline std::string Image(bool is64, std::uint64_t base, const std::vector<Section>& sections) {
    std::string file(kData, '\0');
    file.replace(0, 2, "MZ");
    Put(&file, 60, kHeader);
    file.replace(kHeader, 2, "PE");
    Put(&file, kHeader + 6, static_cast<std::uint16_t>(sections.size()));
    Put(&file, kHeader + 24, static_cast<std::uint16_t>(is64 ? 0x20B : 0x10B));
    if (is64)
        Put(&file, kHeader + 48, base);
    else
        Put(&file, kHeader + 52, static_cast<std::uint32_t>(base));
    std::uint32_t index = 0;
    for (const Section& section : sections) {
        const std::uint32_t at = SectionAt(is64, index++);
        const auto length = static_cast<std::uint32_t>(section.data.size());
        file.replace(at, section.name.size(), section.name);
        Put(&file, at + 8, length);
        Put(&file, at + 12, section.rva);
        Put(&file, at + 16, length);
        Put(&file, at + 20, static_cast<std::uint32_t>(file.size()));
        file += section.data;
    }
    return file;
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

// `tail` is what follows the records.
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
