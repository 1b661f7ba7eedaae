// Lines of a text. A line ends in LF, CR LF or the end of the text. Pure; any thread.
#pragma once

#include <string_view>

// Takes the first line off the front of `rest` and returns it without its break. Of several CR before the LF only the
// last one belongs to the break.
inline std::string_view TakeLine(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}
