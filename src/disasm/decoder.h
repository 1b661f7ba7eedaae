// Decodes and formats single instructions with Zydis. Only disasm/ includes this header. Pure; any bytes are legal
// input.
#pragma once

#include "disasm/disasm.h"

#include <Zydis/Zydis.h>

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

struct Decoded {
    ZydisDecodedInstruction instruction;
    ZydisDecodedOperand operands[ZYDIS_MAX_OPERAND_COUNT];  // the visible operands
};

struct Decoder {
    ZydisDecoder decoder;
    ZydisFormatter formatter;
    ZydisFormatter sizing;            // writes the size of memory operands: "inc dword ptr [rbx]"
    ZydisFormatterFunc printAddress;  // the formatter's original procedure for an absolute address
    bool x64 = true;
};
void DecoderInit(Decoder& decoder, bool x64);

// Returns false when no instruction begins there or `bytes` end within it.
bool DecodeOne(const Decoder& decoder, std::span<const std::uint8_t> bytes, Decoded* decoded);
// Gives the target of a direct call or jump. Returns false for any other instruction.
bool DirectTarget(const Decoded& decoded, std::uint64_t address, std::uint64_t* target);

// Characters that suffice for any instruction with any name in it.
inline constexpr std::size_t kInstructionText = 512;
inline constexpr std::size_t kLongestName = 200;  // a longer symbol name is cut
using InstructionText = std::array<char, kInstructionText>;
// Returns the instruction's text, which is stored in `buffer`. `symbols` may be empty.
std::string_view FormatDecoded(const Decoder& decoder, const Decoded& decoded, std::uint64_t address,
                               const DisasmSymbols& symbols, InstructionText& buffer);
// Returns "db 0FFh", which is stored in `buffer`.
std::string_view FormatByte(std::uint8_t byte, InstructionText& buffer);
