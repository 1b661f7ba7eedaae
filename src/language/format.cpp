// The formatter. It works on logical lines, which are physical lines joined by " _". Statements open and close blocks
// on a stack. A line is indented by the blocks that are open after its first statement has closed its own. Only leading
// and trailing blanks and the case of keywords change. Strings, comments, DATA, inline assembly and line ends stay as
// they are. Pure.
#include "language/format.h"

#include "language/basic_words.h"
#include "language/scanner.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace {

constexpr std::size_t kLinesBetweenQuestions = 256;

enum class Block : std::uint8_t {
    If,
    Select,
    Case,
    For,
    Do,
    While,
    Try,
    With,
    Type,
    Union,
    Enum,
    Macro,
    Class,
    Interface,
    Namespace,
    Sub,
    Function,
    Method,
    Property,
    Fastproc,
    Asm,
};

// A word that opens a block or follows END, and its block.
struct BlockWord {
    std::string_view word;
    Block block;
};
constexpr BlockWord kBlockWords[] = {
    {"IF", Block::If},
    {"SELECT", Block::Select},
    {"WHILE", Block::While},
    {"TRY", Block::Try},
    {"WITH", Block::With},
    {"TYPE", Block::Type},
    {"UNION", Block::Union},
    {"ENUM", Block::Enum},
    {"MACRO", Block::Macro},
    {"CLASS", Block::Class},
    {"INTERFACE", Block::Interface},
    {"NAMESPACE", Block::Namespace},
    {"SUB", Block::Sub},
    {"FUNCTION", Block::Function},
    {"METHOD", Block::Method},
    {"PROPERTY", Block::Property},
    {"FASTPROC", Block::Fastproc},
    {"ASM", Block::Asm},
};

// Words that may stand before SUB, FUNCTION and the like.
constexpr std::string_view kPrefixes[] = {"STATIC", "PRIVATE", "PUBLIC",   "CALLBACK",  "THREAD",
                                          "EXPORT", "INLINE",  "OVERRIDE", "THREADSAFE"};

bool IsBasicKeyword(std::string_view word) {
    return LookUpWord(word).kind > WordClass::None && LookUpWord(word).kind != WordClass::Preprocessor;
}
bool IsSourceBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c & 0x80) != 0; }
bool IsNameCharacter(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }

std::string UpperWord(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return upper;
}

const BlockWord* FindBlockWord(std::string_view word) {
    const auto* row = std::find_if(std::begin(kBlockWords), std::end(kBlockWords),
                                   [word](const BlockWord& entry) { return entry.word == word; });
    return row == std::end(kBlockWords) ? nullptr : row;
}

bool IsProcedure(Block block) {
    return block == Block::Sub || block == Block::Function || block == Block::Method || block == Block::Property ||
           block == Block::Fastproc;
}
bool IsContainer(Block block) {
    return block == Block::Class || block == Block::Interface || block == Block::Namespace;
}

// The tokens of a statement: words in capitals, other characters as themselves, a string as "\"". Blanks and comments
// are left out.
using Statement = std::vector<std::string>;

// The content of one physical line.
struct LineScan {
    std::vector<Statement> statements;  // separated by colons; the first may continue the last one of the line before
    bool continues = false;             // ends with " _"
    bool openString = false;            // a string is not closed, so trailing blanks belong to it
    bool labelOnly = false;             // "name:" and nothing else
    std::string directive;              // "IF" of "#IF"
    std::string text;                   // the line, with its keywords in capitals when that is an option
};

struct Scanner {
    std::string_view line;
    std::size_t at = 0;
    bool upperKeywords;
    bool first;  // at the start of a logical line
    LineScan* out;
};

void AddToken(Scanner& scan, std::string token) { scan.out->statements.back().push_back(std::move(token)); }
bool AtStatementStart(const Scanner& scan) { return scan.out->statements.back().empty(); }

void CopyRest(Scanner& scan) {
    scan.out->text.append(scan.line.substr(scan.at));
    scan.at = scan.line.size();
}

