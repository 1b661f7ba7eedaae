// What waits to be shown in the output pane: chunks as they came, handed out line by line in exactly their order. Two
// kinds of text meet here: a process's stream, whose chunks end anywhere, and the program's own complete messages.
// Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

// A line is cut here, so that output without any line break cannot grow one line for ever.
inline constexpr std::size_t kMaxOutputLine = 8192;

enum class ChunkKind : std::uint8_t {
    Stream,     // a piece of a process's output; its last line may go on in the next piece
    Message,    // text of our own; shown as it is, on a line of its own
    StreamEnd,  // the process has ended: what it left without a line break is a line
};

struct OutputChunk {
    std::wstring text;
    std::uint32_t colour = 0;  // 0x00BBGGRR, 0: the default
    ChunkKind kind = ChunkKind::Message;
};

struct QueuedLine {
    std::wstring text;  // without its line break
    std::uint32_t colour = 0;
    bool stream = false;     // from a process
    bool lineBreak = true;   // false: the end of a message that has none
    bool streamEnd = false;  // no line, only the news that the stream has ended
};

struct OutputQueue {
    std::deque<OutputChunk> chunks;
    std::size_t offset = 0;  // characters of the front chunk already taken
    std::wstring partial;    // stream text whose line break has not come yet
    std::uint32_t partialColour = 0;
    bool skipLineFeed = false;  // the stream's last piece ended in a CR that may be followed by an LF
};

// Takes the next line. False: nothing to show until more arrives. `chunksDone` counts up by each stream chunk used up.
bool OutputQueueNext(OutputQueue& queue, QueuedLine* line, int* chunksDone);
