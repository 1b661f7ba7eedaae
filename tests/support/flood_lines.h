// The lines that a flooding compiler prints and that the floor's Rich Edit is fed: the same for both. No Windows here.
#pragma once

#include <cstdio>
#include <string>

inline constexpr int kErrorEvery = 10;  // of so many lines one is a diagnostic

inline bool IsFloodError(int number) { return number % kErrorEvery == 0; }

// Without its line break; the number keeps all lines different.
inline std::string FloodLine(int number) {
    char line[128];
    std::snprintf(line, sizeof(line),
                  IsFloodError(number) ? "main.bas(%d,5): error: undefined name 'total%d'"
                                       : "compiling line %d of the program, symbol table entry %d",
                  number, number);
    return line;
}
