// Reads the characters of a file once. Positions count bytes, as the editor's caret does.
#include "lexer.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace standin {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsWordChar(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsEol(char c) { return c == '\n' || c == '\r'; }

struct Scanner {
    Sources& sources;
    int file;
    std::string text;  // a copy, because Report may grow the list of files
    size_t at = 0;
    size_t lineStart = 0;
    int line = 1;
    bool fresh = true;  // only blanks so far on this line
    std::vector<Token> tokens;
};

char Peek(const Scanner& s, size_t ahead = 0) { return s.at + ahead < s.text.size() ? s.text[s.at + ahead] : '\n'; }

Pos Here(const Scanner& s) { return {s.file, s.line, static_cast<int>(s.at - s.lineStart) + 1}; }

Token& Add(Scanner& s, TokenKind kind, Pos pos, std::string spelling) {
    Token token;
    token.kind = kind;
    token.pos = pos;
    token.firstOnLine = s.fresh;
    token.text = UpperCase(spelling);
    token.spelling = std::move(spelling);
    s.fresh = false;
    s.tokens.push_back(std::move(token));
    return s.tokens.back();
}

void SkipToEol(Scanner& s) {
    while (s.at < s.text.size() && !IsEol(s.text[s.at])) ++s.at;
}

// Skips one line end: CR LF, LF or CR, as the editor counts lines.
void PassEol(Scanner& s) {
    if (s.at < s.text.size() && s.text[s.at] == '\r' && s.at + 1 < s.text.size() && s.text[s.at + 1] == '\n') ++s.at;
    if (s.at < s.text.size()) ++s.at;
    ++s.line;
    s.lineStart = s.at;
    s.fresh = true;
}

// Skips a continuation: a '_' after a blank, with only a comment after it, joins the next line to this one.
bool PassContinuation(Scanner& s) {
    if (s.text[s.at] != '_' || (s.at > s.lineStart && !IsBlank(s.text[s.at - 1]))) return false;
    size_t ahead = s.at + 1;
    while (ahead < s.text.size() && IsBlank(s.text[ahead])) ++ahead;
    if (ahead < s.text.size() && !IsEol(s.text[ahead]) && s.text[ahead] != '\'') return false;
    SkipToEol(s);
    const bool fresh = s.fresh;
    PassEol(s);
    s.fresh = fresh;
    return true;
}

void ScanString(Scanner& s) {
    const Pos pos = Here(s);
    std::string value;
    for (++s.at; s.at < s.text.size() && !IsEol(s.text[s.at]); ++s.at) {
        if (s.text[s.at] != '"') {
            value += s.text[s.at];
        } else if (Peek(s, 1) == '"') {
            value += '"';
            ++s.at;
        } else {
            ++s.at;
            Add(s, TokenKind::String, pos, {}).text = std::move(value);
            return;
        }
    }
    Report(s.sources, Code::Text, pos, "string without its closing quotation mark");
    Add(s, TokenKind::String, pos, {}).text = std::move(value);
}

// Scans &HFF, &B101 or &O17. Up to 32 bits make a LONG (so &HFFFFFFFF is -1), more make a QUAD.
void ScanRadix(Scanner& s) {
    const Pos pos = Here(s);
    const char letter = static_cast<char>(Peek(s, 1) & ~0x20);
    const int radix = letter == 'H' ? 16 : letter == 'B' ? 2 : 8;
    const size_t start = s.at + 2;
    size_t end = start;
    while (end < s.text.size() && IsWordChar(s.text[end])) ++end;
    uint64_t value = 0;
    const auto result = std::from_chars(s.text.data() + start, s.text.data() + end, value, radix);
    const std::string spelling = s.text.substr(s.at, end - s.at);
    if (start == end || result.ptr != s.text.data() + end || result.ec != std::errc{})
        Report(s.sources, Code::Text, pos, "number '" + spelling + "' is not understood");
    s.at = end;
    Token& token = Add(s, TokenKind::Whole, pos, spelling);
    token.fitsLong = value <= 0xFFFFFFFFu;
    token.whole = token.fitsLong ? static_cast<int32_t>(static_cast<uint32_t>(value)) : static_cast<int64_t>(value);
}

