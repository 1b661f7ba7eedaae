// Lines that are too long for colours, folding and word wrap. Pure.
#pragma once

#include <cstddef>
#include <string_view>

// A line of this many bytes is laid out so slowly that its document is shown plain.
inline constexpr std::size_t kLongLine = 1 << 20;

// The longest line of a text that comes in pieces. Of ordinary text it looks at one line in each kLongLine bytes.
class LongestLine {
public:
    void Look(std::string_view piece);
    std::size_t Length() const { return longest_; }  // bytes; too small for a text without a line of kLongLine

private:
    std::size_t line_ = 0;  // bytes since the last break that was looked at
    std::size_t longest_ = 0;
};
