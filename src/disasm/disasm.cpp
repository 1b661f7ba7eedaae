// Disassembles single ranges of code. disasm/renderer.cpp renders whole files.
#include "disasm/disasm.h"

#include "disasm/decoder.h"

std::vector<DisasmInstruction> DisasmRange(std::span<const std::uint8_t> bytes, std::uint64_t address, bool x64,
                                           const DisasmSymbols& symbols, std::size_t limit) {
    Decoder decoder;
    DecoderInit(decoder, x64);
    std::vector<DisasmInstruction> result;
    Decoded decoded;
    InstructionText text;
    while (!bytes.empty() && result.size() < limit) {
        DisasmInstruction one;
        one.address = address;
        one.decoded = DecodeOne(decoder, bytes, &decoded);
        if (one.decoded) {
            one.length = decoded.instruction.length;
            one.isCall = decoded.instruction.meta.category == ZYDIS_CATEGORY_CALL;
            one.isBranch = DirectTarget(decoded, address, &one.target);
            one.text = FormatDecoded(decoder, decoded, address, symbols, text);
        } else {
            one.text = FormatByte(bytes[0], text);
        }
        bytes = bytes.subspan(one.length);
        address += one.length;
        result.push_back(std::move(one));
    }
    return result;
}

std::uint64_t DisasmCallTarget(std::span<const std::uint8_t> bytes, std::uint64_t address, bool x64) {
    Decoder decoder;
    DecoderInit(decoder, x64);
    Decoded decoded;
    std::uint64_t target = 0;
    const bool isCall = DecodeOne(decoder, bytes, &decoded) && decoded.instruction.mnemonic == ZYDIS_MNEMONIC_CALL;
    return isCall && DirectTarget(decoded, address, &target) ? target : 0;
}
