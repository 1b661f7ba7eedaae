// A UTF-8 file that goes into an editor piece by piece, so that it is never in memory twice. Pure.
#pragma once

#include "files/text_encoding.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

inline constexpr std::size_t kTextPiece = 1 << 20;  // bytes read at a time

struct TextSource {
    // Reads up to so many bytes; 0 at the end, nothing when reading fails.
    std::function<std::optional<std::size_t>(char* out, std::size_t capacity)> read;
    // Takes a piece; no piece ends within a character.
    std::function<void(std::string_view)> append;
};

enum class PiecesEnd : std::uint8_t { Done, NotUtf8, Failed };

struct PiecesResult {
    PiecesEnd end = PiecesEnd::Failed;
    std::size_t length = 0;  // bytes appended
    LineEnding lineEnding = LineEnding::CrLf;
};

// Moves everything, up to the first piece that is not UTF-8.
PiecesResult MoveTextPieces(const TextSource& source);

// The rules of it, for one piece after the other.

// Length of the part of `bytes` that ends between two characters: what is left over, at most three bytes of a sequence,
// belongs to the next piece.
std::size_t WholeCharacters(std::string_view bytes);

// Looks for the first line break of the whole text. A CR at the end of a piece waits for the byte after it.
class FirstBreak {
public:
    void Look(std::string_view piece);
    LineEnding Ending() const { return ending_; }  // CRLF while none was found

private:
    bool found_ = false;
    bool pendingCr_ = false;
    LineEnding ending_ = LineEnding::CrLf;
};
