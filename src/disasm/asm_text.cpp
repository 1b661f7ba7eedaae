#include "disasm/asm_text.h"

#include "output/output_queue.h"

#include <algorithm>

namespace {

// Number of bytes of the first line of `text`, its line break included. A line too long for the pane is cut between
// characters.
std::size_t FirstLineBytes(std::string_view text) {
    std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos) end = text.size();
    if (end > kMaxOutputLine) {
        end = kMaxOutputLine;
        while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80 && end > kMaxOutputLine - 4) --end;
        return end;
    }
    return std::min(text.size(), end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
}

}  // namespace

std::string AsmPartTake(AsmPart& part, std::string_view text) {
    std::string fitting;
    while (!text.empty() && !part.full) {
        const std::size_t size = FirstLineBytes(text);
        const bool cut = text[size - 1] != '\n' && text[size - 1] != '\r' && size < text.size();
        part.full = part.lines >= kAsmPartLines || part.bytes + size > kAsmPartBytes;
        if (part.full) {
            fitting += "... the rest is left out here ...\r\n";
            break;
        }
        fitting.append(text.substr(0, size)).append(cut ? "\r\n" : "");
        ++part.lines;
        part.bytes += size;
        text.remove_prefix(size);
    }
    return fitting;
}

int AsmLinesIn(std::string_view text) {
    int lines = 0;
    for (; !text.empty(); text.remove_prefix(FirstLineBytes(text))) ++lines;
    return lines;
}

std::string_view AsmTakePiece(std::string_view* text, std::size_t bytes) {
    std::size_t size = std::min(text->size(), bytes);
    if (size < text->size()) {
        std::size_t end = text->find_last_of('\n', size);
        if (end == std::string_view::npos) end = text->find('\n', size);
        size = end == std::string_view::npos ? text->size() : end + 1;
    }
    const std::string_view piece = text->substr(0, size);
    text->remove_prefix(size);
    return piece;
}