void ScanString(Scanner& scan) {
    const std::size_t end = scan.line.find('"', scan.at + 1);
    scan.out->openString = end == std::string_view::npos;
    const std::size_t stop = scan.out->openString ? scan.line.size() : end + 1;
    scan.out->text.append(scan.line.substr(scan.at, stop - scan.at));
    scan.at = stop;
    AddToken(scan, "\"");
}

// A number in digits, or after "&H" and the like. Letters in it are not words.
void ScanNumber(Scanner& scan) {
    std::size_t end = scan.at + (scan.line[scan.at] == '&' ? 2 : 1);
    while (end < scan.line.size() && (IsNameCharacter(scan.line[end]) || scan.line[end] == '.')) ++end;
    const bool lineNumber = scan.first && AtStatementStart(scan) && scan.out->statements.size() == 1;
    scan.out->text.append(scan.line.substr(scan.at, end - scan.at));
    scan.at = end;
    if (!lineNumber) AddToken(scan, "0");
}

void ScanWord(Scanner& scan) {
    std::size_t end = scan.at;
    while (end < scan.line.size() && IsNameCharacter(scan.line[end])) ++end;
    const std::string_view word = scan.line.substr(scan.at, end - scan.at);
    const char before = scan.at > 0 ? scan.line[scan.at - 1] : ' ';
    const std::string upper = UpperWord(word);
    if (upper == "REM" && AtStatementStart(scan)) {
        scan.out->text.append(scan.upperKeywords ? upper : std::string(word));
        scan.at = end;
        CopyRest(scan);
        return;
    }
    // The name of a member, a constant or a directive is not a keyword.
    const bool plain = before != '.' && before != '%' && before != '$' && before != '@';
    const bool upperCase = scan.upperKeywords && plain && (before == '#' ? scan.first : IsBasicKeyword(word));
    scan.out->text.append(upperCase ? upper : std::string(word));
    scan.at = end;
    const bool data = upper == "DATA" && AtStatementStart(scan);
    if (before == '#' && scan.first && scan.out->directive.empty() && scan.out->statements.size() == 1 &&
        scan.out->statements.front().size() == 1)
        scan.out->directive = upper;
    AddToken(scan, plain ? upper : "." + upper);
    if (data) CopyRest(scan);
}

// Scans a line without its end and its leading blanks.
LineScan ScanLine(std::string_view line, bool upperKeywords, bool first) {
    LineScan out;
    out.statements.emplace_back();
    out.text.reserve(line.size());
    Scanner scan{line, 0, upperKeywords, first, &out};
    while (scan.at < line.size()) {
        const char c = line[scan.at];
        const char next = scan.at + 1 < line.size() ? line[scan.at + 1] : '\0';
        if (c == '\'') {
            CopyRest(scan);
        } else if (c == '"') {
            ScanString(scan);
        } else if (IsDigit(c) || (c == '&' && next != '\0' && UpperWord({&next, 1}).find_first_of("HOB") == 0)) {
            ScanNumber(scan);
        } else if (IsLetter(c) || (c == '_' && IsNameCharacter(next))) {
            ScanWord(scan);
        } else {
            out.text.push_back(c);
            ++scan.at;
            out.continues = c == '_' || (out.continues && IsSourceBlank(c));
            if (c == ':')
                out.statements.emplace_back();
            else if (c != '_' && !IsSourceBlank(c))
                AddToken(scan, std::string(1, c));
            continue;
        }
        // Only blanks and a comment may follow the underscore of a continued line.
        if (c != '\'') out.continues = false;
    }
    out.labelOnly = first && out.statements.size() == 2 && out.statements[0].size() == 1 && out.statements[1].empty() &&
                    IsLetter(out.statements[0][0][0]) && !IsBasicKeyword(out.statements[0][0]);
    return out;
}

// --- Blocks

struct Nesting {
    std::vector<Block> open;

    int Depth() const { return static_cast<int>(open.size()); }
};

// Closes the innermost block of a kind with all blocks inside it.
void CloseBlock(Nesting& nesting, Block block) {
    const auto found = std::find(nesting.open.rbegin(), nesting.open.rend(), block);
    if (found != nesting.open.rend()) nesting.open.erase(std::next(found).base(), nesting.open.end());
}

