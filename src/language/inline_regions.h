// Finds inline assembly in BASIC source without scanning it from the top: its ranges in a stretch of text, and whether a
// place is inside a block that begins far above it. What a line is says AssemblyOfLine (language/scanner.h). Pure.
#pragma once

#include "language/scanner.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct TextRange {
    std::size_t start = 0;  // bytes
    std::size_t length = 0;
};

// The ranges of the lines that are assembly, each without its leading blanks, its end and the word ASM. `text` must
// begin at the start of a line; `inBlock` says whether that line is inside a block.
std::vector<TextRange> InlineAssemblyRanges(std::string_view text, bool inBlock = false);

// --- Blocks that begin above the text at hand. Positions are bytes and are starts of lines.
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
