// The difference of two texts as lines to show, like a patch: changed lines with some of those around them. Pure; any
// thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum class DifferenceKind : std::uint8_t {
    Same,
    Removed,
    Added,
    Place,  // says which lines follow
};
struct DifferenceLine {
    DifferenceKind kind = DifferenceKind::Same;
    std::wstring text;  // with "+ ", "- " or two blanks before a line of the texts
};

// Both texts are UTF-8. At most `most` lines; the last one then says that there are more. Empty when the lines do not
// differ.
std::vector<DifferenceLine> DifferenceOf(std::string_view oldText, std::string_view newText, std::size_t most);
