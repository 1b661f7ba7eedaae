// Reads a UTF-8 file in pieces that end between two characters. Pure.
#include "documents/text_pieces.h"

#include "base/utf8.h"
#include "files/utf16.h"

#include <algorithm>
#include <memory>

void FirstBreak::Look(std::string_view piece) {
    if (found_ || piece.empty()) return;
    if (pendingCr_) {
        ending_ = piece.front() == '\n' ? LineEnding::CrLf : LineEnding::Cr;
        found_ = true;
        return;
    }
    const std::size_t at = piece.find_first_of("\r\n");
    if (at == std::string_view::npos) return;
    ending_ = DetectLineEnding(piece.data() + at, piece.size() - at);
    pendingCr_ = piece[at] == '\r' && at + 1 == piece.size();
    found_ = !pendingCr_;
}

PiecesResult MoveTextPieces(const TextSource& source) {
    PiecesResult result;
    const auto piece = std::make_unique<char[]>(kTextPiece + 3);
    std::size_t kept = 0;  // bytes of an unfinished character, at the start of the piece
    FirstBreak lineBreak;
    for (bool atEnd = false; !atEnd;) {
        const std::optional<std::size_t> read = source.read(piece.get() + kept, kTextPiece);
        if (!read) return result;
        atEnd = *read == 0;
        const std::string_view bytes{piece.get(), kept + *read};
        const std::string_view whole = atEnd ? bytes : bytes.substr(0, WholeCharacters(bytes));
        const bool isUtf16 = result.length == 0 && Utf16KindOf(whole).order != Utf16Order::None;
        if (isUtf16 || !IsValidUtf8Bytes(whole.data(), whole.size())) {
            result.end = PiecesEnd::NotUtf8;
            return result;
        }
        lineBreak.Look(whole);
        result.holdsNul = result.holdsNul || whole.find('\0') != std::string_view::npos;
        if (!whole.empty()) source.append(whole);
        result.length += whole.size();
        kept = bytes.size() - whole.size();
        std::copy_n(bytes.data() + whole.size(), kept, piece.get());
    }
    result.end = PiecesEnd::Done;
    result.lineEnding = lineBreak.Ending();
    return result;
}