// Closes all blocks but containers, because no procedure can be inside another: what is still open was left open by
// mistake and must not indent the rest.
void CloseProcedures(Nesting& nesting) {
    const auto first =
        std::find_if(nesting.open.begin(), nesting.open.end(), [](Block block) { return !IsContainer(block); });
    nesting.open.erase(first, nesting.open.end());
}

std::string_view TokenAt(const Statement& statement, std::size_t index) {
    return index < statement.size() ? std::string_view(statement[index]) : std::string_view();
}

// The row of the block that a statement opens with SUB, TYPE and the like, or null. "FUNCTION = 1" and "TYPE SET" open
// none.
const BlockWord* OpenedDefinition(const Statement& statement) {
    std::size_t at = 0;
    while (std::find(std::begin(kPrefixes), std::end(kPrefixes), TokenAt(statement, at)) != std::end(kPrefixes)) ++at;
    if (TokenAt(statement, at) == "CLASS" && TokenAt(statement, at + 1) == "METHOD") ++at;
    const BlockWord* word = FindBlockWord(TokenAt(statement, at));
    if (word == nullptr) return nullptr;
    const std::string_view name = TokenAt(statement, at + 1);
    const bool named = !name.empty() && (IsLetter(name[0]) || name[0] == '_');
    switch (word->block) {
        case Block::Type: return named && name != "SET" ? word : nullptr;
        case Block::Macro: {
            // "MACRO name(args) = text" is complete in one line.
            const auto from = statement.begin() + static_cast<std::ptrdiff_t>(at);
            return named && std::find(from, statement.end(), "=") == statement.end() ? word : nullptr;
        }
        case Block::Sub:
        case Block::Function:
        case Block::Method:
        case Block::Property:
        case Block::Fastproc:
        case Block::Union:
        case Block::Class:
        case Block::Interface:
        case Block::Namespace: return named ? word : nullptr;
        case Block::Enum: return word;
        default: return nullptr;
    }
}

// The effect of a statement on the blocks. It closes blocks first, then opens one.
struct Effect {
    enum class Kind : std::uint8_t { None, Close, Middle, CaseLabel } kind = Kind::None;
    Block block = Block::If;
    int count = 1;
    bool opens = false;
    Block opened = Block::If;
};

Effect EndEffect(const Statement& statement) {
    std::string_view name = TokenAt(statement, 1);
    const std::string_view first = TokenAt(statement, 0);
    if (first != "END") name = first.substr(3);  // ENDIF and the like
    const BlockWord* word = FindBlockWord(name);
    if (word == nullptr) return {};
    return {.kind = Effect::Kind::Close, .block = word->block};
}

Effect StatementEffect(const Statement& statement) {
    using Kind = Effect::Kind;
    const std::string_view word = TokenAt(statement, 0);
    if (word == "END" || (word.size() > 3 && word.starts_with("END") && FindBlockWord(word.substr(3)) != nullptr))
        return EndEffect(statement);
    if (word == "IF") return {.opens = statement.back() == "THEN", .opened = Block::If};
    if (word == "ELSE" || word == "ELSEIF") return {.kind = Kind::Middle, .block = Block::If};
    if (word == "SELECT") return {.opens = true, .opened = Block::Select};
    if (word == "CASE") return {.kind = Kind::CaseLabel, .opens = true, .opened = Block::Case};
    if (word == "FOR") return {.opens = true, .opened = Block::For};
    if (word == "NEXT") {
        const auto commas = std::count(statement.begin(), statement.end(), ",");
        return {.kind = Kind::Close, .block = Block::For, .count = 1 + static_cast<int>(commas)};
    }
    if (word == "DO") return {.opens = true, .opened = Block::Do};
    if (word == "LOOP") return {.kind = Kind::Close, .block = Block::Do};
    if (word == "WHILE") return {.opens = true, .opened = Block::While};
    if (word == "WEND") return {.kind = Kind::Close, .block = Block::While};
    if (word == "TRY") return {.opens = true, .opened = Block::Try};
    if (word == "CATCH" || word == "FINALLY") return {.kind = Kind::Middle, .block = Block::Try};
    if (word == "WITH") return {.opens = true, .opened = Block::With};
    if (word == "ASM" && statement.size() == 1) return {.opens = true, .opened = Block::Asm};
    if (const BlockWord* definition = OpenedDefinition(statement)) return {.opens = true, .opened = definition->block};
    return {};
}

