// Checks each procedure in one pass, top down. Expressions are changed in place, so that the generator sees only
// resolved kinds.
#include "checker.h"

#include <algorithm>
#include <cmath>

namespace standin {
namespace {

struct Checker {
    Sources& sources;
    Program& program;
    Procedure* procedure = nullptr;
    int forDepth = 0;
    int doDepth = 0;
    bool resultAssigned = false;
};

void CheckExpr(Checker& c, ExprPtr& expr);

ExprPtr MakeExpr(ExprKind kind, Type type, Pos pos) {
    auto expr = std::make_unique<Expr>();
    expr->kind = kind;
    expr->type = type;
    expr->pos = pos;
    return expr;
}

ExprPtr MakeVariable(Symbol* symbol, Pos pos) {
    auto expr = MakeExpr(ExprKind::Variable, symbol->type, pos);
    expr->symbol = symbol;
    return expr;
}

ExprPtr MakeBinary(Op op, ExprPtr left, ExprPtr right, Type type) {
    auto expr = MakeExpr(ExprKind::Binary, type, left->pos);
    expr->op = op;
    expr->args.push_back(std::move(left));
    expr->args.push_back(std::move(right));
    return expr;
}

// Used after an error: makes the expression a 0, so that the check can go on.
void BecomeZero(Expr& expr) {
    expr.kind = ExprKind::Number;
    expr.type = Type::Long;
    expr.whole = 0;
    expr.args.clear();
}

Symbol* NewTemporary(Checker& c, Type type) {
    Symbol& symbol = c.procedure->symbols.emplace_back();
    symbol.type = type;
    symbol.used = true;
    return &symbol;
}

Symbol* FindVariable(Checker& c, const std::string& name) {
    const auto local = c.procedure->names.find(name);
    if (local != c.procedure->names.end()) return local->second;
    const auto module = c.program.moduleNames.find(name);
    return module == c.program.moduleNames.end() ? nullptr : module->second;
}

// Changes the type of a number that the narrower type holds exactly, without a warning and without code.
bool ConvertNumber(Expr& expr, Type to) {
    if (to == Type::Double) {
        expr.real = static_cast<double>(expr.whole);
    } else if (expr.type == Type::Double) {
        if (std::trunc(expr.real) != expr.real || std::fabs(expr.real) >= 9.0e15) return false;
        expr.whole = static_cast<int64_t>(expr.real);
    }
    if (to == Type::Long && expr.whole != static_cast<int32_t>(expr.whole)) return false;
    expr.type = to;
    return true;
}

void Convert(Checker& c, ExprPtr& expr, Type to) {
    if (expr->type == to) return;
    if (expr->kind == ExprKind::Number && ConvertNumber(*expr, to)) return;
    if (to < expr->type)
        Report(
            c.sources, Code::Narrowing, expr->pos,
            std::string(TypeName(expr->type)) + " value becomes " + std::string(TypeName(to)) + ": digits may be lost");
    auto converted = MakeExpr(ExprKind::Convert, to, expr->pos);
    converted->args.push_back(std::move(expr));
    expr = std::move(converted);
}

void CheckUnary(Checker& c, ExprPtr& expr) {
    CheckExpr(c, expr->args[0]);
    if (expr->op == Op::Not && expr->args[0]->type == Type::Double) Convert(c, expr->args[0], Type::Quad);
    expr->type = expr->args[0]->type;
    if (expr->op != Op::Neg || expr->args[0]->kind != ExprKind::Number) return;
    ExprPtr number = std::move(expr->args[0]);  // -5 becomes a number, because numbers convert without code
    number->whole = static_cast<int64_t>(0 - static_cast<uint64_t>(number->whole));
    number->real = -number->real;
    if (number->type == Type::Quad && number->whole == static_cast<int32_t>(number->whole)) number->type = Type::Long;
    number->pos = expr->pos;
    expr = std::move(number);
}

bool IsZero(const Expr& expr) {
    return expr.kind == ExprKind::Number && (expr.type == Type::Double ? expr.real == 0 : expr.whole == 0);
}

void CheckBinary(Checker& c, Expr& expr) {
    CheckExpr(c, expr.args[0]);
    CheckExpr(c, expr.args[1]);
    Type type = std::max(expr.args[0]->type, expr.args[1]->type);
    switch (expr.op) {
        case Op::Div:
        case Op::Pow: type = Type::Double; break;
        case Op::And:
        case Op::Or:
        case Op::Xor:
        case Op::IntDiv:
        case Op::Mod: type = std::min(type, Type::Quad); break;
        default: break;
    }
    if ((expr.op == Op::Div || expr.op == Op::IntDiv || expr.op == Op::Mod) && IsZero(*expr.args[1]))
        Report(c.sources, Code::Suspicious, expr.pos, "division by zero");
    Convert(c, expr.args[0], type);
    Convert(c, expr.args[1], type);
    expr.type = IsComparison(expr.op) ? Type::Long : type;
}

void Undeclared(Checker& c, Expr& expr, const std::string& message) {
    Report(c.sources, Code::Undeclared, expr.pos, message, "LOCAL " + expr.spelling + " AS LONG");
    Symbol* const stand = NewTemporary(c, Type::Long);  // so that the name is reported once a procedure
    c.procedure->names[expr.name] = stand;
    expr.kind = ExprKind::Variable;
    expr.symbol = stand;
    expr.type = Type::Long;
}

void CheckCall(Checker& c, Expr& expr, Procedure& callee);

void CheckName(Checker& c, Expr& expr) {
    if (Symbol* const symbol = FindVariable(c, expr.name); symbol != nullptr) {
        symbol->used = true;
        expr.symbol = symbol;
        expr.type = symbol->type;
        expr.kind = ExprKind::Variable;
        if (!symbol->isArray) return;
        Report(c.sources, Code::Mismatch, expr.pos, "array '" + symbol->spelling + "' needs an index here");
        return BecomeZero(expr);
    }
    const auto constant = c.program.constants.find(expr.name);
    if (constant != c.program.constants.end()) {
        expr.kind = ExprKind::Number;
        expr.type = constant->second.type;
        expr.whole = constant->second.whole;
        expr.real = constant->second.real;
        return;
    }
    const auto procedure = c.program.procedureNames.find(expr.name);
    if (procedure != c.program.procedureNames.end()) return CheckCall(c, expr, *procedure->second);
    if (expr.name.front() == '%') {
        Report(c.sources, Code::Undeclared, expr.pos, "constant '" + expr.spelling + "' is not defined",
               expr.spelling + " = 0");
        return BecomeZero(expr);
    }
    Undeclared(c, expr, "variable '" + expr.spelling + "' is not declared");
}

// Returns the array that an expression "name" or "name()" means, or null.
Symbol* WholeArray(Checker& c, const Expr& expr) {
    const bool shape = expr.kind == ExprKind::Name || (expr.kind == ExprKind::Apply && expr.args.empty());
    Symbol* const symbol = shape ? FindVariable(c, expr.name) : nullptr;
    return symbol != nullptr && symbol->isArray ? symbol : nullptr;
}

void CheckArgument(Checker& c, Expr& call, size_t index, const Symbol& parameter) {
    ExprPtr& arg = call.args[index];
    if (Symbol* const array = WholeArray(c, *arg); array != nullptr || parameter.isArray) {
        if (array == nullptr || !parameter.isArray || array->type != parameter.type)
            return Report(c.sources, Code::Mismatch, arg->pos,
                          parameter.isArray ? "parameter '" + parameter.spelling + "' takes a whole array of " +
                                                  std::string(TypeName(parameter.type))
                                            : "parameter '" + parameter.spelling + "' takes no array");
        array->used = true;
        arg->kind = ExprKind::Array;
        arg->symbol = array;
        return;
    }
    CheckExpr(c, arg);
    if (parameter.storage == Storage::Frame) return Convert(c, arg, parameter.type);
    const bool variable = arg->kind == ExprKind::Variable || arg->kind == ExprKind::Element;
    if (variable && arg->type == parameter.type) return;
    if (variable)
        return Report(c.sources, Code::Mismatch, arg->pos,
                      "BYREF parameter '" + parameter.spelling + "' is " + std::string(TypeName(parameter.type)) +
                          ", the variable is " + std::string(TypeName(arg->type)));
    Convert(c, arg, parameter.type);
    call.temporaries[index] = NewTemporary(c, parameter.type);
}

void CheckCall(Checker& c, Expr& expr, Procedure& callee) {
    expr.kind = ExprKind::Call;
    expr.procedure = &callee;
    expr.type = callee.result;
    expr.temporaries.assign(expr.args.size(), nullptr);
    if (expr.args.size() != callee.parameters.size())
        Report(c.sources, Code::Mismatch, expr.pos,
               "'" + callee.spelling + "' takes " + std::to_string(callee.parameters.size()) + " argument(s), not " +
                   std::to_string(expr.args.size()));
    for (size_t i = 0; i < std::min(expr.args.size(), callee.parameters.size()); ++i)
        CheckArgument(c, expr, i, *callee.parameters[i]);
}

bool CheckBuiltIn(Checker& c, ExprPtr& expr) {
    if (expr->name == "UBOUND") {
        Symbol* const array = expr->args.size() == 1 ? WholeArray(c, *expr->args[0]) : nullptr;
        if (array != nullptr) {
            array->used = true;
            expr->kind = ExprKind::Bound;
            expr->type = Type::Long;
            expr->symbol = array;
            expr->args.clear();
        } else {
            Report(c.sources, Code::Mismatch, expr->pos, "UBOUND takes the name of an array");
            BecomeZero(*expr);
        }
        return true;
    }
    const Op op = expr->name == "ABS" ? Op::Abs : expr->name == "INT" ? Op::Int : Op::Sqr;
    const bool toLong = expr->name == "CLNG";
    if (op == Op::Sqr && expr->name != "SQR" && !toLong) return false;
    if (expr->args.size() != 1) {
        Report(c.sources, Code::Mismatch, expr->pos, expr->name + " takes one argument");
        BecomeZero(*expr);
        return true;
    }
    CheckExpr(c, expr->args[0]);
    if (toLong) {  // the programmer asked for the conversion: no warning
        expr->kind = ExprKind::Convert;
        expr->type = Type::Long;
        return true;
    }
    if (op == Op::Sqr) Convert(c, expr->args[0], Type::Double);
    expr->kind = ExprKind::Unary;
    expr->op = op;
    expr->type = expr->args[0]->type;
    return true;
}

void CheckApply(Checker& c, ExprPtr& expr) {
    if (CheckBuiltIn(c, expr)) return;
    if (Symbol* const symbol = FindVariable(c, expr->name); symbol != nullptr) {
        symbol->used = true;
        if (symbol->isArray && expr->args.size() == 1) {
            CheckExpr(c, expr->args[0]);
            Convert(c, expr->args[0], Type::Long);
            expr->kind = ExprKind::Element;
            expr->symbol = symbol;
            expr->type = symbol->type;
            return;
        }
        Report(c.sources, Code::Mismatch, expr->pos,
               symbol->isArray ? "array '" + symbol->spelling + "' takes one index"
                               : "'" + symbol->spelling + "' is no array");
        return BecomeZero(*expr);
    }
    const auto procedure = c.program.procedureNames.find(expr->name);
    if (procedure != c.program.procedureNames.end()) return CheckCall(c, *expr, *procedure->second);
    Report(c.sources, Code::Undeclared, expr->pos, "'" + expr->spelling + "' is neither an array nor a procedure");
    BecomeZero(*expr);
}

void CheckExpr(Checker& c, ExprPtr& expr) {
    switch (expr->kind) {
        case ExprKind::Name: CheckName(c, *expr); break;
        case ExprKind::Apply: CheckApply(c, expr); break;
        case ExprKind::Unary: CheckUnary(c, expr); break;
        case ExprKind::Binary: CheckBinary(c, *expr); break;
        default: return;
    }
    if (expr->type != Type::None) return;
    Report(c.sources, Code::Mismatch, expr->pos, "SUB '" + expr->spelling + "' has no value");
    BecomeZero(*expr);
}

void CheckBody(Checker& c, std::vector<Stmt>& body);

void CheckAssign(Checker& c, Stmt& stmt) {
    CheckExpr(c, stmt.value);
    if (!stmt.target) {
        c.resultAssigned = true;
        if (c.procedure->result != Type::None) Convert(c, stmt.value, c.procedure->result);
        return;
    }
    const Pos pos = stmt.target->pos;
    CheckExpr(c, stmt.target);
    if (stmt.target->kind == ExprKind::Call)
        Report(c.sources, Code::Mismatch, pos,
               stmt.target->procedure == c.procedure ? "a function's result is set by FUNCTION = value"
                                                     : "a procedure cannot be assigned to",
               "FUNCTION = ...");
    else if (stmt.target->kind != ExprKind::Variable && stmt.target->kind != ExprKind::Element)
        Report(c.sources, Code::Mismatch, pos, "a constant cannot be assigned to");
    else
        Convert(c, stmt.value, stmt.target->type);
}

// The condition is var <= limit for a step known to be positive, and >= for a negative one. For other steps it is both,
// chosen by the sign of the step.
void CheckFor(Checker& c, Stmt& stmt) {
    const Pos pos = stmt.pos;
    if (stmt.value) {
        CheckExpr(c, stmt.target);
        CheckExpr(c, stmt.value);
        CheckExpr(c, stmt.limit);
        if (!stmt.step) {
            stmt.step = MakeExpr(ExprKind::Number, Type::Long, pos);
            stmt.step->whole = 1;
        }
        CheckExpr(c, stmt.step);
        if (stmt.target->kind != ExprKind::Variable)
            return Report(c.sources, Code::Mismatch, stmt.target->pos, "FOR counts in a variable");
        Symbol* const variable = stmt.target->symbol;
        const Type type = variable->type;
        Convert(c, stmt.value, type);
        Convert(c, stmt.limit, type);
        Convert(c, stmt.step, type);
        stmt.limitSlot = NewTemporary(c, type);
        stmt.stepSlot = NewTemporary(c, type);
        if (IsZero(*stmt.step)) Report(c.sources, Code::Suspicious, stmt.step->pos, "STEP 0 never ends");
        const auto test = [&](Op op) {
            return MakeBinary(op, MakeVariable(variable, pos), MakeVariable(stmt.limitSlot, pos), Type::Long);
        };
        const auto sign = [&](Op op) {
            auto zero = MakeExpr(ExprKind::Number, type, pos);
            return MakeBinary(op, MakeVariable(stmt.stepSlot, pos), std::move(zero), Type::Long);
        };
        if (stmt.step->kind == ExprKind::Number) {
            const bool down = type == Type::Double ? stmt.step->real < 0 : stmt.step->whole < 0;
            stmt.condition = test(down ? Op::Ge : Op::Le);
        } else {
            stmt.condition = MakeBinary(Op::Or, MakeBinary(Op::And, sign(Op::Ge), test(Op::Le), Type::Long),
                                        MakeBinary(Op::And, sign(Op::Lt), test(Op::Ge), Type::Long), Type::Long);
        }
        stmt.increment = MakeBinary(Op::Add, MakeVariable(variable, pos), MakeVariable(stmt.stepSlot, pos), type);
    }
    ++c.forDepth;
    CheckBody(c, stmt.body);
    --c.forDepth;
}

ExprPtr CaseTest(Checker& c, CaseItem& item, Symbol* slot) {
    const auto compare = [&](Op op, ExprPtr value) {
        CheckExpr(c, value);
        auto left = MakeVariable(slot, value->pos);
        const Type type = std::max(left->type, value->type);
        Convert(c, left, type);
        Convert(c, value, type);
        return MakeBinary(op, std::move(left), std::move(value), Type::Long);
    };
    if (item.kind != CaseItem::Kind::Range) return compare(item.op, std::move(item.low));
    auto above = compare(Op::Ge, std::move(item.low));
    return MakeBinary(Op::And, std::move(above), compare(Op::Le, std::move(item.high)), Type::Long);
}

void CheckSelect(Checker& c, Stmt& stmt) {
    if (!stmt.value) stmt.value = MakeExpr(ExprKind::Number, Type::Long, stmt.pos);
    CheckExpr(c, stmt.value);
    stmt.limitSlot = NewTemporary(c, stmt.value->type);
    for (Branch& branch : stmt.branches) {
        for (CaseItem& item : branch.cases) {
            auto test = CaseTest(c, item, stmt.limitSlot);
            branch.condition = branch.condition
                                   ? MakeBinary(Op::Or, std::move(branch.condition), std::move(test), Type::Long)
                                   : std::move(test);
        }
        CheckBody(c, branch.body);
    }
}

void CheckExit(Checker& c, const Stmt& stmt) {
    if (stmt.exit == ExitKind::For && c.forDepth == 0)
        Report(c.sources, Code::Block, stmt.pos, "EXIT FOR outside a FOR loop");
    if (stmt.exit == ExitKind::Do && c.doDepth == 0)
        Report(c.sources, Code::Block, stmt.pos, "EXIT DO outside a DO or WHILE loop");
}

void CheckCallStatement(Checker& c, Stmt& stmt) {
    Expr& call = *stmt.value;
    const auto procedure = c.program.procedureNames.find(call.name);
    if (procedure != c.program.procedureNames.end()) return CheckCall(c, call, *procedure->second);
    Symbol* const variable = FindVariable(c, call.name);
    if (variable != nullptr) variable->used = true;
    Report(c.sources, Code::Undeclared, call.pos,
           variable != nullptr ? "'" + variable->spelling + "' is a variable: an assignment needs '='"
                               : "'" + call.spelling + "' is no procedure and no statement of this BASIC");
}

void CheckStatement(Checker& c, Stmt& stmt) {
    switch (stmt.kind) {
        case StmtKind::Assign: CheckAssign(c, stmt); break;
        case StmtKind::Call: CheckCallStatement(c, stmt); break;
        case StmtKind::Print:
            for (PrintItem& item : stmt.items)
                if (item.value) CheckExpr(c, item.value);
            break;
        case StmtKind::Sleep:
            CheckExpr(c, stmt.value);
            Convert(c, stmt.value, Type::Long);
            break;
        case StmtKind::If:
            for (Branch& branch : stmt.branches) {
                if (branch.condition) CheckExpr(c, branch.condition);
                CheckBody(c, branch.body);
            }
            break;
        case StmtKind::Select: CheckSelect(c, stmt); break;
        case StmtKind::For: CheckFor(c, stmt); break;
        case StmtKind::Loop:
            if (stmt.condition) CheckExpr(c, stmt.condition);
            ++c.doDepth;
            CheckBody(c, stmt.body);
            --c.doDepth;
            if (stmt.postCondition) CheckExpr(c, stmt.postCondition);
            break;
        case StmtKind::Exit: CheckExit(c, stmt); break;
    }
}

void CheckBody(Checker& c, std::vector<Stmt>& body) {
    bool left = false;
    for (Stmt& stmt : body) {
        if (left) Report(c.sources, Code::Unreachable, stmt.pos, "statement is never reached");
        CheckStatement(c, stmt);
        left = stmt.kind == StmtKind::Exit;
    }
}

int64_t BytesOf(const Symbol& symbol) { return symbol.isArray ? 8 + symbol.count * SizeOf(symbol.type) : 8; }

void CheckSizes(Checker& c) {
    int64_t data = 0;
    const auto addData = [&](const Symbol& symbol) {
        if (symbol.storage != Storage::Data) return;
        data += BytesOf(symbol);
        if (data > kMaxDataBytes) Report(c.sources, Code::Limit, symbol.pos, "variables take more than 128 MB");
    };
    for (const Symbol& symbol : c.program.moduleSymbols) addData(symbol);
    for (const Procedure& procedure : c.program.procedures) {
        int64_t frame = 0;
        for (const Symbol& symbol : procedure.symbols) {
            addData(symbol);
            if (symbol.storage == Storage::Frame && !symbol.isParameter) frame += BytesOf(symbol);
        }
        if (frame > kMaxFrameBytes)
            Report(c.sources, Code::Limit, procedure.pos,
                   "local variables of '" + procedure.spelling + "' take more than 1 MB: use STATIC");
    }
}

void WarnUnused(Checker& c, const std::deque<Symbol>& symbols) {
    for (const Symbol& symbol : symbols)
        if (!symbol.used && !symbol.isParameter)
            Report(c.sources, Code::Unused, symbol.pos, "variable '" + symbol.spelling + "' is never used");
}

}  // namespace

void CheckProgram(Sources& sources, Program& program) {
    Checker c{sources, program};
    for (Procedure& procedure : program.procedures) {
        c.procedure = &procedure;
        c.resultAssigned = false;
        CheckBody(c, procedure.body);
        if (procedure.result != Type::None) procedure.resultSlot = NewTemporary(c, procedure.result);
        if (procedure.result != Type::None && !c.resultAssigned && &procedure != program.main)
            Report(sources, Code::NoResult, procedure.pos, "function '" + procedure.spelling + "' sets no result");
        WarnUnused(c, procedure.symbols);
    }
    WarnUnused(c, program.moduleSymbols);
    CheckSizes(c);
}

}  // namespace standin
