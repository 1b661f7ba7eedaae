// The formatter. A line is indented by the blocks that are open after its first statement has closed its own; the lines
// that continue it, one step more. Strings, comments, DATA, inline assembly and line ends stay as they are. Pure.
#include "language/format.h"

#include "base/scan_text.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr int kLinesBetweenQuestions = 256;

// The text's own procedures whose names are keywords, in capitals. Sorted.
using OwnNames = std::vector<std::string>;

// Takes the next word off the line; empty: none follows.
std::string_view TakeWord(std::string_view* line) {
    *line = WithoutLeadingBlanks(*line);
    const auto isName = [](char c) {
        return c == '_' || (c >= '0' && c <= '9') || (UpperAscii(c) >= 'A' && UpperAscii(c) <= 'Z');
    };
    const auto end = std::ranges::find_if_not(*line, isName);
    const std::string_view word = line->substr(0, static_cast<std::size_t>(end - line->begin()));
    line->remove_prefix(word.size());
    return word;
}

// The name of the procedure that the line declares; empty: none. Names that are no keywords need not be known.
std::string_view DeclaredName(std::string_view line, const Dialect& dialect) {
    for (;;) {
        const std::string_view word = TakeWord(&line);
        switch (LookUpWord(word, dialect).word) {
            case BasicWord::Declare:
            case BasicWord::Callback:
            case BasicWord::Class:
            case BasicWord::Static:
            case BasicWord::Thread: break;  // goes on
            case BasicWord::Sub:
            case BasicWord::Function:
            case BasicWord::Method:
            case BasicWord::FastProc:
            case BasicWord::Macro: return TakeWord(&line);
            case BasicWord::Property:
                TakeWord(&line);  // GET or SET
                return TakeWord(&line);
            default: return {};
        }
    }
}

OwnNames OwnNamesOf(std::string_view text, const Dialect& dialect) {
    OwnNames names;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        const std::string_view name = DeclaredName(text.substr(0, end + 1), dialect);
        text.remove_prefix(end + 1);
        const WordInfo info = LookUpWord(name, dialect);
        const bool divides = info.word != BasicWord::None;  // such a word is never a name
        if (name.empty() || divides || (info.kind != WordClass::Statement && info.kind != WordClass::Function))
            continue;
        std::string upper(name);
        std::ranges::transform(upper, upper.begin(), UpperAscii);
        names.push_back(std::move(upper));
    }
    std::ranges::sort(names);
    return names;
}

bool IsOwnName(const OwnNames& names, std::string_view name) {
    if (names.empty()) return false;
    std::string upper(name);
    std::ranges::transform(upper, upper.begin(), UpperAscii);
    return std::ranges::binary_search(names, upper);
}

bool IsKeywordToken(std::string_view line, const Token& token, const Dialect& dialect) {
    if (token.kind != TokenKind::Word || token.Is(kTokenName) || token.Is(kTokenAssembly)) return false;
    switch (LookUpWord(TokenName(line, token), dialect).kind) {
        case WordClass::None:
        case WordClass::Preprocessor: return false;
        case WordClass::Function: return true;
        case WordClass::Type: return token.suffix == 0 || TokenText(line, token).back() == '$';  // STRING$
        default: return token.suffix == 0;
    }
}

// The bytes of a token that are written in capitals.
std::size_t CapitalsOf(std::string_view line, const Token& token, const Dialect& dialect, const OwnNames& own) {
    if (token.Is(kTokenAssembly)) return 0;
    if (token.kind == TokenKind::Directive) return token.length;
    if (token.kind == TokenKind::Comment) return TokenText(line, token).find_first_of("'/") == 0 ? 0 : 3;  // REM
    return IsKeywordToken(line, token, dialect) && !IsOwnName(own, TokenName(line, token)) ? token.length : 0;
}

void AppendToken(std::string& out, std::string_view line, const Token& token, const FormatOptions& options,
                 const OwnNames& own) {
    const std::size_t start = out.size();
    out.append(TokenText(line, token));
    if (!options.upperKeywords) return;
    const std::size_t end = start + CapitalsOf(line, token, *options.dialect, own);
    for (std::size_t i = start; i < end; ++i)
        if (out[i] >= 'a' && out[i] <= 'z') out[i] = static_cast<char>(out[i] - 32);
}

// --- Blanks between tokens

enum class Blanks : std::uint8_t { Keep, AtLeastOne, None };

// The tokens of a line of which the blanks are in question.
struct Spacing {
    std::string_view line;
    std::span<const Token> tokens;
    const Dialect& dialect;
    bool operators = false;  // of the present statement: blanks go around its operators

