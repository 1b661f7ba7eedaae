// The sticky header: the nearest line above the caret that opens a procedure or a type, found by a plain prefix test. A
// cache holds what is known about the lines above the caret, so that after a move or an edit only new and changed lines
// are read. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

// In bytes. Longer lines are never headers.
inline constexpr std::size_t kStickyMaximumLine = 254;

// Whether the line (without its line break) begins with one of the opening words, in capitals and without indentation.
// A line that begins with "TYPEOF" counts too. The test is simple on purpose.
bool StickyIsHeader(std::string_view line);

inline constexpr std::int64_t kStickyNone = -1;

// What is known: the lines after `header`, up to and including `anchor`, have no header. When `header` is kStickyNone,
// this holds from line `pendingBelow` on, and lines 0..pendingBelow-1 are not read yet.
struct StickyCache {
    std::int64_t anchor = -1;  // -1: nothing is known
    std::int64_t header = kStickyNone;
    std::int64_t pendingBelow = 0;
};

// The lines to read next for the header of `line`: `first` to `last`, from the bottom up. Empty (first > last) when the
// cache has the answer.
struct StickyRange {
    std::int64_t first = 0;
    std::int64_t last = -1;
};
StickyRange StickyWanted(const StickyCache& cache, std::int64_t line);

// Result of a scan from the bottom up.
struct StickyScan {
    std::int64_t header = kStickyNone;  // line of the header found
    std::int64_t reached = 0;           // topmost line read
};
// Reads the lines of `text` from the bottom up, to the first header or the start of the text. `text` begins at the
// start of a line and ends with line `last`, without its line break. Lines end with CR, LF or both.
StickyScan StickyScanUp(std::string_view text, std::int64_t last);

// Adds the result of a scan of StickyWanted's range, or of its lower part, to the cache.
void StickyLearn(StickyCache& cache, std::int64_t line, const StickyScan& scan);

// The text as the cache reads it. Positions are bytes.
struct StickySource {
    std::function<std::ptrdiff_t(std::int64_t line)> lineStart;
    std::function<std::ptrdiff_t(std::int64_t line)> lineEnd;  // before the line break
    std::function<std::int64_t(std::ptrdiff_t position)> lineAt;
    // Valid until the next call; no value when there is no memory for it.
    std::function<std::optional<std::string_view>(std::ptrdiff_t start, std::ptrdiff_t length)> text;
};
// Reads at most `budget` bytes of the lines that the cache needs for `line`, but one line at least. True when the cache
// then has the answer.
bool StickyLookUp(StickyCache& cache, std::int64_t line, std::ptrdiff_t budget, const StickySource& source);

// Updates the cache after a change of the text that begins on `line` and adds `linesAdded` lines (negative: removes).
void StickyForget(StickyCache& cache, std::int64_t line, std::int64_t linesAdded);

// Whether the header is to be shown: only when its line is above what is visible. `header` and `top` are display lines:
// of the header's line (kStickyNone: there is none), and the first visible one. A header that is shown covers the line
// before `top`, because showing it scrolls the text by one line.
bool StickyIsWanted(std::int64_t header, std::int64_t top, bool shown);
// The first visible display line after the header was shown or hidden, so that the text stays where it is on the screen.
// A caret in the topmost line stays visible.
std::int64_t StickyTopAfter(std::int64_t top, std::int64_t caret, bool shown);
