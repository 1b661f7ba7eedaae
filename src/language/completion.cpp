// The place of the caret in a statement. Pure.
#include "language/completion.h"

#include "base/scan_text.h"
#include "language/symbols.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

// A token of the statement at the caret.
struct Part {
    TokenKind kind;
    std::uint8_t flags;
    std::size_t start;  // bytes from the start of the text
    std::string_view text;
    std::string_view name;  // without a type suffix
    BasicWord word = BasicWord::None;
    WordClass wordClass = WordClass::None;

    bool IsName() const { return kind == TokenKind::Word; }
};
using Names = std::vector<std::string>;

struct Reading {
    std::vector<Part> parts;  // of the statement so far
    std::vector<Names> with;  // of each open block of WITH, from the outermost
    bool listsNames = false;  // inside a TYPE, a UNION or an ENUM
};

bool IsOneOf(BasicWord word, std::initializer_list<BasicWord> words) {
    return std::ranges::find(words, word) != words.end();
}

bool IsMark(const Part& part, char mark) { return part.text.size() == 1 && part.text[0] == mark; }

// The names before the part `at`, which is a dot: those of "a(i).b" for the dot behind b. Empty when none stands at it.
Names NamesBeforeDot(const std::vector<Part>& parts, std::size_t at) {
    Names names;
    while (at > 0) {
        const std::size_t dot = at--;
        if (parts[at].start + parts[at].text.size() != parts[dot].start) break;  // a dot with a blank before it
        if (IsMark(parts[at], ')')) {
            int depth = 1;
            while (at > 0 && depth > 0) {
                --at;
                depth += IsMark(parts[at], ')') ? 1 : IsMark(parts[at], '(') ? -1 : 0;
            }
            if (at == 0) return {};
            --at;
        }
        if (!parts[at].IsName()) return {};
        names.insert(names.begin(), std::string(parts[at].name));
        if (at > 0 && IsMark(parts[at - 1], '@')) --at;
        if (at == 0 || !IsMark(parts[at - 1], '.')) break;
        --at;
    }
    return names;
}

// The names of "a(1).b", which end a statement.
Names NamesOfObject(const std::vector<Part>& parts) {
    std::vector<Part> dotted = parts;
    const Part& last = parts.back();
    dotted.push_back({TokenKind::Punctuation, 0, last.start + last.text.size(), ".", "."});
    return NamesBeforeDot(dotted, dotted.size() - 1);
}

// The full names before a dot: those of the WITH around it when nothing stands at the dot.
Names QualifierOf(const Reading& reading, std::size_t dot) {
    const std::vector<Part>& parts = reading.parts;
    Names names = NamesBeforeDot(parts, dot);
    if (!names.empty()) {
        const std::size_t first =
            std::find_if(parts.begin(), parts.end(), [&](const Part& part) { return part.name == names[0]; }) -
            parts.begin();
        // ".a.b" inside a WITH.
        const bool relative =
            first > 0 && first < parts.size() && IsMark(parts[first - 1], '.') &&
            (first == 1 || parts[first - 2].start + parts[first - 2].text.size() != parts[first - 1].start);
        if (!relative || reading.with.empty()) return names;
        Names whole = reading.with.back();
        whole.insert(whole.end(), names.begin(), names.end());
        return whole;
    }
    const bool alone = dot == 0 || parts[dot - 1].start + parts[dot - 1].text.size() != parts[dot].start;
    return alone && !reading.with.empty() ? reading.with.back() : Names{};
}

