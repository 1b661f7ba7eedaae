#include "program/pe_image.h"

#include "program/pe_headers.h"
#include "program/visible_text.h"

#include <algorithm>
#include <string_view>

namespace {

// These limits are far beyond any real program and end the reading of a forged table.
constexpr std::size_t kMaxSections = 96;  // Windows loads no more
constexpr std::size_t kMaxLibraries = 1024;
constexpr std::size_t kMaxNames = 65536;
constexpr std::size_t kMaxNameBytes = 4096;
constexpr std::size_t kNameBytesKept = 200;

constexpr std::uint32_t kDirectoryExports = 0;
constexpr std::uint32_t kDirectoryImports = 1;
constexpr std::uint32_t kDirectoryDotNet = 14;
constexpr std::uint32_t kSectionIsCode = 0x20000020;  // IMAGE_SCN_CNT_CODE or IMAGE_SCN_MEM_EXECUTE

using Bytes = std::span<const std::uint8_t>;

// Reads a little-endian number of `count` bytes; 0 when it is not within `bytes`.
std::uint64_t Number(Bytes bytes, std::uint64_t at, std::size_t count) {
    if (at > bytes.size() || bytes.size() - at < count) return 0;
    std::uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;) value = value << 8 | bytes[static_cast<std::size_t>(at) + i];
    return value;
}
std::uint32_t U16(Bytes bytes, std::uint64_t at) { return static_cast<std::uint32_t>(Number(bytes, at, 2)); }
std::uint32_t U32(Bytes bytes, std::uint64_t at) { return static_cast<std::uint32_t>(Number(bytes, at, 4)); }

// The zero-terminated text at an address; empty when it is not terminated.
std::string TextAt(const PeImage& image, std::uint32_t rva) {
    Bytes bytes = PeBytesAt(image, rva);
    bytes = bytes.first(std::min(bytes.size(), kMaxNameBytes));
    const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
    if (end == bytes.end()) return {};
    const auto length = static_cast<std::size_t>(end - bytes.begin());
    std::string text = VisibleText({reinterpret_cast<const char*>(bytes.data()), std::min(length, kNameBytesKept)});
    std::replace(text.begin(), text.end(), ' ', '_');  // a name is one word
    return text;
}

struct Directory {
    std::uint32_t rva = 0;
    std::uint32_t size = 0;
};

Directory DirectoryOf(const PeImage& image, std::uint32_t index) {
    if (index >= image.directoryCount) return {};
    const std::uint64_t at = image.directories + std::uint64_t{index} * 8;
    return {.rva = U32(image.file, at), .size = U32(image.file, at + 4)};
}

PeSection ReadSection(Bytes file, std::size_t at) {
    const PeSectionHeader header = PeReadSectionHeader(file.data() + at);
    PeSection section;
    section.name = VisibleText(header.name.substr(0, header.name.find('\0')));
    section.rva = header.virtualAddress;
    section.isCode = (header.flags & kSectionIsCode) != 0;
    section.size = header.virtualSize != 0 ? header.virtualSize : header.rawSize;
    // Data in the file beyond the size in memory are padding.
    const std::uint64_t wanted = header.rawOffset == 0 ? 0 : std::min(section.size, header.rawSize);
    const std::uint64_t there =
        header.rawOffset < file.size() ? std::min<std::uint64_t>(wanted, file.size() - header.rawOffset) : 0;
    section.outsideFile = there < wanted;
    if (there > 0) section.data = file.subspan(header.rawOffset, static_cast<std::size_t>(there));
    return section;
}

// `room` is the number of names left for all libraries together, because several may refer to one table.
void ReadImportsOf(PeImage& image, const std::string& library, std::uint32_t names, std::uint32_t slots,
                   std::size_t& room) {
    const std::uint32_t width = image.x64 ? 8 : 4;
    const Bytes table = PeBytesAt(image, names);
    for (std::uint32_t i = 0; room > 0; ++i, --room) {
        const std::uint64_t entry = Number(table, std::uint64_t{i} * width, width);
        if (entry == 0) return;
        const bool byNumber = (entry >> (width * 8 - 1)) != 0;
        std::string name =
            byNumber ? "#" + std::to_string(entry & 0xFFFF) : TextAt(image, static_cast<std::uint32_t>(entry) + 2);
        if (name.empty()) name = "?";
        image.imports.try_emplace(slots + i * width, name.insert(0, library + "!"));
    }
}

