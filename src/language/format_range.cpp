// Which lines the formatter takes, and what it replaces in them. Pure.
#include "language/format_range.h"

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

std::string_view WithoutBreak(std::string_view line) { return line.substr(0, line.find_last_not_of("\r\n") + 1); }

}  // namespace

LineRange LinesOfSelection(int startLine, int endLine, bool endsAtLineStart) {
    return {startLine, endsAtLineStart && endLine > startLine ? endLine - 1 : endLine};
}

std::vector<TextReplacement> LineReplacements(std::string_view before, std::string_view after) {
    const std::vector<std::string_view> old = LinesWithBreaks(before);
    const std::vector<std::string_view> wanted = LinesWithBreaks(after);
    if (old.size() != wanted.size()) return {{0, before.size(), after}};
    std::vector<TextReplacement> replacements;
    std::size_t start = 0;
    for (std::size_t i = 0; i < old.size(); ++i) {
        if (old[i] != wanted[i]) replacements.push_back({start, WithoutBreak(old[i]).size(), WithoutBreak(wanted[i])});
        start += wanted[i].size();
    }
    return replacements;
}