// Takes a whole statement into account.
void EndStatement(Reading& reading) {
    std::vector<Part>& parts = reading.parts;
    const auto word = [&parts](std::size_t at) { return at < parts.size() ? parts[at].word : BasicWord::None; };
    const bool closes = word(0) == BasicWord::End;
    const BasicWord block = word(closes ? 1 : 0);
    if (word(0) == BasicWord::EndWith || (closes && block == BasicWord::With)) {
        if (!reading.with.empty()) reading.with.pop_back();
    } else if (block == BasicWord::With && parts.size() > 1) {
        Names names = NamesOfObject(parts);
        if (IsMark(parts[1], '.') && !reading.with.empty())
            names.insert(names.begin(), reading.with.back().begin(), reading.with.back().end());
        reading.with.push_back(std::move(names));
    }
    const bool lists = block == BasicWord::Type || block == BasicWord::Union || block == BasicWord::Enum;
    const bool assigns = parts.size() > 1 && parts[1].kind == TokenKind::Operator;
    if (lists && !assigns) reading.listsNames = !closes;
    // A procedure begins behind a TYPE that is not closed yet.
    if (IsOneOf(word(0),
                {BasicWord::EndType, BasicWord::EndUnion, BasicWord::EndEnum, BasicWord::Sub, BasicWord::Function}))
        reading.listsNames = false;
    parts.clear();
}

void TakeToken(Reading& reading, const LineReader& reader, const Token& token, const Dialect& dialect) {
    if (token.Is(kTokenStarts) && !reading.parts.empty()) EndStatement(reading);
    if (token.kind == TokenKind::Separator || token.kind == TokenKind::Label) return EndStatement(reading);
    if (token.kind == TokenKind::Comment || token.kind == TokenKind::Continuation ||
        token.kind == TokenKind::LineNumber)
        return;
    Part part{token.kind, token.flags, reader.start + token.start, TokenText(reader.line, token),
              TokenName(reader.line, token)};
    if (token.kind == TokenKind::Word && !token.Is(kTokenName | kTokenAssembly)) {
        const WordInfo info = LookUpWord(part.name, dialect);
        part.word = info.word;
        part.wordClass = info.kind;
    }
    reading.parts.push_back(part);
}

// Reads the text; the last line's tokens stay in the reader, and the statement at its end in `reading`.
void ReadUpToCaret(LineReader& reader, Reading& reading) {
    while (ReadLine(reader)) {
        if ((reader.before & kScanContinues) == 0) EndStatement(reading);
        for (const Token& token : reader.tokens) TakeToken(reading, reader, token, *reader.dialect);
    }
}

bool HeadsProcedure(BasicWord word) {
    return IsOneOf(word, {BasicWord::Sub, BasicWord::Function, BasicWord::Method, BasicWord::Property,
                          BasicWord::FastProc, BasicWord::Macro});
}
bool HeadsType(BasicWord word) {
    return IsOneOf(word, {BasicWord::Type, BasicWord::Union, BasicWord::Enum, BasicWord::Class, BasicWord::Interface,
                          BasicWord::Namespace});
}
bool HeadsVariables(BasicWord word) {
    return IsOneOf(word, {BasicWord::Dim, BasicWord::Local, BasicWord::Global, BasicWord::Static, BasicWord::Register,
                          BasicWord::Threaded, BasicWord::Instance, BasicWord::Const, BasicWord::MacroTemp});
}
bool PrecedesHead(BasicWord word) {
    return IsOneOf(
        word, {BasicWord::Static, BasicWord::Callback, BasicWord::Private, BasicWord::Public, BasicWord::Declare,
               BasicWord::Export, BasicWord::Override, BasicWord::Inline, BasicWord::ThreadSafe, BasicWord::Thread});
}

int DepthOfParentheses(const std::vector<Part>& parts) {
    int depth = 0;
    for (const Part& part : parts) depth += IsMark(part, '(') ? 1 : IsMark(part, ')') ? -1 : 0;
    return depth;
}

// In the heading of a procedure, whose word is the part `head`.
CompletionPlace PlaceInHeading(const std::vector<Part>& parts, std::size_t head) {
    const Part& last = parts.back();
    if (parts.size() > head + 1 && parts[head + 1].kind == TokenKind::Operator) return CompletionPlace::Expression;
    if (parts.size() == head + 1)
        return last.word == BasicWord::Function ? CompletionPlace::EntryName : CompletionPlace::NewName;
    const bool macro = parts[head].word == BasicWord::Macro;
    if (macro && std::ranges::any_of(parts, [](const Part& part) { return IsMark(part, '='); }))
        return CompletionPlace::Expression;
    if (macro && DepthOfParentheses(parts) > 0) return CompletionPlace::NewName;
    if (DepthOfParentheses(parts) == 0) return CompletionPlace::AfterName;
    if (IsMark(last, '(') || IsMark(last, ',')) return CompletionPlace::Parameter;
    if (IsOneOf(last.word, {BasicWord::ByVal, BasicWord::ByRef, BasicWord::ByCopy, BasicWord::Optional}))
        return CompletionPlace::NewName;
    return last.kind == TokenKind::Operator ? CompletionPlace::Expression : CompletionPlace::AfterName;
}

