// The lines that the fake compiler prints and that the floor program shows, so that both have the same text. Pure.
#pragma once

#include <cstdio>
#include <string>

inline constexpr int kErrorEvery = 10;  // every tenth line is a diagnostic

inline bool IsFloodError(int number) { return number % kErrorEvery == 0; }

// Returns the line without a line break. The number makes all lines different.
inline std::string FloodLine(int number) {
    char line[128];
    std::snprintf(line, sizeof(line),
                  IsFloodError(number) ? "main.bas(%d,5): error: undefined name 'total%d'"
                                       : "compiling line %d of the program, symbol table entry %d",
                  number, number);
    return line;
}
