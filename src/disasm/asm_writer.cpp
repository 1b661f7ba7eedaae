#include "disasm/asm_writer.h"

static constexpr std::size_t kPieceBytes = 64 * 1024;

void AsmWrite(AsmWriter& writer, std::string_view text) {
    if (text.empty()) return;
    writer.lines += AsmLinesIn(text);
    writer.deliver(text);
}

void AsmWriteHeading(AsmWriter& writer, std::string_view heading) {
    writer.part = {};
    AsmWrite(writer, heading);
}

bool AsmWritePart(AsmWriter& writer, std::string_view text) {
    if (writer.part.full || writer.cancelled()) return false;
    AsmWrite(writer, AsmPartTake(writer.part, text));
    return !writer.part.full;
}

void AsmWriteListing(AsmWriter& writer, const std::string_view* listing) {
    if (listing == nullptr) {
        AsmWrite(writer,
                 "(No compiler ASMOUT file was found. Enable ASM output and use /ASMOUT:{asm} for "
                 "KeldorBasic/KVXA32.)\r\n");
        return;
    }
    AsmWriteHeading(writer, "");
    for (std::string_view rest = *listing; !rest.empty();)
        if (!AsmWritePart(writer, AsmTakePiece(&rest, kPieceBytes))) return;
}
