// Reads a file in pieces that end between two characters. Pure.
#include "documents/text_pieces.h"

#include "base/utf8.h"
#include "files/break_kinds.h"
#include "files/utf16.h"

#include <algorithm>
#include <memory>

namespace {

constexpr std::size_t kLookedAt = 64 << 10;  // bytes that tell UTF-16
constexpr std::size_t kMostKept = 3;         // bytes of an unfinished character

// Takes the bytes for UTF-16 or UTF-8, by the first piece or as the code says, and removes a byte-order mark of UTF-16.
void Guess(std::string_view& first, PiecesResult& result, SourceCode code) {
    const Utf16Kind kind = Utf16KindAs(first.substr(0, kLookedAt), code);
    result.form.utf16 = kind.order;
    result.form.mark = kind.mark;
    if (kind.mark) first.remove_prefix(2);
}

std::size_t WholePart(const TextSource& source, const PiecesResult& result, std::string_view bytes) {
    if (result.form.utf16 != Utf16Order::None) return WholeUtf16(bytes, result.form.utf16);
    return result.encoding == TextEncoding::Ansi ? source.wholeAnsi(bytes) : WholeCharacters(bytes);
}

// `*utf8` gets the piece as UTF-8: the bytes themselves or `buffer`. False when the bytes are not of that encoding.
bool Decode(const TextSource& source, PieceCode code, PiecesResult& result, std::string_view bytes, std::string& buffer,
            std::string_view* utf8) {
    *utf8 = bytes;
    if (result.form.utf16 == Utf16Order::None && result.encoding == TextEncoding::Utf8)
        return code == PieceCode::AnyUtf8 || IsValidUtf8Bytes(bytes.data(), bytes.size());
    buffer.clear();
    bool exact = true;
    const bool decoded = result.form.utf16 != Utf16Order::None ? AppendUtf16AsUtf8(bytes, result.form.utf16, buffer)
                                                               : source.decodeAnsi(bytes, &buffer, &exact);
    result.form.inexact = result.form.inexact || !exact;
    *utf8 = buffer;
    return decoded;
}

}  // namespace

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

PiecesResult MoveTextPieces(const TextSource& source, PieceCode code, const PiecesLimits& limits) {
    PiecesResult result;
    result.encoding = code == PieceCode::Ansi ? TextEncoding::Ansi : TextEncoding::Utf8;
    const auto piece = std::make_unique<char[]>(kTextPiece + kMostKept);
    std::string buffer;
    std::size_t kept = 0;  // bytes of an unfinished character, at the start of the piece
    FirstBreak lineBreak;
    BreakKinds kinds;
    LongestLine longest;
    const auto endWith = [&](PiecesEnd end) {
        result.end = end;
        result.lineEnding = lineBreak.Ending();
        result.form.mixedBreaks = kinds.Mixed();
        result.longLine = longest.Length() >= kLongLine;
        return result;
    };
    bool first = true;
    for (bool atEnd = false; !atEnd; first = false) {
        const std::optional<std::size_t> read = source.read(piece.get() + kept, kTextPiece);
        if (!read) return endWith(PiecesEnd::Failed);
        atEnd = *read == 0;
        std::string_view bytes{piece.get(), kept + *read};
        if (first && code == PieceCode::Guess) Guess(bytes, result, SourceCode::Guess);
        if (first && code == PieceCode::Utf16Little) Guess(bytes, result, SourceCode::Utf16Little);
        if (first && code == PieceCode::Utf16Big) Guess(bytes, result, SourceCode::Utf16Big);
        const std::string_view whole = atEnd ? bytes : bytes.substr(0, WholePart(source, result, bytes));
        std::string_view utf8;
        if (!Decode(source, code, result, whole, buffer, &utf8)) return endWith(PiecesEnd::OtherCode);
        lineBreak.Look(utf8);
        kinds.Look(utf8);
        longest.Look(utf8);
        result.form.keepBreaks = result.form.keepBreaks || HasNul(utf8);
        if (utf8.size() > limits.text - result.length) return endWith(PiecesEnd::TextTooLong);
        if (longest.Length() > limits.line) return endWith(PiecesEnd::LineTooLong);
        if (!utf8.empty() && !source.append(utf8)) return endWith(PiecesEnd::Refused);
        result.length += utf8.size();
        kept = bytes.size() - whole.size();
        std::copy_n(bytes.data() + whole.size(), kept, piece.get());
    }
    return endWith(PiecesEnd::Done);
}

PieceCode PieceCodeOf(SourceCode code) {
    switch (code) {
        case SourceCode::Utf8: return PieceCode::AnyUtf8;
        case SourceCode::Ansi: return PieceCode::Ansi;
        case SourceCode::Utf16Little: return PieceCode::Utf16Little;
        case SourceCode::Utf16Big: return PieceCode::Utf16Big;
        case SourceCode::Guess: break;
    }
    return PieceCode::Guess;
}

PieceCode NextPieceCode(const PiecesResult& result) {
    return result.form.utf16 != Utf16Order::None ? PieceCode::Utf8 : PieceCode::Ansi;
}
