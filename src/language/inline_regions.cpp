// Finds inline assembly line by line. Pure.
#include "language/inline_regions.h"

#include <algorithm>

namespace {

bool IsAsmBlank(char c) { return c == ' ' || c == '\t'; }

std::size_t SkipAsmBlanks(std::string_view line, std::size_t at) {
    while (at < line.size() && IsAsmBlank(line[at])) ++at;
    return at;
}

// Whether the line has the word `upper`, which is in upper case, at `at`. The letter case of the line does not count.
bool WordAt(std::string_view line, std::size_t at, std::string_view upper) {
    if (line.size() < at + upper.size()) return false;
    for (std::size_t i = 0; i < upper.size(); ++i) {
        const char c = line[at + i];
        if ((c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c) != upper[i]) return false;
    }
    const std::size_t end = at + upper.size();
    return end == line.size() || IsAsmBlank(line[end]) || line[end] == '\'';
}

}  // namespace

std::vector<TextRange> InlineAssemblyRanges(std::string_view text) {
    std::vector<TextRange> ranges;
    bool inBlock = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t stop = std::min(text.find_first_of("\r\n", at), text.size());
        const std::string_view line = text.substr(at, stop - at);
        std::size_t first = SkipAsmBlanks(line, 0);
        const bool endsBlock = WordAt(line, first, "END") && WordAt(line, SkipAsmBlanks(line, first + 3), "ASM");
        bool assembly = inBlock && !endsBlock;
        if (endsBlock) {
            inBlock = false;
        } else if (!inBlock && first < line.size() && line[first] == '!') {
            assembly = true;
        } else if (!inBlock && WordAt(line, first, "ASM")) {
            first = SkipAsmBlanks(line, first + 3);
            inBlock = first == line.size() || line[first] == '\'';
            assembly = !inBlock;
        }
        if (assembly && first < line.size()) ranges.push_back({at + first, line.size() - first});
        at = stop + 1;
    }
    return ranges;
}
