// Machine code and compilers' listings as assembly text (Intel syntax). Pure; any bytes are legal input; a session or a
// window is not known here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// One decoded instruction, or one byte that is none.
struct DisasmInstruction {
    std::uint64_t address = 0;
    std::uint8_t length = 1;
    bool decoded = false;  // false: shown as "db 0FFh", skipped by one
    bool isCall = false;
    bool isBranch = false;  // jump or call with a target that is known: `target`
    std::uint64_t target = 0;
    std::string text;  // "mov rax, [rbp-0x10]"; names of symbols in place of addresses where known
};

// Name of an address, or empty. Asked for branch targets and for memory operands relative to the instruction pointer.
using DisasmSymbols = std::function<std::string(std::uint64_t address)>;

// Decodes instructions from `bytes`, which stand at `address`. At most `limit`.
std::vector<DisasmInstruction> DisasmRange(std::span<const std::uint8_t> bytes, std::uint64_t address, bool x64,
                                           const DisasmSymbols& symbols, std::size_t limit);

// Where step-into goes: the address that a CALL's immediate operand names, or 0 for any other instruction.
std::uint64_t DisasmCallTarget(std::span<const std::uint8_t> bytes, std::uint64_t address, bool x64);
