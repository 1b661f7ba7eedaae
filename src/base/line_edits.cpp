#include "base/line_edits.h"

#include "base/line_diff.h"

#include <algorithm>

namespace {

constexpr std::size_t kMostCompared = 4 << 20;  // bytes of either text that are compared line by line
constexpr int kMostPairs = 20000;               // lines of one difference that are changed one by one

// The end of the line that begins at `start`, behind its line end.
std::size_t LineEndAfter(std::string_view text, std::size_t start) {
    const std::size_t end = text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) return text.size();
    return end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
}

// Whether a line begins there, in both texts alike: behind a line end that no LF continues.
bool IsLineStart(std::string_view text, std::size_t at) {
    if (at == 0 || at == text.size()) return true;
    return text[at - 1] == '\n' || (text[at - 1] == '\r' && text[at] != '\n');
}

std::vector<std::string_view> LinesWithEnds(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = LineEndAfter(text, 0);
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

// The bytes at the start that both have, up to the start of a line.
std::size_t CommonStart(std::string_view oldText, std::string_view newText) {
    auto same = static_cast<std::size_t>(std::ranges::mismatch(oldText, newText).in1 - oldText.begin());
    while (!IsLineStart(oldText, same) || !IsLineStart(newText, same)) --same;
    return same;
}

// The bytes at the end that both have, from the start of a line on.
std::size_t CommonEnd(std::string_view oldText, std::string_view newText) {
    std::size_t same = 0;
    const std::size_t most = std::min(oldText.size(), newText.size());
    while (same < most && oldText[oldText.size() - 1 - same] == newText[newText.size() - 1 - same]) ++same;
    while (!IsLineStart(oldText, oldText.size() - same) || !IsLineStart(newText, newText.size() - same)) --same;
    return same;
}

bool IsInCharacter(std::string_view text, std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80;
}

// Adds the change of a line to another, without the characters that both have at their start and at their end.
void AddLineChange(std::vector<LineEdit>& edits, std::size_t start, std::string_view oldLine,
                   std::string_view newLine) {
    if (oldLine == newLine) return;
    auto before = static_cast<std::size_t>(std::ranges::mismatch(oldLine, newLine).in1 - oldLine.begin());
    while (before > 0 && (IsInCharacter(oldLine, before) || IsInCharacter(newLine, before))) --before;
    const std::size_t most = std::min(oldLine.size(), newLine.size()) - before;
    std::size_t after = 0;
    while (after < most && oldLine[oldLine.size() - 1 - after] == newLine[newLine.size() - 1 - after]) ++after;
    while (after > 0 && IsInCharacter(oldLine, oldLine.size() - after)) --after;
    edits.push_back(
        {start + before, start + oldLine.size() - after, newLine.substr(before, newLine.size() - before - after)});
}

}  // namespace

std::vector<LineEdit> LineEdits(std::string_view oldText, std::string_view newText) {
    const std::size_t first = CommonStart(oldText, newText);
    std::string_view oldRest = oldText.substr(first), newRest = newText.substr(first);
    const std::size_t last = CommonEnd(oldRest, newRest);
    oldRest.remove_suffix(last);
    newRest.remove_suffix(last);
    if (oldRest.empty() && newRest.empty()) return {};
    if (oldRest.size() > kMostCompared || newRest.size() > kMostCompared)
        return {{first, first + oldRest.size(), newRest}};

    const std::vector<std::string_view> oldLines = LinesWithEnds(oldRest), newLines = LinesWithEnds(newRest);
    const auto startOf = [](const std::vector<std::string_view>& lines, std::string_view text, int line) {
        const auto index = static_cast<std::size_t>(line);
        return index < lines.size() ? static_cast<std::size_t>(lines[index].data() - text.data()) : text.size();
    };
    std::vector<LineEdit> edits;
    for (LineHunk hunk : LineDiff(oldLines, newLines)) {
        const int pairs = std::min(hunk.oldEnd - hunk.oldFirst, hunk.newEnd - hunk.newFirst);
        for (int i = 0; i < pairs && pairs <= kMostPairs; ++i, ++hunk.oldFirst, ++hunk.newFirst)
            AddLineChange(edits, first + startOf(oldLines, oldRest, hunk.oldFirst),
                          oldLines[static_cast<std::size_t>(hunk.oldFirst)],
                          newLines[static_cast<std::size_t>(hunk.newFirst)]);
        if (hunk.oldFirst == hunk.oldEnd && hunk.newFirst == hunk.newEnd) continue;
        const std::size_t from = startOf(newLines, newRest, hunk.newFirst),
                          to = startOf(newLines, newRest, hunk.newEnd);
        edits.push_back({first + startOf(oldLines, oldRest, hunk.oldFirst),
                         first + startOf(oldLines, oldRest, hunk.oldEnd), newRest.substr(from, to - from)});
    }
    return edits;
}