    bool IsMark(std::size_t at, std::string_view marks) const {
        return tokens[at].kind == TokenKind::Punctuation && marks.find(line[tokens[at].start]) != marks.npos;
    }
    bool HasBlankBefore(std::size_t at) const { return at > 0 && tokens[at - 1].End() < tokens[at].start; }
};

// Keywords at which an operator may stand: FUNCTION = 1, CASE IS > 1, AS STRING * 20.
bool TakesOperator(const WordInfo& info, std::string_view name) {
    switch (info.word) {
        case BasicWord::Function:
        case BasicWord::Method:
        case BasicWord::Property:
        case BasicWord::Macro: return true;
        default: break;
    }
    return info.kind == WordClass::Function || info.kind == WordClass::Type ||
           (name.size() == 2 && UpperAscii(name[0]) == 'I' && UpperAscii(name[1]) == 'S');
}

bool EndsOperand(const Spacing& spacing, std::size_t at) {
    const Token& token = spacing.tokens[at];
    const std::string_view name = TokenName(spacing.line, token);
    switch (token.kind) {
        case TokenKind::Number:
        case TokenKind::String:
        case TokenKind::Equate: return true;
        case TokenKind::Word:
            return !IsKeywordToken(spacing.line, token, spacing.dialect) ||
                   TakesOperator(LookUpWord(name, spacing.dialect), name);
        default: return spacing.IsMark(at, ")]}");
    }
}

// An operator between two operands. "&" is left alone, because next to a name it may be its type suffix; so is a sign
// that stands at its operand only.
bool IsSpacedOperator(const Spacing& spacing, std::size_t at) {
    const Token& token = spacing.tokens[at];
    if (!spacing.operators || token.kind != TokenKind::Operator || at == 0 || at + 1 == spacing.tokens.size())
        return false;
    const std::string_view text = TokenText(spacing.line, token);
    if (text == "&" || text == "->" || text == "++" || text == "--" || !EndsOperand(spacing, at - 1)) return false;
    if (text == "+" || text == "-") return !spacing.HasBlankBefore(at) || spacing.HasBlankBefore(at + 1);
    return true;
}

// The blanks before a token that is not the first of its line.
Blanks BlanksBefore(const Spacing& spacing, std::size_t at) {
    const Token& token = spacing.tokens[at];
    if (token.kind == TokenKind::Continuation) return Blanks::AtLeastOne;
    if (token.kind == TokenKind::Comment || !spacing.operators) return Blanks::Keep;
    if (IsSpacedOperator(spacing, at) || IsSpacedOperator(spacing, at - 1)) return Blanks::AtLeastOne;
    if (spacing.IsMark(at, ",")) return EndsOperand(spacing, at - 1) ? Blanks::None : Blanks::Keep;
    return spacing.IsMark(at - 1, ",") ? Blanks::AtLeastOne : Blanks::Keep;
}

// Whether the operators of a statement are BASIC: not in a metastatement or in DATA, nor in DEFINT A-Z.
bool HasOperators(std::string_view line, const Token& first) {
    if (first.kind == TokenKind::Directive || first.Is(kTokenAssembly)) return false;
    std::string_view text = TokenText(line, first);
    return first.kind != TokenKind::Word || !TakePrefix(&text, "DEF");
}

// The tokens of a line with their blanks. `operators`: whether those of a statement that began above are BASIC.
void AppendTokens(std::string& out, std::string_view line, std::span<const Token> tokens, const FormatOptions& options,
                  const OwnNames& own, bool operators) {
    Spacing spacing{line, tokens, *options.dialect, operators};
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].Is(kTokenStarts)) spacing.operators = HasOperators(line, tokens[i]);
        if (i > 0) {
            const std::string_view gap = line.substr(tokens[i - 1].End(), tokens[i].start - tokens[i - 1].End());
            const Blanks blanks = BlanksBefore(spacing, i);
            if (blanks != Blanks::None) out.append(gap);
            if (blanks == Blanks::AtLeastOne && gap.empty()) out.push_back(' ');
        }
        AppendToken(out, line, tokens[i], options, own);
    }
}

// --- Lines

void AppendIndent(std::string& out, int depth, const FormatOptions& options) {
    const int levels = std::max(depth, 0);
    if (options.useTabs)
        out.append(static_cast<std::size_t>(levels), '\t');
    else
        out.append(static_cast<std::size_t>(levels) * static_cast<std::size_t>(std::max(options.indentWidth, 0)), ' ');
}

