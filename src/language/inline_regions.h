// Finds inline assembly in BASIC source: lines that begin with "!" or "ASM", and blocks from a lone ASM to END ASM.
// Pure.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

struct TextRange {
    std::size_t start = 0;  // bytes
    std::size_t length = 0;
};

// The ranges of the lines that are assembly, each without its leading blanks, its end and the word ASM. `text` must
// begin at the start of a line outside any block.
std::vector<TextRange> InlineAssemblyRanges(std::string_view text);
