// Writes the bytes of each instruction and, when a listing is wanted, its text.
#include "encoder.h"

#include <algorithm>
#include <array>

namespace standin {
namespace {

constexpr uint8_t kTrap = 0xCC;
constexpr std::array<std::string_view, 16> kConditions = {"o", "no", "b", "ae", "e", "ne", "be", "a",
                                                          "s", "ns", "p", "np", "l", "ge", "le", "g"};

std::string RegName(const Encoder& e, Reg reg, bool wide) {
    constexpr std::array<std::string_view, 8> kNames = {"ax", "cx", "dx", "bx", "sp", "bp", "si", "di"};
    if (reg >= R8) return "r" + std::to_string(reg) + (wide ? "" : "d");
    return (wide && e.x64 ? "r" : "e") + std::string(kNames[reg]);
}

std::string Operand(const Encoder& e, Reg reg, bool wide, bool xmm) {
    return xmm ? "xmm" + std::to_string(reg) : RegName(e, reg, wide);
}

std::string MemText(const Encoder& e, Mem mem) {
    std::string text = "[" + RegName(e, mem.base, e.x64);
    if (mem.disp != 0) text += (mem.disp < 0 ? "-" : "+") + std::to_string(std::abs(static_cast<int64_t>(mem.disp)));
    return text + "]";
}

void Note(Encoder& e, std::string text) {
    if (e.listing) e.lines.push_back({Offset(e), std::move(text), false});
}

void Byte(Encoder& e, uint8_t value) { e.code.push_back(value); }

void Number32(Encoder& e, int64_t value) {
    for (int i = 0; i < 4; ++i) Byte(e, static_cast<uint8_t>(value >> (8 * i)));
}

void SetNumber32(Encoder& e, uint32_t at, int64_t value) {
    for (uint32_t i = 0; i < 4; ++i) e.code[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

void Head(Encoder& e, const Instr& instr, bool wide, uint8_t reg, uint8_t rm) {
    if (instr.prefix) Byte(e, instr.prefix);
    const int rex = 0x40 | (wide ? 8 : 0) | (reg >= 8 ? 4 : 0) | (rm >= 8 ? 1 : 0);
    if (rex != 0x40) Byte(e, static_cast<uint8_t>(rex));
    if (instr.escape) Byte(e, 0x0F);
    Byte(e, instr.opcode);
}

void ModRm(Encoder& e, int mod, uint8_t reg, uint8_t rm) {
    Byte(e, static_cast<uint8_t>(mod << 6 | (reg & 7) << 3 | (rm & 7)));
}

void Address(Encoder& e, uint8_t reg, Mem mem) {
    const bool none = mem.disp == 0 && mem.base != BP;
    const bool small = mem.disp == static_cast<int8_t>(mem.disp);
    ModRm(e, none ? 0 : small ? 1 : 2, reg, mem.base);
    if (mem.base == SP) Byte(e, 0x24);
    if (!none && small)
        Byte(e, static_cast<uint8_t>(mem.disp));
    else if (!none)
        Number32(e, mem.disp);
}

std::string InstrText(const Encoder& e, const Instr& instr, bool wide, Reg reg, const std::string& rm) {
    if (!e.listing) return {};
    if (instr.extension >= 0) return std::string(instr.name) + " " + rm;
    const std::string first = Operand(e, reg, wide, instr.xmmReg);
    return std::string(instr.name) + " " + (instr.store ? rm + ", " + first : first + ", " + rm);
}

uint8_t RegField(const Instr& instr, Reg reg) {
    return instr.extension >= 0 ? static_cast<uint8_t>(instr.extension) : static_cast<uint8_t>(reg);
}

// Returns a value to XOR with, so that neither part contains the trap byte; 0 when the value does not contain it.
uint32_t SplitKey(uint32_t value) {
    uint32_t key = 0;
    for (int i = 0; i < 4; ++i)
        if (static_cast<uint8_t>(value >> (8 * i)) == kTrap) key |= 1u << (8 * i);
    return key;
}

std::string LabelText(const Encoder& e, int label) {
    const std::string& name = e.labels[static_cast<size_t>(label)].name;
    return name.empty() ? "L" + std::to_string(label) : name;
}

// Emits a jump or call with the given opcode bytes.
void Branch(Encoder& e, std::initializer_list<uint8_t> opcode, std::string_view name, int label) {
    const int64_t target = e.labels[static_cast<size_t>(label)].offset;
    const auto distance = [&] { return target - static_cast<int64_t>(e.code.size() + opcode.size() + 4); };
    if (target >= 0 && e.traps)
        while (HasTrapByte(static_cast<uint32_t>(distance()))) Nop(e);
    if (e.listing) Note(e, std::string(name) + " " + LabelText(e, label));
    const int64_t value = target >= 0 ? distance() : 0;
    for (const uint8_t byte : opcode) Byte(e, byte);
    if (target < 0) e.labels[static_cast<size_t>(label)].pending.push_back(Offset(e));
    Number32(e, value);
}

}  // namespace

bool HasTrapByte(uint32_t value) { return SplitKey(value) != 0; }

uint32_t Offset(const Encoder& e) { return static_cast<uint32_t>(e.code.size()); }

int NewLabel(Encoder& e, std::string name) {
    e.labels.push_back({-1, std::move(name), {}});
    return static_cast<int>(e.labels.size()) - 1;
}

void Bind(Encoder& e, int label) {
    Encoder::Label& one = e.labels[static_cast<size_t>(label)];
    const auto distance = [&e](uint32_t at) { return static_cast<int64_t>(e.code.size()) - at - 4; };
    const auto spoiled = [&](uint32_t at) { return HasTrapByte(static_cast<uint32_t>(distance(at))); };
    while (e.traps && std::any_of(one.pending.begin(), one.pending.end(), spoiled)) Nop(e);
    for (const uint32_t at : one.pending) SetNumber32(e, at, distance(at));
    one.pending.clear();
    one.offset = static_cast<int64_t>(e.code.size());
    if (e.listing) e.lines.push_back({Offset(e), LabelText(e, label), true});
}

void Put(Encoder& e, const Instr& instr, bool wide, Reg reg, Reg rm) {
    Note(e, InstrText(e, instr, wide, reg, Operand(e, rm, wide && instr.opcode != 0x63, instr.xmmRm)));
    Head(e, instr, wide, RegField(instr, reg), rm);
    ModRm(e, 3, RegField(instr, reg), rm);
}

void Put(Encoder& e, const Instr& instr, bool wide, Reg reg, Mem mem) {
    Note(e, InstrText(e, instr, wide, reg, MemText(e, mem)));
    Head(e, instr, wide, RegField(instr, reg), mem.base);
    Address(e, RegField(instr, reg), mem);
}

void PutOne(Encoder& e, const Instr& instr, bool wide, Reg rm) { Put(e, instr, wide, AX, rm); }

void PutOne(Encoder& e, const Instr& instr, Mem mem) { Put(e, instr, false, AX, mem); }

void PutBytes(Encoder& e, std::string_view text, std::initializer_list<uint8_t> bytes) {
    Note(e, std::string(text));
    for (const uint8_t byte : bytes) Byte(e, byte);
}

void MoveNumber(Encoder& e, Reg reg, int32_t value) {
    const uint32_t bits = static_cast<uint32_t>(value);
    const uint32_t key = e.traps ? SplitKey(bits) : 0;
    const std::string name = RegName(e, reg, false);
    Note(e, "mov " + name + ", " + std::to_string(static_cast<int32_t>(bits ^ key)));
    if (reg >= R8) Byte(e, 0x41);
    Byte(e, static_cast<uint8_t>(0xB8 + (reg & 7)));
    Number32(e, bits ^ key);
    if (key == 0) return;
    Note(e, "xor " + name + ", " + std::to_string(key));
    Byte(e, 0x81);
    ModRm(e, 3, 6, reg);
    Number32(e, key);
}

void MoveNumber64(Encoder& e, int64_t value) {
    Note(e, "mov rax, " + std::to_string(value));
    Byte(e, 0x48);
    Byte(e, 0xB8);
    for (int i = 0; i < 8; ++i) Byte(e, static_cast<uint8_t>(value >> (8 * i)));
}

void CompareByte(Encoder& e, bool wide, Reg reg, int8_t value) {
    Note(e, "cmp " + RegName(e, reg, wide) + ", " + std::to_string(value));
    if (wide) Byte(e, 0x48);
    Byte(e, 0x83);
    ModRm(e, 3, 7, reg);
    Byte(e, static_cast<uint8_t>(value));
}

void AddStack(Encoder& e, int32_t bytes) {
    if (bytes == 0) return;
    if (HasTrapByte(static_cast<uint32_t>(bytes)) && e.traps) {
        AddStack(e, 8);
        bytes -= 8;
    }
    Note(e, (bytes < 0 ? "sub " : "add ") + RegName(e, SP, e.x64) + ", " + std::to_string(std::abs(bytes)));
    if (e.x64) Byte(e, 0x48);
    const int32_t amount = std::abs(bytes);
    Byte(e, amount < 128 ? 0x83 : 0x81);
    ModRm(e, 3, bytes < 0 ? 5 : 0, SP);
    if (amount < 128)
        Byte(e, static_cast<uint8_t>(amount));
    else
        Number32(e, amount);
}

void ShiftRightSigned(Encoder& e, Reg reg, uint8_t bits) {
    Note(e, "sar " + RegName(e, reg, false) + ", " + std::to_string(bits));
    Byte(e, 0xC1);
    ModRm(e, 3, 7, reg);
    Byte(e, bits);
}

void ShiftRight(Encoder& e, Reg reg, uint8_t bits) {
    Note(e, "shr " + RegName(e, reg, false) + ", " + std::to_string(bits));
    Byte(e, 0xC1);
    ModRm(e, 3, 5, reg);
    Byte(e, bits);
}

void PushReg(Encoder& e, Reg reg) {
    Note(e, "push " + RegName(e, reg, true));
    Byte(e, static_cast<uint8_t>(0x50 + reg));
}

void PopReg(Encoder& e, Reg reg) {
    Note(e, "pop " + RegName(e, reg, true));
    Byte(e, static_cast<uint8_t>(0x58 + reg));
}

void SetIf(Encoder& e, Cond cond) {
    PutBytes(e, "set" + std::string(kConditions[static_cast<uint8_t>(cond)]) + " al",
             {0x0F, static_cast<uint8_t>(0x90 + static_cast<uint8_t>(cond)), 0xC0});
    PutBytes(e, "movzx eax, al", {0x0F, 0xB6, 0xC0});
    PutOne(e, op::Neg, false, AX);
}

void CompareReal(Encoder& e, Reg left, Reg right, uint8_t predicate) {
    Note(e, "cmpsd xmm" + std::to_string(left) + ", xmm" + std::to_string(right) + ", " + std::to_string(predicate));
    for (const uint8_t byte : {uint8_t{0xF2}, uint8_t{0x0F}, uint8_t{0xC2}}) Byte(e, byte);
    ModRm(e, 3, left, right);
    Byte(e, predicate);
}

void ElementAddress(Encoder& e, int size) {
    Note(e, "lea " + RegName(e, CX, e.x64) + ", [" + RegName(e, CX, e.x64) + "+" + RegName(e, AX, e.x64) + "*" +
                std::to_string(size) + "+8]");
    if (e.x64) Byte(e, 0x48);
    for (const uint8_t byte : {uint8_t{0x8D}, uint8_t{0x4C}, static_cast<uint8_t>(size == 4 ? 0x81 : 0xC1), uint8_t{8}})
        Byte(e, byte);
}

void Widen(Encoder& e, bool wide) {
    if (wide)
        PutBytes(e, "cqo", {0x48, 0x99});
    else
        PutBytes(e, "cdq", {0x99});
}

void JumpIf(Encoder& e, Cond cond, int label) {
    const auto number = static_cast<uint8_t>(cond);
    Branch(e, {0x0F, static_cast<uint8_t>(0x80 + number)}, "j" + std::string(kConditions[number]), label);
}

void Jump(Encoder& e, int label) { Branch(e, {0xE9}, "jmp", label); }
void Call(Encoder& e, int label) { Branch(e, {0xE8}, "call", label); }
void Ret(Encoder& e) { PutBytes(e, "ret", {0xC3}); }
void Leave(Encoder& e) { PutBytes(e, "leave", {0xC9}); }
void Nop(Encoder& e) { PutBytes(e, "nop", {0x90}); }

void Trap(Encoder& e) {
    if (e.lastTrapEnd == static_cast<int64_t>(e.code.size())) Nop(e);
    PutBytes(e, "int3", {kTrap});
    e.lastTrapEnd = static_cast<int64_t>(e.code.size());
}

}  // namespace standin
