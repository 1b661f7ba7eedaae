// Encodes x86 and x64 instructions. Nearly all encodings are the same on both. `wide` asks for 64-bit operands and is
// true on x64 only. Knows nothing of BASIC.
//
// Between BeginTraps and EndTraps only Trap() emits a byte 0xCC. Debuggers that read .pbd maps take each run of 0xCC
// for a statement, so an operand byte of that value would shift all later lines. Immediates with such a byte are split
// in two by XOR. Calls and jumps are moved by NOPs until their distance contains none.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

enum Reg : uint8_t { AX, CX, DX, BX, SP, BP, SI, DI, R8, R9 };
inline constexpr Reg X0 = AX, X1 = CX;  // xmm0 and xmm1 as operands of SSE instructions

struct Mem {
    Reg base;
    int32_t disp;
};

// One instruction with a register and a register-or-memory operand.
struct Instr {
    std::string_view name;
    uint8_t prefix;  // 0, or 66, F2
    bool escape;     // the byte 0F comes before the opcode
    uint8_t opcode;
    int8_t extension;  // -1: the register field holds an operand; 0..7: it is part of the opcode
    bool store;        // the register operand is the source, printed second
    bool xmmReg, xmmRm;
};

namespace op {
constexpr Instr Plain(std::string_view n, uint8_t o) { return {n, 0, false, o, -1, false, false, false}; }
constexpr Instr Group(std::string_view n, uint8_t o, int8_t x) { return {n, 0, false, o, x, false, false, false}; }
constexpr Instr Escaped(std::string_view n, uint8_t o) { return {n, 0, true, o, -1, false, false, false}; }
constexpr Instr Sse(std::string_view n, uint8_t p, uint8_t o, bool r, bool m) {
    return {n, p, true, o, -1, false, r, m};
}
inline constexpr Instr Load = Plain("mov", 0x8B), Lea = Plain("lea", 0x8D), Add = Plain("add", 0x03);
inline constexpr Instr Sub = Plain("sub", 0x2B), And = Plain("and", 0x23), Or = Plain("or", 0x0B);
inline constexpr Instr Xor = Plain("xor", 0x33), Cmp = Plain("cmp", 0x3B), Adc = Plain("adc", 0x13);
inline constexpr Instr Sbb = Plain("sbb", 0x1B), Test = Plain("test", 0x85), SignExtend = Plain("movsxd", 0x63);
inline constexpr Instr Store = {"mov", 0, false, 0x89, -1, true, false, false};
inline constexpr Instr StoreByte = {"mov byte", 0, false, 0x88, -1, true, false, false};
inline constexpr Instr Imul = Escaped("imul", 0xAF), LoadByte = Escaped("movzx", 0xB6);
inline constexpr Instr Neg = Group("neg", 0xF7, 3), Not = Group("not", 0xF7, 2), Mul = Group("mul", 0xF7, 4);
inline constexpr Instr Idiv = Group("idiv", 0xF7, 7), Div = Group("div", 0xF7, 6), Push = Group("push", 0xFF, 6);
inline constexpr Instr CallAt = Group("call", 0xFF, 2), Inc = Group("inc dword", 0xFF, 0);
inline constexpr Instr Fild = Group("fild qword", 0xDF, 5), Fistp = Group("fistp qword", 0xDF, 7);
inline constexpr Instr Fld = Group("fld qword", 0xDD, 0), Fstp = Group("fstp qword", 0xDD, 3);
inline constexpr Instr Fldcw = Group("fldcw", 0xD9, 5), Fnstcw = Group("fnstcw", 0xD9, 7);
inline constexpr Instr LoadReal = Sse("movsd", 0xF2, 0x10, true, true), AddReal = Sse("addsd", 0xF2, 0x58, true, true);
inline constexpr Instr StoreReal = {"movsd", 0xF2, true, 0x11, -1, true, true, true};
inline constexpr Instr SubReal = Sse("subsd", 0xF2, 0x5C, true, true), MulReal = Sse("mulsd", 0xF2, 0x59, true, true);
inline constexpr Instr DivReal = Sse("divsd", 0xF2, 0x5E, true, true), MaxReal = Sse("maxsd", 0xF2, 0x5F, true, true);
inline constexpr Instr RootReal = Sse("sqrtsd", 0xF2, 0x51, true, true), XorReal = Sse("xorpd", 0x66, 0x57, true, true);
inline constexpr Instr WholeToReal = Sse("cvtsi2sd", 0xF2, 0x2A, true, false);
inline constexpr Instr RealToWhole = Sse("cvtsd2si", 0xF2, 0x2D, false, true);
inline constexpr Instr MoveMask = {"movd", 0x66, true, 0x7E, -1, true, true, false};
}  // namespace op

