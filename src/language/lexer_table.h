// What the program knows about lexers: which one colours a file, with which keywords, and what its styles mean. That of
// BASIC is the program's own (language/basic_lexer.h), the others are Lexilla's. Pure.
#pragma once

#include "settings/file_type_table.h"
#include "ui/theme_table.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The language by the file's extension. A path without one is BASIC, because a new document has none yet. None for an
// unknown extension.
Language LexerFromExtension(std::wstring_view path);

struct StyleRole {
    std::uint8_t style;  // the lexer's number of the style
    TextRole role;
};

struct LanguageLexer {
    const char* name;                   // null for plain text
    std::span<const StyleRole> styles;  // a style that is not listed is plain text
};
const LanguageLexer& LexerOf(Language language);

// The keyword set 0, 1, 2... of one of Lexilla's lexers, in lower case and separated by blanks. Empty for a set that the
// language does not have.
inline constexpr int kKeywordSets = 6;
std::string LexerKeywords(Language language, int set);
