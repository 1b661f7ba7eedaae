// Puts the text of the ASM pane together, part by part and within the limits of a part (disasm/asm_text.h). Used on the
// feed's worker. Pure.
#pragma once

#include "disasm/asm_text.h"

#include <functional>
#include <string_view>

struct AsmWriter {
    std::function<void(std::string_view text)> deliver;  // takes a piece of UTF-8 text
    std::function<bool()> cancelled;
    int lines = 0;  // delivered so far
    AsmPart part;
};

// Text outside of any part.
void AsmWrite(AsmWriter& writer, std::string_view text);
void AsmWriteHeading(AsmWriter& writer, std::string_view heading);  // begins a part
// Text of the part. Returns false when no more text is wanted.
bool AsmWritePart(AsmWriter& writer, std::string_view text);
// A part of its own. Null: there is no listing, and a line says so.
void AsmWriteListing(AsmWriter& writer, const std::string_view* listing);
