// A column as a compiler counts it. Pure.
#include "documents/file_column.h"

namespace {

bool IsContinuation(char c) { return (c & 0xC0) == 0x80; }

// The first character of the text, which is not empty. A malformed byte is a character of its own or part of the one
// before it.
std::string_view FirstCharacter(std::string_view text) {
    std::size_t length = 1;
    while (length < 4 && length < text.size() && IsContinuation(text[length])) ++length;
    return text.substr(0, length);
}

}  // namespace

std::ptrdiff_t OffsetOfFileColumn(std::string_view line, std::ptrdiff_t column, const WidthInFile& width) {
    std::ptrdiff_t inFile = 0;
    std::size_t at = 0;
    while (at < line.size()) {
        const std::string_view character = FirstCharacter(line.substr(at));
        inFile += width(character);
        if (inFile > column) break;
        at += character.size();
    }
    return static_cast<std::ptrdiff_t>(at);
}
