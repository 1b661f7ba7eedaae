// How much of a text the ASM pane takes: whole lines up to a part's limits, and long lines in pieces. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// A part has room for so many lines. What it has no room for is left out, and a line of the part's text says so.
inline constexpr std::size_t kAsmPartLines = 8000;
inline constexpr std::size_t kAsmPartBytes = std::size_t{4} << 20;

// What the current part has got so far.
struct AsmPart {
    std::size_t lines = 0;
    std::size_t bytes = 0;
    bool full = false;
};

// What fits of UTF-8 text that is whole lines, or the end of the part.
std::string AsmPartTake(AsmPart& part, std::string_view text);

// The lines that a text takes in the pane, a last one without its line break included.
int AsmLinesIn(std::string_view text);

// Cuts a piece off a long text: whole lines, of about so many bytes, at least one line.
std::string_view AsmTakePiece(std::string_view* text, std::size_t bytes);
