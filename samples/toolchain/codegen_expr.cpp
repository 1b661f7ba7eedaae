// Generates expressions. codegen.h says where values are kept.
#include "codegen.h"

namespace standin {
namespace {

bool IsPair(const Generator& g, Type type) { return type == Type::Quad && !g.profile.x64; }  // edx:eax
bool IsWide(const Generator& g, Type type) { return type == Type::Quad && g.profile.x64; }

Mem High(Mem mem) { return {mem.base, mem.disp + 4}; }

void Push(Generator& g, Type type) {
    if (type == Type::Double) {
        AddStack(g.e, -8);
        Put(g.e, op::StoreReal, false, X0, Mem{SP, 0});
        return;
    }
    if (IsPair(g, type)) PushReg(g.e, DX);
    PushReg(g.e, AX);
}

int32_t StackSize(const Generator& g, Type type) { return g.profile.x64 ? 8 : SizeOf(type); }

void LoadFrom(Generator& g, Type type, Mem mem) {
    if (type == Type::Double) return Put(g.e, op::LoadReal, false, X0, mem);
    if (IsPair(g, type)) Put(g.e, op::Load, false, DX, High(mem));
    Put(g.e, op::Load, IsWide(g, type), AX, mem);
}

void GenerateNumber(Generator& g, const Expr& expr) {
    if (expr.type == Type::Long) return MoveNumber(g.e, AX, static_cast<int32_t>(expr.whole));
    int64_t bits = expr.whole;
    if (expr.type == Type::Double) __builtin_memcpy(&bits, &expr.real, sizeof bits);
    if (g.profile.x64) {
        MoveNumber64(g.e, bits);
    } else {
        MoveNumber(g.e, DX, static_cast<int32_t>(bits >> 32));
        MoveNumber(g.e, AX, static_cast<int32_t>(bits));
    }
    if (expr.type != Type::Double) return;
    Push(g, Type::Quad);
    Put(g.e, op::LoadReal, false, X0, Mem{SP, 0});
    AddStack(g.e, 8);
}

// Loads the address of an array's count into cx.
void ArrayAddress(Generator& g, const Symbol& array) {
    if (array.storage == Storage::Reference)
        Put(g.e, op::Load, g.e.x64, CX, Mem{BP, array.offset});
    else
        Put(g.e, op::Lea, g.e.x64, CX, Mem{array.storage == Storage::Data ? BX : BP, array.offset});
}

// Checks the index and loads the address of the element into cx.
void ElementInto(Generator& g, const Expr& expr) {
    GenerateExpr(g, *expr.args[0]);
    ArrayAddress(g, *expr.symbol);
    Put(g.e, op::Cmp, false, AX, Mem{CX, 0});
    const int good = NewLabel(g.e);
    JumpIf(g.e, Cond::Below, good);  // an unsigned comparison, so that negative indexes fail too
    MoveNumber(g.e, DI, expr.pos.line);
    Call(g.e, g.run.badIndex);
    Bind(g.e, good);
    if (g.e.x64) Put(g.e, op::Load, false, AX, AX);  // clears the upper half
    ElementAddress(g.e, SizeOf(expr.symbol->type));
}

void GenerateConvert(Generator& g, const Expr& expr) {
    const Type from = expr.args[0]->type;
    GenerateExpr(g, *expr.args[0]);
    Encoder& e = g.e;
    if (from == Type::Long && expr.type == Type::Quad) {
        if (e.x64)
            Put(e, op::SignExtend, true, AX, AX);
        else
            Widen(e, false);
    } else if (from == Type::Long) {
        Put(e, op::WholeToReal, false, X0, AX);
    } else if (from == Type::Quad && expr.type == Type::Double) {
        if (e.x64) return Put(e, op::WholeToReal, true, X0, AX);
        Push(g, from);
        PutOne(e, op::Fild, Mem{SP, 0});
        PutOne(e, op::Fstp, Mem{SP, 0});
        Put(e, op::LoadReal, false, X0, Mem{SP, 0});
        AddStack(e, 8);
    } else if (from == Type::Double && IsPair(g, expr.type)) {
        Push(g, from);
        PutOne(e, op::Fld, Mem{SP, 0});
        PutOne(e, op::Fistp, Mem{SP, 0});
        PopReg(e, AX);
        PopReg(e, DX);
    } else if (from == Type::Double) {
        Put(e, op::RealToWhole, IsWide(g, expr.type), AX, X0);
    }  // QUAD to LONG: eax is the low half already
}

void GenerateAbs(Generator& g, Type type) {
    Encoder& e = g.e;
    if (type == Type::Double) {
        Put(e, op::XorReal, false, X1, X1);
        Put(e, op::SubReal, false, X1, X0);
        Put(e, op::MaxReal, false, X0, X1);
        return;
    }
    if (!IsPair(g, type)) {  // dx is all ones for a negative number: XOR and SUB negate it
        Widen(e, IsWide(g, type));
        Put(e, op::Xor, IsWide(g, type), AX, DX);
        Put(e, op::Sub, IsWide(g, type), AX, DX);
        return;
    }
    Put(e, op::Load, false, CX, DX);
    ShiftRightSigned(e, CX, 31);
    Put(e, op::Xor, false, AX, CX);
    Put(e, op::Xor, false, DX, CX);
    Put(e, op::Sub, false, AX, CX);
    Put(e, op::Sbb, false, DX, CX);
}

void GenerateUnary(Generator& g, const Expr& expr) {
    Encoder& e = g.e;
    const Type type = expr.type;
    GenerateExpr(g, *expr.args[0]);
    if (expr.op == Op::Abs) return GenerateAbs(g, type);
    if (expr.op == Op::Sqr) return Put(e, op::RootReal, false, X0, X0);
    if (expr.op == Op::Int) {
        if (type == Type::Double) Call(e, g.run.floor);
        return;
    }
    if (type == Type::Double) {
        Put(e, op::XorReal, false, X1, X1);
        Put(e, op::SubReal, false, X1, X0);
        Put(e, op::LoadReal, false, X0, X1);
        return;
    }
    PutOne(e, expr.op == Op::Neg ? op::Neg : op::Not, IsWide(g, type), AX);
    if (!IsPair(g, type)) return;
    if (expr.op == Op::Not) return PutOne(e, op::Not, false, DX);
    PutBytes(e, "adc edx, 0", {0x83, 0xD2, 0x00});
    PutOne(e, op::Neg, false, DX);
}

// The left operand is in xmm0, the right one in xmm1.
void RealOperation(Generator& g, const Expr& expr) {
    Encoder& e = g.e;
    switch (expr.op) {
        case Op::Add: return Put(e, op::AddReal, false, X0, X1);
        case Op::Sub: return Put(e, op::SubReal, false, X0, X1);
        case Op::Mul: return Put(e, op::MulReal, false, X0, X1);
        case Op::Div: return Put(e, op::DivReal, false, X0, X1);
        case Op::Pow: return Call(e, g.run.power);
        default: break;
    }
    const bool swap = expr.op == Op::Gt || expr.op == Op::Ge;  // a > b is computed as b < a, which is right for NaN too
    const uint8_t predicate = expr.op == Op::Eq                        ? 0
                              : expr.op == Op::Ne                      ? 4
                              : expr.op == Op::Lt || expr.op == Op::Gt ? 1
                                                                       : 2;
    CompareReal(e, swap ? X1 : X0, swap ? X0 : X1, predicate);
    Put(e, op::MoveMask, false, swap ? X1 : X0, AX);
}

Cond CondOf(Op op) {
    switch (op) {
        case Op::Eq: return Cond::E;
        case Op::Ne: return Cond::NE;
        case Op::Lt: return Cond::Less;
        case Op::Gt: return Cond::Greater;
        case Op::Le: return Cond::LessEq;
        default: return Cond::GreaterEq;
    }
}

// The left operand is in ax, the right one in cx.
void WholeOperation(Generator& g, const Expr& expr, bool wide) {
    Encoder& e = g.e;
    switch (expr.op) {
        case Op::Add: return Put(e, op::Add, wide, AX, CX);
        case Op::Sub: return Put(e, op::Sub, wide, AX, CX);
        case Op::Mul: return Put(e, op::Imul, wide, AX, CX);
        case Op::And: return Put(e, op::And, wide, AX, CX);
        case Op::Or: return Put(e, op::Or, wide, AX, CX);
        case Op::Xor: return Put(e, op::Xor, wide, AX, CX);
        case Op::IntDiv:
        case Op::Mod:
            MoveNumber(e, DI, expr.pos.line);
            if (expr.op == Op::Mod) return Call(e, wide ? g.run.remainderQuad : g.run.remainder);
            return Call(e, wide ? g.run.divideQuad : g.run.divide);
        default: Put(e, op::Cmp, wide, AX, CX); return SetIf(e, CondOf(expr.op));
    }
}

void PairCompare(Generator& g, Op op) {
    Encoder& e = g.e;
    if (op == Op::Eq || op == Op::Ne) {
        Put(e, op::Xor, false, AX, CX);
        Put(e, op::Xor, false, DX, SI);
        Put(e, op::Or, false, AX, DX);
        return SetIf(e, CondOf(op));
    }
    if (op == Op::Lt || op == Op::Ge) {  // the flags of left - right
        Put(e, op::Cmp, false, AX, CX);
        Put(e, op::Sbb, false, DX, SI);
        return SetIf(e, CondOf(op));
    }
    Put(e, op::Cmp, false, CX, AX);  // right - left
    Put(e, op::Sbb, false, SI, DX);
    SetIf(e, op == Op::Gt ? Cond::Less : Cond::GreaterEq);
}

// The left operand is in edx:eax, the right one in esi:ecx.
void PairOperation(Generator& g, const Expr& expr) {
    Encoder& e = g.e;
    const auto both = [&e](const Instr& low, const Instr& high) {
        Put(e, low, false, AX, CX);
        Put(e, high, false, DX, SI);
    };
    switch (expr.op) {
        case Op::Add: return both(op::Add, op::Adc);
        case Op::Sub: return both(op::Sub, op::Sbb);
        case Op::And: return both(op::And, op::And);
        case Op::Or: return both(op::Or, op::Or);
        case Op::Xor: return both(op::Xor, op::Xor);
        case Op::Mul:
            Put(e, op::Imul, false, DX, CX);
            Put(e, op::Imul, false, SI, AX);
            Put(e, op::Add, false, SI, DX);
            PutOne(e, op::Mul, false, CX);
            return Put(e, op::Add, false, DX, SI);
        case Op::IntDiv:
        case Op::Mod:
            MoveNumber(e, DI, expr.pos.line);
            return Call(e, expr.op == Op::Mod ? g.run.remainderQuad : g.run.divideQuad);
        default: return PairCompare(g, expr.op);
    }
}

void GenerateBinary(Generator& g, const Expr& expr) {
    Encoder& e = g.e;
    const Type type = expr.args[0]->type;
    GenerateExpr(g, *expr.args[0]);
    Push(g, type);
    GenerateExpr(g, *expr.args[1]);
    if (type == Type::Double) {
        Put(e, op::LoadReal, false, X1, X0);
        Put(e, op::LoadReal, false, X0, Mem{SP, 0});
        AddStack(e, 8);
        return RealOperation(g, expr);
    }
    Put(e, op::Load, IsWide(g, type), CX, AX);
    if (!IsPair(g, type)) {
        PopReg(e, AX);
        return WholeOperation(g, expr, IsWide(g, type));
    }
    Put(e, op::Load, false, SI, DX);
    PopReg(e, AX);
    PopReg(e, DX);
    PairOperation(g, expr);
}

void PushArgument(Generator& g, const Expr& arg, const Symbol& parameter, const Symbol* temporary) {
    Encoder& e = g.e;
    if (parameter.isArray) {
        ArrayAddress(g, *arg.symbol);
    } else if (parameter.storage == Storage::Frame) {
        GenerateExpr(g, arg);
        return Push(g, parameter.type);
    } else if (temporary != nullptr) {
        GenerateExpr(g, arg);
        StoreTo(g, parameter.type, {BP, temporary->offset});
        Put(e, op::Lea, e.x64, CX, Mem{BP, temporary->offset});
    } else if (arg.kind == ExprKind::Element) {
        ElementInto(g, arg);
    } else if (const Mem mem = MemOf(g, *arg.symbol); mem.base != CX) {
        Put(e, op::Lea, e.x64, CX, mem);
    }
    PushReg(e, CX);
}

}  // namespace

Mem MemOf(Generator& g, const Symbol& symbol) {
    if (symbol.storage == Storage::Data) return {BX, symbol.offset};
    if (symbol.storage == Storage::Frame) return {BP, symbol.offset};
    Put(g.e, op::Load, g.e.x64, CX, Mem{BP, symbol.offset});
    return {CX, 0};
}

void StoreTo(Generator& g, Type type, Mem mem) {
    if (type == Type::Double) return Put(g.e, op::StoreReal, false, X0, mem);
    Put(g.e, op::Store, IsWide(g, type), AX, mem);
    if (IsPair(g, type)) Put(g.e, op::Store, false, DX, High(mem));
}

void GenerateExpr(Generator& g, const Expr& expr) {
    switch (expr.kind) {
        case ExprKind::Number: return GenerateNumber(g, expr);
        case ExprKind::Variable: return LoadFrom(g, expr.type, MemOf(g, *expr.symbol));
        case ExprKind::Element: ElementInto(g, expr); return LoadFrom(g, expr.type, {CX, 0});
        case ExprKind::Bound:
            ArrayAddress(g, *expr.symbol);
            Put(g.e, op::Load, false, AX, Mem{CX, 0});
            return PutBytes(g.e, "sub eax, 1", {0x83, 0xE8, 0x01});
        case ExprKind::Call: return GenerateCall(g, expr);
        case ExprKind::Unary: return GenerateUnary(g, expr);
        case ExprKind::Binary: return GenerateBinary(g, expr);
        case ExprKind::Convert: return GenerateConvert(g, expr);
        default: return;  // the checker has removed names and whole arrays
    }
}

void GenerateCall(Generator& g, const Expr& call) {
    int32_t bytes = 0;
    for (size_t i = 0; i < call.args.size(); ++i) {
        const Symbol& parameter = *call.procedure->parameters[i];
        PushArgument(g, *call.args[i], parameter, call.temporaries[i]);
        const bool address = parameter.storage == Storage::Reference;
        bytes += address ? (g.profile.x64 ? 8 : 4) : StackSize(g, parameter.type);
    }
    Call(g.e, call.procedure->label);
    AddStack(g.e, bytes);
}

void GenerateStore(Generator& g, const Expr& target, const Expr& value) {
    if (target.kind == ExprKind::Variable) {
        GenerateExpr(g, value);
        return StoreTo(g, target.type, MemOf(g, *target.symbol));
    }
    ElementInto(g, target);
    PushReg(g.e, CX);
    GenerateExpr(g, value);
    PopReg(g.e, CX);
    StoreTo(g, target.type, {CX, 0});
}

void GenerateJumpIfFalse(Generator& g, const Expr& condition, int label) {
    Encoder& e = g.e;
    GenerateExpr(g, condition);
    if (condition.type == Type::Double) {
        Put(e, op::XorReal, false, X1, X1);
        CompareReal(e, X0, X1, 4);
        Put(e, op::MoveMask, false, X0, AX);
    } else if (IsPair(g, condition.type)) {
        Put(e, op::Or, false, AX, DX);
    }
    Put(e, op::Test, IsWide(g, condition.type), AX, AX);
    JumpIf(e, Cond::E, label);
}

}  // namespace standin
