// Takes numbers and words off the start of a line. ASCII only. Pure; any thread.
#pragma once

#include "base/hex_digit.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

constexpr char UpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

inline std::string_view WithoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return text;
}

// Takes digits off the start of `text`, in a base of at most 16. Empty when there are none. A number of more than 64
// bits loses its upper bits.
inline std::optional<std::uint64_t> TakeNumber(std::string_view* text, unsigned base) {
    std::uint64_t value = 0;
    std::size_t taken = 0;
    while (taken < text->size()) {
        const int digit = HexValue((*text)[taken]);
        if (digit < 0 || static_cast<unsigned>(digit) >= base) break;
        value = value * base + static_cast<unsigned>(digit);
        ++taken;
    }
    text->remove_prefix(taken);
    return taken == 0 ? std::nullopt : std::optional(value);
}

// `prefix` is in upper case; the letter case of `text` does not count. Returns false, and leaves `text`
// unchanged, when it does not start with `prefix`.
inline bool TakePrefix(std::string_view* text, std::string_view prefix) {
    if (text->size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i)
        if (UpperAscii((*text)[i]) != prefix[i]) return false;
    text->remove_prefix(prefix.size());
    return true;
}
