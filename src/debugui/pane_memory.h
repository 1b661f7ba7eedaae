// The memory view as characters: rows of 16 bytes, where each byte stands in them, and typing over them. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

inline constexpr int kMemoryRow = 16;  // bytes a row

// A byte as read, or nothing where memory cannot be read.
using MemoryByte = std::optional<std::uint8_t>;

// "000140001000 48 89 E5 ?? ... text": address, two halves of hexadecimal bytes, characters.
std::wstring MemoryRowText(std::uint64_t address, int digits, std::span<const MemoryByte> bytes);
// Column, in characters, of a byte's first hexadecimal digit, of its character, and the width of a row.
int MemoryHexColumn(int digits, int index);
int MemoryTextColumn(int digits, int index);
int MemoryRowWidth(int digits);

// The place of the caret in a row.
struct MemoryCaret {
    int index = 0;      // byte of the row, 0..15
    bool text = false;  // among the characters
    bool low = false;   // second hexadecimal digit
    bool operator==(const MemoryCaret&) const = default;
};
// The nearest place to a column that was clicked.
MemoryCaret MemoryCaretAt(int digits, int column);

// The byte after `typed` at the caret; nothing for a character that does not belong there.
std::optional<std::uint8_t> MemoryTyped(std::uint8_t old, const MemoryCaret& caret, wchar_t typed);
