// Parses the outermost level: procedures, module variables, constants, metastatements, included files.
#include "parser.h"

#include <algorithm>
#include <array>

namespace standin {
namespace {

constexpr std::array kReserved = {"AND",  "AS",     "BYREF", "BYVAL", "CALL",  "CASE",     "CONST",  "DIM",   "DO",
                                  "ELSE", "ELSEIF", "END",   "EXIT",  "FOR",   "FUNCTION", "IF",     "IS",    "LOCAL",
                                  "LOOP", "MOD",    "NEXT",  "NOT",   "OR",    "PRINT",    "SELECT", "SLEEP", "STATIC",
                                  "STEP", "SUB",    "THEN",  "TO",    "UNTIL", "WEND",     "WHILE",  "XOR",   "LONG",
                                  "QUAD", "DOUBLE", "ABS",   "INT",   "SQR",   "UBOUND",   "CLNG"};
constexpr std::array kIgnoredMeta = {"COMPILE", "DIM", "REGISTER"};

void ParseParameters(Parser& p, Procedure& procedure) {
    if (!TakeMark(p, "(") || TakeMark(p, ")")) return;
    do {
        Symbol symbol;
        symbol.isParameter = true;
        const bool byVal = TakeWord(p, "BYVAL");
        if (!byVal) TakeWord(p, "BYREF");  // without either word a parameter is BYREF
        const auto name = ExpectName(p, "a parameter name");
        if (!name) return SkipLine(p);
        if (TakeMark(p, "(")) {
            if (!ExpectMark(p, ")")) return SkipLine(p);
            symbol.isArray = true;
            if (byVal) Report(p.sources, Code::Mismatch, name->pos, "an array parameter cannot be BYVAL");
        }
        if (!ExpectWord(p, "AS")) return SkipLine(p);
        const auto type = ExpectType(p);
        if (!type) return SkipLine(p);
        symbol.name = name->text;
        symbol.spelling = name->spelling;
        symbol.pos = name->pos;
        symbol.type = *type;
        symbol.count = symbol.isArray ? 0 : 1;
        symbol.storage = byVal ? Storage::Frame : Storage::Reference;
        if (procedure.names.count(symbol.name))
            Report(p.sources, Code::Duplicate, symbol.pos, "parameter '" + symbol.spelling + "' appears twice");
        procedure.symbols.push_back(symbol);
        procedure.parameters.push_back(&procedure.symbols.back());
        procedure.names[symbol.name] = &procedure.symbols.back();
    } while (TakeMark(p, ","));
    if (procedure.parameters.size() > kMaxParameters)
        Report(p.sources, Code::Limit, procedure.pos, "more than 32 parameters");
    ExpectMark(p, ")");
}

void RegisterProcedure(Parser& p, Procedure& procedure) {
    if (procedure.name.starts_with("PBMAIN") && procedure.name != "PBMAIN")
        Report(p.sources, Code::Syntax, procedure.pos,
               "names that begin with PBMAIN are reserved: debuggers look for that prefix");
    const auto [other, added] = p.program.procedureNames.insert({procedure.name, &procedure});
    if (!added)
        Report(p.sources, Code::Duplicate, procedure.pos,
               "procedure '" + procedure.spelling + "' is already defined in line " +
                   std::to_string(other->second->pos.line));
    if (added && procedure.name == "PBMAIN") {
        p.program.main = &procedure;
        if (!procedure.parameters.empty())
            Report(p.sources, Code::Mismatch, procedure.pos, "PBMAIN takes no parameters");
        if (procedure.result == Type::Quad || procedure.result == Type::Double)
            Report(p.sources, Code::Mismatch, procedure.pos, "PBMAIN returns a LONG, the program's exit code");
    }
}

void ParseProcedure(Parser& p) {
    const Token opening = Current(p);
    const bool isFunction = opening.text == "FUNCTION";
    ++p.at;
    Procedure& procedure = p.program.procedures.emplace_back();
    procedure.pos = procedure.end = opening.pos;
    procedure.result = isFunction ? Type::Long : Type::None;
    if (const auto name = ExpectName(p, "the procedure's name")) {
        procedure.name = name->text;
        procedure.spelling = name->spelling;
        ParseParameters(p, procedure);
        if (isFunction && TakeWord(p, "AS")) {
            if (const auto type = ExpectType(p)) procedure.result = *type;
        }
        RegisterProcedure(p, procedure);
    }
    if (!AtStatementEnd(p)) Fail(p, Code::Syntax, "end of line expected, found " + Describe(Current(p)));
    SkipLine(p);
    p.current = &procedure;
    ParseBody(p, procedure.body, isFunction ? "END FUNCTION" : "END SUB");
    p.current = nullptr;
    procedure.end = Current(p).pos;
    if (IsWord(Current(p), "END") && Ahead(p).text == opening.text) {
        p.at += 2;
        if (!AtStatementEnd(p)) Fail(p, Code::Syntax, "end of line expected, found " + Describe(Current(p)));
        SkipLine(p);
    } else {
        Report(p.sources, Code::Block, opening.pos, opening.text + " without END " + opening.text);
    }
}

void ParseFile(Parser& p, int file);

// Looks for the file beside the including file, then in the -I directories in their order.
void ParseInclude(Parser& p) {
    if (Current(p).kind != TokenKind::String)
        return Fail(p, Code::Syntax, "a file name in quotation marks expected after #INCLUDE");
    const Token name = Current(p);
    ++p.at;
    if (++p.includedFiles > kMaxIncludedFiles || p.openFiles.size() > kMaxIncludeDepth)
        return Report(p.sources, Code::Limit, name.pos, "too many or too deeply nested included files");
    std::vector<std::string> candidates;
    if (IsAbsolute(name.text)) {
        candidates.push_back(name.text);
    } else {
        candidates.push_back(JoinPath(FolderOf(p.sources.files[static_cast<size_t>(name.pos.file)].name), name.text));
        for (const std::string& dir : p.includeDirs) candidates.push_back(JoinPath(dir, name.text));
    }
    const auto found = std::find_if(candidates.begin(), candidates.end(), FileExists);
    const std::string& path = found == candidates.end() ? candidates.front() : *found;
    const std::string canonical = CanonicalName(path);
    if (std::find(p.openFiles.begin(), p.openFiles.end(), canonical) != p.openFiles.end())
        return Report(p.sources, Code::File, name.pos, "'" + name.text + "' includes itself");
    std::string why;
    auto text = ReadWholeFile(path, why);
    if (!text) return Report(p.sources, Code::File, name.pos, "cannot include '" + name.text + "': " + why);
    if (text->starts_with("\xEF\xBB\xBF")) text->erase(0, 3);
    p.sources.files.push_back({path, std::move(*text)});
    p.openFiles.push_back(canonical);
    const std::vector<Token> outer = std::move(p.tokens);
    const size_t outerAt = p.at;
    ParseFile(p, static_cast<int>(p.sources.files.size()) - 1);
    p.tokens = outer;
    p.at = outerAt;
    p.openFiles.pop_back();
}

void ParseMeta(Parser& p) {
    const Token meta = Current(p);
    if (meta.kind != TokenKind::Word) return Fail(p, Code::Syntax, "a metastatement expected after '#'");
    ++p.at;
    if (meta.text == "INCLUDE") {
        ParseInclude(p);
        if (!AtStatementEnd(p)) Fail(p, Code::Syntax, "end of line expected, found " + Describe(Current(p)));
        return SkipLine(p);
    }
    if (std::find(kIgnoredMeta.begin(), kIgnoredMeta.end(), meta.text) == kIgnoredMeta.end())
        Report(p.sources, Code::Unsupported, meta.pos, "metastatement #" + meta.text + " is not supported");
    SkipLine(p);
}

void ParseFile(Parser& p, int file) {
    p.tokens = Tokenize(p.sources, file);
    p.at = 0;
    while (Current(p).kind != TokenKind::FileEnd && !TooManyErrors(p.sources)) {
        const Token& token = Current(p);
        if (AtStatementEnd(p))
            ++p.at;
        else if (IsWord(token, "FUNCTION") || IsWord(token, "SUB"))
            ParseProcedure(p);
        else if (token.kind == TokenKind::ConstantName || IsWord(token, "CONST"))
            ParseConstant(p);
        else if (IsWord(token, "DIM"))
            ParseVariables(p, true);
        else if (TakeMark(p, "#"))
            ParseMeta(p);
        else {
            const bool known = token.kind == TokenKind::Word && IsReserved(token.text);
            Fail(p, known ? Code::Syntax : Code::Unsupported,
                 known ? "'" + token.spelling + "' cannot stand outside a procedure"
                       : Describe(token) + " is not supported outside a procedure");
            SkipLine(p);
        }
    }
}

}  // namespace

const Token& Current(const Parser& p) { return p.tokens[p.at]; }

const Token& Ahead(const Parser& p, size_t count) { return p.tokens[std::min(p.at + count, p.tokens.size() - 1)]; }

bool IsWord(const Token& token, std::string_view word) { return token.kind == TokenKind::Word && token.text == word; }

bool IsMark(const Token& token, std::string_view mark) { return token.kind == TokenKind::Mark && token.text == mark; }

bool TakeWord(Parser& p, std::string_view word) {
    if (!IsWord(Current(p), word)) return false;
    ++p.at;
    return true;
}

bool TakeMark(Parser& p, std::string_view mark) {
    if (!IsMark(Current(p), mark)) return false;
    ++p.at;
    return true;
}

bool AtStatementEnd(const Parser& p) {
    const Token& token = Current(p);
    return token.kind == TokenKind::LineEnd || token.kind == TokenKind::FileEnd || IsMark(token, ":") ||
           (p.singleLine && IsWord(token, "ELSE"));
}

void SkipLine(Parser& p) {
    while (Current(p).kind != TokenKind::LineEnd && Current(p).kind != TokenKind::FileEnd) ++p.at;
}

void Fail(Parser& p, Code code, std::string message, std::string fix) {
    Report(p.sources, code, Current(p).pos, std::move(message), std::move(fix));
}

std::string Describe(const Token& token) {
    switch (token.kind) {
        case TokenKind::LineEnd:
        case TokenKind::FileEnd: return "the end of the line";
        case TokenKind::String: return "a string";
        default: return "'" + token.spelling + "'";
    }
}

bool IsReserved(std::string_view upper) {
    return std::find(kReserved.begin(), kReserved.end(), upper) != kReserved.end();
}

bool ExpectWord(Parser& p, std::string_view word) {
    if (TakeWord(p, word)) return true;
    Fail(p, Code::Syntax, std::string(word) + " expected, found " + Describe(Current(p)));
    return false;
}

bool ExpectMark(Parser& p, std::string_view mark) {
    if (TakeMark(p, mark)) return true;
    Fail(p, Code::Syntax, "'" + std::string(mark) + "' expected, found " + Describe(Current(p)));
    return false;
}

std::optional<Token> ExpectName(Parser& p, std::string_view what) {
    const Token token = Current(p);
    if (token.kind != TokenKind::Word || IsReserved(token.text)) {
        Fail(p, Code::Syntax, std::string(what) + " expected, found " + Describe(token));
        return std::nullopt;
    }
    ++p.at;
    return token;
}

std::optional<Type> ExpectType(Parser& p) {
    for (const Type type : {Type::Long, Type::Quad, Type::Double})
        if (TakeWord(p, TypeName(type))) return type;
    const Token& token = Current(p);
    Fail(p, token.kind == TokenKind::Word ? Code::Unsupported : Code::Syntax,
         token.kind == TokenKind::Word ? "type '" + token.spelling + "' is not supported: use LONG, QUAD or DOUBLE"
                                       : "a type expected, found " + Describe(token));
    return std::nullopt;
}

void ParseProgram(Parser& p) {
    p.openFiles.push_back(CanonicalName(p.sources.files[0].name));
    ParseFile(p, 0);
    if (p.program.main == nullptr && !TooManyErrors(p.sources))
        Report(p.sources, Code::Syntax, {0, 1, 1}, "the program has no FUNCTION PBMAIN");
}

}  // namespace standin