CompletionPlace PlaceInVariables(const std::vector<Part>& parts) {
    const Part& last = parts.back();
    if (DepthOfParentheses(parts) > 0 || last.kind == TokenKind::Operator) return CompletionPlace::Expression;
    if (IsMark(last, ',') || HeadsVariables(last.word)) return CompletionPlace::NewName;
    return CompletionPlace::AfterName;
}

CompletionPlace PlaceAfterDirective(const Part& directive) {
    const std::string_view word =
        directive.text.substr(std::min(directive.text.find_first_not_of("#$ \t"), directive.text.size()));
    for (const std::string_view condition : {"IF", "ELSEIF", "IFDEF", "IFNDEF"})
        if (CompareNames(word, condition) == 0) return CompletionPlace::Expression;
    return CompletionPlace::NewName;
}

// The place behind the parts of a statement, which are those before the word at the caret.
CompletionPlace PlaceBehind(const Reading& reading) {
    const std::vector<Part>& parts = reading.parts;
    if (parts.empty()) return reading.listsNames ? CompletionPlace::NewName : CompletionPlace::Statement;
    const Part& last = parts.back();
    if (parts[0].kind == TokenKind::Directive) return PlaceAfterDirective(parts[0]);
    if (IsOneOf(last.word, {BasicWord::Then, BasicWord::Else})) return CompletionPlace::Statement;
    const bool opens = CompareNames(parts[0].name, "open") == 0;
    if (last.word == BasicWord::As && !opens) return CompletionPlace::Type;
    const auto jumps = [](const Part& part) {
        return IsOneOf(part.word, {BasicWord::GoTo, BasicWord::GoSub, BasicWord::Resume});
    };
    if (jumps(last) || (IsMark(last, ',') && std::ranges::any_of(parts, jumps))) return CompletionPlace::Label;
    if (IsOneOf(last.word, {BasicWord::End, BasicWord::Exit, BasicWord::Iterate})) return CompletionPlace::BlockWord;
    std::size_t head = 0;
    while (head + 1 < parts.size() && PrecedesHead(parts[head].word)) ++head;
    if (HeadsProcedure(parts[head].word)) return PlaceInHeading(parts, head);
    if (HeadsType(parts[0].word) && (parts.size() < 2 || parts[1].kind != TokenKind::Operator))
        return parts.size() == 1 ? CompletionPlace::NewName : CompletionPlace::AfterName;
    if (HeadsVariables(parts[0].word)) return PlaceInVariables(parts);
    if (reading.listsNames)
        return last.kind == TokenKind::Operator ? CompletionPlace::Expression : CompletionPlace::AfterName;
    return CompletionPlace::Expression;
}

