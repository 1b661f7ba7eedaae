// A plain text to search for in UTF-8, faster than memory delivers it. Pure; one object may be used by several threads.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class TextNeedle {
public:
    // `utf8` must not be empty. Without regard to case, a letter whose two cases differ in length is found only as it is
    // written in `utf8`.
    TextNeedle(std::string_view utf8, bool matchCase, bool wholeWord);
    // The start of the first match at `from` or after it, or npos.
    std::size_t Find(std::string_view text, std::size_t from) const;
    std::size_t Length() const { return text_.size(); }  // bytes, of each match
    bool IsAscii() const { return isAscii_; }

private:
    std::size_t FindText(std::string_view text, std::size_t from) const;
    bool IsAt(const char* at) const;

    std::string text_;
    std::string other_;             // the letters in the other case; the same as `text_` when the case counts
    std::vector<char> characters_;  // the length of each character; empty when the case counts
    std::size_t rare_ = 0;          // the places of the two bytes that are looked for first
    std::size_t second_ = 0;
    bool wholeWord_ = false;
    bool isAscii_ = true;
};

// Whether no word goes on before the first byte or behind the last one. All characters beyond ASCII belong to words.
bool IsWholeWord(std::string_view text, std::size_t start, std::size_t end);

// The place of the first NUL, or npos.
std::size_t FindNul(std::string_view bytes);
// The number of line breaks - LF, CR LF and CR alone - whose last byte is in [from, to).
std::size_t CountBreaks(std::string_view text, std::size_t from, std::size_t to);
