// What the "go to line" dialog makes of its fields. Pure.
#pragma once

#include <cstddef>
#include <string_view>

// What is in a field: leading white space, a sign, decimal digits; 0 when there are none.
int GotoNumber(std::wstring_view field);

// The 0-based line to go to for a line that counts from 1, kept within the document's `lineCount`; -1: nowhere.
std::ptrdiff_t GotoLineIndex(int line, std::ptrdiff_t lineCount);

// The byte position: the column is an offset in bytes from the line's start, kept on the line.
std::ptrdiff_t GotoLinePosition(std::ptrdiff_t lineStart, std::ptrdiff_t lineEnd, std::ptrdiff_t column);
