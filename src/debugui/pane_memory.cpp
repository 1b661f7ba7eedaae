// Rows of the memory view. Pure.
#include "debugui/pane_memory.h"

#include "debugui/pane_rows.h"

#include <algorithm>

namespace {

constexpr int kGap = 1;  // blanks after the address and before the characters

int HexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

bool IsPlain(std::uint8_t byte) { return byte >= 32 && byte <= 126; }

}  // namespace

int MemoryHexColumn(int digits, int index) {
    return digits + kGap + index * 3 + (index >= kMemoryRow / 2 ? 1 : 0);  // a wider gap in the middle
}

int MemoryTextColumn(int digits, int index) { return MemoryHexColumn(digits, kMemoryRow - 1) + 2 + kGap + index; }

int MemoryRowWidth(int digits) { return MemoryTextColumn(digits, kMemoryRow); }

std::wstring MemoryRowText(std::uint64_t address, int digits, std::span<const MemoryByte> bytes) {
    std::wstring row(static_cast<std::size_t>(MemoryRowWidth(digits)), L' ');
    const std::wstring number = HexText(address, digits);
    std::copy_n(number.begin(), std::min(number.size(), static_cast<std::size_t>(digits)), row.begin());
    const int count = std::min(kMemoryRow, static_cast<int>(bytes.size()));
    for (int i = 0; i < count; ++i) {
        const MemoryByte& byte = bytes[static_cast<std::size_t>(i)];
        const std::wstring hex = byte ? HexText(*byte, 2) : L"??";
        std::copy(hex.begin(), hex.end(), row.begin() + MemoryHexColumn(digits, i));
        row[static_cast<std::size_t>(MemoryTextColumn(digits, i))] = !byte            ? L' '
                                                                     : IsPlain(*byte) ? static_cast<wchar_t>(*byte)
                                                                                      : L'.';
    }
    return row;
}

MemoryCaret MemoryCaretAt(int digits, int column) {
    const int text = column - MemoryTextColumn(digits, 0);
    if (text >= 0) return {std::min(text, kMemoryRow - 1), true, false};
    for (int i = kMemoryRow - 1; i > 0; --i) {
        const int start = MemoryHexColumn(digits, i);
        if (column >= start) return {i, false, column > start};
    }
    return {0, false, column > MemoryHexColumn(digits, 0)};
}

std::optional<std::uint8_t> MemoryTyped(std::uint8_t old, const MemoryCaret& caret, wchar_t typed) {
    if (caret.text) {
        if (typed < 32 || typed > 126) return {};
        return static_cast<std::uint8_t>(typed);
    }
    const int digit = HexDigit(typed);
    if (digit < 0) return {};
    return static_cast<std::uint8_t>(caret.low ? (old & 0xF0) | digit : (old & 0x0F) | digit << 4);
}
