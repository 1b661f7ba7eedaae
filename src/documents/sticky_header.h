// The sticky header: the nearest line above the caret that opens a procedure or a type, found by a plain prefix test.
// A cache keeps what is known about the lines above the caret, so that after a move or an edit only the lines that changed are
// looked at. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Longer lines are never headers.
inline constexpr std::size_t kStickyMaximumLine = 254;

// Whether the line (without its end) is a header: begins, at its first byte and case-sensitively, with one of the
// opening words. "TYPEOF" counts, indented lines do not; deliberately simple, and what users of it learned to expect.
bool StickyIsHeader(std::string_view line);

inline constexpr std::int64_t kStickyNone = -1;

// What is known: no header lies on the lines after `header` up to and including `anchor`. With `header` at kStickyNone
// that reaches up to line 0, unless `pendingBelow` says that lines 0..pendingBelow-1 are still to be looked at.
struct StickyCache {
    std::int64_t anchor = -1;  // -1: nothing known
    std::int64_t header = kStickyNone;
    std::int64_t pendingBelow = 0;
};

// What to look at next for the header of `line`: lines from `first` to `last`, upwards. Empty (first > last) when the
// cache already has the answer.
struct StickyRange {
    std::int64_t first = 0;
    std::int64_t last = -1;
};
StickyRange StickyWanted(const StickyCache& cache, std::int64_t line);

// Result of a look at lines, bottom up.
struct StickyScan {
    std::int64_t header = kStickyNone;  // line of the header found
    std::int64_t reached = 0;           // topmost line looked at
};
// Looks through `text`, which ends with line `last` (without its end) and begins at the start of some line, bottom up,
// until a header turns up or the text ends. Lines end with CR, LF or both.
StickyScan StickyScanUp(std::string_view text, std::int64_t last);

// Takes the result of a look at StickyWanted's range, or at its lower part.
void StickyLearn(StickyCache& cache, std::int64_t line, const StickyScan& scan);

// A change of text that begins on `line`, adding `linesAdded` lines (negative: removed).
void StickyForget(StickyCache& cache, std::int64_t line, std::int64_t linesAdded);
