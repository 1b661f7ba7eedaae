// Which lines two texts have in common, and where they differ. The work is bounded: texts that differ too much are told
// apart as one piece. Pure; any thread.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

// The lines [oldFirst, oldEnd) of the old text became the lines [newFirst, newEnd) of the new one. Lines from 0; one of
// the two may be empty.
struct LineHunk {
    int oldFirst = 0, oldEnd = 0;
    int newFirst = 0, newEnd = 0;
    bool operator==(const LineHunk&) const = default;
};

// The lines without their line ends: LF, CR or CRLF. A text that ends with a line end has an empty last line, as in an
// editor; an empty text has one line. The views borrow the text.
std::vector<std::string_view> LinesOf(std::string_view text);

// The differences in their order. Two of them are never adjacent.
std::vector<LineHunk> LineDiff(const std::vector<std::string_view>& oldLines,
                               const std::vector<std::string_view>& newLines);