// Inline assembly and the lines of a block comment are not touched.
bool IsKept(ScanState before, std::span<const Token> tokens) {
    if ((before & kScanComment) != 0) return true;
    return std::ranges::any_of(tokens, [](const Token& token) { return token.Is(kTokenAssembly); });
}

// Blanks at the end of an open string or comment belong to it.
void TrimEnd(std::string& out, std::size_t start, std::span<const Token> tokens) {
    if (!tokens.empty() && tokens.back().Is(kTokenOpen)) return;
    while (out.size() > start && (out.back() == ' ' || out.back() == '\t')) out.pop_back();
}

struct Formatter {
    const FormatOptions& options;
    OwnNames own;
    BlockTable table;
    LineState state = 0;
    BlockLine blocks;
    int depth = 0;                // of the statement's first line
    bool operators = true;        // of the statement that goes on in the line
    bool operatorsBelow = false;  // and in the next one
};

// Takes the blocks of a line into account.
void PassLine(Formatter& formatter, LineReader& reader) {
    const bool continues = (reader.before & kScanContinues) != 0;
    formatter.state = ScanBlocks(formatter.table, reader.line, reader.tokens, formatter.state, reader.state,
                                 *formatter.options.dialect, formatter.blocks);
    formatter.operators = formatter.operatorsBelow;
    for (const Token& token : reader.tokens)
        if (token.Is(kTokenStarts)) formatter.operatorsBelow = HasOperators(reader.line, token);
    if (!continues) formatter.depth = formatter.blocks.depth - (IsLabelOnly(reader.tokens) ? 1 : 0);
}

// A metastatement in the first column stays there, because the compilers look at the column.
bool StaysAtStart(const LineReader& reader) {
    return !reader.tokens.empty() && reader.tokens.front().kind == TokenKind::Directive &&
           reader.tokens.front().start == 0;
}

void AppendLine(std::string& out, Formatter& formatter, const LineReader& reader) {
    if (IsKept(reader.before, reader.tokens)) {
        out.append(reader.line).append(reader.ending);
        return;
    }
    const bool continues = (reader.before & kScanContinues) != 0;
    if (!reader.tokens.empty() && !StaysAtStart(reader))
        AppendIndent(out, formatter.depth + (continues ? 1 : 0), formatter.options);
    const std::size_t start = out.size();
    AppendTokens(out, reader.line, reader.tokens, formatter.options, formatter.own, formatter.operators);
    TrimEnd(out, start, reader.tokens);
    out.append(reader.ending);
}

}  // namespace

bool IsLabelOnly(std::span<const Token> tokens) {
    if (tokens.empty() || tokens.front().kind != TokenKind::Label) return false;
    return std::ranges::all_of(tokens.subspan(1), [](const Token& token) {
        return token.kind == TokenKind::Separator || token.kind == TokenKind::Comment;
    });
}

std::string FormatBasicSource(std::string_view text, const FormatOptions& options) {
    return FormatBasicLines(text, options, 0, std::numeric_limits<int>::max());
}

std::string FormatBasicLines(std::string_view text, const FormatOptions& options, int first, int last,
                             const std::function<bool(double share)>& goesOn) {
    std::string out;
    if (first <= 0) out.reserve(text.size() + text.size() / 8);
    Formatter formatter{.options = options, .own = OwnNamesOf(text, *options.dialect)};
    LineReader reader{.text = text, .dialect = options.dialect};
    for (int line = 0; line <= last && ReadLine(reader); ++line) {
        const double share = static_cast<double>(reader.start) / static_cast<double>(text.size());
        if (goesOn != nullptr && line % kLinesBetweenQuestions == kLinesBetweenQuestions - 1 && !goesOn(share)) break;
        PassLine(formatter, reader);
        if (line >= first) AppendLine(out, formatter, reader);
    }
    return out;
}

std::string KeywordsInCapitals(std::string_view line, LineState before, const Dialect& dialect, BlockTable* table) {
    std::vector<Token> tokens;
    const ScannedLine scanned = ScanLine(line, 0, before & kScanStateMask, dialect, tokens);
    if (IsKept(before & kScanStateMask, tokens)) return std::string(line);
    BlockLine blocks;
    if (table != nullptr) ScanBlocks(*table, line, tokens, before, scanned.state, dialect, blocks);
    std::string out;
    const FormatOptions options{.dialect = &dialect};
    const OwnNames own = OwnNamesOf(line, dialect);
    for (const Token& token : tokens) {
        out.append(line.substr(out.size(), token.start - out.size()));
        AppendToken(out, line, token, options, own);
    }
    return out.append(line.substr(out.size()));
}