void ReadImports(PeImage& image) {
    const Directory directory = DirectoryOf(image, kDirectoryImports);
    const Bytes table = directory.rva == 0 ? Bytes{} : PeBytesAt(image, directory.rva);
    std::size_t room = kMaxNames;
    for (std::size_t i = 0; i < kMaxLibraries; ++i) {
        const std::uint64_t at = i * 20;
        const std::uint32_t nameRva = U32(table, at + 12);
        const std::uint32_t slots = U32(table, at + 16);
        if (nameRva == 0 || slots == 0) return;
        std::string library = TextAt(image, nameRva);
        std::transform(library.begin(), library.end(), library.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
        if (library.ends_with(".dll")) library.resize(library.size() - 4);
        const std::uint32_t names = U32(table, at);
        ReadImportsOf(image, library, names != 0 ? names : slots, slots, room);
    }
}

void ReadExports(PeImage& image) {
    const Directory directory = DirectoryOf(image, kDirectoryExports);
    const Bytes table = directory.rva == 0 ? Bytes{} : PeBytesAt(image, directory.rva);
    const std::size_t count = std::min<std::size_t>(U32(table, 24), kMaxNames);
    const std::uint32_t functionCount = U32(table, 20);
    const Bytes functions = PeBytesAt(image, U32(table, 28));
    const Bytes names = PeBytesAt(image, U32(table, 32));
    const Bytes ordinals = PeBytesAt(image, U32(table, 36));
    for (std::size_t i = 0; i < count && i * 4 + 4 <= names.size() && i * 2 + 2 <= ordinals.size(); ++i) {
        const std::uint32_t ordinal = U16(ordinals, i * 2);
        const std::uint32_t rva = ordinal < functionCount ? U32(functions, std::uint64_t{ordinal} * 4) : 0;
        // An address within the export directory is a forwarder: the text names a function in another library.
        if (rva == 0 || (rva >= directory.rva && rva - directory.rva < directory.size)) continue;
        std::string name = TextAt(image, U32(names, i * 4));
        if (!name.empty()) image.exports.try_emplace(rva, std::move(name));
    }
}

}  // namespace

PeImage PeImageRead(Bytes file) {
    PeImage image;
    image.file = file;
    PeHeader found;
    if (!PeFindHeader(file, &found) || !found.isSigned || file[0] != 'M' || file[1] != 'Z') return image;
    const std::uint64_t header = found.at;
    const std::uint32_t optionalSize = U16(file, header + 20);
    const std::uint64_t optional = header + 24;
    if (optionalSize < sizeof(found.magic)) return image;
    image.machine = static_cast<std::uint16_t>(U16(file, header + 4));
    image.x64 = found.magic == kMagicPe64;
    image.entryRva = U32(file, optional + 16);
    GetPeImageBase(file.data(), file.size(), &image.base);
    const std::uint64_t directories = optional + (image.x64 ? 112 : 96);
    image.directories = static_cast<std::uint32_t>(directories);
    const std::uint64_t room = optional + optionalSize > directories ? (optional + optionalSize - directories) / 8 : 0;
    image.directoryCount = static_cast<std::uint32_t>(std::min<std::uint64_t>(U32(file, directories - 4), room));

    const std::size_t count = std::min<std::size_t>(U16(file, header + 6), kMaxSections);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t at = optional + optionalSize + i * kSectionHeaderSize;
        if (at + kSectionHeaderSize > file.size()) break;
        image.sections.push_back(ReadSection(file, static_cast<std::size_t>(at)));
    }
    image.isDotNet = DirectoryOf(image, kDirectoryDotNet).rva != 0;
    ReadImports(image);
    ReadExports(image);
    return image;
}

const PeSection* PeSectionAt(const PeImage& image, std::uint32_t rva) {
    for (const PeSection& section : image.sections)
        if (rva >= section.rva && rva - section.rva < std::max<std::size_t>(section.size, section.data.size()))
            return &section;
    return nullptr;
}

Bytes PeBytesAt(const PeImage& image, std::uint32_t rva) {
    const PeSection* section = PeSectionAt(image, rva);
    if (section == nullptr || rva - section->rva >= section->data.size()) return {};
    return section->data.subspan(rva - section->rva);
}
