// Decimal numbers at the start of a text. Pure; any thread.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

// Reads an optional sign and digits, and ignores what follows them. Returns 0 when there are no digits. A number
// outside the range of 32 bits becomes the nearest one inside it.
template <typename Character>
constexpr std::int32_t DecimalNumber(std::basic_string_view<Character> text) {
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    constexpr std::int64_t kBeyond = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    std::int64_t number = 0;
    for (const Character digit : text) {
        if (digit < '0' || digit > '9') break;
        number = std::min(number * 10 + (digit - '0'), kBeyond);
    }
    return static_cast<std::int32_t>(negative ? -number : std::min(number, kBeyond - 1));
}
