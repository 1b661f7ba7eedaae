#include "ui/box_text.h"

namespace {

constexpr std::size_t WidthOf(wchar_t character) { return character >= 0x1100 ? 2 : 1; }

bool IsLowSurrogate(wchar_t character) { return (character & 0xFC00) == 0xDC00; }
bool IsBlank(wchar_t character) { return character == L' ' || character == L'\n' || character == L'\r'; }

// How many characters from the start of the text fit into the width, at least one whole character.
std::size_t CharactersWithin(std::wstring_view text, std::size_t width) {
    std::size_t at = 0;
    for (std::size_t used = 0; at < text.size() && used + WidthOf(text[at]) <= width; ++at) used += WidthOf(text[at]);
    if (at < text.size() && at > 0 && IsLowSurrogate(text[at])) --at;
    return at > 0 ? at : text.size() > 1 && IsLowSurrogate(text[1]) ? 2 : 1;
}

// The same from the end of the text; may be none.
std::size_t CharactersAtEnd(std::wstring_view text, std::size_t width) {
    std::size_t count = 0;
    for (std::size_t used = 0; count < text.size(); ++count) {
        used += WidthOf(text[text.size() - count - 1]);
        if (used > width) break;
    }
    if (count > 0 && count < text.size() && IsLowSurrogate(text[text.size() - count])) --count;
    return count;
}

std::size_t WordLength(std::wstring_view text) {
    std::size_t length = 0;
    while (length < text.size() && !IsBlank(text[length])) ++length;
    return length;
}

}  // namespace

std::wstring BreakLongWords(std::wstring_view text, std::size_t most) {
    std::wstring out;
    while (!text.empty()) {
        std::wstring_view word = text.substr(0, WordLength(text));
        text.remove_prefix(word.size());
        while (CharactersWithin(word, most) < word.size()) {
            std::size_t count = CharactersWithin(word, most);
            const std::size_t slash = word.substr(0, count).find_last_of(L"\\/");
            if (slash != std::wstring_view::npos && slash >= count / 2) count = slash + 1;
            out.append(word.substr(0, count)) += L'\n';
            word.remove_prefix(count);
        }
        out += word;
        for (; !text.empty() && IsBlank(text.front()); text.remove_prefix(1)) out += text.front();
    }
    return out;
}

std::wstring ShortenedPath(std::wstring_view path, std::size_t most) {
    constexpr std::wstring_view kDots = L"...";
    if (path.empty() || CharactersWithin(path, most) >= path.size()) return std::wstring{path};
    // A third for the drive and its first folders; the end has the name.
    const std::wstring_view head = path.substr(0, CharactersWithin(path, most / 3));
    return std::wstring{head}.append(kDots).append(
        path.substr(path.size() - CharactersAtEnd(path, most - most / 3 - kDots.size())));
}
