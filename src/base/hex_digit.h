// The value of one hexadecimal digit, narrow or wide. Pure.
#pragma once

// Returns 0 to 15, or -1 for a character that is not a hexadecimal digit.
template <typename Character>
constexpr int HexValue(Character c) {
    if (c >= '0' && c <= '9') return static_cast<int>(c) - '0';
    if (c >= 'A' && c <= 'F') return static_cast<int>(c) - 'A' + 10;
    return c >= 'a' && c <= 'f' ? static_cast<int>(c) - 'a' + 10 : -1;
}
