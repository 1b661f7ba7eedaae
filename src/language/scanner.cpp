// The scanner of BASIC. One pass over a line; a table tells what each byte may begin. Pure.
#include "language/scanner.h"

#include <array>

namespace {

enum class Byte : std::uint8_t { Other, Break, Blank, Letter, Digit, Quote, Apostrophe, Operator };

constexpr std::array<Byte, 256> kBytes = [] {
    std::array<Byte, 256> bytes{};
    for (int c = 0; c < 256; ++c) {
        Byte& kind = bytes[static_cast<std::size_t>(c)];
        const int lower = c | 0x20;
        if (c == '\r' || c == '\n') kind = Byte::Break;
        if (c == ' ' || c == '\t') kind = Byte::Blank;
        if ((lower >= 'a' && lower <= 'z') || c == '_' || c >= 0x80) kind = Byte::Letter;
        if (c >= '0' && c <= '9') kind = Byte::Digit;
        if (c == '"') kind = Byte::Quote;
        if (c == '\'') kind = Byte::Apostrophe;
    }
    for (const char c : std::string_view("+-*/\\^=<>&")) bytes[static_cast<unsigned char>(c)] = Byte::Operator;
    return bytes;
}();

Byte KindOf(char c) { return kBytes[static_cast<std::uint8_t>(c)]; }
bool IsNameByte(char c) { return KindOf(c) == Byte::Letter || KindOf(c) == Byte::Digit; }
char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

// Words of metastatements that may begin with "$" instead of "#". Any other word after "$" is a text constant.
constexpr std::string_view kDollarDirectives[] = {"INCLUDE",  "IF",     "ELSEIF", "ELSE",   "ENDIF", "COMPILE",
                                                  "DIM",      "OPTION", "STACK",  "DEBUG",  "LINK",  "CODE",
                                                  "OPTIMIZE", "ERROR",  "EVENT",  "STRING", "SOUND", "COM"};

// A line on its way through the scanner.
struct Scan {
    const char* begin;
    const char* at;
    const char* end;  // of the text, not of the line
    const Dialect& dialect;
    std::vector<Token>& tokens;
    ScanState state;
    bool starts = true;   // the next token begins a statement
    bool joined = false;  // the last token, a comment not counted, is a Continuation

