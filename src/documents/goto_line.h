// Turns the fields of the "go to line" dialog into a position. Pure.
#pragma once

#include <cstddef>
#include <string_view>

// The number in a field: leading white space, a sign, decimal digits. 0 when there are no digits.
int GotoNumber(std::wstring_view field);

// What the line field says: a line, or "line:column" or "line,column" as compilers and the status bar write a place. Both
// count from 1.
struct GotoPlace {
    int line = 0;
    int column = 0;  // 0: none is named
};
GotoPlace GotoPlaceOf(std::wstring_view field);

// The 0-based line for `line`, which counts from 1. The last line when `line` is above `lineCount`; -1 when it is below
// 1.
std::ptrdiff_t GotoLineIndex(int line, std::ptrdiff_t lineCount);
