// What a pane does while the user types: how a new line is indented, which word goes to capitals, which brackets are shown.
// Positions are bytes. Pure.
#pragma once

#include "documents/brace_match.h"
#include "language/scanner.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>

// --- A new line, just broken at the caret. Indentations are in columns.
struct BrokenLine {
    std::ptrdiff_t selections = 1;
    std::ptrdiff_t line = 0;  // of the caret, from 0
    std::ptrdiff_t own = 0;   // its indentation: what was right of the caret may have brought some
    std::ptrdiff_t above = 0;
};
// The indentation that the line gets; nothing: it stays as it is.
std::optional<std::ptrdiff_t> IndentationAfterBreak(const BrokenLine& broken);

// --- Keywords
inline constexpr std::ptrdiff_t kLongestKeyword = 16;
bool HasKeywordLength(std::ptrdiff_t length);

// What is written in place of the end of a line when a word from `start` to `end` (bytes of the line) was typed: keywords
// in capitals. Nothing when it is written so already.
struct KeywordEdit {
    std::size_t from;  // up to `end`
    std::string text;
};
std::optional<KeywordEdit> KeywordEditOf(const std::string& line, ScanState state, const Dialect& dialect,
                                         std::size_t start, std::size_t end);

// --- Brackets
// The position of the bracket at the caret: the one before it, else the one after it. -1 without one.
std::ptrdiff_t BraceAtCaret(std::ptrdiff_t caret, char before, char after);
// Two positions, or -1 twice.
struct BracePair {
    std::ptrdiff_t first = -1;
    std::ptrdiff_t second = -1;
    bool operator==(const BracePair&) const = default;
};
// The bracket and its partner in a stretch of the document that begins at `start`.
BracePair BracesToShow(std::span<const StyledByte> text, std::ptrdiff_t start, std::ptrdiff_t brace);