    bool Ends() const { return at == end || KindOf(*at) == Byte::Break; }
    char Peek(std::ptrdiff_t ahead) const { return end - at > ahead ? at[ahead] : '\n'; }
};

void Add(Scan& scan, const char* from, TokenKind kind, std::uint8_t flags = 0, std::uint8_t suffix = 0) {
    scan.joined = kind == TokenKind::Continuation || (scan.joined && kind == TokenKind::Comment);
    if (kind == TokenKind::Separator) {
        scan.starts = true;
    } else if (scan.starts && kind != TokenKind::Comment && kind != TokenKind::Continuation &&
               kind != TokenKind::LineNumber) {
        scan.starts = false;
        flags |= kTokenStarts;
    }
    scan.tokens.push_back({static_cast<std::uint32_t>(from - scan.begin), static_cast<std::uint32_t>(scan.at - from),
                           kind, flags, suffix});
}

void PassBlanks(Scan& scan) {
    while (scan.at < scan.end && KindOf(*scan.at) == Byte::Blank) ++scan.at;
}
void PassName(Scan& scan) {
    while (scan.at < scan.end && IsNameByte(*scan.at)) ++scan.at;
}
void PassRest(Scan& scan) {
    while (!scan.Ends()) ++scan.at;
}

void TakeRest(Scan& scan, const char* from, TokenKind kind, std::uint8_t flags = 0) {
    PassRest(scan);
    Add(scan, from, kind, flags);
}

// `upper` is in upper case; the letter case of the text does not count.
bool HasWord(const char* at, const char* end, std::string_view upper) {
    if (end - at < static_cast<std::ptrdiff_t>(upper.size())) return false;
    for (std::size_t i = 0; i < upper.size(); ++i)
        if (Upper(at[i]) != upper[i]) return false;
    return true;
}

bool IsWord(const char* from, const char* to, std::string_view upper) {
    return to - from == static_cast<std::ptrdiff_t>(upper.size()) && HasWord(from, to, upper);
}

// A type suffix: a run of one of these marks, as long as its type allows, unless a name follows at once ("a&b").
std::uint8_t PassSuffix(Scan& scan) {
    if (scan.at == scan.end) return 0;
    const char mark = *scan.at;
    const int longest = mark == '?' ? 3 : mark == '&' || mark == '#' || mark == '$' || mark == '@' ? 2 : 1;
    if (std::string_view("%&!#@$?").find(mark) == std::string_view::npos) return 0;
    int length = 1;
    while (length < longest && scan.Peek(length) == mark) ++length;
    const bool lone = scan.Peek(length) == '_' && !IsNameByte(scan.Peek(length + 1));
    if (IsNameByte(scan.Peek(length)) && !lone) return 0;
    scan.at += length;
    return static_cast<std::uint8_t>(length);
}

// --- Comments and strings

// From its start, or from the start of a line inside it.
void ScanBlockComment(Scan& scan, const char* from) {
    for (; !scan.Ends(); ++scan.at) {
        if (*scan.at != '\'' || scan.Peek(1) != '/') continue;
        scan.at += 2;
        scan.state &= ~kScanComment;
        Add(scan, from, TokenKind::Comment);
        return;
    }
    scan.state |= kScanComment;
    if (scan.at > from) Add(scan, from, TokenKind::Comment, kTokenOpen);
}

void ScanString(Scan& scan, std::uint8_t flags = 0) {
    const char* from = scan.at++;
    for (;; ++scan.at) {
        while (!scan.Ends() && *scan.at != '"') ++scan.at;
        if (scan.Ends()) return Add(scan, from, TokenKind::String, static_cast<std::uint8_t>(flags | kTokenOpen));
        ++scan.at;
        if (scan.at == scan.end || *scan.at != '"') return Add(scan, from, TokenKind::String, flags);
    }
}

// --- Numbers

// The digits after "&" and a letter; 0 when they are none.
int BaseOf(char letter) {
    switch (Upper(letter)) {
        case 'H': return 16;
        case 'O':
        case 'Q': return 8;
        case 'B': return 2;
        default: return 0;
    }
}

int DigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char upper = Upper(c);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : 99;
}

bool BeginsBaseNumber(const Scan& scan) { return DigitValue(scan.Peek(2)) < BaseOf(scan.Peek(1)); }

// A number; letters that stand in it belong to it.
void ScanNumber(Scan& scan) {
    const char* from = scan.at;
    const bool decimal = *scan.at != '&';
    scan.at += decimal ? 1 : 2;
    while (scan.at < scan.end && (IsNameByte(*scan.at) || *scan.at == '.')) {
        const char letter = Upper(*scan.at++);
        const bool exponent = decimal && (letter == 'E' || letter == 'D');
        const char sign = scan.Peek(0);
        if (exponent && (sign == '+' || sign == '-') && KindOf(scan.Peek(1)) == Byte::Digit) ++scan.at;
    }
    const std::uint8_t suffix = PassSuffix(scan);
    Add(scan, from, TokenKind::Number, 0, suffix);
}

// --- Words

// Whether a name that ends at the scanner's place is a label: it is no keyword, and a colon follows, after blanks only
// when it ends its line.
bool IsLabel(Scan scan, const char* from) {
    const char* after = scan.at;
    PassBlanks(scan);
    if (scan.Ends() || *scan.at != ':') return false;
    const bool apart = scan.at != after;
    ++scan.at;
    PassBlanks(scan);
    if (apart && !scan.Ends() && *scan.at != '\'') return false;
    const WordClass kind = LookUpWord({from, static_cast<std::size_t>(after - from)}, AnyDialect()).kind;
    return kind == WordClass::None || kind == WordClass::Preprocessor;
}