// Splits the word at the caret off the statement, and tells whether code may stand there at all.
bool TakeWordAtCaret(Reading& reading, const Token& last, CompletionContext& context) {
    switch (last.kind) {
        case TokenKind::Word:
        case TokenKind::Equate:
            if (last.suffix != 0) return false;
            context.start = reading.parts.back().start;
            context.prefix = reading.parts.back().text;
            reading.parts.pop_back();
            return true;
        case TokenKind::Directive: {
            const Part& part = reading.parts.back();
            const std::size_t word = std::min(part.text.find_first_not_of("#$ \t"), part.text.size());
            context.start = part.start + word;
            context.prefix = part.text.substr(word);
            context.place = CompletionPlace::Directive;
            reading.parts.pop_back();
            return true;
        }
        case TokenKind::Punctuation: {
            const Part part = reading.parts.back();
            if (IsMark(part, '%') || IsMark(part, '$')) {  // an equate begins, unless it is a type suffix
                const bool suffix = reading.parts.size() > 1 && part.start > 0 &&
                                    reading.parts[reading.parts.size() - 2].start +
                                            reading.parts[reading.parts.size() - 2].text.size() ==
                                        part.start &&
                                    reading.parts[reading.parts.size() - 2].IsName();
                if (suffix) return false;
                context.start = part.start;
                context.prefix = part.text;
                reading.parts.pop_back();
            } else if (IsMark(part, '#') && reading.parts.size() == 1) {
                context.place = CompletionPlace::Directive;
                reading.parts.pop_back();
            }
            return true;
        }
        case TokenKind::Operator:
        case TokenKind::Separator:
        case TokenKind::Label: return true;
        default: return false;
    }
}

CompletionPlace PlaceInAssembly(const Reading& reading) {
    const auto counts = [](const Part& part) {
        return part.kind == TokenKind::Word && (part.flags & kTokenAssembly) != 0;
    };
    return std::ranges::any_of(reading.parts, counts) ? CompletionPlace::Operand : CompletionPlace::Instruction;
}

// Whether nothing but code can follow the last line that was read.
bool EndsInCode(const LineReader& reader, const Reading& reading, std::size_t end) {
    if ((reader.state & kScanComment) != 0) return false;
    if (reader.tokens.empty() || !reader.ending.empty()) return true;
    const Token& last = reader.tokens.back();
    if (last.kind == TokenKind::Comment) {
        // A block comment may be closed before the caret.
        const std::string_view text = TokenText(reader.line, last);
        return text.starts_with("/'") && text.ends_with("'/") && reader.start + last.End() < end;
    }
    if (last.kind == TokenKind::String && last.Is(kTokenOpen)) return false;
    if (last.kind == TokenKind::Data) return false;
    return reading.parts.empty() || reading.parts.back().word != BasicWord::Data;
}

}  // namespace

CompletionContext CompletionContextAt(std::string_view before, ScanState state, const Dialect& dialect) {
    LineReader reader{.text = before, .dialect = &dialect, .state = state};
    Reading reading;
    ReadUpToCaret(reader, reading);
    CompletionContext context{.start = before.size()};
    if (!EndsInCode(reader, reading, before.size())) return context;
    const bool freshLine = before.empty() || !reader.ending.empty();
    if (freshLine && (reader.state & kScanContinues) == 0) EndStatement(reading);
    const bool touches =
        !freshLine && !reader.tokens.empty() && reader.start + reader.tokens.back().End() == before.size();
    const bool assembly = freshLine ? (reader.state & kScanAssembly) != 0
                                    : !reader.tokens.empty() && reader.tokens.back().Is(kTokenAssembly);
    if (touches && !TakeWordAtCaret(reading, reader.tokens.back(), context)) return context;
    context.inCode = true;
    if (assembly || (!freshLine && reader.tokens.empty() && (reader.state & kScanAssembly) != 0))
        context.place = PlaceInAssembly(reading);
    else if (context.place == CompletionPlace::Directive)
        return context;
    else if (!reading.parts.empty() && IsMark(reading.parts.back(), '.') &&
             reading.parts.back().start + 1 == context.start) {
        context.qualifier = QualifierOf(reading, reading.parts.size() - 1);
        context.place = CompletionPlace::Member;
    } else
        context.place = PlaceBehind(reading);
    const bool equate = CompletionLetters(context.prefix) < context.prefix.size();
    if (equate && context.place == CompletionPlace::Statement) context.place = CompletionPlace::NewName;
    return context;
}

BlockKind InnermostBlockAt(std::string_view before, ScanState state, const Dialect& dialect) {
    BlockTable table;
    BlockLine line;
    LineReader reader{.text = before.substr(0, before.find_last_of("\r\n") + 1), .dialect = &dialect, .state = state};
    LineState open = state;
    while (ReadLine(reader)) open = ScanBlocks(table, reader.line, reader.tokens, open, reader.state, dialect, line);
    return InnermostOf(table, open);
}

