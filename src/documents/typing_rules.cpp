// What a pane does while the user types. Pure.
#include "documents/typing_rules.h"

#include "language/format.h"

std::optional<std::ptrdiff_t> IndentationAfterBreak(const BrokenLine& broken) {
    if (broken.selections != 1 || broken.line < 1) return std::nullopt;
    if (broken.own != 0 || broken.above <= 0) return std::nullopt;
    return broken.above;
}

bool HasKeywordLength(std::ptrdiff_t length) { return length >= 2 && length <= kLongestKeyword; }

std::ptrdiff_t BraceAtCaret(std::ptrdiff_t caret, char before, char after) {
    if (caret > 0 && IsBrace(before)) return caret - 1;
    return IsBrace(after) ? caret : -1;
}

BracePair BracesToShow(std::span<const StyledByte> text, std::ptrdiff_t start, std::ptrdiff_t brace) {
    const std::ptrdiff_t partner = MatchBrace(text, static_cast<std::size_t>(brace - start));
    return partner >= 0 ? BracePair{brace, start + partner} : BracePair{};
}

std::optional<KeywordEdit> KeywordEditOf(const std::string& line, ScanState state, const Dialect& dialect,
                                         std::size_t start, std::size_t end) {
    const std::string capitals = KeywordsInCapitals(line, state, dialect);
    const bool inAssembly = (state & kScanAssembly) != 0;
    // Only the last word of END ASM makes a line of assembly a line of BASIC, so both words change then.
    const bool endsAssembly = inAssembly && AssemblyOfLine(line, true).kind == AssemblyKind::BlockEnd;
    const std::size_t from = endsAssembly ? 0 : start;
    const std::size_t count = end - from;
    if (capitals.compare(from, count, line, from, count) == 0) return std::nullopt;
    return KeywordEdit{.from = from, .text = capitals.substr(from, count)};
}