void ScanWord(Scan& scan, std::uint8_t flags) {
    const char* from = scan.at;
    const bool first = scan.starts && (scan.tokens.empty() || scan.tokens.back().kind == TokenKind::LineNumber) &&
                       (scan.state & kScanContinues) == 0;
    PassName(scan);
    if ((flags & kTokenName) == 0 && IsWord(from, scan.at, "REM")) return TakeRest(scan, from, TokenKind::Comment);
    if (first && IsLabel(scan, from)) return Add(scan, from, TokenKind::Label);
    const bool data = scan.starts && IsWord(from, scan.at, "DATA");
    const std::uint8_t suffix = PassSuffix(scan);
    Add(scan, from, TokenKind::Word, flags, suffix);
    if (!data || suffix != 0) return;
    PassBlanks(scan);
    if (!scan.Ends()) TakeRest(scan, scan.at, TokenKind::Data);
}

// An underscore that is no part of a name: only blanks and a comment may follow it.
bool IsContinuation(Scan scan) {
    ++scan.at;
    PassBlanks(scan);
    return scan.Ends() || *scan.at == '\'';
}

// --- Marks

// "%NAME", "$NAME", "$$NAME", or a metastatement with "$".
bool ScanEquate(Scan& scan) {
    const char* from = scan.at;
    const std::ptrdiff_t marks = *from == '$' && scan.Peek(1) == '$' ? 2 : 1;
    if (KindOf(scan.Peek(marks)) != Byte::Letter) return false;
    const bool first = scan.tokens.empty() && (scan.state & kScanContinues) == 0;
    scan.at += marks;
    PassName(scan);
    TokenKind kind = TokenKind::Equate;
    if (first && *from == '$' && marks == 1)
        for (const std::string_view word : kDollarDirectives)
            if (IsWord(from + 1, scan.at, word)) kind = TokenKind::Directive;
    Add(scan, from, kind);
    return true;
}

bool ScanDirective(Scan& scan) {
    if (!scan.tokens.empty() || (scan.state & kScanContinues) != 0) return false;
    const char* from = scan.at;
    ++scan.at;
    PassBlanks(scan);
    const bool named = !scan.Ends() && KindOf(*scan.at) == Byte::Letter;
    if (named) PassName(scan);
    if (named) Add(scan, from, TokenKind::Directive);
    if (!named) scan.at = from;
    return named;
}

// One byte, or two that belong together.
void ScanOperator(Scan& scan) {
    static constexpr std::string_view kPairs[] = {"<>",  "<=", ">=", "=<", "=>", "><", "+=", "-=", "*=", "/=",
                                                  "\\=", "^=", "&=", "<<", ">>", "->", "==", "++", "--"};
    const char* from = scan.at;
    const char pair[2] = {*from, scan.Peek(1)};
    bool paired = false;
    if (KindOf(pair[1]) == Byte::Operator)
        for (const std::string_view known : kPairs) paired |= known == std::string_view(pair, 2);
    scan.at += paired ? 2 : 1;
    Add(scan, from, TokenKind::Operator);
}

// What is left: marks that may begin something, and single characters.
void ScanMark(Scan& scan, bool name) {
    const char c = *scan.at;
    if ((c == '%' || c == '$') && ScanEquate(scan)) return;
    if (c == '#' && ScanDirective(scan)) return;
    if (c == '.' && !name && KindOf(scan.Peek(1)) == Byte::Digit) return ScanNumber(scan);
    const char* from = scan.at++;
    Add(scan, from, c == ':' ? TokenKind::Separator : TokenKind::Punctuation);
}

// A line number: the first on its line, whatever letters stand in it.
bool IsLineNumber(const Scan& scan) { return scan.tokens.empty() && (scan.state & kScanContinues) == 0; }

void ScanDigits(Scan& scan) {
    if (!IsLineNumber(scan)) return ScanNumber(scan);
    const char* from = scan.at;
    while (scan.at < scan.end && (IsNameByte(*scan.at) || *scan.at == '.')) ++scan.at;
    Add(scan, from, TokenKind::LineNumber);
}