// Closes what the statement closes. Returns the depth of the statement's own line.
int ApplyClosing(Nesting& nesting, const Effect& effect) {
    using Kind = Effect::Kind;
    if (effect.opens && IsProcedure(effect.opened)) CloseProcedures(nesting);
    switch (effect.kind) {
        case Kind::None: return nesting.Depth();
        case Kind::Close:
            for (int i = 0; i < effect.count; ++i) CloseBlock(nesting, effect.block);
            return nesting.Depth();
        case Kind::Middle: {
            const auto found = std::find(nesting.open.rbegin(), nesting.open.rend(), effect.block);
            if (found != nesting.open.rend()) nesting.open.erase(found.base(), nesting.open.end());
            return std::max(nesting.Depth() - 1, 0);
        }
        case Kind::CaseLabel: {
            const auto found = std::find(nesting.open.rbegin(), nesting.open.rend(), Block::Select);
            if (found != nesting.open.rend()) nesting.open.erase(found.base(), nesting.open.end());
            return nesting.Depth();
        }
    }
    return nesting.Depth();
}

// Applies the statements of a logical line. Returns the depth of its first physical line.
int ApplyStatements(Nesting& nesting, const std::vector<Statement>& statements) {
    int depth = nesting.Depth();
    bool firstStatement = true;
    for (const Statement& statement : statements) {
        if (statement.empty()) continue;
        const Effect effect = StatementEffect(statement);
        const int closed = ApplyClosing(nesting, effect);
        if (firstStatement) depth = closed;
        firstStatement = false;
        if (effect.opens) nesting.open.push_back(effect.opened);
        // The statements after the THEN of a one-line IF belong to it and open no blocks for the lines below.
        const bool oneLineIf = TokenAt(statement, 0) == "IF" && !effect.opens;
        if (oneLineIf) break;
    }
    return depth;
}

// --- Lines

struct Line {
    std::string_view text;  // without its end
    std::string_view end;   // "\r\n", "\n", "\r" or nothing
};

std::vector<Line> SourceLines(std::string_view text) {
    std::vector<Line> lines;
    while (!text.empty()) {
        const std::size_t stop = std::min(text.find_first_of("\r\n"), text.size());
        std::size_t next = std::min(stop + 1, text.size());
        if (next < text.size() && text[stop] == '\r' && text[next] == '\n') ++next;
        lines.push_back({text.substr(0, stop), text.substr(stop, next - stop)});
        text.remove_prefix(next);
    }
    return lines;
}

std::string_view TrimLeft(std::string_view text) {
    while (!text.empty() && IsSourceBlank(text.front())) text.remove_prefix(1);
    return text;
}
std::string_view TrimRight(std::string_view text) {
    while (!text.empty() && IsSourceBlank(text.back())) text.remove_suffix(1);
    return text;
}

void AppendIndent(std::string& out, int depth, const FormatOptions& options) {
    const int levels = std::max(depth, 0);
    if (options.useTabs)
        out.append(static_cast<std::size_t>(levels), '\t');
    else
        out.append(static_cast<std::size_t>(levels * std::max(options.indentWidth, 0)), ' ');
}

// All branches of a conditional compilation start from the same nesting. Returns the depth of the directive's line.
int ApplyDirective(const std::string& directive, Nesting& nesting, std::vector<Nesting>& saved) {
    int depth = nesting.Depth();
    if (directive == "IF" || directive == "IFDEF" || directive == "IFNDEF") {
        saved.push_back(nesting);
    } else if ((directive == "ELSE" || directive == "ELSEIF") && !saved.empty()) {
        nesting = saved.back();
        depth = nesting.Depth();
    } else if (directive == "ENDIF" && !saved.empty()) {
        depth = saved.back().Depth();
        saved.pop_back();
    }
    return depth;
}

bool IsInAssembly(const Nesting& nesting) { return !nesting.open.empty() && nesting.open.back() == Block::Asm; }

