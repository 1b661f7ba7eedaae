// Finds whether a place in BASIC source is inside a block of inline assembly that begins far above it, without scanning
// from the top. Positions are bytes and are starts of lines. Pure.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

// What was found out about the text above a place: the last line in `from` to `to` that begins or ends a block, or that
// there is none.
struct AssemblyAbove {
    std::ptrdiff_t from = 0;
    std::ptrdiff_t to = 0;
    std::ptrdiff_t edge = -1;  // -1: none
    bool opens = false;        // the edge begins a block
};
// Reads a document.
struct AssemblySource {
    // Whole lines from `start` to `end`; of a line that is much too long to be assembly, its beginning is enough.
    std::function<std::string(std::ptrdiff_t start, std::ptrdiff_t end)> text;
    // The start of a stretch of whole lines that ends at `end` (above 0), of about kAssemblyStretch bytes.
    std::function<std::ptrdiff_t(std::ptrdiff_t end)> stretchBefore;
};
inline constexpr std::ptrdiff_t kAssemblyStretch = 256 << 10;  // bytes

// Whether a line that starts at `position` is inside a block. Searches at most `stretches` and keeps what it found.
// Nothing when the answer lies further up; asking again then goes on.
std::optional<bool> AssemblySearch(AssemblyAbove& above, std::ptrdiff_t position, const AssemblySource& source,
                                   int stretches);
// Called after a change of the text on the line that starts at `lineStart`.
void AssemblyForget(AssemblyAbove& above, std::ptrdiff_t lineStart);
