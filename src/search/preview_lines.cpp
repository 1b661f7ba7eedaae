// The lines that a preview of a file shows. Pure.
#include "search/preview_lines.h"

#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>

namespace {

constexpr int kLinesBefore = 8;
constexpr std::size_t kMostBytes = 400;  // of a line
constexpr std::size_t kTabWidth = 4;

std::wstring ShownLine(std::string_view line) {
    std::wstring shown;
    for (const wchar_t character : Utf8ToWideText(line.substr(0, WholeCharacters(line.substr(0, kMostBytes)))))
        if (character == L'\t')
            shown.append(kTabWidth - shown.size() % kTabWidth, L' ');
        else
            shown += character < L' ' ? L' ' : character;
    return shown;
}

// Takes a line without its end off the start.
std::string_view TakeLine(std::string_view* text) {
    const std::size_t end = std::min(text->find_first_of("\r\n"), text->size());
    const std::string_view line = text->substr(0, end);
    const std::size_t two = text->substr(end).starts_with("\r\n") ? 2 : 1;
    text->remove_prefix(std::min(end + two, text->size()));
    return line;
}

}  // namespace

PreviewLines PreviewLinesOf(std::string_view utf8, int line, int most) {
    PreviewLines preview;
    if (utf8.find('\0') != std::string_view::npos) {
        preview.problem = Text(L"Not a text");
        return preview;
    }
    int number = 1;
    for (; number < line - kLinesBefore && !utf8.empty(); ++number) TakeLine(&utf8);
    preview.first = number;
    while (!utf8.empty() && static_cast<int>(preview.lines.size()) < most)
        preview.lines.push_back(ShownLine(TakeLine(&utf8)));
    if (preview.lines.empty())
        preview.problem = line > 0 ? Text(L"The file has no such line") : Text(L"The file is empty");
    return preview;
}
