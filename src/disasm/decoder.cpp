#include "disasm/decoder.h"

#include <Zydis/Internal/String.h>

#include <algorithm>
#include <cstdio>

namespace {

struct FormatContext {
    const Decoder* decoder;
    const DisasmSymbols* symbols;
};

ZyanStringView ViewOf(std::string_view text) {
    ZyanStringView view = {};
    view.string.vector.size = text.size() + 1;  // Zydis counts the terminator
    view.string.vector.capacity = text.size() + 1;
    view.string.vector.element_size = 1;
    view.string.vector.data = const_cast<char*>(text.data());  // Zydis only reads it
    return view;
}

// Replaces the formatter's procedure for absolute addresses: branch targets, [rip+n], [n].
ZyanStatus PrintAddress(const ZydisFormatter* formatter, ZydisFormatterBuffer* buffer, ZydisFormatterContext* context) {
    const auto* own = static_cast<const FormatContext*>(context->user_data);
    ZyanU64 address = 0;
    if (*own->symbols && ZYAN_SUCCESS(ZydisCalcAbsoluteAddress(context->instruction, context->operand,
                                                               context->runtime_address, &address))) {
        std::string name = (*own->symbols)(address);
        if (!name.empty()) {
            name.resize(std::min(name.size(), kLongestName));
            ZyanString* text = nullptr;
            ZYAN_CHECK(ZydisFormatterBufferAppend(buffer, ZYDIS_TOKEN_SYMBOL));
            ZYAN_CHECK(ZydisFormatterBufferGetString(buffer, &text));
            const ZyanStringView view = ViewOf(name);
            return ZydisStringAppend(text, &view);
        }
    }
    return own->decoder->printAddress(formatter, buffer, context);
}

void FormatterInit(ZydisFormatter& formatter, ZydisFormatterFunc* replaced) {
    ZydisFormatterInit(&formatter, ZYDIS_FORMATTER_STYLE_INTEL);
    for (const ZydisFormatterProperty padding : {ZYDIS_FORMATTER_PROP_ADDR_PADDING_ABSOLUTE,
                                                 ZYDIS_FORMATTER_PROP_DISP_PADDING, ZYDIS_FORMATTER_PROP_IMM_PADDING})
        ZydisFormatterSetProperty(&formatter, padding, ZYDIS_PADDING_DISABLED);
    const void* callback = reinterpret_cast<const void*>(&PrintAddress);
    ZydisFormatterSetHook(&formatter, ZYDIS_FORMATTER_FUNC_PRINT_ADDRESS_ABS, &callback);
    *replaced = reinterpret_cast<ZydisFormatterFunc>(const_cast<void*>(callback));
}

// Whether the size of a memory operand must be written. A register operand of the same size shows it, and the operand
// of a call or jump is always an address. Without this rule Zydis writes "inc [rbx]" without a size.
bool NeedsSize(const Decoded& decoded) {
    if (decoded.instruction.meta.branch_type != ZYDIS_BRANCH_TYPE_NONE) return false;
    const std::span operands(decoded.operands, decoded.instruction.operand_count_visible);
    const auto memory = std::find_if(
        operands.begin(), operands.end(),
        [](const ZydisDecodedOperand& operand) { return operand.type == ZYDIS_OPERAND_TYPE_MEMORY; });
    return memory != operands.end() &&
           std::none_of(operands.begin(), operands.end(), [memory](const ZydisDecodedOperand& operand) {
               return operand.type == ZYDIS_OPERAND_TYPE_REGISTER && operand.size == memory->size;
           });
}

}  // namespace

void DecoderInit(Decoder& decoder, bool x64) {
    decoder.x64 = x64;
    ZydisDecoderInit(&decoder.decoder, x64 ? ZYDIS_MACHINE_MODE_LONG_64 : ZYDIS_MACHINE_MODE_LEGACY_32,
                     x64 ? ZYDIS_STACK_WIDTH_64 : ZYDIS_STACK_WIDTH_32);
    FormatterInit(decoder.formatter, &decoder.printAddress);
    FormatterInit(decoder.sizing, &decoder.printAddress);
    ZydisFormatterSetProperty(&decoder.sizing, ZYDIS_FORMATTER_PROP_FORCE_SIZE, ZYAN_TRUE);
}

bool DecodeOne(const Decoder& decoder, std::span<const std::uint8_t> bytes, Decoded* decoded) {
    ZydisDecoderContext context;
    return ZYAN_SUCCESS(ZydisDecoderDecodeInstruction(&decoder.decoder, &context, bytes.data(), bytes.size(),
                                                      &decoded->instruction)) &&
           ZYAN_SUCCESS(ZydisDecoderDecodeOperands(&decoder.decoder, &context, &decoded->instruction, decoded->operands,
                                                   decoded->instruction.operand_count_visible));
}

bool DirectTarget(const Decoded& decoded, std::uint64_t address, std::uint64_t* target) {
    const ZydisDecodedInstruction& instruction = decoded.instruction;
    for (std::size_t i = 0; i < instruction.operand_count_visible; ++i) {
        const ZydisDecodedOperand& operand = decoded.operands[i];
        if (operand.type == ZYDIS_OPERAND_TYPE_IMMEDIATE && operand.imm.is_relative)
            return ZYAN_SUCCESS(ZydisCalcAbsoluteAddress(&instruction, &operand, address, target));
    }
    return false;
}

std::string_view FormatDecoded(const Decoder& decoder, const Decoded& decoded, std::uint64_t address,
                               const DisasmSymbols& symbols, InstructionText& buffer) {
    FormatContext context = {.decoder = &decoder, .symbols = &symbols};
    const ZydisFormatter& formatter = NeedsSize(decoded) ? decoder.sizing : decoder.formatter;
    buffer[0] = '\0';
    if (!ZYAN_SUCCESS(ZydisFormatterFormatInstruction(&formatter, &decoded.instruction, decoded.operands,
                                                      decoded.instruction.operand_count_visible, buffer.data(),
                                                      buffer.size(), address, &context)))
        return "?";
    return buffer.data();
}

std::string_view FormatByte(std::uint8_t byte, InstructionText& buffer) {
    // The "0" is needed because a number must not begin with a letter.
    std::snprintf(buffer.data(), buffer.size(), byte >= 0xA0 ? "db 0%02Xh" : "db %02Xh", byte);
    return buffer.data();
}
