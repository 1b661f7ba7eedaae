// The two encodings and three line endings of a source file, and the byte rules that tell and change them. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

enum class TextEncoding : std::uint32_t { Utf8 = 0, Ansi = 1 };  // Ansi: the system's active code page
enum class LineEnding : std::uint32_t { CrLf = 0, Lf = 1, Cr = 2 };
