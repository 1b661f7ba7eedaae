// Rows of the memory view. Pure.
#include "debugui/pane_memory.h"

#include "base/hex_digit.h"
#include "debugui/pane_rows.h"

#include <algorithm>

namespace {

constexpr int kGap = 1;  // blanks after the address and before the characters

bool IsPlain(std::uint8_t byte) { return byte >= 32 && byte <= 126; }

}  // namespace

MemoryShape MemoryShapeThatFits(int digits, int characters) {
    for (const int bytes : {16, 8})
        if (MemoryRowWidth({digits, bytes}) <= characters) return {digits, bytes};
    return {digits, 4};
}

int MemoryHexColumn(const MemoryShape& shape, int index) {
    return shape.digits + kGap + index * 3 + (index >= shape.bytes / 2 ? 1 : 0);  // a wider gap in the middle
}

int MemoryTextColumn(const MemoryShape& shape, int index) {
    return MemoryHexColumn(shape, shape.bytes - 1) + 2 + kGap + index;
}

int MemoryRowWidth(const MemoryShape& shape) { return MemoryTextColumn(shape, shape.bytes); }

std::wstring MemoryRowText(std::uint64_t address, const MemoryShape& shape, std::span<const MemoryByte> bytes) {
    std::wstring row(static_cast<std::size_t>(MemoryRowWidth(shape)), L' ');
    const std::wstring number = HexText(address, shape.digits);
    std::copy_n(number.begin(), std::min(number.size(), static_cast<std::size_t>(shape.digits)), row.begin());
    const int count = std::min(shape.bytes, static_cast<int>(bytes.size()));
    for (int i = 0; i < count; ++i) {
        const MemoryByte& byte = bytes[static_cast<std::size_t>(i)];
        const std::wstring hex = byte ? HexText(*byte, 2) : L"??";
        std::copy(hex.begin(), hex.end(), row.begin() + MemoryHexColumn(shape, i));
        row[static_cast<std::size_t>(MemoryTextColumn(shape, i))] = !byte            ? L' '
                                                                    : IsPlain(*byte) ? static_cast<wchar_t>(*byte)
                                                                                     : L'.';
    }
    return row;
}

MemoryCaret MemoryCaretAt(const MemoryShape& shape, int column) {
    const int text = column - MemoryTextColumn(shape, 0);
    if (text >= 0) return {std::min(text, shape.bytes - 1), true, false};
    for (int i = shape.bytes - 1; i > 0; --i) {
        const int start = MemoryHexColumn(shape, i);
        if (column >= start) return {i, false, column > start};
    }
    return {0, false, column > MemoryHexColumn(shape, 0)};
}

std::optional<std::uint8_t> MemoryTyped(std::uint8_t old, const MemoryCaret& caret, wchar_t typed) {
    if (caret.text) {
        if (typed < 32 || typed > 126) return {};
        return static_cast<std::uint8_t>(typed);
    }
    const int digit = HexValue(typed);
    if (digit < 0) return {};
    return static_cast<std::uint8_t>(caret.low ? (old & 0xF0) | digit : (old & 0x0F) | digit << 4);
}