// Whether what begins at the scanner's place follows the last token at once.
bool FollowsAtOnce(const Scan& scan) {
    return !scan.tokens.empty() && scan.begin + scan.tokens.back().End() == scan.at;
}

// A name after one of these marks is no keyword.
std::uint8_t FlagsOfWord(const Scan& scan) {
    if (!FollowsAtOnce(scan) || scan.tokens.back().kind != TokenKind::Punctuation) return 0;
    const char mark = scan.at[-1];
    return mark == '.' || mark == '@' || mark == '#' ? kTokenName : 0;
}

void ScanBasicToken(Scan& scan) {
    switch (KindOf(*scan.at)) {
        case Byte::Letter:
            if (*scan.at != '_' || IsNameByte(scan.Peek(1))) return ScanWord(scan, FlagsOfWord(scan));
            if (const char* from = scan.at; IsContinuation(scan)) {
                ++scan.at;
                return Add(scan, from, TokenKind::Continuation);
            }
            return ScanMark(scan, false);
        case Byte::Digit: return ScanDigits(scan);
        case Byte::Quote: return ScanString(scan);
        case Byte::Apostrophe: return TakeRest(scan, scan.at, TokenKind::Comment);
        case Byte::Operator:
            if (*scan.at == '&' && BeginsBaseNumber(scan)) return ScanNumber(scan);
            if (*scan.at == '/' && scan.Peek(1) == '\'' && scan.dialect.blockComments) {
                const char* from = scan.at;
                scan.at += 2;
                return ScanBlockComment(scan, from);
            }
            return ScanOperator(scan);
        default: {
            const bool name = FollowsAtOnce(scan) && scan.tokens.back().kind != TokenKind::Operator &&
                              scan.tokens.back().kind != TokenKind::Separator &&
                              std::string_view("([{,;").find(scan.at[-1]) == std::string_view::npos;
            return ScanMark(scan, name);
        }
    }
}

// --- Assembly

void ScanAssemblyWord(Scan& scan) {
    const char* from = scan.at;
    const bool first = scan.starts;
    PassName(scan);
    const bool label = first && scan.Peek(0) == ':';
    Add(scan, from, label ? TokenKind::Label : TokenKind::Word, kTokenAssembly);
}

void ScanAssemblyToken(Scan& scan) {
    const char* from = scan.at;
    switch (KindOf(*from)) {
        case Byte::Letter: return ScanAssemblyWord(scan);
        case Byte::Digit: PassName(scan); return Add(scan, from, TokenKind::Number, kTokenAssembly);
        case Byte::Quote: return ScanString(scan, kTokenAssembly);
        case Byte::Apostrophe: return TakeRest(scan, from, TokenKind::Comment, kTokenAssembly);
        case Byte::Operator:
            if (*from == '&' && BeginsBaseNumber(scan)) {
                scan.at += 2;
                PassName(scan);
                return Add(scan, from, TokenKind::Number, kTokenAssembly);
            }
            ++scan.at;
            return Add(scan, from, TokenKind::Operator, kTokenAssembly);
        default:
            if (*from == ';') return TakeRest(scan, from, TokenKind::Comment, kTokenAssembly);
            ++scan.at;
            // The mark of a line of assembly and a label's colon stand before the instruction.
            const bool starts = scan.starts;
            Add(scan, from, TokenKind::Punctuation, kTokenAssembly);
            if (*from == ':' || (starts && *from == '!')) scan.starts = true;
    }
}

// The word ASM of a line of assembly belongs to BASIC.
void ScanAssemblyLine(Scan& scan, bool inBlock) {
    if (!inBlock && KindOf(*scan.at) == Byte::Letter) {
        ScanWord(scan, 0);
        scan.starts = true;
    }
    for (PassBlanks(scan); !scan.Ends(); PassBlanks(scan)) ScanAssemblyToken(scan);
}

// Looks at the first letters only, because nearly all lines begin otherwise.
bool MayConcernAssembly(const Scan& scan) {
    if ((scan.state & kScanAssembly) != 0) return true;
    return scan.Peek(0) == '!' || HasWord(scan.at, scan.end, "ASM") || HasWord(scan.at, scan.end, "END");
}

