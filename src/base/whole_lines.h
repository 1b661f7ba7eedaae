// Lines of a text with their breaks. A line ends in CR LF, CR, LF or the end of the text. Pure; any thread.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

struct WholeLine {
    std::string_view text, ending;  // the ending of the last line may be empty
    std::string_view whole() const { return {text.data(), text.size() + ending.size()}; }
};

// Takes the first line off the front of `rest`.
inline WholeLine TakeWholeLine(std::string_view& rest) {
    const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
    const std::size_t length = end == rest.size() ? 0 : rest.substr(end).starts_with("\r\n") ? 2 : 1;
    const WholeLine line = {rest.substr(0, end), rest.substr(end, length)};
    rest.remove_prefix(end + length);
    return line;
}

// A break at the end of the text begins no further line. The views are of `text`.
inline std::vector<WholeLine> WholeLinesOf(std::string_view text) {
    std::vector<WholeLine> lines;
    while (!text.empty()) lines.push_back(TakeWholeLine(text));
    return lines;
}
