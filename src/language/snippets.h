// Snippets: short texts with fields that are inserted in place of a word. The program's own, by dialect, and those of the
// user's file. Pure.
#pragma once

#include "language/basic_words.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct Snippet {
    std::string name;           // the word that is typed for it
    std::string body;           // lines with LF; a tab at the start of a line is one step of indentation
    std::uint8_t dialects = 0;  // Dialect::words of those that have it
    bool own = false;           // of the program, with its keywords in capitals
};
// Those of the program, by name.
std::span<const Snippet> BuiltinSnippets();

// In a body "$1" or "${1:text}" is a field; fields of one number hold the same text. "$0" is where the caret is left, else
// at the end. "$$" is a dollar sign, and so is one before anything else.
struct SnippetField {
    int number = 0;                  // 0: where the caret is left
    std::size_t start = 0, end = 0;  // bytes of the text
    bool operator==(const SnippetField&) const = default;
};
struct SnippetText {
    std::string text;
    std::vector<SnippetField> fields;  // by number, 0 last, then by place; there is always one of number 0
};
struct SnippetForm {
    std::string indentation;  // of the line into which it goes
    std::string step;         // one step of indentation
    std::string lineBreak;
    bool lowerCase = false;  // the text outside of fields, for the program's own snippets
};
SnippetText SnippetTextOf(const Snippet& snippet, const SnippetForm& form);

// The user's file: "[name]" begins a snippet, and the lines below it are its body. Names of compilers behind the bracket
// limit it to these. Lines before the first "[" and those that begin with ";" are comments, "\[" and "\;" begin a line of
// a body with that character.
struct SnippetFile {
    std::vector<Snippet> snippets;
    std::vector<std::string> problems;  // "line 3: ..."; what is wrong is left out, the rest is taken
};
SnippetFile ReadSnippetFile(std::string_view utf8);
// A file with an explanation, to begin with.
std::string_view SnippetFileTemplate();
