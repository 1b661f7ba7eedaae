// The text that waits to be shown in the output pane: chunks in the order they came, taken out line by line. A chunk is
// a piece of a process's output, which may end anywhere, or a complete message of the editor.
// Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

// Characters after which a line is cut, so that output without line breaks does not become one endless line.
inline constexpr std::size_t kMaxOutputLine = 8192;

enum class ChunkKind : std::uint8_t {
    Stream,     // a piece of a process's output; its last line may continue in the next piece
    Message,    // a text of the editor, on lines of its own
    StreamEnd,  // the process has ended; a last line without a line break is complete
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
    bool ended = false;      // the process has printed its line break
    bool streamEnd = false;  // this is no line: it tells that the stream has ended
};

struct OutputQueue {
    std::deque<OutputChunk> chunks;
    std::size_t offset = 0;  // characters of the front chunk already taken
    std::wstring partial;    // stream text whose line break has not come yet
    std::uint32_t partialColour = 0;
    bool skipLineFeed = false;  // the stream's last piece ended in CR; an LF that follows is skipped
};

// Takes the next line. Returns false when there is none until more text arrives. `chunksDone` is increased by the
// number of stream chunks that were used up.
bool OutputQueueNext(OutputQueue& queue, QueuedLine* line, int* chunksDone);
