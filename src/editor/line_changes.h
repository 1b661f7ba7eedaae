// What the commands for lines make of them: text in, text out. Each line keeps to whole characters, and the line endings
// stay in their places, so that a last line without one stays so. Pure.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Lines from 0, both included.
struct LineBlock {
    std::ptrdiff_t first = 0, last = 0;
    std::ptrdiff_t count() const { return last - first + 1; }
    bool operator==(const LineBlock&) const = default;
};
// Blocks that touch or overlap become one. Sorted.
std::vector<LineBlock> MergedBlocks(std::vector<LineBlock> blocks);

// The bytes of a line by which it is sorted; a length of 0: the whole line.
struct SortKey {
    std::size_t from = 0, length = 0;
};
struct SortedLines {
    std::string text;
    std::vector<std::size_t> order;  // the lines as they were, in their new order
    bool stopped = false;            // `goesOn` has ended it; there is no text then
};
// Sorts by letters without regard to case (ASCII), equal ones by their bytes; otherwise the order stays. `keys` has one for
// each line, or none. `goesOn` is asked with the share of the work that is done (0 to 1).
SortedLines SortLines(std::string_view text, bool down, std::span<const SortKey> keys,
                      const std::function<bool(double)>& goesOn);

// Bytes of a text.
struct TextSpan {
    std::size_t start = 0, end = 0;
    bool operator==(const TextSpan&) const = default;
};
// What must go so that each line stands there only once, at its first place. Sorted.
std::vector<TextSpan> RepeatedLines(std::string_view text);

std::string TrimLineEnds(std::string_view text);                     // blanks and tabs
std::string TabsToBlanks(std::string_view text, std::size_t width);  // everywhere in the line
std::string BlanksToTabs(std::string_view text, std::size_t width);  // of the indentation
// One line of all, with one blank where a break and the indentation behind it were.
std::string JoinLines(std::string_view text);

// One change that lets two neighbours change places: `start` to `end` goes, then `text` comes in at `at`, all within the
// two. `movesUpper`: which of the two is taken out and put in again; the marks of the other one stay on it.
struct TextMove {
    TextSpan erased;
    std::size_t at = 0;  // after the erasing
    std::string text;
};
// `upper` ends with a line break.
TextMove MoveOver(std::string_view upper, std::string_view lower, bool movesUpper);

// Each word begins with a capital, the rest of it is small. The functions give the other case of a letter, or the letter.
std::wstring TitleCase(std::wstring_view text, wchar_t (*upper)(wchar_t), wchar_t (*lower)(wchar_t));
