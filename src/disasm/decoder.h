// One instruction at a time through Zydis, for disasm/ alone. Pure; any bytes are legal input.
#pragma once

#include "disasm/disasm.h"

#include <Zydis/Zydis.h>

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

struct Decoded {
    ZydisDecodedInstruction instruction;
    ZydisDecodedOperand operands[ZYDIS_MAX_OPERAND_COUNT];  // the visible ones
};

struct Decoder {
    ZydisDecoder decoder;
    ZydisFormatter formatter;
    ZydisFormatter sizing;            // writes the size of memory operands: "inc dword ptr [rbx]"
    ZydisFormatterFunc printAddress;  // how the formatter itself writes an absolute address
    bool x64 = true;
};
void DecoderInit(Decoder& decoder, bool x64);

// False: no instruction begins there, or `bytes` end within it.
bool DecodeOne(const Decoder& decoder, std::span<const std::uint8_t> bytes, Decoded* decoded);
// Where a direct call or jump goes. False: no direct one.
bool DirectTarget(const Decoded& decoded, std::uint64_t address, std::uint64_t* target);

// Long enough for any instruction with any name that is printed in it.
inline constexpr std::size_t kInstructionText = 512;
inline constexpr std::size_t kLongestName = 200;  // more of a symbol is not printed
using InstructionText = std::array<char, kInstructionText>;
// The instruction's text, in `buffer`. `symbols` may be empty.
std::string_view FormatDecoded(const Decoder& decoder, const Decoded& decoded, std::uint64_t address,
                               const DisasmSymbols& symbols, InstructionText& buffer);
// "db 0FFh", in `buffer`.
std::string_view FormatByte(std::uint8_t byte, InstructionText& buffer);
