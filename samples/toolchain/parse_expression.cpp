// Parses expressions by precedence climbing, and computes constants.
#include "parser.h"

#include <array>
#include <cmath>
#include <limits>

namespace standin {
namespace {

struct BinaryOp {
    std::string_view text;
    Op op;
    int level;  // a higher level binds tighter
};

constexpr int kNotLevel = 4;
constexpr int kPowLevel = 11;
constexpr std::array<BinaryOp, 16> kBinaryOps = {{
    {"XOR", Op::Xor, 1},
    {"OR", Op::Or, 2},
    {"AND", Op::And, 3},
    {"=", Op::Eq, 5},
    {"<>", Op::Ne, 5},
    {"<", Op::Lt, 5},
    {">", Op::Gt, 5},
    {"<=", Op::Le, 5},
    {">=", Op::Ge, 5},
    {"+", Op::Add, 6},
    {"-", Op::Sub, 6},
    {"MOD", Op::Mod, 7},
    {"\\", Op::IntDiv, 8},
    {"*", Op::Mul, 9},
    {"/", Op::Div, 9},
    {"^", Op::Pow, kPowLevel},
}};

const BinaryOp* FindBinary(const Token& token) {
    if (token.kind != TokenKind::Word && token.kind != TokenKind::Mark) return nullptr;
    for (const BinaryOp& one : kBinaryOps)
        if (one.text == token.text) return &one;
    return nullptr;
}

ExprPtr Make(ExprKind kind, Pos pos) {
    auto expr = std::make_unique<Expr>();
    expr->kind = kind;
    expr->pos = pos;
    return expr;
}

ExprPtr Join(Parser& p, ExprKind kind, Op op, Pos pos, ExprPtr left, ExprPtr right) {
    auto expr = Make(kind, pos);
    expr->op = op;
    expr->depth = 1 + std::max(left->depth, right ? right->depth : 0);
    if (expr->depth == kMaxExpressionDepth) Report(p.sources, Code::Limit, pos, "expression is nested too deeply");
    expr->args.push_back(std::move(left));
    if (right) expr->args.push_back(std::move(right));
    return expr;
}

ExprPtr ParseBinary(Parser& p, int level);

ExprPtr ParseNumber(Parser& p) {
    const Token& token = Current(p);
    auto expr = Make(ExprKind::Number, token.pos);
    expr->type = token.kind == TokenKind::Real ? Type::Double : token.fitsLong ? Type::Long : Type::Quad;
    expr->whole = token.whole;
    expr->real = token.real;
    ++p.at;
    return expr;
}

// Parses a name, a call, an array element, a whole array "name()", or a built-in function.
ExprPtr ParseNamed(Parser& p) {
    const Token token = Current(p);
    ++p.at;
    const bool call = IsMark(Current(p), "(") && token.kind == TokenKind::Word;
    auto expr = Make(call ? ExprKind::Apply : ExprKind::Name, token.pos);
    expr->name = token.text;
    expr->spelling = token.spelling;
    if (!call) return expr;
    bool good = true;
    expr->args = ParseArguments(p, good);
    if (!good) return nullptr;
    for (const ExprPtr& arg : expr->args) expr->depth = std::max(expr->depth, arg->depth + 1);
    return expr;
}

ExprPtr ParsePrimary(Parser& p) {
    const Token& token = Current(p);
    switch (token.kind) {
        case TokenKind::Whole:
        case TokenKind::Real: return ParseNumber(p);
        case TokenKind::ConstantName: return ParseNamed(p);
        case TokenKind::Word:
            if (!IsReserved(token.text)) return ParseNamed(p);
            for (const std::string_view name : {"ABS", "CLNG", "INT", "SQR", "UBOUND"})
                if (token.text == name) return ParseNamed(p);
            break;
        case TokenKind::String:
            Fail(p, Code::Unsupported, "string expressions are not supported: a string can only be printed");
            return nullptr;
        case TokenKind::Mark:
            if (TakeMark(p, "(")) {
                auto inner = ParseExpression(p);
                return inner && ExpectMark(p, ")") ? std::move(inner) : nullptr;
            }
            break;
        default: break;
    }
    Fail(p, Code::Syntax, "an expression expected, found " + Describe(token));
    return nullptr;
}

ExprPtr ParseUnary(Parser& p) {
    const Token token = Current(p);
    if (TakeMark(p, "+")) return ParseBinary(p, kPowLevel);
    const bool minus = IsMark(token, "-");
    if (!minus && !IsWord(token, "NOT")) return ParsePrimary(p);
    ++p.at;
    auto operand = ParseBinary(p, minus ? kPowLevel : kNotLevel + 1);
    if (!operand) return nullptr;
    return Join(p, ExprKind::Unary, minus ? Op::Neg : Op::Not, token.pos, std::move(operand), nullptr);
}

ExprPtr ParseBinary(Parser& p, int level) {
    if (p.expressionDepth >= kMaxExpressionDepth / 4) {
        Fail(p, Code::Limit, "expression is nested too deeply");
        return nullptr;
    }
    ++p.expressionDepth;
    auto left = ParseUnary(p);
    while (left) {
        const BinaryOp* const found = FindBinary(Current(p));
        if (found == nullptr || found->level < level) break;
        const Pos pos = Current(p).pos;
        ++p.at;
        auto right = ParseBinary(p, found->level + 1);
        left = right ? Join(p, ExprKind::Binary, found->op, pos, std::move(left), std::move(right)) : nullptr;
        if (left && left->depth > kMaxExpressionDepth) left = nullptr;
    }
    --p.expressionDepth;
    return left;
}

double AsReal(const Constant& c) { return c.type == Type::Double ? c.real : static_cast<double>(c.whole); }

// Wraps the value on overflow, as the machine code does.
int64_t Wrap(Type type, uint64_t value) {
    return type == Type::Long ? static_cast<int32_t>(static_cast<uint32_t>(value)) : static_cast<int64_t>(value);
}

std::optional<Constant> EvaluateReal(Op op, double a, double b) {
    Constant result{Type::Double, 0, 0, {}};
    switch (op) {
        case Op::Add: result.real = a + b; break;
        case Op::Sub: result.real = a - b; break;
        case Op::Mul: result.real = a * b; break;
        case Op::Div:
            if (b == 0) return std::nullopt;
            result.real = a / b;
            break;
        case Op::Pow: result.real = std::pow(a, b); break;
        default: return std::nullopt;  // logic and whole-number division need whole numbers
    }
    return result;
}

std::optional<Constant> EvaluateWhole(Op op, Type type, int64_t a, int64_t b) {
    const uint64_t ua = static_cast<uint64_t>(a), ub = static_cast<uint64_t>(b);
    if (IsComparison(op)) {
        const bool yes = op == Op::Eq   ? a == b
                         : op == Op::Ne ? a != b
                         : op == Op::Lt ? a < b
                         : op == Op::Gt ? a > b
                         : op == Op::Le ? a <= b
                                        : a >= b;
        return Constant{Type::Long, yes ? -1 : 0, 0, {}};
    }
    uint64_t value = 0;
    switch (op) {
        case Op::Add: value = ua + ub; break;
        case Op::Sub: value = ua - ub; break;
        case Op::Mul: value = ua * ub; break;
        case Op::And: value = ua & ub; break;
        case Op::Or: value = ua | ub; break;
        case Op::Xor: value = ua ^ ub; break;
        case Op::IntDiv:
        case Op::Mod:
            if (b == 0) return std::nullopt;
            if (b == -1)
                value = op == Op::Mod ? 0 : 0 - ua;
            else
                value = static_cast<uint64_t>(op == Op::Mod ? a % b : a / b);
            break;
        default: return std::nullopt;
    }
    return Constant{type, Wrap(type, value), 0, {}};
}

}  // namespace

ExprPtr ParseExpression(Parser& p) { return ParseBinary(p, 1); }

std::vector<ExprPtr> ParseArguments(Parser& p, bool& good) {
    std::vector<ExprPtr> args;
    good = ExpectMark(p, "(");
    if (!good || TakeMark(p, ")")) return args;
    do {
        auto arg = ParseExpression(p);
        good = arg != nullptr;
        if (good) args.push_back(std::move(arg));
    } while (good && TakeMark(p, ","));
    good = good && ExpectMark(p, ")");
    return args;
}

std::optional<Constant> EvaluateConstant(const Program& program, const Expr& expr) {
    if (expr.kind == ExprKind::Number) return Constant{expr.type, expr.whole, expr.real, {}};
    if (expr.kind == ExprKind::Name) {
        const auto found = program.constants.find(expr.name);
        return found == program.constants.end() ? std::nullopt : std::optional(found->second);
    }
    if (expr.kind != ExprKind::Unary && expr.kind != ExprKind::Binary) return std::nullopt;
    const auto a = EvaluateConstant(program, *expr.args[0]);
    if (!a) return std::nullopt;
    if (expr.kind == ExprKind::Unary) {
        if (expr.op == Op::Not && a->type == Type::Double) return std::nullopt;
        const uint64_t value = static_cast<uint64_t>(a->whole);
        return Constant{a->type, Wrap(a->type, expr.op == Op::Not ? ~value : 0 - value), -a->real, {}};
    }
    const auto b = EvaluateConstant(program, *expr.args[1]);
    if (!b) return std::nullopt;
    const Type type = std::max(a->type, b->type);
    if (type == Type::Double || expr.op == Op::Div || expr.op == Op::Pow)
        return EvaluateReal(expr.op, AsReal(*a), AsReal(*b));
    return EvaluateWhole(expr.op, type, a->whole, b->whole);
}

}  // namespace standin
