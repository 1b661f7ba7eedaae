// Kinds of instructions for steps.
#include "disasm/step_kind.h"

#include "disasm/decoder.h"

StepInstruction StepInstructionAt(std::span<const std::uint8_t> bytes, bool x64) {
    using Kind = StepInstruction::Kind;
    Decoder decoder;
    DecoderInit(decoder, x64);
    Decoded decoded;
    if (!DecodeOne(decoder, bytes, &decoded)) return {};
    const ZydisDecodedInstruction& found = decoded.instruction;
    constexpr ZydisInstructionAttributes kRepeats =
        ZYDIS_ATTRIB_HAS_REP | ZYDIS_ATTRIB_HAS_REPE | ZYDIS_ATTRIB_HAS_REPNE;
    StepInstruction result = {.kind = Kind::Plain, .length = found.length};
    if (found.meta.category == ZYDIS_CATEGORY_CALL)
        result.kind = Kind::Call;
    else if (found.meta.category == ZYDIS_CATEGORY_RET)
        result.kind = Kind::Return;
    else if ((found.attributes & kRepeats) != 0)
        result.kind = Kind::Repeat;
    else if (found.mnemonic == ZYDIS_MNEMONIC_PUSHF || found.mnemonic == ZYDIS_MNEMONIC_PUSHFD ||
             found.mnemonic == ZYDIS_MNEMONIC_PUSHFQ)
        result.kind = Kind::PushFlags;
    return result;
}