AssemblyLine AssemblyAt(const Scan& scan) {
    const char* stop = scan.at;
    while (stop < scan.end && KindOf(*stop) != Byte::Break) ++stop;
    const auto length = static_cast<std::size_t>(stop - scan.at);
    return AssemblyOfLine({scan.at, length}, (scan.state & kScanAssembly) != 0);
}

// The line's assembly, if it is one. A line that opens or closes a block is BASIC.
bool ScanAssembly(Scan& scan) {
    if (!MayConcernAssembly(scan)) return false;
    const bool inBlock = (scan.state & kScanAssembly) != 0;
    const AssemblyKind kind = AssemblyAt(scan).kind;
    if (kind == AssemblyKind::BlockStart) scan.state |= kScanAssembly;
    if (kind == AssemblyKind::BlockEnd) scan.state &= ~kScanAssembly;
    if (kind != AssemblyKind::Instruction) return false;
    ScanAssemblyLine(scan, inBlock);
    return true;
}

std::size_t SkipBlanks(std::string_view line, std::size_t at) {
    while (at < line.size() && KindOf(line[at]) == Byte::Blank) ++at;
    return at;
}

// Whether the line has this word at `at`, and nothing that would belong to it follows.
bool LineHasWord(std::string_view line, std::size_t at, std::string_view upper) {
    if (!HasWord(line.data() + at, line.data() + line.size(), upper)) return false;
    const std::size_t end = at + upper.size();
    return end == line.size() || KindOf(line[end]) == Byte::Blank || line[end] == '\'' || line[end] == ':';
}

}  // namespace

AssemblyLine AssemblyOfLine(std::string_view line, bool inBlock) {
    const std::size_t first = SkipBlanks(line, 0);
    if (LineHasWord(line, first, "ENDASM") ||
        (LineHasWord(line, first, "END") && LineHasWord(line, SkipBlanks(line, first + 3), "ASM")))
        return {.kind = AssemblyKind::BlockEnd};
    if (inBlock || (first < line.size() && line[first] == '!')) return {AssemblyKind::Instruction, first};
    if (!LineHasWord(line, first, "ASM")) return {};
    const std::size_t rest = SkipBlanks(line, first + 3);
    if (rest == line.size() || line[rest] == '\'' || line[rest] == ':') return {.kind = AssemblyKind::BlockStart};
    return {AssemblyKind::Instruction, rest};
}

ScannedLine ScanLine(std::string_view text, std::size_t start, ScanState state, const Dialect& dialect,
                     std::vector<Token>& tokens) {
    tokens.clear();
    Scan scan{text.data() + start, text.data() + start, text.data() + text.size(), dialect, tokens, state};
    scan.starts = (state & kScanInside) == 0;
    if ((state & kScanComment) != 0) ScanBlockComment(scan, scan.at);
    PassBlanks(scan);
    const bool joins = (state & (kScanContinues | kScanComment)) != 0;
    if (joins || !ScanAssembly(scan))
        for (; !scan.Ends(); PassBlanks(scan)) ScanBasicToken(scan);

    scan.state &= kScanAssembly | kScanComment;
    if (scan.joined) scan.state |= kScanContinues | (scan.starts ? 0 : kScanInside);
    const auto length = static_cast<std::size_t>(scan.at - scan.begin);
    std::size_t next = start + length;
    if (next < text.size()) next += text[next] == '\r' && next + 1 < text.size() && text[next + 1] == '\n' ? 2 : 1;
    return {length, next, scan.state};
}

bool ReadLine(LineReader& reader) {
    if (reader.next >= reader.text.size()) return false;
    reader.start = reader.next;
    reader.before = reader.state;
    const ScannedLine line = ScanLine(reader.text, reader.start, reader.state, *reader.dialect, reader.tokens);
    reader.line = reader.text.substr(reader.start, line.length);
    reader.ending = reader.text.substr(reader.start + line.length, line.next - reader.start - line.length);
    reader.state = line.state;
    reader.next = line.next;
    return true;
}