bool IsAssembly(std::string_view line, const Nesting& nesting) {
    return AssemblyOfLine(line, IsInAssembly(nesting)).kind == AssemblyKind::Instruction;
}

// A statement with the physical lines that it stands on, which are joined by " _".
struct LogicalLine {
    std::vector<LineScan> scans;  // one for each physical line
    std::vector<Statement> statements;
};

LogicalLine ScanLogicalLine(std::span<const Line> lines, bool upperKeywords) {
    LogicalLine out;
    for (const Line& line : lines) {
        out.scans.push_back(ScanLine(TrimLeft(line.text), upperKeywords, out.scans.empty()));
        std::vector<Statement>& found = out.scans.back().statements;
        if (out.statements.empty()) {
            out.statements = std::move(found);
        } else {
            Statement& open = out.statements.back();
            open.insert(open.end(), found.front().begin(), found.front().end());
            out.statements.insert(out.statements.end(), found.begin() + 1, found.end());
        }
        if (!out.scans.back().continues) break;
    }
    return out;
}

// Takes the blocks of a logical line into account. Returns the depth of its first physical line.
int ApplyLogicalLine(const LogicalLine& line, Nesting& nesting, std::vector<Nesting>& saved) {
    const std::string& directive = line.scans.front().directive;
    const int depth =
        directive.empty() ? ApplyStatements(nesting, line.statements) : ApplyDirective(directive, nesting, saved);
    return line.scans.front().labelOnly ? std::max(depth - 1, 0) : depth;
}

void AppendFormatted(std::string& out, const LineScan& scan, const Line& line, int depth,
                     const FormatOptions& options) {
    const std::string_view text = scan.openString ? std::string_view(scan.text) : TrimRight(scan.text);
    if (!text.empty()) AppendIndent(out, depth, options);
    out.append(text).append(line.end);
}

}  // namespace

std::string FormatBasicSource(std::string_view text, const FormatOptions& options) {
    return FormatBasicLines(text, options, 0, std::numeric_limits<int>::max());
}

std::string FormatBasicLines(std::string_view text, const FormatOptions& options, int first, int last,
                             const std::function<bool(double share)>& goesOn) {
    std::string out;
    Nesting nesting;
    std::vector<Nesting> saved;
    const std::vector<Line> lines = SourceLines(text);
    const auto from = static_cast<std::size_t>(std::max(first, 0));
    const std::size_t end = std::min(lines.size(), static_cast<std::size_t>(std::max(last, -1)) + 1);
    if (from == 0) out.reserve(text.size() + text.size() / 8);

    std::size_t asked = 0;  // line at which `goesOn` was asked last
    for (std::size_t i = 0; i < end;) {
        if (goesOn != nullptr && i - asked >= kLinesBetweenQuestions) {
            if (!goesOn(static_cast<double>(i) / static_cast<double>(end))) break;
            asked = i;
        }
        if (IsAssembly(lines[i].text, nesting)) {
            if (i >= from) out.append(lines[i].text).append(lines[i].end);
            ++i;
            continue;
        }
        // Above the wanted lines only the blocks matter, and looking up keywords takes most of the time.
        const std::span rest = std::span(lines).subspan(i);
        LogicalLine logical = ScanLogicalLine(rest, options.upperKeywords && i >= from);
        if (i < from && i + logical.scans.size() > from) logical = ScanLogicalLine(rest, options.upperKeywords);
        const int depth = ApplyLogicalLine(logical, nesting, saved);
        for (const LineScan& scan : logical.scans) {
            if (i >= from && i < end)
                AppendFormatted(out, scan, lines[i], &scan == &logical.scans.front() ? depth : depth + 1, options);
            ++i;
        }
    }
    return out;
}

std::string KeywordsInCapitals(std::string_view line, bool inAssembly) {
    if (AssemblyOfLine(line, inAssembly).kind == AssemblyKind::Instruction) return std::string(line);
    const std::string_view trimmed = TrimLeft(line);
    return std::string(line.substr(0, line.size() - trimmed.size())) + ScanLine(trimmed, true, true).text;
}
