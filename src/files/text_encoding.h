// The two encodings and three line endings of a source file, and the byte rules that tell and change them. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

enum class TextEncoding : std::uint32_t { Utf8 = 0, Ansi = 1 };  // Ansi: the system's active code page
enum class LineEnding : std::uint32_t { CrLf = 0, Lf = 1, Cr = 2 };

// Well-formed UTF-8 without overlong forms, surrogates and code points beyond U+10FFFF; NUL bytes are text.
bool IsValidUtf8Bytes(const char* bytes, std::size_t length);

// Byte offset of the first character of valid UTF-8 that `holds` refuses, or -1. `holds` is asked about stretches of up to
// 64 kB that are no ASCII, and within one that it refuses about single characters.
std::ptrdiff_t FirstRefusedCharacter(std::string_view utf8, const std::function<bool(std::string_view)>& holds);

// The first line break decides; CRLF when there is none.
LineEnding DetectLineEnding(const char* bytes, std::size_t length);

// A new NUL-terminated block, freed by the caller with free(), in which every CRLF, lone CR and lone LF is the one
// break asked for. Null when memory runs out. `outLength` (without the NUL) may be null.
char* NormalizeLineEndings(const char* bytes, std::size_t length, LineEnding lineEnding, std::size_t* outLength);
