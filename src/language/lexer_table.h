// Which lexer colours a file, with which keywords, and what its style numbers mean. The lexers are Lexilla's; this is
// what the program knows about them. Pure.
#pragma once

#include "settings/file_type_table.h"
#include "ui/theme_table.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// By the file's extension; an empty or extensionless path is BASIC, since a new document is going to be one.
Language LexerFromExtension(std::wstring_view path);

struct StyleRole {
    std::uint8_t style;  // the lexer's number
    TextRole role;
};

struct LanguageLexer {
    const char* name;                   // Lexilla's, null for plain text
    std::span<const StyleRole> styles;  // styles that are not listed stay plain text
};
const LanguageLexer& LexerOf(Language language);

// The lexer's keyword sets 0, 1, 2...: for BASIC by the compiler's dialect. Lower case, blank separated.
inline constexpr int kKeywordSets = 6;
std::string LexerKeywords(Language language, std::uint32_t compilerId, int set);

// Whether a word, in any case, is a BASIC keyword that is written in capitals.
bool IsBasicKeyword(std::string_view word);
