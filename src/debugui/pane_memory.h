// The memory view as characters: rows of bytes, where each byte stands in them, and typing over them. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// How a row is made up.
struct MemoryShape {
    int digits = 16;  // of its address
    int bytes = 16;   // 16, 8 or 4
    bool operator==(const MemoryShape&) const = default;
};
// As many bytes as rows of that many characters have room for; 4 when there is not even room for these.
MemoryShape MemoryShapeThatFits(int digits, int characters);

// A byte as read, or nothing where memory cannot be read.
using MemoryByte = std::optional<std::uint8_t>;

// "000140001000 48 89 E5 ?? ... text": address, two halves of hexadecimal bytes, characters.
std::wstring MemoryRowText(std::uint64_t address, const MemoryShape& shape, std::span<const MemoryByte> bytes);
// Column, in characters, of a byte's first hexadecimal digit, of its character, and the width of a row.
int MemoryHexColumn(const MemoryShape& shape, int index);
int MemoryTextColumn(const MemoryShape& shape, int index);
int MemoryRowWidth(const MemoryShape& shape);

// The place of the caret in a row.
struct MemoryCaret {
    int index = 0;      // byte of the row
    bool text = false;  // among the characters
    bool low = false;   // second hexadecimal digit
    bool operator==(const MemoryCaret&) const = default;
};
// The nearest place to a column that was clicked.
MemoryCaret MemoryCaretAt(const MemoryShape& shape, int column);

// The byte after `typed` at the caret; nothing for a character that does not belong there.
std::optional<std::uint8_t> MemoryTyped(std::uint8_t old, const MemoryCaret& caret, wchar_t typed);
