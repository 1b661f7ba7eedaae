// Values and lines of an INI file, as the system's INI functions write and read them. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// A value as it is written after the "=", such that the system's INI functions, which drop blanks and quotes around a
// value and end it at a line break, give it back unchanged. Values without any of these are written as they are; blanks
// or a pair of quotes at the ends cost a pair of quotes around; line breaks and control characters turn the whole value
// into an escaped one, told by its prefix "[ESC]" (\\, \r, \n, \xHH).
std::wstring EncodeIniValue(std::wstring_view value);
std::wstring DecodeIniValue(std::wstring_view stored);
// Characters that the stored form of a text of `capacity` characters can take, terminator included.
constexpr std::size_t IniValueCapacity(std::size_t capacity) { return 4 * capacity + 8; }

// A key's line in a section as the system hands it out: "key=value" lines, each ended by a NUL. Keys are compared without
// regard to case; the first one counts.
enum class IniLineKind : std::uint8_t {
    Missing,
    Plain,   // `value` is what a read of the key gives
    Quoted,  // quotes at an end: what a read makes of them is the system's business
};
struct IniLine {
    IniLineKind kind = IniLineKind::Missing;
    std::wstring_view value;  // without blanks around it; a view into the section's lines
};
IniLine FindIniLine(std::wstring_view lines, std::wstring_view key);

// True for an optional minus and one to nine digits; anything else is left to the system's own rules.
bool ParsePlainNumber(std::wstring_view text, int* number);