void ScanNumber(Scanner& s) {
    const Pos pos = Here(s);
    const size_t start = s.at;
    bool real = false;
    while (IsDigit(Peek(s))) ++s.at;
    if (Peek(s) == '.') {
        real = true;
        ++s.at;
        while (IsDigit(Peek(s))) ++s.at;
    }
    if ((Peek(s) == 'E' || Peek(s) == 'e') &&
        (IsDigit(Peek(s, 1)) || ((Peek(s, 1) == '+' || Peek(s, 1) == '-') && IsDigit(Peek(s, 2))))) {
        real = true;
        s.at += 2;
        while (IsDigit(Peek(s))) ++s.at;
    }
    const size_t end = s.at;
    while (IsWordChar(Peek(s))) ++s.at;
    const std::string spelling = s.text.substr(start, s.at - start);
    Token& token = Add(s, real ? TokenKind::Real : TokenKind::Whole, pos, spelling);
    const char* const first = s.text.data() + start;
    const auto result = real ? std::from_chars(first, s.text.data() + end, token.real)
                             : std::from_chars(first, s.text.data() + end, token.whole);
    if (s.at != end)
        Report(s.sources, Code::Text, pos, "number '" + spelling + "' is not understood");
    else if (result.ec != std::errc{})
        Report(s.sources, Code::Text, pos, "number '" + spelling + "' is too large");
    token.fitsLong = token.whole <= INT32_MAX;
}

void ScanWord(Scanner& s, TokenKind kind) {
    const Pos pos = Here(s);
    const size_t start = s.at++;
    while (IsWordChar(Peek(s))) ++s.at;
    const std::string spelling = s.text.substr(start, s.at - start);
    if (kind == TokenKind::Word && UpperCase(spelling) == "REM") {
        SkipToEol(s);
        return;
    }
    if (spelling.size() > 64) Report(s.sources, Code::Limit, pos, "name is longer than 64 characters");
    Add(s, kind, pos, spelling);
}

void ScanMark(Scanner& s) {
    const Pos pos = Here(s);
    const std::string two = {Peek(s), Peek(s, 1)};
    if (two == "<=" || two == ">=" || two == "<>") {
        s.at += 2;
        Add(s, TokenKind::Mark, pos, two);
        return;
    }
    const char c = Peek(s);
    if (std::string_view("+-*/\\^=<>(),;:#").find(c) != std::string_view::npos) {
        ++s.at;
        Add(s, TokenKind::Mark, pos, std::string(1, c));
        return;
    }
    // A run of such characters gives one message, however long it is.
    const auto strange = [](char x) { return x < 0 || (x > 0 && x < ' ' && !IsBlank(x) && !IsEol(x)) || x == 127; };
    const bool run = strange(c);
    while (++s.at < s.text.size() && run && strange(s.text[s.at])) {}
    Report(s.sources, Code::Text, pos,
           run ? "characters outside ASCII may stand in strings and comments only"
               : std::string("character '") + c + "' has no meaning here");
}

// Reports and skips a line that is too long. Returns false for such a line.
bool CheckLineLength(Scanner& s) {
    const size_t end = std::min(s.text.find_first_of("\r\n", s.at), s.text.size());
    if (end - s.at <= kMaxLineBytes) return true;
    Report(s.sources, Code::Limit, Here(s), "line is longer than 8192 bytes");
    s.at = end;
    return false;
}

}  // namespace

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return upper;
}

std::vector<Token> Tokenize(Sources& sources, int file) {
    Scanner s{sources, file, sources.files[static_cast<size_t>(file)].text, 0, 0, 1, true, {}};
    while (s.at < s.text.size() && !TooManyErrors(sources)) {
        const char c = s.text[s.at];
        if (s.at == s.lineStart && !CheckLineLength(s)) continue;
        if (c == 0) {
            Report(sources, Code::Text, Here(s), "NUL byte: this is no ASCII or UTF-8 text file");
            break;
        }
        if (IsEol(c)) {
            Add(s, TokenKind::LineEnd, Here(s), {});
            PassEol(s);
        } else if (IsBlank(c))
            ++s.at;
        else if (c == '\'')
            SkipToEol(s);
        else if (c == '"')
            ScanString(s);
        else if (PassContinuation(s))
            continue;
        else if (IsDigit(c) || (c == '.' && IsDigit(Peek(s, 1))))
            ScanNumber(s);
        else if (IsLetter(c) || c == '_')
            ScanWord(s, TokenKind::Word);
        else if (c == '%' && IsLetter(Peek(s, 1)))
            ScanWord(s, TokenKind::ConstantName);
        else if (c == '&' && std::string_view("HhBbOo").find(Peek(s, 1)) != std::string_view::npos)
            ScanRadix(s);
        else
            ScanMark(s);
    }
    Add(s, TokenKind::LineEnd, Here(s), {});
    Add(s, TokenKind::FileEnd, Here(s), {});
    return std::move(s.tokens);
}

}  // namespace standin
