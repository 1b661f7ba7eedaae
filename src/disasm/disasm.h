// Disassembles ranges of machine code (Intel syntax). Pure; any bytes are legal input. Knows no debugger and no window.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// One decoded instruction, or one byte that could not be decoded.
struct DisasmInstruction {
    std::uint64_t address = 0;
    std::uint8_t length = 1;
    bool decoded = false;  // false: one byte, shown as "db 0FFh"
    bool isCall = false;
    bool isBranch = false;  // a jump or call whose target is known
    std::uint64_t target = 0;
    std::string text;  // "mov rax, [rbp-0x10]", with names of symbols in place of known addresses
};

// Returns the name of an address, or empty text. Called for branch targets and for memory operands relative to the
// instruction pointer.
using DisasmSymbols = std::function<std::string(std::uint64_t address)>;

// Decodes at most `limit` instructions from `bytes`, which are at `address` in the program.
std::vector<DisasmInstruction> DisasmRange(std::span<const std::uint8_t> bytes, std::uint64_t address, bool x64,
                                           const DisasmSymbols& symbols, std::size_t limit);

// The target of a step into: the address in the immediate operand of a CALL, or 0 for any other instruction.
std::uint64_t DisasmCallTarget(std::span<const std::uint8_t> bytes, std::uint64_t address, bool x64);
