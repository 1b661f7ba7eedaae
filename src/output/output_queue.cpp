#include "output/output_queue.h"

#include <utility>

namespace {

void TakePartial(OutputQueue& queue, QueuedLine* line) {
    *line = {.text = std::move(queue.partial), .colour = queue.partialColour, .stream = true};
    queue.partial.clear();
}

void DropFront(OutputQueue& queue, int* chunksDone) {
    *chunksDone += queue.chunks.front().kind == ChunkKind::Stream;
    queue.chunks.pop_front();
    queue.offset = 0;
}

// The characters up to the next line break, and how many to skip including the break. `found` is false when there is no
// break.
struct Piece {
    std::wstring_view text;
    std::size_t taken = 0;
    bool found = false;
};

Piece NextPiece(std::wstring_view rest) {
    const std::size_t at = rest.find_first_of(L"\r\n");
    if (at == std::wstring_view::npos) return {.text = rest, .taken = rest.size()};
    const bool pair = rest[at] == L'\r' && at + 1 < rest.size() && rest[at + 1] == L'\n';
    return {.text = rest.substr(0, at), .taken = at + (pair ? 2 : 1), .found = true};
}

// Cuts an unfinished line that is too long. A surrogate pair is not divided.
bool CutPartial(OutputQueue& queue, QueuedLine* line) {
    if (queue.partial.size() <= kMaxOutputLine) return false;
    std::size_t cut = kMaxOutputLine;
    if ((static_cast<std::uint32_t>(queue.partial[cut]) & 0xFC00U) == 0xDC00U) --cut;
    *line = {.text = queue.partial.substr(0, cut), .colour = queue.partialColour, .stream = true};
    queue.partial.erase(0, cut);
    return true;
}

bool NextOfStream(OutputQueue& queue, QueuedLine* line, int* chunksDone) {
    OutputChunk& chunk = queue.chunks.front();
    if (queue.skipLineFeed && queue.offset < chunk.text.size()) {
        queue.skipLineFeed = false;
        if (chunk.text[queue.offset] == L'\n') ++queue.offset;
    }
    const std::wstring_view rest = std::wstring_view(chunk.text).substr(queue.offset);
    const Piece piece = NextPiece(rest);
    queue.partial += piece.text;
    queue.partialColour = chunk.colour;
    queue.skipLineFeed = queue.skipLineFeed || (piece.found && piece.taken == rest.size() && rest.back() == L'\r');
    queue.offset += piece.taken;
    const bool whole = piece.found && queue.partial.size() <= kMaxOutputLine;
    if (whole) {
        TakePartial(queue, line);
        line->ended = true;
    } else if (piece.found) {  // the line is too long: the break is read again after the line was cut
        queue.offset -= piece.taken - piece.text.size();
    }
    if (queue.offset >= chunk.text.size()) DropFront(queue, chunksDone);
    return whole;
}

bool NextOfMessage(OutputQueue& queue, QueuedLine* line, int* chunksDone) {
    const OutputChunk& chunk = queue.chunks.front();
    const Piece piece = NextPiece(std::wstring_view(chunk.text).substr(queue.offset));
    *line = {.text = std::wstring(piece.text), .colour = chunk.colour, .lineBreak = piece.found};
    queue.offset += piece.taken;
    const bool any = piece.taken > 0;
    if (queue.offset >= chunk.text.size()) DropFront(queue, chunksDone);
    return any;
}

}  // namespace

bool OutputQueueNext(OutputQueue& queue, QueuedLine* line, int* chunksDone) {
    for (;;) {
        if (CutPartial(queue, line)) return true;
        if (queue.chunks.empty()) return false;
        const ChunkKind kind = queue.chunks.front().kind;
        if (kind == ChunkKind::Stream) {
            if (NextOfStream(queue, line, chunksDone)) return true;
            continue;
        }
        if (!queue.partial.empty()) {
            TakePartial(queue, line);
            return true;
        }
        queue.skipLineFeed = false;
        if (kind == ChunkKind::StreamEnd) {
            DropFront(queue, chunksDone);
            *line = {.stream = true, .streamEnd = true};
            return true;
        }
        if (NextOfMessage(queue, line, chunksDone)) return true;
    }
}
