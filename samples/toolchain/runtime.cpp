// The runtime library of compiled programs as machine code: the entry point, buffered output, number formatting (by
// msvcrt's sprintf), division, run-time errors. The same text is used for both machines; only calls into the system and
// 64-bit division on x86 differ.
#include "codegen.h"

namespace standin {
namespace {

constexpr std::array<std::string_view, 8> kImportNames = {
    "GetStdHandle", "WriteFile", "ExitProcess", "Sleep", "AddVectoredExceptionHandler", "sprintf", "pow", "floor"};
constexpr size_t kKernelImports = 5;  // the first ones; the others are msvcrt's
constexpr int kZoneWidth = 14;
constexpr int kRuntimeErrorExit = 3;
constexpr std::array<std::string_view, 3> kErrorTexts = {"Run-time error: division by zero in line ",
                                                         "Run-time error: array index out of bounds in line ",
                                                         "Run-time error: out of stack space in line "};

struct Arg {
    // Address, Value and Value64 are those of a data cell.
    enum class Kind : uint8_t { Number, Address, Value, Value64 } kind;
    uint32_t value;
};

Mem Cell(uint32_t offset) { return {BX, static_cast<int32_t>(offset)}; }

void SetNumber(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

// Calls a system function with a frame of its own, because the stack is not aligned elsewhere. Changes all registers
// but bx and bp.
void CallImport(Generator& g, Import import, std::initializer_list<Arg> args) {
    Encoder& e = g.e;
    constexpr std::array<Reg, 4> kPlaces = {CX, DX, R8, R9};
    PushReg(e, BP);
    Put(e, op::Load, e.x64, BP, SP);
    if (e.x64) {
        AddStack(e, -48);
        PutBytes(e, "and rsp, -16", {0x48, 0x83, 0xE4, 0xF0});
        size_t index = 0;
        for (const Arg& arg : args) {
            const Reg reg = index < 4 ? kPlaces[index] : AX;
            if (arg.kind == Arg::Kind::Number)
                MoveNumber(e, reg, static_cast<int32_t>(arg.value));
            else
                Put(e, arg.kind == Arg::Kind::Address ? op::Lea : op::Load, arg.kind != Arg::Kind::Value, reg,
                    Cell(arg.value));
            if (index >= 4) Put(e, op::Store, true, reg, Mem{SP, static_cast<int32_t>(index * 8)});
            ++index;
        }
    } else {
        for (auto arg = std::rbegin(args); arg != std::rend(args); ++arg) {
            if (arg->kind == Arg::Kind::Value64) PutOne(e, op::Push, Cell(arg->value + 4));
            if (arg->kind == Arg::Kind::Value || arg->kind == Arg::Kind::Value64) {
                PutOne(e, op::Push, Cell(arg->value));
                continue;
            }
            if (arg->kind == Arg::Kind::Number)
                MoveNumber(e, AX, static_cast<int32_t>(arg->value));
            else
                Put(e, op::Lea, false, AX, Cell(arg->value));
            PushReg(e, AX);
        }
    }
    PutOne(e, op::CallAt, Cell(g.importSlots[static_cast<size_t>(import)]));
    Leave(e);
}

void StoreNumber(Generator& g, uint32_t cell, int32_t value) {
    MoveNumber(g.e, AX, value);
    Put(g.e, op::Store, false, AX, Cell(cell));
}

int Begin(Generator& g, int& label, std::string name) {
    if (label < 0) label = NewLabel(g.e, std::move(name));
    Bind(g.e, label);
    return label;
}

void EmitOutput(Generator& g) {
    Encoder& e = g.e;
    const RuntimeCells& c = g.cells;
    Begin(g, g.run.flush, "rt_flush");
    const int empty = NewLabel(e);
    Put(e, op::Load, false, AX, Cell(c.outLength));
    Put(e, op::Test, false, AX, AX);
    JumpIf(e, Cond::E, empty);
    CallImport(g, Import::WriteFile,
               {{e.x64 ? Arg::Kind::Value64 : Arg::Kind::Value, c.handle},
                {Arg::Kind::Address, c.outBuffer},
                {Arg::Kind::Value, c.outLength},
                {Arg::Kind::Address, c.written},
                {Arg::Kind::Number, 0}});
    StoreNumber(g, c.outLength, 0);
    Bind(e, empty);
    Ret(e);

    Begin(g, g.run.putChar, "rt_put_char");  // prints the character in al; keeps cx and si
    const int room = NewLabel(e), noBreak = NewLabel(e);
    MoveNumber(e, DI, static_cast<int32_t>(kOutBufferSize));
    Put(e, op::Load, false, DX, Cell(c.outLength));
    Put(e, op::Cmp, false, DX, DI);
    JumpIf(e, Cond::Below, room);
    for (const Reg reg : {AX, CX, SI}) PushReg(e, reg);
    Call(e, g.run.flush);
    for (const Reg reg : {SI, CX, AX}) PopReg(e, reg);
    Bind(e, room);
    Put(e, op::Load, false, DX, Cell(c.outLength));
    Put(e, op::Lea, e.x64, DI, Cell(c.outBuffer));
    Put(e, op::Add, e.x64, DI, DX);
    Put(e, op::StoreByte, false, AX, Mem{DI, 0});
    PutOne(e, op::Inc, Cell(c.outLength));
    PutOne(e, op::Inc, Cell(c.column));
    PutBytes(e, "cmp al, 10", {0x3C, 0x0A});
    JumpIf(e, Cond::NE, noBreak);
    StoreNumber(g, c.column, 0);
    Bind(e, noBreak);
    Ret(e);

    Begin(g, g.run.putText, "rt_put_text");  // prints cx characters at si
    const int next = NewLabel(e), done = NewLabel(e);
    Bind(e, next);
    PutBytes(e, "sub ecx, 1", {0x83, 0xE9, 0x01});
    JumpIf(e, Cond::Below, done);
    Put(e, op::LoadByte, false, AX, Mem{SI, 0});
    Call(e, g.run.putChar);
    Put(e, op::Lea, e.x64, SI, Mem{SI, 1});
    Jump(e, next);
    Bind(e, done);
    Ret(e);

    Begin(g, g.run.newLine, "rt_new_line");
    MoveNumber(e, AX, '\r');
    Call(e, g.run.putChar);
    MoveNumber(e, AX, '\n');
    Jump(e, g.run.putChar);

    Begin(g, g.run.nextZone, "rt_next_zone");  // prints at least one blank, up to the next multiple of the zone's width
    MoveNumber(e, AX, ' ');
    Call(e, g.run.putChar);
    Put(e, op::Load, false, AX, Cell(c.column));
    Put(e, op::Xor, false, DX, DX);
    MoveNumber(e, CX, kZoneWidth);
    PutOne(e, op::Div, false, CX);
    Put(e, op::Test, false, DX, DX);
    JumpIf(e, Cond::NE, g.run.nextZone);
    Ret(e);
}

// Prints the accumulator, which is already stored in the cell `left`, as text.
void EmitPrintNumber(Generator& g, int& label, std::string name, Type type, uint32_t format) {
    Encoder& e = g.e;
    Begin(g, label, std::move(name));
    StoreTo(g, type, Cell(g.cells.left));
    CallImport(
        g, Import::Sprintf,
        {{Arg::Kind::Address, g.cells.number}, {Arg::Kind::Address, format}, {Arg::Kind::Value64, g.cells.left}});
    Put(e, op::Load, false, CX, AX);
    Put(e, op::Lea, e.x64, SI, Cell(g.cells.number));
    Jump(e, g.run.putText);
}

// Prints a run-time error and ends the program. The line number is in di.
void EmitError(Generator& g, int& label, std::string name, size_t kind) {
    Encoder& e = g.e;
    const int fresh = NewLabel(e);
    Begin(g, label, std::move(name));
    Put(e, op::Store, false, DI, Cell(g.cells.errorLine));
    Put(e, op::Load, false, AX, Cell(g.cells.column));
    Put(e, op::Test, false, AX, AX);
    JumpIf(e, Cond::E, fresh);
    Call(e, g.run.newLine);
    Bind(e, fresh);
    Put(e, op::Lea, e.x64, SI, Cell(g.cells.errorTexts[kind]));
    MoveNumber(e, CX, static_cast<int32_t>(kErrorTexts[kind].size()));
    Call(e, g.run.putText);
    Put(e, op::Load, false, AX, Cell(g.cells.errorLine));
    Call(e, g.run.printLong);
    Call(e, g.run.newLine);
    Call(e, g.run.flush);
    CallImport(g, Import::ExitProcess, {{Arg::Kind::Number, kRuntimeErrorExit}});
}

// Divides ax by cx. -1 is handled separately, because the lowest number divided by -1 overflows.
void EmitDivision(Generator& g, int& label, std::string name, bool wide, bool remainder, int byZero) {
    Encoder& e = g.e;
    const int minusOne = NewLabel(e);
    Begin(g, label, std::move(name));
    Put(e, op::Test, wide, CX, CX);
    JumpIf(e, Cond::E, byZero);
    CompareByte(e, wide, CX, -1);
    JumpIf(e, Cond::E, minusOne);
    Widen(e, wide);
    PutOne(e, op::Idiv, wide, CX);
    if (remainder) Put(e, op::Load, wide, AX, DX);
    Ret(e);
    Bind(e, minusOne);
    if (remainder)
        Put(e, op::Xor, false, AX, AX);
    else
        PutOne(e, op::Neg, wide, AX);
    Ret(e);
}

// x86: divides edx:eax by esi:ecx. The x87 unit holds 64-bit whole numbers exactly. With 64-bit precision and
// truncation its quotient, cut to a whole number, is exact too. The remainder is left - quotient * right.
void EmitPairDivision(Generator& g, int byZero) {
    Encoder& e = g.e;
    const RuntimeCells& c = g.cells;
    const auto high = [](uint32_t cell) { return Cell(cell + 4); };
    Begin(g, g.run.divideQuad, "rt_divide_quad");
    Put(e, op::Store, false, AX, Cell(c.left));
    Put(e, op::Store, false, DX, high(c.left));
    Put(e, op::Store, false, CX, Cell(c.right));
    Put(e, op::Store, false, SI, high(c.right));
    Put(e, op::Or, false, CX, SI);
    JumpIf(e, Cond::E, byZero);
    PutOne(e, op::Fnstcw, Cell(c.controlWord));
    PutOne(e, op::Fldcw, Cell(c.truncate));
    PutOne(e, op::Fild, Cell(c.left));
    PutOne(e, op::Fild, Cell(c.right));
    PutBytes(e, "fdivp", {0xDE, 0xF9});
    PutOne(e, op::Fistp, Cell(c.number));
    PutOne(e, op::Fldcw, Cell(c.controlWord));
    Put(e, op::Load, false, AX, Cell(c.number));
    Put(e, op::Load, false, DX, high(c.number));
    Ret(e);
    Begin(g, g.run.remainderQuad, "rt_remainder_quad");
    Call(e, g.run.divideQuad);
    Put(e, op::Load, false, CX, Cell(c.right));
    Put(e, op::Load, false, SI, high(c.right));
    Put(e, op::Imul, false, DX, CX);
    Put(e, op::Imul, false, SI, AX);
    Put(e, op::Add, false, SI, DX);
    PutOne(e, op::Mul, false, CX);
    Put(e, op::Add, false, DX, SI);
    Put(e, op::Load, false, CX, AX);
    Put(e, op::Load, false, SI, DX);
    Put(e, op::Load, false, AX, Cell(c.left));
    Put(e, op::Load, false, DX, high(c.left));
    Put(e, op::Sub, false, AX, CX);
    Put(e, op::Sbb, false, DX, SI);
    Ret(e);
}

// Calls a function of msvcrt on xmm0 (and xmm1), with its result in xmm0. Arguments are in registers on x64; on x86
// they are on the stack and the result is in st(0).
void EmitRealFunction(Generator& g, int& label, std::string name, Import import, bool two) {
    Encoder& e = g.e;
    Begin(g, label, std::move(name));
    if (e.x64) {
        CallImport(g, import, {});
        return Ret(e);
    }
    Put(e, op::StoreReal, false, X0, Cell(g.cells.left));
    if (two) {
        Put(e, op::StoreReal, false, X1, Cell(g.cells.right));
        CallImport(g, import, {{Arg::Kind::Value64, g.cells.left}, {Arg::Kind::Value64, g.cells.right}});
    } else {
        CallImport(g, import, {{Arg::Kind::Value64, g.cells.left}});
    }
    PutOne(e, op::Fstp, Cell(g.cells.left));
    Put(e, op::LoadReal, false, X0, Cell(g.cells.left));
    Ret(e);
}

// Places the import directory, the lookup table, the address table and the names. RVAs count from the section's start
// until linking.
void PlaceImports(Generator& g) {
    Image& image = g.image;
    const size_t word = g.profile.x64 ? 8 : 4;
    constexpr std::array<std::string_view, 2> kLibraries = {"KERNEL32.dll", "msvcrt.dll"};
    const size_t slots = kImportNames.size() + kLibraries.size();  // each list ends in a zero
    const size_t lookup = 64, table = lookup + slots * word;       // after the directory of 60 bytes, aligned
    image.importsSize = 20 * 3;
    image.addressTable = static_cast<uint32_t>(table);
    image.addressTableSize = static_cast<uint32_t>(slots * word);
    image.data.assign(table + slots * word, 0);
    const auto point = [&image](size_t at, size_t target) {
        SetNumber(image.data, at, static_cast<uint32_t>(target));
        image.dataRvaFixups.push_back(static_cast<uint32_t>(at));
    };
    for (size_t library = 0; library < kLibraries.size(); ++library) {
        const size_t first = library == 0 ? 0 : kKernelImports;
        const size_t last = library == 0 ? kKernelImports : kImportNames.size();
        const size_t firstSlot = (first + library) * word;
        point(library * 20, lookup + firstSlot);
        point(library * 20 + 12, image.data.size());
        point(library * 20 + 16, table + firstSlot);
        image.data.insert(image.data.end(), kLibraries[library].begin(), kLibraries[library].end());
        image.data.push_back(0);
        for (size_t i = first; i < last; ++i) {
            if (image.data.size() % 2) image.data.push_back(0);
            const size_t slot = (i + library) * word;
            g.importSlots[i] = static_cast<uint32_t>(table + slot);
            point(lookup + slot, image.data.size());
            point(table + slot, image.data.size());
            image.data.insert(image.data.end(), 2, 0);  // the hint is 0
            image.data.insert(image.data.end(), kImportNames[i].begin(), kImportNames[i].end());
            image.data.push_back(0);
        }
    }
}

// Installs a handler that skips traps, so that a debug build also runs without a debugger. A debugger receives each
// trap before this handler. The call leaves the handler's address on the stack. x86 only.
void EmitTrapHandler(Generator& g) {
    Encoder& e = g.e;
    constexpr int32_t kBreakpoint = INT32_MIN + 3;        // EXCEPTION_BREAKPOINT
    constexpr Mem kRecord = {AX, 0}, kContext = {AX, 4};  // EXCEPTION_POINTERS
    constexpr Mem kCode = {CX, 0}, kAddress = {CX, 12}, kEip = {AX, 0xB8};
    const int install = NewLabel(e, "rt_install_trap_handler"), pass = NewLabel(e);
    Call(e, install);
    Put(e, op::Load, false, AX, Mem{SP, 4});
    Put(e, op::Load, false, CX, kRecord);
    MoveNumber(e, DX, kBreakpoint);
    Put(e, op::Cmp, false, DX, kCode);
    JumpIf(e, Cond::NE, pass);
    Put(e, op::Load, false, CX, kAddress);
    Put(e, op::LoadByte, false, DX, Mem{CX, 0});
    PutBytes(e, "cmp dl, CCh", {0x80, 0xFA, 0xCC});
    JumpIf(e, Cond::NE, pass);
    Put(e, op::Lea, false, CX, Mem{CX, 1});
    Put(e, op::Load, false, AX, kContext);
    Put(e, op::Store, false, CX, kEip);
    MoveNumber(e, AX, -1);  // EXCEPTION_CONTINUE_EXECUTION
    PutBytes(e, "ret 4", {0xC2, 0x04, 0x00});
    Bind(e, pass);
    Put(e, op::Xor, false, AX, AX);  // EXCEPTION_CONTINUE_SEARCH
    PutBytes(e, "ret 4", {0xC2, 0x04, 0x00});
    Bind(e, install);
    PopReg(e, AX);
    Put(e, op::Store, false, AX, Cell(g.cells.left));
    CallImport(g, Import::AddHandler, {{Arg::Kind::Number, 1}, {Arg::Kind::Value, g.cells.left}});
}

}  // namespace

uint32_t PlaceData(Generator& g, std::string_view bytes) {
    std::vector<uint8_t>& data = g.image.data;
    data.resize((data.size() + 7) & ~size_t{7});
    while (HasTrapByte(static_cast<uint32_t>(data.size()))) data.resize(data.size() + 8);
    const auto at = static_cast<uint32_t>(data.size());
    data.insert(data.end(), bytes.begin(), bytes.end());
    g.image.dataSize = static_cast<uint32_t>(data.size());
    return at;
}

uint32_t PlaceZeroes(Generator& g, int64_t bytes) {
    uint32_t at = (g.image.dataSize + 7) & ~7u;
    while (HasTrapByte(at) || HasTrapByte(at + 4)) at += 8;
    g.image.dataSize = at + static_cast<uint32_t>(bytes);
    return at;
}

void PlaceRuntimeData(Generator& g) {
    PlaceImports(g);
    g.run = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    RuntimeCells& c = g.cells;
    using namespace std::string_view_literals;
    c.longFormat = PlaceData(g, "%d\0"sv);
    c.quadFormat = PlaceData(g, "%I64d\0"sv);
    c.realFormat = PlaceData(g, "%.15g\0"sv);
    c.truncate = PlaceData(g, "\x7F\x0F\0\0"sv);  // all exceptions masked, 64-bit precision, toward zero
    for (size_t i = 0; i < kErrorTexts.size(); ++i) c.errorTexts[i] = PlaceData(g, kErrorTexts[i]);
    const std::string zeroes(8, '\0');
    for (uint32_t* const cell : {&c.outLength, &c.column, &c.handle, &c.written, &c.exitCode, &c.stackLimit, &c.left,
                                 &c.right, &c.errorLine, &c.controlWord})
        *cell = PlaceData(g, zeroes);
    c.number = PlaceData(g, std::string(64, '\0'));
    c.outBuffer = PlaceData(g, std::string(kOutBufferSize, '\0'));
}

void EmitStart(Generator& g) {
    Encoder& e = g.e;
    Put(e, op::Xor, false, BP, BP);  // 0 ends the chain of frames
    if (e.x64)
        PutBytes(e, "lea rbx, [data]", {0x48, 0x8D, 0x1D, 0, 0, 0, 0});
    else
        PutBytes(e, "mov ebx, data", {0xBB, 0, 0, 0, 0});
    g.image.dataBaseAt = Offset(e) - 4;
    Put(e, op::Load, e.x64, AX, SP);
    MoveNumber(e, CX, static_cast<int32_t>(kStackReserve - 0x20000));  // the system needs the rest of the stack
    Put(e, op::Sub, e.x64, AX, CX);
    Put(e, op::Store, e.x64, AX, Cell(g.cells.stackLimit));
    CallImport(g, Import::GetStdHandle, {{Arg::Kind::Number, static_cast<uint32_t>(-11)}});
    Put(e, op::Store, e.x64, AX, Cell(g.cells.handle));
    const auto setCounts = [&](const std::deque<Symbol>& symbols) {
        for (const Symbol& symbol : symbols)
            if (symbol.isArray && symbol.storage == Storage::Data)
                StoreNumber(g, static_cast<uint32_t>(symbol.offset), static_cast<int32_t>(symbol.count));
    };
    setCounts(g.program.moduleSymbols);
    for (const Procedure& procedure : g.program.procedures) setCounts(procedure.symbols);
    if (g.debug && g.profile.debugMap == DebugMap::PbdTraps) EmitTrapHandler(g);
    Call(e, g.program.main->label);
    Put(e, op::Store, false, AX, Cell(g.cells.exitCode));
    g.run.flush = NewLabel(e, "rt_flush");
    Call(e, g.run.flush);
    CallImport(g, Import::ExitProcess, {{Arg::Kind::Value, g.cells.exitCode}});
}

void EmitRuntime(Generator& g) {
    Encoder& e = g.e;
    EmitOutput(g);
    EmitPrintNumber(g, g.run.printLong, "rt_print_long", Type::Long, g.cells.longFormat);
    EmitPrintNumber(g, g.run.printQuad, "rt_print_quad", Type::Quad, g.cells.quadFormat);
    EmitPrintNumber(g, g.run.printReal, "rt_print_double", Type::Double, g.cells.realFormat);
    int byZero = -1;
    EmitError(g, byZero, "rt_division_by_zero", 0);
    EmitError(g, g.run.badIndex, "rt_bad_index", 1);
    EmitError(g, g.run.noStack, "rt_no_stack", 2);
    EmitDivision(g, g.run.divide, "rt_divide", false, false, byZero);
    EmitDivision(g, g.run.remainder, "rt_remainder", false, true, byZero);
    if (e.x64) {
        EmitDivision(g, g.run.divideQuad, "rt_divide_quad", true, false, byZero);
        EmitDivision(g, g.run.remainderQuad, "rt_remainder_quad", true, true, byZero);
    } else {
        EmitPairDivision(g, byZero);
    }
    EmitRealFunction(g, g.run.power, "rt_power", Import::Pow, true);
    EmitRealFunction(g, g.run.floor, "rt_floor", Import::Floor, false);
    Begin(g, g.run.sleep, "rt_sleep");  // sleeps eax milliseconds; not at all for negative values
    const int wait = NewLabel(e);
    Put(e, op::Test, false, AX, AX);
    JumpIf(e, Cond::GreaterEq, wait);
    Put(e, op::Xor, false, AX, AX);
    Bind(e, wait);
    Put(e, op::Store, false, AX, Cell(g.cells.left));
    Call(e, g.run.flush);
    CallImport(g, Import::Sleep, {{Arg::Kind::Value, g.cells.left}});
    Ret(e);
}

}  // namespace standin
