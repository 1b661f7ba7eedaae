// Joins three lists that are sorted by offset: source lines, instruction texts, code bytes.
#include "listing.h"

#include <array>
#include <cstdio>

namespace standin {
namespace {

// Splits a file into lines once, so that each line is found without counting.
std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        const bool pair = text.substr(end, 2) == "\r\n";
        text.remove_prefix(std::min(end + (pair ? 2 : 1), text.size()));
    }
    return lines;
}

std::string Hex(uint64_t value, int digits) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%0*llX", digits, static_cast<unsigned long long>(value));
    return text.data();
}

}  // namespace

std::string BuildListing(const Generator& g, const std::string& sourceName, uint64_t textAddress) {
    std::vector<std::vector<std::string_view>> files;
    for (const SourceFile& file : g.sources.files) files.push_back(SplitLines(file.text));
    std::string out = "; " + std::string(g.profile.name) + " listing of " + sourceName + "\n";
    const int digits = g.profile.x64 ? 12 : 8;
    size_t nextRecord = 0;
    for (size_t i = 0; i < g.e.lines.size(); ++i) {
        const ListingLine& line = g.e.lines[i];
        while (nextRecord < g.records.size() && g.records[nextRecord].offset <= line.offset && !line.isLabel) {
            const Pos pos = g.records[nextRecord++].pos;
            const auto& lines = files[static_cast<size_t>(pos.file)];
            const auto index = static_cast<size_t>(pos.line) - 1;
            out += "\n; ";
            if (pos.file > 0) out += g.sources.files[static_cast<size_t>(pos.file)].name + " ";
            out += std::to_string(pos.line) + ": " + std::string(index < lines.size() ? lines[index] : "") + "\n";
        }
        if (line.isLabel) {
            out += line.text + ":\n";
            continue;
        }
        size_t next = i + 1;
        while (next < g.e.lines.size() && g.e.lines[next].isLabel) ++next;
        const uint32_t end = next < g.e.lines.size() ? g.e.lines[next].offset : Offset(g.e);
        std::string bytes;
        for (uint32_t at = line.offset; at < end; ++at) bytes += Hex(g.image.text[at], 2) + ' ';
        bytes.resize(std::max<size_t>(bytes.size(), 32), ' ');
        out += "  " + Hex(textAddress + line.offset, digits) + "  " + bytes + line.text + "\n";
    }
    return out;
}

}  // namespace standin
