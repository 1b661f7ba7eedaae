// Text to tokens: one file at a time, with comments and continued lines removed.
#pragma once

#include "source.h"

#include <string>
#include <vector>

namespace standin {

enum class TokenKind : uint8_t { Word, ConstantName, Whole, Real, String, Mark, LineEnd, FileEnd };

struct Token {
    TokenKind kind = TokenKind::FileEnd;
    bool firstOnLine = false;
    std::string text;      // upper case for words; the characters of a string; the sign itself for marks
    std::string spelling;  // as written
    int64_t whole = 0;
    double real = 0;
    bool fitsLong = true;  // Whole: LONG or QUAD
    Pos pos;
};

// Never fails: what is not understood is reported and left out. The last token is FileEnd.
std::vector<Token> Tokenize(Sources& sources, int file);

std::string UpperCase(std::string_view text);

}  // namespace standin
