// What a pane does while the user types: how a new line is indented, which word goes to capitals, which brackets are shown.
// Positions are bytes. Pure.
#pragma once

#include "editor/brace_match.h"
#include "language/blocks.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// --- A new line, just broken at the caret. Indentations are in columns.
struct BrokenLine {
    std::ptrdiff_t selections = 1;
    std::ptrdiff_t line = 0;  // of the caret, from 0
    std::ptrdiff_t own = 0;   // its indentation: what was right of the caret may have brought some
    std::ptrdiff_t above = 0;
    std::ptrdiff_t step = 0;  // more than the line above, which ends with an open brace
};
// The indentation that the line gets; nothing: it stays as it is.
std::optional<std::ptrdiff_t> IndentationAfterBreak(const BrokenLine& broken);

// In C. Whether a line ends with an open brace, and whether it is a closing one and nothing else.
bool OpensBrace(std::string_view line);
bool IsClosingBrace(std::string_view line);

// The line above a new one, in BASIC.
struct LineAbove {
    std::ptrdiff_t indentation = 0;  // of the first line of its statement
    std::ptrdiff_t own = 0;          // of the line itself
    int depth = 0;                   // blocks by which the statement is indented
    int depthAfter = 0;              // blocks that are open behind the line
    bool continues = false;          // the statement goes on in the new line
    bool continued = false;          // it began above the line
};
// `step`: columns for a block.
std::ptrdiff_t IndentationBelow(const LineAbove& above, std::ptrdiff_t step);
// The indentation of a line that closes or divides blocks, so that it is indented by `depth` of them. Nothing when it
// closes none, or was not left (`own`) where a new line puts it.
std::optional<std::ptrdiff_t> IndentationOfCloser(const LineAbove& above, std::ptrdiff_t own, int depth,
                                                  std::ptrdiff_t step);
// Whether the line is "END" and one more word, which begins no other statement.
bool IsTwoWordCloser(std::string_view line);
// Whether the first letter of the line is a capital one.
bool WritesCapitals(std::string_view line);

// --- Keywords
inline constexpr std::ptrdiff_t kLongestKeyword = 16;
bool HasKeywordLength(std::ptrdiff_t length);

// What is written in place of the end of a line when a word from `start` to `end` (bytes of the line) was typed: keywords
// in capitals. Nothing when it is written so already. `before` and `table`: as KeywordsInCapitals takes them.
struct KeywordEdit {
    std::size_t from;  // up to `end`
    std::string text;
};
std::optional<KeywordEdit> KeywordEditOf(const std::string& line, LineState before, const Dialect& dialect,
                                         std::size_t start, std::size_t end, BlockTable* table = nullptr);

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
