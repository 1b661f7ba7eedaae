#include "files/source_text.h"

#include "files/break_kinds.h"
#include "files/utf16.h"

namespace {

constexpr std::size_t kSniffed = 64 << 10;  // bytes that are looked at for UTF-16

// False when the bytes are no UTF-16.
bool TakeUtf16(std::string_view bytes, SourceText* text, SourceCode code) {
    const Utf16Kind kind = Utf16KindAs(bytes.substr(0, kSniffed), code);
    if (kind.order == Utf16Order::None || !AppendUtf16AsUtf8(bytes.substr(kind.mark ? 2 : 0), kind.order, text->utf8)) {
        text->utf8.clear();
        return false;
    }
    text->form.utf16 = kind.order;
    text->form.mark = kind.mark;
    text->lineEnding = DetectLineEnding(text->utf8.data(), text->utf8.size());
    return true;
}

}  // namespace

bool DecodeSource(std::string_view bytes, const AnsiDecoder& ansi, SourceText* text, SourceCode code) {
    *text = {};
    text->lineEnding = DetectLineEnding(bytes.data(), bytes.size());
    if (!TakeUtf16(bytes, text, code)) {
        if (IsUtf16(code)) return false;
        text->asItIs =
            code == SourceCode::Utf8 || (code == SourceCode::Guess && IsValidUtf8Bytes(bytes.data(), bytes.size()));
        if (!text->asItIs) {
            bool exact = true;
            text->encoding = TextEncoding::Ansi;
            if (!ansi(bytes, &text->utf8, &exact)) return false;
            text->form.inexact = !exact;
        }
    }
    const std::string_view shown = text->asItIs ? bytes : std::string_view{text->utf8};
    text->form.keepBreaks = HasNul(shown);
    BreakKinds kinds;
    kinds.Look(shown);
    text->form.mixedBreaks = kinds.Mixed();
    return true;
}
