// Moves a UTF-8 file into an editor piece by piece, so that it is never in memory twice. Pure.
#pragma once

#include "files/text_encoding.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

inline constexpr std::size_t kTextPiece = 1 << 20;  // bytes read at a time

struct TextSource {
    // Reads up to `capacity` bytes and returns their number: 0 at the end, no value when reading fails.
    std::function<std::optional<std::size_t>(char* out, std::size_t capacity)> read;
    // Takes a piece of text. No piece ends inside a character.
    std::function<void(std::string_view)> append;
};

enum class PiecesEnd : std::uint8_t { Done, NotUtf8, Failed };

struct PiecesResult {
    PiecesEnd end = PiecesEnd::Failed;
    std::size_t length = 0;  // bytes appended
    LineEnding lineEnding = LineEnding::CrLf;
    bool holdsNul = false;
};

// Moves the text to its end or to the first piece that is not UTF-8. A first piece that reads like UTF-16 is not UTF-8
// either. Failed: reading failed.
PiecesResult MoveTextPieces(const TextSource& source);

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