enum class Cond : uint8_t {
    O = 0,
    Below = 2,
    AboveEq = 3,
    E = 4,
    NE = 5,
    Less = 0xC,
    GreaterEq = 0xD,
    LessEq = 0xE,
    Greater = 0xF
};

// One line of a listing: the instruction that starts at `offset`, or a label (no instruction) there.
struct ListingLine {
    uint32_t offset;
    std::string text;
    bool isLabel;
};

struct Encoder {
    bool x64 = true;
    bool listing = false;  // collect `lines`
    bool traps = false;    // between BeginTraps and EndTraps
    std::vector<uint8_t> code;
    std::vector<ListingLine> lines;

    struct Label {
        int64_t offset = -1;            // -1: not bound yet
        std::string name;               // name of a procedure or runtime routine, for the listing
        std::vector<uint32_t> pending;  // offsets of 32-bit distances that are filled in by Bind
    };
    std::vector<Label> labels;
    int64_t lastTrapEnd = -1;
};

bool HasTrapByte(uint32_t value);

uint32_t Offset(const Encoder& e);
int NewLabel(Encoder& e, std::string name = {});
void Bind(Encoder& e, int label);

void Put(Encoder& e, const Instr& instr, bool wide, Reg reg, Reg rm);
void Put(Encoder& e, const Instr& instr, bool wide, Reg reg, Mem mem);
void PutOne(Encoder& e, const Instr& instr, bool wide, Reg rm);  // neg, not, idiv ...
void PutOne(Encoder& e, const Instr& instr, Mem mem);            // push, call, fild ...
void PutBytes(Encoder& e, std::string_view text, std::initializer_list<uint8_t> bytes);

void MoveNumber(Encoder& e, Reg reg, int32_t value);  // the upper half of a 64-bit register becomes 0
void MoveNumber64(Encoder& e, int64_t value);         // into rax; x64 only, where there are no traps
void CompareByte(Encoder& e, bool wide, Reg reg, int8_t value);
void AddStack(Encoder& e, int32_t bytes);  // a positive value frees stack
void ShiftRightSigned(Encoder& e, Reg reg, uint8_t bits);
void ShiftRight(Encoder& e, Reg reg, uint8_t bits);
void PushReg(Encoder& e, Reg reg);
void PopReg(Encoder& e, Reg reg);
void SetIf(Encoder& e, Cond cond);                                     // eax = -1 when the condition holds, else 0
void CompareReal(Encoder& e, Reg left, Reg right, uint8_t predicate);  // `left` becomes all ones or zero
void ElementAddress(Encoder& e, int size);                             // cx = cx + ax * size + 8
void Widen(Encoder& e, bool wide);                                     // fills dx with the sign of ax
void JumpIf(Encoder& e, Cond cond, int label);
void Jump(Encoder& e, int label);
void Call(Encoder& e, int label);
void Ret(Encoder& e);
void Leave(Encoder& e);
void Nop(Encoder& e);
void Trap(Encoder& e);  // one 0xCC, separated from an earlier one

}  // namespace standin
