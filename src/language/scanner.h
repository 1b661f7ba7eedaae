// The scanner of BASIC: splits a line into tokens. What the line needs to know of the lines above is one number, so text
// can be scanned again from any line on. All that reads BASIC builds on it: colours, folding, formatter, symbols,
// completion. Pure; any thread.
//
//     LineReader reader{.text = source, .dialect = &DialectOf(compilerId)};
//     while (ReadLine(reader))
//         for (const Token& token : reader.tokens) Use(TokenText(reader.line, token));
#pragma once

#include "language/basic_words.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

enum class TokenKind : std::uint8_t {
    Word,          // a name or a keyword, with its type suffix ("a$", "n&&"); LookUpWord(TokenName()) tells which
    Label,         // a name at the start of a line, before a colon; the colon is a Separator
    LineNumber,    // digits at the start of a line
    Number,        // 12, 1.5E-3, &HFF, with a type suffix
    String,        // with its quotes; a doubled quote inside belongs to it
    Comment,       // from an apostrophe or REM to the end of the line; or a block comment's part of the line
    Equate,        // %NAME, $NAME, $$NAME
    Directive,     // #IF, $INCLUDE: a metastatement's first word with its mark
    Operator,      // arithmetic, comparison, assignment; "<=" and "+=" are one token
    Punctuation,   // ( ) [ ] { } , ; . @ ? and every other character
    Separator,     // the colon between statements
    Continuation,  // the underscore that joins the next line to this one
    Data,          // what follows DATA on its line
};

enum TokenFlags : std::uint8_t {
    kTokenStarts = 1,    // the first of a statement
    kTokenOpen = 2,      // String: has no closing quote. Comment: goes on in the next line
    kTokenName = 4,      // Word: a name whatever it reads, because it follows ".", "@" or "#"
    kTokenAssembly = 8,  // a token of inline assembly: Word, Label, Number, String, Comment, Operator, Punctuation
};

struct Token {
    std::uint32_t start = 0;  // bytes from the start of its line
    std::uint32_t length = 0;
    TokenKind kind = TokenKind::Word;
    std::uint8_t flags = 0;
    std::uint8_t suffix = 0;  // Word, Number: bytes of the type suffix, which `length` includes

    bool Is(std::uint8_t flag) const { return (flags & flag) != 0; }
    std::uint32_t End() const { return start + length; }
};
inline std::string_view TokenText(std::string_view line, const Token& token) {
    return line.substr(token.start, token.length);
}
// Without the type suffix.
inline std::string_view TokenName(std::string_view line, const Token& token) {
    return line.substr(token.start, token.length - token.suffix);
}

// What a line must know of the lines above it. 0 at the start of a text. Equal states give equal tokens. Uses the lower
// kScanStateBits only, so that others can keep what they know in the same number.
using ScanState = std::uint32_t;
inline constexpr int kScanStateBits = 4;
inline constexpr ScanState kScanAssembly = 1;   // inside a block from ASM to END ASM
inline constexpr ScanState kScanComment = 2;    // inside a block comment
inline constexpr ScanState kScanContinues = 4;  // the line above ends with a Continuation
inline constexpr ScanState kScanInside = 8;     // and its last statement has begun: this line starts inside it

// A line that was scanned.
struct ScannedLine {
    std::size_t length = 0;  // bytes, without the break
    std::size_t next = 0;    // where the next line starts
    ScanState state = 0;     // for the next line
};
// Scans the line that starts at `start`, which ends with CR, LF, both or the text, and puts its tokens into `tokens`
// in place of what is there. Blanks have no token, every other byte belongs to one.
ScannedLine ScanLine(std::string_view text, std::size_t start, ScanState state, const Dialect& dialect,
                     std::vector<Token>& tokens);

// A text line by line. The first fields are given; ReadLine fills the others.
struct LineReader {
    std::string_view text;  // begins at the start of a line
    const Dialect* dialect = nullptr;
    ScanState state = 0;   // of the next line
    std::size_t next = 0;  // where it starts

    std::size_t start = 0;    // of the line
    ScanState before = 0;     // its state
    std::string_view line;    // without its break
    std::string_view ending;  // its break; empty at the end of the text
    std::vector<Token> tokens;
};
// Reads the next line. False at the end. After a last break there is no further, empty line.
bool ReadLine(LineReader& reader);

// --- Inline assembly
enum class AssemblyKind : std::uint8_t {
    None,         // BASIC
    Instruction,  // a line of a block, or one that begins with "!" or "ASM"
    BlockStart,   // a lone ASM
    BlockEnd,     // END ASM or ENDASM
};
struct AssemblyLine {
    AssemblyKind kind = AssemblyKind::None;
    std::size_t text = 0;  // Instruction: where the assembly begins
};
// What a line is, with or without its leading blanks and without its break. Not for a line that continues a statement.
AssemblyLine AssemblyOfLine(std::string_view line, bool inBlock);
