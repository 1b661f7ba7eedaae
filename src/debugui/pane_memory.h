// The memory view as characters: rows of bytes, where each byte stands in them, and typing over them. Pure.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// How a row is made up.
struct MemoryShape {
    int digits = 16;  // of its address
    int bytes = 16;   // 16, 8 or 4
    bool operator==(const MemoryShape&) const = default;
};
// The shape with the most bytes whose rows fit into `characters` columns; 4 bytes when not even these fit.
MemoryShape MemoryShapeThatFits(int digits, int characters);

// A byte as read, or nothing where memory cannot be read.
using MemoryByte = std::optional<std::uint8_t>;

// "000140001000 48 89 E5 ?? ... text": address, two halves of hexadecimal bytes, characters.
std::wstring MemoryRowText(std::uint64_t address, const MemoryShape& shape, std::span<const MemoryByte> bytes);
// Column, in characters, of a byte's first hexadecimal digit, column of its character, and the width of a row.
int MemoryHexColumn(const MemoryShape& shape, int index);
int MemoryTextColumn(const MemoryShape& shape, int index);
int MemoryRowWidth(const MemoryShape& shape);

// The place of the caret in a row.
struct MemoryCaret {
    int index = 0;      // byte of the row
    bool text = false;  // in the characters, not in the hexadecimal digits
    bool low = false;   // second hexadecimal digit
    bool operator==(const MemoryCaret&) const = default;
};
// The nearest place to a column that was clicked.
MemoryCaret MemoryCaretAt(const MemoryShape& shape, int column);

// The byte that typing `typed` at the caret makes of `old`; nothing for a character that is not accepted there.
std::optional<std::uint8_t> MemoryTyped(std::uint8_t old, const MemoryCaret& caret, wchar_t typed);

// What is shown of the address space, in rows.
struct MemoryPlace {
    std::uint64_t top = 0;       // address of the first row
    std::uint64_t caretRow = 0;  // address of the caret's row
    MemoryCaret caret;
    int rows = 1;       // that fit into the window, including a cut one at the end
    bool x64 = true;    // kind of the program
    MemoryShape shape;  // of every row
};
// Address of the first row after scrolling by rows, limited to the address space.
std::uint64_t MemoryScrolledTop(const MemoryPlace& place, std::int64_t rows);
// Both move the caret: the first by bytes, the second by one digit or character (`step` is 1 or -1). The caret does not
// leave its byte for one outside the address space. They return how many rows to scroll so that the caret is visible.
std::int64_t MemoryMoveCaretBy(MemoryPlace& place, std::int64_t bytes);
std::int64_t MemoryStepCaretBy(MemoryPlace& place, int step);
// Changes the length of rows. The caret stays on its byte, which gets another place in its row.
void MemoryReshape(MemoryPlace& place, const MemoryShape& shape);

// --- What has been read
// Reads as many of the bytes as can be read from the start, and answers how many.
using MemoryPart = std::function<std::size_t(std::uint64_t address, void* out, std::size_t count)>;

struct MemoryContent : MemoryPlace {
    bool filled = false;            // something has been read in this session
    std::uint64_t base = 0;         // the address of the address box
    int characters = 80;            // that fit into a row
    std::uint32_t processId = 0;    // of the shown program
    std::uint64_t serial = 0;       // of the shown stop
    std::vector<MemoryByte> bytes;  // from `top` on
    std::uint64_t beforeTop = 0;    // `top` and `bytes` of the previous stop
    std::vector<MemoryByte> before;
};
// The program that is shown from now on; what was read of another one is forgotten.
void MemoryTakeProgram(MemoryContent& content, std::uint32_t processId, bool x64);
// The stop and the address that are shown from now on. Of another stop than the last, what was shown is kept as
// `before`. Another address moves the first row there.
void MemoryTakeStop(MemoryContent& content, std::uint64_t serial, std::uint64_t base);
// Reads what is visible, in rows as long as the window allows.
void MemoryReadVisible(MemoryContent& content, const MemoryPart& readSome);
// Reads bytes; unreadable pages are skipped, so that those after them show.
std::vector<MemoryByte> MemoryReadBytes(std::uint64_t address, std::size_t count, const MemoryPart& readSome);
bool MemoryHasChanged(const MemoryContent& content, std::uint64_t address, const MemoryByte& now);
// The bytes of a visible row; empty when they were not read.
std::span<const MemoryByte> MemoryRowBytes(const MemoryContent& content, std::size_t row);
std::wstring MemoryVisibleText(const MemoryContent& content);  // every visible row
