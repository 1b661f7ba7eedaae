// Which lines the formatter takes, and what it replaces in them. Pure.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

// Lines from 0, both included.
struct LineRange {
    int first = 0;
    int last = 0;
    bool operator==(const LineRange&) const = default;
};
// The whole lines of a selection. A selection that ends at the start of a line does not take that line.
LineRange LinesOfSelection(int startLine, int endLine, bool endsAtLineStart);

// The place in a formatted line of the character that was at `place` (bytes): as many characters that are no blanks stand
// before it. Of a place among blanks, as near to the character before as it was.
std::size_t SamePlaceInLine(std::string_view before, std::string_view after, std::size_t place);

struct LineReplacement {
    std::size_t start = 0;  // in the text as the replacements before this one have left it
    std::size_t length = 0;
    std::string_view text;  // part of `after`
    bool operator==(const LineReplacement&) const = default;
};
// What makes `after` out of `before`: in each line that differs, the part that differs. A break is never replaced, because
// a line that loses its break for a moment gives its marks to the next one. One replacement of all when the number of lines differs.
std::vector<LineReplacement> LineReplacements(std::string_view before, std::string_view after);
