// The encodings and line endings of source files, and how bytes are checked and converted. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

enum class TextEncoding : std::uint32_t { Utf8 = 0, Ansi = 1 };  // Ansi: the system's active code page
enum class LineEnding : std::uint32_t { CrLf = 0, Lf = 1, Cr = 2 };
enum class Utf16Order : std::uint8_t { None, Little, Big };  // None: the file is not UTF-16

// What a file on the disk is beside its TextEncoding and its LineEnding.
struct DiskForm {
    Utf16Order utf16 = Utf16Order::None;  // the TextEncoding is then Utf8
    bool mark = false;                    // UTF-16 that begins with a byte-order mark
    bool inexact = false;                 // the text does not give back the bytes from which it was decoded
    bool keepBreaks = false;              // holds NUL bytes, so its line breaks are data and stay as they are
    bool mixedBreaks = false;             // line breaks of several kinds, of which a save makes one
};

// As what the bytes of a file are read. Guess: as they look; the others whatever they look like.
enum class SourceCode : std::uint8_t { Guess, Utf8, Ansi, Utf16Little, Utf16Big };

// The name that the user sees.
const wchar_t* EncodingName(TextEncoding encoding, const DiskForm& form);

// True for well-formed UTF-8. Overlong forms, surrogates and code points beyond U+10FFFF are not; NUL bytes are.
bool IsValidUtf8Bytes(const char* bytes, std::size_t length);

// Whether a NUL byte is among them. The search of the C runtime looks at single bytes under Wine.
bool HasNul(std::string_view bytes);

// The byte offset of the first character of valid UTF-8 that `holds` refuses, or -1. `holds` is called with stretches
// of about 64 kB that are not pure ASCII, and with the single characters of a stretch that it refuses.
std::ptrdiff_t FirstRefusedCharacter(std::string_view utf8, const std::function<bool(std::string_view)>& holds);

// The kind of the first line break; CRLF when there is none.
LineEnding DetectLineEnding(const char* bytes, std::size_t length);

// Replaces every CRLF, lone CR and lone LF by the given break. Returns a new block, terminated by a NUL, that the
// caller frees with free(); null when memory runs out. `outLength` does not count the NUL and may be null.
char* NormalizeLineEndings(const char* bytes, std::size_t length, LineEnding lineEnding, std::size_t* outLength);
