#include "program/visible_text.h"

#include "files/text_encoding.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

// Number of bytes of the UTF-8 character at the start of `text`; 0 when there is none.
std::size_t CharacterLength(std::string_view text) {
    for (std::size_t length = 1; length <= std::min<std::size_t>(4, text.size()); ++length)
        if (IsValidUtf8Bytes(text.data(), length)) return length;
    return 0;
}

// True for control characters beyond ASCII, and for characters that change the text direction or have no width.
bool IsInvisible(std::string_view character) {
    if (character.size() == 2) return character[0] == '\xC2' && static_cast<unsigned char>(character[1]) < 0xA0;
    if (character.size() != 3) return false;
    const auto second = static_cast<unsigned char>(character[1]);
    const auto third = static_cast<unsigned char>(character[2]);
    if (character[0] == '\xEF') return second == 0xBB && third == 0xBF;  // the byte-order mark
    if (character[0] != '\xE2') return false;
    return (second == 0x80 && ((third >= 0x8B && third <= 0x8F) || (third >= 0xA8 && third <= 0xAE))) ||
           (second == 0x81 && third >= 0xA0 && third <= 0xAF);
}

void AppendByte(std::string& out, char byte) {
    const auto value = static_cast<unsigned char>(byte);
    out.append("\\x").push_back(kHexDigits[value >> 4]);
    out.push_back(kHexDigits[value & 15]);
}

}  // namespace

std::string VisibleText(std::string_view text, std::size_t tab) {
    std::string out;
    out.reserve(text.size());
    std::size_t column = 0;  // characters in `out` so far
    while (!text.empty()) {
        const std::size_t before = out.size();
        const char first = text.front();
        std::size_t taken = 1;
        if (first == '\t' && tab > 0) {
            out.append(tab - column % tab, ' ');
        } else if (first >= ' ' && first < '\x7F') {
            out += first;
        } else if (const std::size_t length = CharacterLength(text);
                   length > 1 && !IsInvisible(text.substr(0, length))) {
            out.append(text.substr(0, length));
            taken = length;
            column += 1;
            text.remove_prefix(taken);
            continue;
        } else {
            taken = std::max<std::size_t>(length, 1);
            for (const char byte : text.substr(0, taken)) AppendByte(out, byte);
        }
        column += out.size() - before;
        text.remove_prefix(taken);
    }
    return out;
}
