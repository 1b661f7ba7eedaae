// Generates statements and procedures, and lays out variables.
#include "codegen.h"

#include "debug_map.h"

#include <algorithm>

namespace standin {
namespace {

void GenerateBody(Generator& g, const std::vector<Stmt>& body);

// ---- lines -----------------------------------------------------------------------------------------------------

// Emits the traps of earlier lines that have no code of their own (LOCAL, END SELECT, continued lines), so that the
// order of traps is the order of lines.
void TrapsBefore(Generator& g, int line) {
    while (g.e.traps && g.nextTrap < g.trapLines.size() && g.trapLines[g.nextTrap] < line) {
        Trap(g.e);
        ++g.nextTrap;
    }
}

void TrapsUpTo(Generator& g, int line) { TrapsBefore(g, line + 1); }

// Called where a statement's code starts.
void Mark(Generator& g, Pos pos) {
    TrapsBefore(g, pos.line);
    const uint32_t here = Offset(g.e);
    if (!g.records.empty() && g.records.back().offset == here)
        g.records.back().pos = pos;
    else
        g.records.push_back({here, pos});
    TrapsUpTo(g, pos.line);
}

// ---- statements ------------------------------------------------------------------------------------------------

void GeneratePrint(Generator& g, const Stmt& stmt) {
    Encoder& e = g.e;
    for (const PrintItem& item : stmt.items) {
        switch (item.kind) {
            case PrintItem::Kind::NextZone: Call(e, g.run.nextZone); break;
            case PrintItem::Kind::NewLine: Call(e, g.run.newLine); break;
            case PrintItem::Kind::Text: {
                const auto index = static_cast<size_t>(item.text);
                Put(e, op::Lea, e.x64, SI, Mem{BX, static_cast<int32_t>(g.stringOffsets[index])});
                MoveNumber(e, CX, static_cast<int32_t>(g.program.strings[index].size()));
                Call(e, g.run.putText);
                break;
            }
            case PrintItem::Kind::Value:
                GenerateExpr(g, *item.value);
                Call(e, item.value->type == Type::Long   ? g.run.printLong
                        : item.value->type == Type::Quad ? g.run.printQuad
                                                         : g.run.printReal);
        }
    }
    if (g.debug) Call(e, g.run.flush);  // in a debug build each line is shown at once, because the user may step
}

// Generates IF and SELECT CASE. The test of a branch is a statement of its own: a stop on CASE or ELSEIF means that the
// test comes next.
void GenerateBranches(Generator& g, const Stmt& stmt) {
    Encoder& e = g.e;
    const int end = NewLabel(e);
    for (size_t i = 0; i < stmt.branches.size(); ++i) {
        const Branch& branch = stmt.branches[i];
        const int next = NewLabel(e);
        if (branch.condition) {
            if (i > 0 || stmt.kind == StmtKind::Select) Mark(g, branch.pos);
            GenerateJumpIfFalse(g, *branch.condition, next);
        }
        TrapsUpTo(g, branch.pos.line);  // CASE ELSE has a trap and no code
        GenerateBody(g, branch.body);
        const bool last = i + 1 == stmt.branches.size();
        TrapsBefore(g, last ? stmt.end.line : stmt.branches[i + 1].pos.line);
        if (!last) Jump(e, end);
        Bind(e, next);
    }
    Bind(e, end);
}

void GenerateFor(Generator& g, const Stmt& stmt) {
    Encoder& e = g.e;
    const int top = NewLabel(e), end = NewLabel(e);
    GenerateExpr(g, *stmt.limit);
    StoreTo(g, stmt.limitSlot->type, {BP, stmt.limitSlot->offset});
    GenerateExpr(g, *stmt.step);
    StoreTo(g, stmt.stepSlot->type, {BP, stmt.stepSlot->offset});
    GenerateStore(g, *stmt.target, *stmt.value);
    Bind(e, top);
    GenerateJumpIfFalse(g, *stmt.condition, end);
    g.forExits.push_back(end);
    GenerateBody(g, stmt.body);
    g.forExits.pop_back();
    Mark(g, stmt.end);
    GenerateExpr(g, *stmt.increment);
    const Type type = stmt.target->type;
    if (type != Type::Double)
        JumpIf(e, Cond::O, end);  // on overflow of the addition the loop ends, because the value is past the limit
    StoreTo(g, type, MemOf(g, *stmt.target->symbol));
    Jump(e, top);
    Bind(e, end);
}

void GenerateLoop(Generator& g, const Stmt& stmt) {
    Encoder& e = g.e;
    const int top = NewLabel(e), end = NewLabel(e);
    TrapsBefore(g, stmt.pos.line);
    if (!stmt.condition) TrapsUpTo(g, stmt.pos.line);  // a DO without a condition is passed once, not at each turn
    Bind(e, top);
    if (stmt.condition) {
        Mark(g, stmt.pos);
        GenerateJumpIfFalse(g, *stmt.condition, end);
    }
    g.doExits.push_back(end);
    GenerateBody(g, stmt.body);
    g.doExits.pop_back();
    Mark(g, stmt.end);
    if (stmt.postCondition) GenerateJumpIfFalse(g, *stmt.postCondition, end);
    Jump(e, top);
    Bind(e, end);
}

void GenerateStatement(Generator& g, const Stmt& stmt) {
    Encoder& e = g.e;
    if (stmt.kind == StmtKind::Loop) return GenerateLoop(g, stmt);
    Mark(g, stmt.pos);
    switch (stmt.kind) {
        case StmtKind::Assign:
            if (stmt.target) return GenerateStore(g, *stmt.target, *stmt.value);
            GenerateExpr(g, *stmt.value);
            return StoreTo(g, g.procedure->result, {BP, g.procedure->resultSlot->offset});
        case StmtKind::Call: return GenerateCall(g, *stmt.value);
        case StmtKind::Print: return GeneratePrint(g, stmt);
        case StmtKind::Sleep: GenerateExpr(g, *stmt.value); return Call(e, g.run.sleep);
        case StmtKind::Select:
            GenerateExpr(g, *stmt.value);
            StoreTo(g, stmt.value->type, {BP, stmt.limitSlot->offset});
            return GenerateBranches(g, stmt);
        case StmtKind::If: return GenerateBranches(g, stmt);
        case StmtKind::For: return GenerateFor(g, stmt);
        case StmtKind::Exit:
            return Jump(e, stmt.exit == ExitKind::For  ? g.forExits.back()
                           : stmt.exit == ExitKind::Do ? g.doExits.back()
                                                       : g.returnLabel);
        case StmtKind::Loop: break;
    }
}

void GenerateBody(Generator& g, const std::vector<Stmt>& body) {
    for (const Stmt& stmt : body) GenerateStatement(g, stmt);
}

// ---- procedures ------------------------------------------------------------------------------------------------

int64_t BytesOf(const Symbol& symbol) { return symbol.isArray ? 8 + symbol.count * SizeOf(symbol.type) : 8; }

// Sets the offsets of parameters and locals and returns the bytes of the frame below bp. Offsets that contain the trap
// byte are skipped.
int32_t LayOutFrame(Generator& g, Procedure& procedure) {
    const int32_t word = g.profile.x64 ? 8 : 4;
    int32_t above = 2 * word;  // saved bp, return address
    for (auto i = procedure.parameters.rbegin(); i != procedure.parameters.rend(); ++i) {
        (*i)->offset = above;
        above += (*i)->storage == Storage::Frame && !g.profile.x64 ? SizeOf((*i)->type) : word;
    }
    int32_t below = 0;
    for (Symbol& symbol : procedure.symbols) {
        if (symbol.isParameter || symbol.storage != Storage::Frame) continue;
        below += static_cast<int32_t>((BytesOf(symbol) + 7) & ~int64_t{7});
        while (HasTrapByte(static_cast<uint32_t>(-below)) || HasTrapByte(static_cast<uint32_t>(-below + 4))) below += 8;
        symbol.offset = -below;
    }
    return (below + 16) & ~15;
}

// Checks the stack, allocates the frame and clears it from the top down, because the guard pages must be touched in
// order.
void GeneratePrologue(Generator& g, int32_t frame) {
    Encoder& e = g.e;
    PushReg(e, BP);
    Put(e, op::Load, e.x64, BP, SP);
    MoveNumber(e, CX, frame);
    Put(e, op::Load, e.x64, AX, SP);
    Put(e, op::Sub, e.x64, AX, CX);
    Put(e, op::Cmp, e.x64, AX, Mem{BX, static_cast<int32_t>(g.cells.stackLimit)});
    const int good = NewLabel(e);
    JumpIf(e, Cond::AboveEq, good);
    MoveNumber(e, DI, g.procedure->pos.line);
    Call(e, g.run.noStack);
    Bind(e, good);
    Put(e, op::Load, e.x64, SP, AX);
    ShiftRight(e, CX, 2);
    Put(e, op::Lea, e.x64, DI, Mem{BP, -4});
    Put(e, op::Xor, false, AX, AX);
    PutBytes(e, "std", {0xFD});
    PutBytes(e, "rep stosd", {0xF3, 0xAB});
    PutBytes(e, "cld", {0xFC});
    for (const Symbol& symbol : g.procedure->symbols) {
        if (!symbol.isArray || symbol.isParameter || symbol.storage != Storage::Frame) continue;
        MoveNumber(e, AX, static_cast<int32_t>(symbol.count));
        Put(e, op::Store, false, AX, Mem{BP, symbol.offset});
    }
}

void GenerateProcedure(Generator& g, Procedure& procedure) {
    Encoder& e = g.e;
    g.procedure = &procedure;
    g.returnLabel = NewLabel(e);
    const int32_t frame = LayOutFrame(g, procedure);
    const bool trapped = g.debug && g.profile.debugMap == DebugMap::PbdTraps && &procedure == g.program.main;
    if (trapped) {
        const SourceFile& file = g.sources.files[static_cast<size_t>(procedure.pos.file)];
        g.trapLines = StatementLinesOfMain(file.text);
    }
    Bind(e, procedure.label);
    e.traps = trapped;
    if (&procedure == g.program.main) g.mainOffset = Offset(e);
    g.records.push_back({Offset(e), procedure.pos});
    GeneratePrologue(g, frame);
    GenerateBody(g, procedure.body);
    TrapsBefore(g, procedure.end.line);
    Bind(e, g.returnLabel);
    Mark(g, procedure.end);
    if (procedure.resultSlot != nullptr) {
        const Mem result = {BP, procedure.resultSlot->offset};
        if (procedure.result == Type::Double)
            Put(e, op::LoadReal, false, X0, result);
        else
            Put(e, op::Load, procedure.result == Type::Quad && e.x64, AX, result);
        if (procedure.result == Type::Quad && !e.x64) Put(e, op::Load, false, DX, Mem{BP, result.disp + 4});
    } else {
        Put(e, op::Xor, false, AX, AX);
    }
    Leave(e);
    Ret(e);
    e.traps = false;
}

void LayOutData(Generator& g) {
    for (const std::string& text : g.program.strings) g.stringOffsets.push_back(PlaceData(g, text));
    const auto place = [&g](std::deque<Symbol>& symbols) {
        for (Symbol& symbol : symbols)
            if (symbol.storage == Storage::Data) symbol.offset = static_cast<int32_t>(PlaceZeroes(g, BytesOf(symbol)));
    };
    place(g.program.moduleSymbols);
    for (Procedure& procedure : g.program.procedures) place(procedure.symbols);
}

}  // namespace

// With a .sdbg map PBMAIN comes first, so that the first mapped line is where the program starts. With traps it comes
// last, because the reader takes every 0xCC from its start to the section's end for a statement.
void GenerateProgram(Generator& g) {
    g.image.x64 = g.e.x64 = g.profile.x64;
    PlaceRuntimeData(g);
    LayOutData(g);
    for (Procedure& procedure : g.program.procedures) procedure.label = NewLabel(g.e, procedure.spelling);
    EmitStart(g);
    EmitRuntime(g);
    const bool mainLast = g.profile.debugMap == DebugMap::PbdTraps;
    if (!mainLast) GenerateProcedure(g, *g.program.main);
    for (Procedure& procedure : g.program.procedures)
        if (&procedure != g.program.main) GenerateProcedure(g, procedure);
    if (mainLast) GenerateProcedure(g, *g.program.main);
    g.image.text = g.e.code;
}

}  // namespace standin
