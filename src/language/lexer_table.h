// What the program knows about Lexilla's lexers: which one colours a file, with which keywords, and what its styles
// mean. Pure.
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
    const char* name;                   // the lexer's name in Lexilla; null for plain text
    std::span<const StyleRole> styles;  // a style that is not listed is plain text
};
const LanguageLexer& LexerOf(Language language);

// The lexer's keyword set 0, 1, 2..., in lower case and separated by blanks. For BASIC it depends on the compiler's
// dialect. Empty for a set that the language does not have.
inline constexpr int kKeywordSets = 6;
std::string LexerKeywords(Language language, std::uint32_t compilerId, int set);
