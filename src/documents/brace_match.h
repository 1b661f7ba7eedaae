// The partner of a bracket, looked for in a bounded stretch of styled text. Pure.
#pragma once

#include <cstddef>
#include <span>

struct StyledByte {
    char character;
    char style;
};

bool IsBrace(char character);

// Index of the bracket that belongs to the one at `at`, or -1. Brackets of another style - in a string or a comment -
// do not count.
std::ptrdiff_t MatchBrace(std::span<const StyledByte> text, std::size_t at);
