#include "base/line_diff.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace {

// Cells of the tables of common lines, for one stretch and for all together. A cell takes about a nanosecond.
constexpr std::size_t kMostCells = 1 << 19;
constexpr std::size_t kMostCellsTogether = 8 << 20;
constexpr int kDeepest = 12;  // stretches inside stretches

using LineNumbers = std::vector<int>;

struct Comparison {
    LineNumbers oldLines, newLines;  // equal lines have equal numbers
    std::size_t cellsLeft = kMostCellsTogether;
    std::vector<LineHunk> hunks;
};

void AddHunk(Comparison& comparison, const LineHunk& hunk) {
    if (hunk.oldFirst == hunk.oldEnd && hunk.newFirst == hunk.newEnd) return;
    if (!comparison.hunks.empty()) {
        LineHunk& last = comparison.hunks.back();
        if (last.oldEnd == hunk.oldFirst && last.newEnd == hunk.newFirst) {
            last.oldEnd = hunk.oldEnd;
            last.newEnd = hunk.newEnd;
            return;
        }
    }
    comparison.hunks.push_back(hunk);
}

int OldLine(const Comparison& comparison, int line) { return comparison.oldLines[static_cast<std::size_t>(line)]; }
int NewLine(const Comparison& comparison, int line) { return comparison.newLines[static_cast<std::size_t>(line)]; }

LineHunk WithoutCommonEnds(const Comparison& comparison, LineHunk stretch) {
    while (stretch.oldFirst < stretch.oldEnd && stretch.newFirst < stretch.newEnd &&
           OldLine(comparison, stretch.oldFirst) == NewLine(comparison, stretch.newFirst))
        ++stretch.oldFirst, ++stretch.newFirst;
    while (stretch.oldFirst < stretch.oldEnd && stretch.newFirst < stretch.newEnd &&
           OldLine(comparison, stretch.oldEnd - 1) == NewLine(comparison, stretch.newEnd - 1))
        --stretch.oldEnd, --stretch.newEnd;
    return stretch;
}

// The longest common subsequence of a short stretch.
void CompareByTable(Comparison& comparison, const LineHunk& stretch) {
    const auto rows = static_cast<std::size_t>(stretch.oldEnd - stretch.oldFirst);
    const auto columns = static_cast<std::size_t>(stretch.newEnd - stretch.newFirst);
    const std::size_t width = columns + 1;
    std::vector<std::int32_t> common((rows + 1) * width, 0);  // of what is left from that row and column on
    const auto same = [&](std::size_t row, std::size_t column) {
        return OldLine(comparison, stretch.oldFirst + static_cast<int>(row)) ==
               NewLine(comparison, stretch.newFirst + static_cast<int>(column));
    };
    for (std::size_t row = rows; row-- > 0;)
        for (std::size_t column = columns; column-- > 0;)
            common[row * width + column] =
                same(row, column) ? common[(row + 1) * width + column + 1] + 1
                                  : std::max(common[(row + 1) * width + column], common[row * width + column + 1]);
    std::size_t row = 0, column = 0;
    const auto hunkAt = [&](std::size_t rowEnd, std::size_t columnEnd) {
        return LineHunk{stretch.oldFirst + static_cast<int>(row), stretch.oldFirst + static_cast<int>(rowEnd),
                        stretch.newFirst + static_cast<int>(column), stretch.newFirst + static_cast<int>(columnEnd)};
    };
    while (row < rows && column < columns) {
        if (same(row, column)) {
            ++row, ++column;
        } else if (common[(row + 1) * width + column] >= common[row * width + column + 1]) {
            AddHunk(comparison, hunkAt(row + 1, column));
            ++row;
        } else {
            AddHunk(comparison, hunkAt(row, column + 1));
            ++column;
        }
    }
    AddHunk(comparison, hunkAt(rows, columns));
}

struct LinePair {
    int oldLine, newLine;
};

