// Moves a file into an editor piece by piece, so that it is never in memory twice. Pure.
#pragma once

#include "editor/long_line.h"
#include "files/text_encoding.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

inline constexpr std::size_t kTextPiece = 1 << 20;  // bytes read at a time

struct TextSource {
    // Reads up to `capacity` bytes and returns their number: 0 at the end, no value when reading fails.
    std::function<std::optional<std::size_t>(char* out, std::size_t capacity)> read;
    // Takes a piece of UTF-8. No piece ends inside a character. False: takes no more.
    std::function<bool(std::string_view)> append;
    // The system's code page: the length of the part that ends between two characters; and the part as UTF-8, false
    // when it cannot be converted. `*exact` becomes false when the text does not give the same bytes back.
    std::function<std::size_t(std::string_view)> wholeAnsi;
    std::function<bool(std::string_view bytes, std::string* utf8, bool* exact)> decodeAnsi;
};

// What the bytes are taken for. Guess: UTF-16 when the first piece reads like it, otherwise UTF-8. AnyUtf8: UTF-8, and
// what is not well formed stays as it is.
enum class PieceCode : std::uint8_t { Guess, Utf8, Ansi, AnyUtf8, Utf16Little, Utf16Big };
PieceCode PieceCodeOf(SourceCode code);

// The most that is moved, in bytes of UTF-8.
struct PiecesLimits {
    std::size_t text = SIZE_MAX;
    std::size_t line = SIZE_MAX;
};

enum class PiecesEnd : std::uint8_t {
    Done,
    OtherCode,  // the bytes are not what they were taken for
    Failed,     // reading failed
    Refused,    // `append` took no more
    TextTooLong,
    LineTooLong,
};

struct PiecesResult {
    PiecesEnd end = PiecesEnd::Failed;
    std::size_t length = 0;  // bytes appended
    TextEncoding encoding = TextEncoding::Utf8;
    LineEnding lineEnding = LineEnding::CrLf;
    DiskForm form;
    bool longLine = false;  // a line of kLongLine or more
};

// Moves the text to its end or to the first piece that ends it earlier.
PiecesResult MoveTextPieces(const TextSource& source, PieceCode code, const PiecesLimits& limits);
// What to try after OtherCode.
PieceCode NextPieceCode(const PiecesResult& result);

// Finds the first line break of a text that comes in pieces. A CR at the end of a piece is decided by the next byte.
class FirstBreak {
public:
    void Look(std::string_view piece);
    LineEnding Ending() const { return ending_; }  // CRLF when there is none

private:
    bool found_ = false;
    bool pendingCr_ = false;
    LineEnding ending_ = LineEnding::CrLf;
};
