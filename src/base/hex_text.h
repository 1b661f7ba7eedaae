// Hexadecimal numbers as wide text. Pure.
#pragma once

#include <cstdint>
#include <string>

// In upper case, with leading zeros up to `digits` digits.
inline std::wstring HexText(std::uint64_t value, int digits) {
    std::wstring text;
    for (; value != 0 || static_cast<int>(text.size()) < digits; value >>= 4)
        text.insert(text.begin(), L"0123456789ABCDEF"[value & 15]);
    return text;
}
