// A column as a compiler counts it: bytes of the line in its file, not of the editor's UTF-8. Pure.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

// The bytes that a character (its UTF-8) takes in the file.
using WidthInFile = std::function<std::ptrdiff_t(std::string_view character)>;

// The offset in `line` (UTF-8 without its break) of the character that holds byte `column` (from 0) of the same line in
// its file. A column outside the line gives its nearest end.
std::ptrdiff_t OffsetOfFileColumn(std::string_view line, std::ptrdiff_t column, const WidthInFile& width);
