// What a pane does while the user types. Pure.
#include "editor/typing_rules.h"

#include "base/scan_text.h"
#include "language/format.h"

#include <algorithm>

std::optional<std::ptrdiff_t> IndentationAfterBreak(const BrokenLine& broken) {
    if (broken.selections != 1 || broken.line < 1) return std::nullopt;
    if (broken.own != 0 || broken.above + broken.step <= 0) return std::nullopt;
    return broken.above + broken.step;
}

bool OpensBrace(std::string_view line) {
    line = line.substr(0, line.find("//"));
    const std::size_t last = line.find_last_not_of(" \t");
    return last != std::string_view::npos && line[last] == '{';
}

bool IsClosingBrace(std::string_view line) { return WithoutLeadingBlanks(line) == "}"; }

std::ptrdiff_t IndentationBelow(const LineAbove& above, std::ptrdiff_t step) {
    if (above.continues) return above.continued ? above.own : above.indentation + step;
    return std::max<std::ptrdiff_t>(above.indentation + step * (above.depthAfter - above.depth), 0);
}

std::optional<std::ptrdiff_t> IndentationOfCloser(const LineAbove& above, std::ptrdiff_t own, int depth,
                                                  std::ptrdiff_t step) {
    if (above.continues || depth >= above.depthAfter || own != IndentationBelow(above, step)) return std::nullopt;
    return std::max<std::ptrdiff_t>(above.indentation + step * (depth - above.depth), 0);
}

bool IsTwoWordCloser(std::string_view line) {
    constexpr std::string_view kEnd = "END";
    constexpr std::string_view kBlanks = " \t";
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    if (line.size() <= kEnd.size() || !std::equal(kEnd.begin(), kEnd.end(), line.begin(),
                                                  [](char word, char typed) { return word == UpperAscii(typed); }))
        return false;
    line.remove_prefix(kEnd.size());
    const std::size_t second = line.find_first_not_of(kBlanks);
    return second != 0 && second != std::string_view::npos && line.find_first_of(kBlanks, second) == line.npos;
}

bool WritesCapitals(std::string_view line) {
    const auto letter = std::ranges::find_if(line, [](char c) { return UpperAscii(c) >= 'A' && UpperAscii(c) <= 'Z'; });
    return letter != line.end() && *letter == UpperAscii(*letter);
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

std::optional<KeywordEdit> KeywordEditOf(const std::string& line, LineState before, const Dialect& dialect,
                                         std::size_t start, std::size_t end, BlockTable* table) {
    const std::string capitals = KeywordsInCapitals(line, before, dialect, table);
    const bool inAssembly = (before & kScanAssembly) != 0;
    // Only the last word of END ASM makes a line of assembly a line of BASIC, so both words change then.
    const bool endsAssembly = inAssembly && AssemblyOfLine(line, true).kind == AssemblyKind::BlockEnd;
    const std::size_t from = endsAssembly ? 0 : start;
    const std::size_t count = end - from;
    if (capitals.compare(from, count, line, from, count) == 0) return std::nullopt;
    return KeywordEdit{.from = from, .text = capitals.substr(from, count)};
}