// The lines that each side of the stretch has once, in the order of the old text.
std::vector<LinePair> UniqueLines(const Comparison& comparison, const LineHunk& stretch) {
    struct Seen {
        int inOld = 0, inNew = 0;
        int newLine = 0;
    };
    std::unordered_map<int, Seen> seen;
    for (int line = stretch.oldFirst; line < stretch.oldEnd; ++line) ++seen[OldLine(comparison, line)].inOld;
    for (int line = stretch.newFirst; line < stretch.newEnd; ++line) {
        Seen& found = seen[NewLine(comparison, line)];
        ++found.inNew;
        found.newLine = line;
    }
    std::vector<LinePair> pairs;
    for (int line = stretch.oldFirst; line < stretch.oldEnd; ++line)
        if (const Seen& found = seen[OldLine(comparison, line)]; found.inOld == 1 && found.inNew == 1)
            pairs.push_back({line, found.newLine});
    return pairs;
}

// The longest part of the pairs whose order is the same on both sides.
std::vector<LinePair> InOneOrder(const std::vector<LinePair>& pairs) {
    std::vector<std::size_t> ends;  // by length less one: the pair with the smallest new line that ends such a part
    std::vector<std::size_t> before(pairs.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto place = std::ranges::lower_bound(ends, pairs[i].newLine, {},
                                                    [&pairs](std::size_t end) { return pairs[end].newLine; });
        before[i] = place == ends.begin() ? i : *(place - 1);
        if (place == ends.end())
            ends.push_back(i);
        else
            *place = i;
    }
    std::vector<LinePair> ordered(ends.size());
    for (std::size_t i = ends.size(), at = ends.empty() ? 0 : ends.back(); i-- > 0; at = before[at])
        ordered[i] = pairs[at];
    return ordered;
}

void CompareStretch(Comparison& comparison, const LineHunk& whole, int depth) {
    const LineHunk stretch = WithoutCommonEnds(comparison, whole);
    const auto rows = static_cast<std::size_t>(stretch.oldEnd - stretch.oldFirst);
    const auto columns = static_cast<std::size_t>(stretch.newEnd - stretch.newFirst);
    if (rows == 0 || columns == 0) return AddHunk(comparison, stretch);
    if (rows * columns <= std::min(kMostCells, comparison.cellsLeft)) {
        comparison.cellsLeft -= rows * columns;
        return CompareByTable(comparison, stretch);
    }
    const std::vector<LinePair> anchors =
        depth < kDeepest ? InOneOrder(UniqueLines(comparison, stretch)) : std::vector<LinePair>();
    if (anchors.empty()) return AddHunk(comparison, stretch);
    LineHunk gap = {stretch.oldFirst, 0, stretch.newFirst, 0};
    for (const LinePair& anchor : anchors) {
        gap.oldEnd = anchor.oldLine;
        gap.newEnd = anchor.newLine;
        CompareStretch(comparison, gap, depth + 1);
        gap.oldFirst = anchor.oldLine + 1;
        gap.newFirst = anchor.newLine + 1;
    }
    gap.oldEnd = stretch.oldEnd;
    gap.newEnd = stretch.newEnd;
    CompareStretch(comparison, gap, depth + 1);
}

LineNumbers Numbered(const std::vector<std::string_view>& lines, std::unordered_map<std::string_view, int>& known) {
    LineNumbers numbers;
    numbers.reserve(lines.size());
    for (const std::string_view line : lines)
        numbers.push_back(known.try_emplace(line, static_cast<int>(known.size())).first->second);
    return numbers;
}

}  // namespace

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = text.find_first_of("\r\n");
        lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
    }
}

std::vector<LineHunk> LineDiff(const std::vector<std::string_view>& oldLines,
                               const std::vector<std::string_view>& newLines) {
    std::unordered_map<std::string_view, int> known;
    Comparison comparison;
    comparison.oldLines = Numbered(oldLines, known);
    comparison.newLines = Numbered(newLines, known);
    CompareStretch(comparison, {0, static_cast<int>(oldLines.size()), 0, static_cast<int>(newLines.size())}, 0);
    return std::move(comparison.hunks);
}
