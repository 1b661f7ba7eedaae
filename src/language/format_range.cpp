// Which lines the formatter takes, and what it replaces in them. Pure.
#include "language/format_range.h"

#include "base/scan_text.h"

#include <algorithm>

namespace {

std::vector<std::string_view> LinesWithBreaks(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        std::size_t end = text.find_first_of("\r\n");
        if (end == std::string_view::npos)
            end = text.size();
        else
            end += text.substr(end).starts_with("\r\n") ? 2U : 1U;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

// Whether a character could be divided before this byte.
bool IsInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The part in which two lines differ.
LineReplacement DifferentPart(std::size_t start, std::string_view old, std::string_view wanted) {
    const std::size_t least = std::min(old.size(), wanted.size());
    std::size_t front = 0;
    while (front < least && old[front] == wanted[front]) ++front;
    while (front > 0 && front < old.size() && IsInsideCharacter(old[front])) --front;
    std::size_t back = 0;
    while (back < least - front && old[old.size() - back - 1] == wanted[wanted.size() - back - 1]) ++back;
    while (back > 0 && IsInsideCharacter(old[old.size() - back])) --back;
    return {start + front, old.size() - front - back, wanted.substr(front, wanted.size() - front - back)};
}

std::string_view WithoutBreak(std::string_view line) { return line.substr(0, line.find_last_not_of("\r\n") + 1); }

}  // namespace

LineRange LinesOfSelection(int startLine, int endLine, bool endsAtLineStart) {
    return {startLine, endsAtLineStart && endLine > startLine ? endLine - 1 : endLine};
}

std::size_t SamePlaceInLine(std::string_view before, std::string_view after, std::size_t place) {
    place = std::min(place, before.size());
    const bool atCharacter = place < before.size() && !IsBlank(before[place]);
    std::size_t blanks = 0;  // just before the place
    while (blanks < place && IsBlank(before[place - blanks - 1])) ++blanks;
    std::size_t passed = 0;
    for (const char c : before.substr(0, place)) passed += IsBlank(c) ? 0 : 1;
    std::size_t at = 0;
    for (; at < after.size() && passed > 0; ++at) passed -= IsBlank(after[at]) ? 0 : 1;
    while (at < after.size() && IsBlank(after[at]) && (atCharacter || blanks > 0)) {
        ++at;
        if (blanks > 0) --blanks;
    }
    return at;
}

std::vector<LineReplacement> LineReplacements(std::string_view before, std::string_view after) {
    const std::vector<std::string_view> old = LinesWithBreaks(before);
    const std::vector<std::string_view> wanted = LinesWithBreaks(after);
    if (old.size() != wanted.size()) return {{0, before.size(), after}};
    std::vector<LineReplacement> replacements;
    std::size_t start = 0;
    for (std::size_t i = 0; i < old.size(); ++i) {
        if (old[i] != wanted[i])
            replacements.push_back(DifferentPart(start, WithoutBreak(old[i]), WithoutBreak(wanted[i])));
        start += wanted[i].size();
    }
    return replacements;
}
