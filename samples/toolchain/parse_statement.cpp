// Parses statements inside procedures, declarations and constants.
#include "parser.h"

#include <algorithm>
#include <array>

namespace standin {
namespace {

// Words of other BASIC dialects, so that the message can say "not supported" instead of "unknown".
constexpr std::array kForeign = {
    "GOTO",   "GOSUB", "RETURN",    "INPUT",  "LINE",     "OPEN",    "CLOSE",     "DATA",   "READ", "RESTORE",
    "TYPE",   "UNION", "REDIM",     "GLOBAL", "THREADED", "DECLARE", "ASM",       "ON",     "SWAP", "INCR",
    "DECR",   "LET",   "ITERATE",   "TRY",    "MACRO",    "CLASS",   "INTERFACE", "STRING", "BEEP", "CLS",
    "LOCATE", "COLOR", "RANDOMIZE", "MSGBOX", "WRITE",    "STDOUT",  "ERASE",     "STOP"};

void ParseBlock(Parser& p, std::vector<Stmt>& body, std::string_view closing);

// Returns the word here that ends or divides a block ("END IF", "NEXT", "CASE"), or empty text.
std::string ClosingWord(const Parser& p) {
    const Token& token = Current(p);
    if (token.kind == TokenKind::FileEnd) return "the end of the file";
    if (token.kind != TokenKind::Word) return {};
    for (const std::string_view word : {"ELSE", "ELSEIF", "NEXT", "WEND", "LOOP", "CASE"})
        if (token.text == word) return token.text;
    const std::string& next = Ahead(p).text;
    if (token.text == "END")
        for (const std::string_view word : {"IF", "SELECT", "SUB", "FUNCTION"})
            if (next == word) return "END " + next;
    // A procedure's heading inside a procedure means that the END line is missing.
    if ((token.text == "SUB" || token.text == "FUNCTION") && token.firstOnLine && next != "=") return token.text;
    return {};
}

bool EndsProcedure(const std::string& word) {
    return word == "END SUB" || word == "END FUNCTION" || word == "SUB" || word == "FUNCTION" ||
           word == "the end of the file";
}

void ExpectStatementEnd(Parser& p) {
    if (AtStatementEnd(p)) return;
    Fail(p, Code::Syntax, "end of statement expected, found " + Describe(Current(p)));
    SkipLine(p);
}

// Parses the closing line of a block. When it is missing, reports the opening line and returns false.
bool CloseBlock(Parser& p, Stmt& stmt, std::string_view opening, std::string_view closing) {
    stmt.end = Current(p).pos;
    if (ClosingWord(p) == closing) {
        p.at += closing.find(' ') == std::string_view::npos ? 1 : 2;
        return true;
    }
    p.unclosed = true;  // this line belongs to an enclosing block
    Report(p.sources, Code::Block, stmt.pos, std::string(opening) + " without " + std::string(closing),
           std::string(closing));
    return false;
}

void ParseCondition(Parser& p, ExprPtr& condition) {
    condition = ParseExpression(p);
    if (!condition) SkipLine(p);
}

void ParseSimpleStatements(Parser& p, std::vector<Stmt>& body);

void ParseSingleLineIf(Parser& p, Stmt& stmt) {
    const bool outer = p.singleLine;
    p.singleLine = true;
    ParseSimpleStatements(p, stmt.branches.back().body);
    if (IsWord(Current(p), "ELSE")) {
        stmt.branches.push_back({Current(p).pos, nullptr, {}, {}});
        ++p.at;
        ParseSimpleStatements(p, stmt.branches.back().body);
    }
    p.singleLine = outer;
    stmt.end = stmt.pos;
}

void ParseIf(Parser& p, Stmt& stmt) {
    stmt.kind = StmtKind::If;
    stmt.branches.push_back({stmt.pos, nullptr, {}, {}});
    ParseCondition(p, stmt.branches.back().condition);
    if (stmt.branches.back().condition && !ExpectWord(p, "THEN")) SkipLine(p);
    if (Current(p).kind != TokenKind::LineEnd) return ParseSingleLineIf(p, stmt);
    if (p.singleLine) return Fail(p, Code::Syntax, "a statement expected after THEN");
    ParseBlock(p, stmt.branches.back().body, "END IF");
    bool hadElse = false;
    for (std::string word = ClosingWord(p); word == "ELSEIF" || word == "ELSE"; word = ClosingWord(p)) {
        if (hadElse) Fail(p, Code::Block, word + " after ELSE");
        hadElse = word == "ELSE";
        stmt.branches.push_back({Current(p).pos, nullptr, {}, {}});
        ++p.at;
        if (!hadElse) {
            ParseCondition(p, stmt.branches.back().condition);
            if (stmt.branches.back().condition && !ExpectWord(p, "THEN")) SkipLine(p);
        } else if (IsWord(Current(p), "IF")) {
            Fail(p, Code::Unsupported, "ELSE IF in two words is not supported", "ELSEIF");
            SkipLine(p);
        }
        ParseBlock(p, stmt.branches.back().body, "END IF");
    }
    CloseBlock(p, stmt, "IF", "END IF");
}

std::optional<Op> TakeComparison(Parser& p) {
    constexpr std::array<std::pair<std::string_view, Op>, 6> kOps = {
        {{"=", Op::Eq}, {"<>", Op::Ne}, {"<=", Op::Le}, {">=", Op::Ge}, {"<", Op::Lt}, {">", Op::Gt}}};
    for (const auto& [text, op] : kOps)
        if (TakeMark(p, text)) return op;
    return std::nullopt;
}

// Parses "CASE 1, 5 TO 9, IS > 100".
void ParseCases(Parser& p, std::vector<CaseItem>& cases) {
    do {
        CaseItem item;
        const bool is = TakeWord(p, "IS");
        const auto op = TakeComparison(p);
        if (op)
            item.op = *op;
        else if (is)
            return Fail(p, Code::Syntax, "a comparison expected after IS");
        item.kind = op ? CaseItem::Kind::Is : CaseItem::Kind::Value;
        item.low = ParseExpression(p);
        if (item.low && TakeWord(p, "TO")) {
            item.kind = CaseItem::Kind::Range;
            item.high = ParseExpression(p);
        }
        if (!item.low || (item.kind == CaseItem::Kind::Range && !item.high)) return SkipLine(p);
        cases.push_back(std::move(item));
        if (cases.size() > 256) {
            Fail(p, Code::Limit, "more than 256 values in one CASE");
            return SkipLine(p);
        }
    } while (TakeMark(p, ","));
    ExpectStatementEnd(p);
}

void ParseSelect(Parser& p, Stmt& stmt) {
    stmt.kind = StmtKind::Select;
    if (!ExpectWord(p, "CASE")) return SkipLine(p);
    stmt.value = ParseExpression(p);
    if (stmt.value)
        ExpectStatementEnd(p);
    else
        SkipLine(p);
    std::vector<Stmt> before;
    ParseBlock(p, before, "END SELECT");
    if (!before.empty()) Report(p.sources, Code::Syntax, before.front().pos, "statement before the first CASE");
    bool hadElse = false;
    while (ClosingWord(p) == "CASE") {
        stmt.branches.push_back({Current(p).pos, nullptr, {}, {}});
        ++p.at;
        if (hadElse) Report(p.sources, Code::Block, stmt.branches.back().pos, "CASE after CASE ELSE");
        hadElse = TakeWord(p, "ELSE");
        if (!hadElse) ParseCases(p, stmt.branches.back().cases);
        ParseBlock(p, stmt.branches.back().body, "END SELECT");
    }
    CloseBlock(p, stmt, "SELECT CASE", "END SELECT");
}

void ParseFor(Parser& p, Stmt& stmt) {
    stmt.kind = StmtKind::For;
    std::string variable;
    if (const auto name = ExpectName(p, "a variable")) {
        variable = name->text;
        stmt.target = std::make_unique<Expr>();
        stmt.target->kind = ExprKind::Name;
        stmt.target->name = name->text;
        stmt.target->spelling = name->spelling;
        stmt.target->pos = name->pos;
        if (ExpectMark(p, "=")) stmt.value = ParseExpression(p);
        if (stmt.value && ExpectWord(p, "TO")) stmt.limit = ParseExpression(p);
        if (stmt.limit && TakeWord(p, "STEP")) stmt.step = ParseExpression(p);
        if (stmt.limit) ExpectStatementEnd(p);
    }
    if (!stmt.limit) {
        stmt.value = nullptr;
        SkipLine(p);
    }
    ParseBlock(p, stmt.body, "NEXT");
    if (!CloseBlock(p, stmt, "FOR", "NEXT") || Current(p).kind != TokenKind::Word) return;
    if (!variable.empty() && Current(p).text != variable)
        Fail(p, Code::Block, "NEXT " + Current(p).spelling + " closes FOR " + variable, "NEXT " + variable);
    ++p.at;
}

void ParseWhile(Parser& p, Stmt& stmt) {
    stmt.kind = StmtKind::Loop;
    ParseCondition(p, stmt.condition);
    if (stmt.condition) ExpectStatementEnd(p);
    ParseBlock(p, stmt.body, "WEND");
    CloseBlock(p, stmt, "WHILE", "WEND");
}

// Parses "WHILE condition", or "UNTIL condition" as its negation. Gives null when both are absent.
void ParseLoopCondition(Parser& p, ExprPtr& condition) {
    const bool until = IsWord(Current(p), "UNTIL");
    if (!until && !IsWord(Current(p), "WHILE")) return;
    const Pos pos = Current(p).pos;
    ++p.at;
    ParseCondition(p, condition);
    if (!until || !condition) return;
    auto zero = std::make_unique<Expr>();
    zero->pos = pos;
    auto test = std::make_unique<Expr>();  // UNTIL x ends at any x but 0, so the loop goes on while x = 0
    test->kind = ExprKind::Binary;
    test->op = Op::Eq;
    test->pos = pos;
    test->depth = condition->depth + 1;
    test->args.push_back(std::move(condition));
    test->args.push_back(std::move(zero));
    condition = std::move(test);
}

void ParseDo(Parser& p, Stmt& stmt) {
    stmt.kind = StmtKind::Loop;
    ParseLoopCondition(p, stmt.condition);
    ExpectStatementEnd(p);
    ParseBlock(p, stmt.body, "LOOP");
    if (!CloseBlock(p, stmt, "DO", "LOOP")) return;
    ParseLoopCondition(p, stmt.postCondition);
    if (stmt.condition && stmt.postCondition)
        Report(p.sources, Code::Syntax, stmt.end, "a condition at DO and another one at LOOP");
}

void ParsePrint(Parser& p, Stmt& stmt) {
    stmt.kind = StmtKind::Print;
    bool newLine = true;
    while (!AtStatementEnd(p)) {
        newLine = false;
        if (TakeMark(p, ";")) continue;
        if (TakeMark(p, ",")) {
            stmt.items.push_back({PrintItem::Kind::NextZone, -1, nullptr});
            continue;
        }
        newLine = true;
        if (Current(p).kind == TokenKind::String) {
            stmt.items.push_back({PrintItem::Kind::Text, static_cast<int>(p.program.strings.size()), nullptr});
            p.program.strings.push_back(Current(p).text);
            ++p.at;
        } else {
            auto value = ParseExpression(p);
            if (!value) return SkipLine(p);
            stmt.items.push_back({PrintItem::Kind::Value, -1, std::move(value)});
        }
        if (!AtStatementEnd(p) && !IsMark(Current(p), ";") && !IsMark(Current(p), ",")) return ExpectStatementEnd(p);
    }
    if (newLine) stmt.items.push_back({PrintItem::Kind::NewLine, -1, nullptr});
}

void ParseExit(Parser& p, Stmt& stmt) {
    stmt.kind = StmtKind::Exit;
    const std::string_view own = p.current->result == Type::None ? "SUB" : "FUNCTION";
    if (TakeWord(p, "FOR"))
        stmt.exit = ExitKind::For;
    else if (TakeWord(p, "DO") || TakeWord(p, "WHILE"))
        stmt.exit = ExitKind::Do;
    else if (TakeWord(p, own))
        stmt.exit = ExitKind::Procedure;
    else
        Fail(p, Code::Unsupported, "EXIT " + Current(p).spelling + " is not supported here",
             "EXIT " + std::string(own));
}

// Parses "name = value", "name(index) = value", "name arguments" and "name(arguments)".
void ParseNameStatement(Parser& p, Stmt& stmt) {
    const Token name = Current(p);
    if (std::find(kForeign.begin(), kForeign.end(), name.text) != kForeign.end() && !IsMark(Ahead(p), "=")) {
        Fail(p, Code::Unsupported, "'" + name.spelling + "' is not supported");
        return SkipLine(p);
    }
    ++p.at;
    auto expr = std::make_unique<Expr>();
    expr->kind = IsMark(Current(p), "(") ? ExprKind::Apply : ExprKind::Name;
    expr->name = name.text;
    expr->spelling = name.spelling;
    expr->pos = name.pos;
    bool good = true;
    if (expr->kind == ExprKind::Apply) expr->args = ParseArguments(p, good);
    if (good && TakeMark(p, "=")) {
        stmt.kind = StmtKind::Assign;
        stmt.value = ParseExpression(p);
        stmt.target = std::move(expr);
        good = stmt.value != nullptr;
    } else if (good) {
        stmt.kind = StmtKind::Call;
        if (expr->kind == ExprKind::Name && !AtStatementEnd(p)) {
            if (Current(p).kind == TokenKind::Mark && !IsMark(Current(p), "-")) return ExpectStatementEnd(p);
            do {
                auto arg = ParseExpression(p);
                good = arg != nullptr;
                if (good) expr->args.push_back(std::move(arg));
            } while (good && TakeMark(p, ","));
        }
        expr->kind = ExprKind::Apply;
        if (good) stmt.value = std::move(expr);
    }
    if (!good) SkipLine(p);
}

// Parses a statement that opens no block. Returns false when the word begins none.
bool ParseSimple(Parser& p, Stmt& stmt) {
    const Token& token = Current(p);
    if (TakeWord(p, "PRINT"))
        ParsePrint(p, stmt);
    else if (TakeWord(p, "EXIT"))
        ParseExit(p, stmt);
    else if (TakeWord(p, "SLEEP")) {
        stmt.kind = StmtKind::Sleep;
        stmt.value = ParseExpression(p);
        if (!stmt.value) SkipLine(p);
    } else if (IsWord(token, "FUNCTION") && IsMark(Ahead(p), "=")) {
        if (p.current->result == Type::None) Fail(p, Code::Mismatch, "a SUB has no result");
        p.at += 2;
        stmt.kind = StmtKind::Assign;
        stmt.value = ParseExpression(p);
        if (!stmt.value) SkipLine(p);
    } else if (TakeWord(p, "CALL")) {
        if (Current(p).kind == TokenKind::Word && !IsReserved(Current(p).text))
            ParseNameStatement(p, stmt);
        else
            Fail(p, Code::Syntax, "a procedure's name expected after CALL");
    } else if (token.kind == TokenKind::Word && !IsReserved(token.text))
        ParseNameStatement(p, stmt);
    else
        return false;
    ExpectStatementEnd(p);
    return true;
}

bool ParseBlockStatement(Parser& p, Stmt& stmt) {
    if (TakeWord(p, "IF"))
        ParseIf(p, stmt);
    else if (TakeWord(p, "FOR"))
        ParseFor(p, stmt);
    else if (TakeWord(p, "WHILE"))
        ParseWhile(p, stmt);
    else if (TakeWord(p, "DO"))
        ParseDo(p, stmt);
    else if (TakeWord(p, "SELECT"))
        ParseSelect(p, stmt);
    else
        return false;
    if (!p.unclosed) ExpectStatementEnd(p);
    p.unclosed = false;
    return true;
}

void Keep(Stmt&& stmt, std::vector<Stmt>& body) {
    const bool incomplete =
        (stmt.kind == StmtKind::Assign || stmt.kind == StmtKind::Call || stmt.kind == StmtKind::Sleep) && !stmt.value;
    if (!incomplete) body.push_back(std::move(stmt));
}

void NotUnderstood(Parser& p) {
    const Token& token = Current(p);
    Fail(
        p, token.kind == TokenKind::Word && !IsReserved(token.text) ? Code::Unsupported : Code::Syntax,
        IsMark(token, "#") ? "metastatements stand outside procedures" : Describe(token) + " cannot start a statement");
    SkipLine(p);
}

void ParseSimpleStatements(Parser& p, std::vector<Stmt>& body) {
    while (Current(p).kind != TokenKind::LineEnd && Current(p).kind != TokenKind::FileEnd &&
           !IsWord(Current(p), "ELSE")) {
        if (TakeMark(p, ":")) continue;
        Stmt stmt;
        stmt.pos = Current(p).pos;
        if (IsWord(Current(p), "IF") && p.blockDepth < kMaxBlockDepth) {
            ++p.at;
            ++p.blockDepth;
            ParseIf(p, stmt);
            --p.blockDepth;
            Keep(std::move(stmt), body);
        } else if (ParseSimple(p, stmt)) {
            Keep(std::move(stmt), body);
        } else {
            Fail(p, Code::Syntax, Describe(Current(p)) + " cannot stand in a single-line IF");
            SkipLine(p);
        }
    }
}

// Parses statements up to a closing word that this or an enclosing block waits for. Any other closing word is reported
// and skipped.
void ParseBlock(Parser& p, std::vector<Stmt>& body, std::string_view closing) {
    if (p.blockDepth >= kMaxBlockDepth) {
        Fail(p, Code::Limit, "blocks are nested more than 64 deep");
        return SkipLine(p);
    }
    ++p.blockDepth;
    p.openBlocks.emplace_back(closing);
    const auto awaited = [&p](const std::string& word) {
        if (EndsProcedure(word)) return true;
        const std::string owner = word == "ELSE" || word == "ELSEIF" ? "END IF" : word == "CASE" ? "END SELECT" : word;
        return std::find(p.openBlocks.begin(), p.openBlocks.end(), owner) != p.openBlocks.end();
    };
    while (!TooManyErrors(p.sources)) {
        if (Current(p).kind == TokenKind::LineEnd || IsMark(Current(p), ":")) {
            ++p.at;
            continue;
        }
        const std::string word = ClosingWord(p);
        if (!word.empty() && awaited(word)) break;
        Stmt stmt;
        stmt.pos = Current(p).pos;
        if (!word.empty()) {
            Fail(p, Code::Block, word + " without its opening line");
            SkipLine(p);
        } else if (IsWord(Current(p), "LOCAL") || IsWord(Current(p), "DIM")) {
            ParseVariables(p, false);
        } else if (IsWord(Current(p), "STATIC")) {
            ParseVariables(p, true);
        } else if (Current(p).kind == TokenKind::ConstantName || IsWord(Current(p), "CONST")) {
            ParseConstant(p);
        } else if (ParseBlockStatement(p, stmt) || ParseSimple(p, stmt)) {
            Keep(std::move(stmt), body);
        } else {
            NotUnderstood(p);
        }
    }
    p.openBlocks.pop_back();
    --p.blockDepth;
}

// Parses the upper bound of "name(bound)"; the elements are 0 to bound.
bool ParseBound(Parser& p, Symbol& symbol) {
    const auto bound = ParseExpression(p);
    if (!bound) return false;
    if (IsWord(Current(p), "TO") || IsMark(Current(p), ",")) {
        Fail(p, Code::Unsupported, "arrays have one dimension that starts at 0");
        return false;
    }
    const auto value = EvaluateConstant(p.program, *bound);
    if (!value || value->type == Type::Double || value->whole < 0) {
        Report(p.sources, Code::Constant, bound->pos, "an array's bound is a whole number or constant from 0");
        return false;
    }
    if (value->whole >= kMaxElements) {
        Report(p.sources, Code::Limit, bound->pos, "array has more than 8388608 elements");
        return false;
    }
    symbol.isArray = true;
    symbol.count = value->whole + 1;
    return ExpectMark(p, ")");
}

}  // namespace

void ParseBody(Parser& p, std::vector<Stmt>& body, std::string_view closing) { ParseBlock(p, body, closing); }

// Parses "LOCAL a, b AS LONG, c(9) AS DOUBLE".
void ParseVariables(Parser& p, bool keepsValue) {
    ++p.at;
    std::vector<Symbol> named;
    do {
        Symbol symbol;
        const auto name = ExpectName(p, "a variable's name");
        if (!name) return SkipLine(p);
        symbol.name = name->text;
        symbol.spelling = name->spelling;
        symbol.pos = name->pos;
        symbol.storage = keepsValue ? Storage::Data : Storage::Frame;
        if (TakeMark(p, "(") && !ParseBound(p, symbol)) return SkipLine(p);
        named.push_back(std::move(symbol));
        if (!TakeWord(p, "AS")) continue;
        const auto type = ExpectType(p);
        if (!type) return SkipLine(p);
        for (Symbol& one : named) {
            one.type = *type;
            auto& symbols = p.current != nullptr ? p.current->symbols : p.program.moduleSymbols;
            auto& names = p.current != nullptr ? p.current->names : p.program.moduleNames;
            if (names.count(one.name))
                Report(p.sources, Code::Duplicate, one.pos, "variable '" + one.spelling + "' is already declared");
            symbols.push_back(one);
            symbols.back().used = !names.insert({one.name, &symbols.back()}).second;
        }
        named.clear();
    } while (TakeMark(p, ","));
    if (!named.empty())
        Report(p.sources, Code::Syntax, named.front().pos,
               "variable '" + named.front().spelling + "' needs AS and a type",
               "LOCAL " + named.front().spelling + " AS LONG");
    ExpectStatementEnd(p);
}

// Parses "%NAME = value" and "CONST NAME = value".
void ParseConstant(Parser& p) {
    Token name = Current(p);
    ++p.at;
    if (IsWord(name, "CONST")) {
        name = Current(p);
        if (name.kind == TokenKind::ConstantName)
            ++p.at;
        else if (!ExpectName(p, "a constant's name"))
            return SkipLine(p);
    }
    if (!ExpectMark(p, "=")) return SkipLine(p);
    const auto expr = ParseExpression(p);
    if (!expr) return SkipLine(p);
    auto value = EvaluateConstant(p.program, *expr);
    if (!value) {
        Report(p.sources, Code::Constant, expr->pos, "the value of " + name.spelling + " is not constant");
        value = Constant{};  // defined even after an error, so that its uses are not reported
    }
    value->pos = name.pos;
    if (!p.program.constants.insert({name.text, *value}).second)
        Report(p.sources, Code::Duplicate, name.pos, "constant '" + name.spelling + "' is already defined");
    ExpectStatementEnd(p);
}

}  // namespace standin
