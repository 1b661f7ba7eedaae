// Finds the partner of a bracket in a stretch of styled text. Pure.
#pragma once

#include <cstddef>
#include <span>

struct StyledByte {
    char character;
    char style;  // Scintilla's style number
};

// True for ( ) [ ] { }.
bool IsBrace(char character);

// Index in `text` of the bracket that belongs to the one at index `at`; -1 when there is none or when `at` is no
// bracket. Brackets with another style (in a string or a comment) do not count.
std::ptrdiff_t MatchBrace(std::span<const StyledByte> text, std::size_t at);
