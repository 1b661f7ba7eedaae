// Makes tokens of the text of one file. Comments and continued lines are removed.
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
    std::string spelling;  // as in the source
    int64_t whole = 0;
    double real = 0;
    bool fitsLong = true;  // for Whole: true is LONG, false is QUAD
    Pos pos;
};

// Never fails: text that is not understood is reported and left out. The last token is FileEnd.
std::vector<Token> Tokenize(Sources& sources, int file);

std::string UpperCase(std::string_view text);

}  // namespace standin
