// Limits the text of the ASM pane: whole lines up to the limits of a part, long lines in pieces. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The limits of a part. The rest is left out, and a line of the part's text says so.
inline constexpr std::size_t kAsmPartLines = 8000;
inline constexpr std::size_t kAsmPartBytes = std::size_t{4} << 20;

// The size of the current part so far.
struct AsmPart {
    std::size_t lines = 0;
    std::size_t bytes = 0;
    bool full = false;
};

// Returns as much of `text` as fits into the part. `text` is UTF-8: whole lines, or the end of the part.
std::string AsmPartTake(AsmPart& part, std::string_view text);

// The number of lines of a text in the pane. A last line without a line break counts.
int AsmLinesIn(std::string_view text);

// Removes a piece from the start of `text` and returns it: whole lines of about `bytes` bytes, at least one line.
std::string_view AsmTakePiece(std::string_view* text, std::size_t bytes);
