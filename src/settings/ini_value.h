// Values and lines of an INI file, as the system's INI functions write and read them. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Encodes a value so that the system's INI functions give it back unchanged. They drop blanks and quotes around a value
// and end it at a line break. A value with blanks or a pair of quotes at its ends is put in quotes. A value with line
// breaks or control characters is escaped (\\, \r, \n, \xHH) after the prefix "[ESC]". Any other value is stored as it
// is.
std::wstring EncodeIniValue(std::wstring_view value);
std::wstring DecodeIniValue(std::wstring_view stored);
// The greatest length of the stored form of a text. Both lengths are wide characters with the terminator.
constexpr std::size_t IniValueCapacity(std::size_t capacity) { return 4 * capacity + 8; }

// Finds the line of a key in a section as GetPrivateProfileSection returns it: lines "key=value", each ended by a NUL.
// Keys are compared without regard to case, and the first one counts.
enum class IniLineKind : std::uint8_t {
    Missing,
    Plain,   // GetPrivateProfileString would return `value`
    Quoted,  // `value` has a quote at an end; the system decides what a read returns
};
struct IniLine {
    IniLineKind kind = IniLineKind::Missing;
    std::wstring_view value;  // without blanks around it; refers to the text of the section
};
IniLine FindIniLine(std::wstring_view lines, std::wstring_view key);

// Reads an optional minus and one to nine digits without leading zeros. Returns false for any other text, for which the
// system's own rules are needed.
bool ParsePlainNumber(std::wstring_view text, int* number);
