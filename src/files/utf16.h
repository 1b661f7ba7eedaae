// UTF-16 files: recognising them and converting them from and to UTF-8. Pure; any thread.
#pragma once

#include "files/text_encoding.h"

#include <cstddef>
#include <string>
#include <string_view>

// What the first bytes of a file (all of them, or some thousands) say about UTF-16. Without a byte-order mark they are
// UTF-16 only when they are plainly text: no control characters but white space, and some of them ASCII.
struct Utf16Kind {
    Utf16Order order = Utf16Order::None;
    bool mark = false;
};
Utf16Kind Utf16KindOf(std::string_view head);
// The same for a file that is read as `code`, where only the byte-order mark is a question.
Utf16Kind Utf16KindAs(std::string_view head, SourceCode code);
inline bool IsUtf16(SourceCode code) { return code == SourceCode::Utf16Little || code == SourceCode::Utf16Big; }

// Length of the part of `bytes` that ends between two characters. The rest, at most three bytes, belongs to the next
// piece.
std::size_t WholeUtf16(std::string_view bytes, Utf16Order order);
// Appends the text as UTF-8. False when `bytes` hold half a character; `out` then has what comes before it.
bool AppendUtf16AsUtf8(std::string_view bytes, Utf16Order order, std::string& out);
// Malformed bytes of `utf8` become U+FFFD.
std::string Utf8AsUtf16(std::string_view utf8, Utf16Order order, bool mark);
