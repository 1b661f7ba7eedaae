#include "ai/chat_lines.h"

std::vector<PaneLine> ChatLines(std::wstring_view text) {
    std::vector<PaneLine> lines;
    while (!text.empty()) {
        const std::size_t end = text.find_first_of(L"\r\n");
        lines.push_back({.text = std::wstring(text.substr(0, end)), .lineBreak = end != std::wstring_view::npos});
        if (end == std::wstring_view::npos) break;
        text.remove_prefix(end + (text.substr(end).starts_with(L"\r\n") ? 2 : 1));
    }
    return lines;
}