std::size_t CompletionLetters(std::string_view prefix) {
    return prefix.size() - std::min(prefix.find_first_not_of("%$"), prefix.size());
}

namespace {

bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return IsUpper(UpperAscii(c)); }

// Whether a part of the name begins at `at`.
bool BeginsPart(std::string_view name, std::size_t at) {
    if (at == 0) return true;
    const char c = name[at], before = name[at - 1];
    if (!IsLetter(before) && IsLetter(c)) return true;
    if (IsDigit(c) && !IsDigit(before)) return true;
    return IsUpper(c) && !IsUpper(before);
}

bool FitsHumps(std::string_view typed, std::string_view name, std::size_t at) {
    if (typed.empty()) return true;
    // On in the same part, else at the next part that begins so.
    if (at < name.size() && UpperAscii(name[at]) == UpperAscii(typed[0]) && FitsHumps(typed.substr(1), name, at + 1))
        return true;
    for (std::size_t next = at + 1; next < name.size(); ++next)
        if (BeginsPart(name, next) && UpperAscii(name[next]) == UpperAscii(typed[0]) &&
            FitsHumps(typed.substr(1), name, next + 1))
            return true;
    return false;
}

constexpr std::size_t kLongestHumps = 8;  // longer words are looked at as prefixes only, because the search branches

}  // namespace

NameFit FitOfName(std::string_view typed, std::string_view name) {
    if (typed.size() > name.size()) return NameFit::None;
    if (CompareNames(typed, name.substr(0, typed.size())) == 0)
        return typed.size() == name.size() ? NameFit::Equal : NameFit::Prefix;
    const std::size_t marks = typed.size() - CompletionLetters(typed);
    if (typed.size() < marks + 2 || typed.size() > marks + kLongestHumps) return NameFit::None;
    if (typed.substr(0, marks) != name.substr(0, marks)) return NameFit::None;
    const std::string_view letters = typed.substr(marks), rest = name.substr(marks);
    if (UpperAscii(letters[0]) != UpperAscii(rest[0])) return NameFit::None;
    return FitsHumps(letters.substr(1), rest, 1) ? NameFit::Humps : NameFit::None;
}

std::vector<std::string> NamesInText(std::string_view text, ScanState state, const Dialect& dialect,
                                     std::string_view prefix, std::size_t except, std::size_t most) {
    std::vector<std::string> names;
    std::unordered_set<std::string> known;  // in capitals
    LineReader reader{.text = text, .dialect = &dialect, .state = state};
    while (names.size() < most && ReadLine(reader))
        for (std::size_t i = 0; i < reader.tokens.size(); ++i) {
            const Token& token = reader.tokens[i];
            if ((token.kind != TokenKind::Word && token.kind != TokenKind::Equate) ||
                reader.start + token.start == except)
                continue;
            const std::string_view name = TokenName(reader.line, token);
            if (CompareNames(name.substr(0, prefix.size()), prefix) != 0) continue;
            const bool member = i > 0 && TokenText(reader.line, reader.tokens[i - 1]) == ".";
            if (member || LookUpWord(name, dialect).kind != WordClass::None) continue;
            if (token.Is(kTokenAssembly)) continue;
            std::string upper(name);
            std::ranges::transform(upper, upper.begin(), UpperAscii);
            if (known.insert(std::move(upper)).second) names.emplace_back(name);
        }
    return names;
}

std::string SpelledKeyword(std::string_view word, std::string_view typed, bool capitals) {
    const std::string_view letters = typed.substr(typed.size() - CompletionLetters(typed));
    const bool first = !letters.empty() && IsUpper(letters[0]);
    const bool second = letters.size() > 1 && IsUpper(letters[1]);
    std::string spelled;
    for (const char c : word) {
        const char upper = UpperAscii(c);
        const char lower = IsUpper(c) ? static_cast<char>(c + 32) : c;
        const bool large = capitals || (first && (second || spelled.empty() || letters.size() == 1));
        spelled += large ? upper : lower;
    }
    return spelled;
}
