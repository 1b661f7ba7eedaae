// What a program that runs in the output pane has still to read: one write at a time, the rest waits. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

struct InputQueue {
    std::string going;    // the bytes of the pending write
    std::string waiting;  // the bytes after it
    bool pending = false;
    std::uint64_t began = 0;  // clock at the start of the pending write
    bool doubted = false;
    bool ends = false;  // nothing more is accepted, and the pipe is closed after `waiting`
};

enum class InputWrite : std::uint8_t { Pending, Done, Failed };
struct InputPipe {
    std::function<std::uint64_t()> clock;               // milliseconds
    std::function<bool(std::string_view bytes)> write;  // starts a write; the bytes stay where they are until its end
    std::function<InputWrite(std::size_t* bytes)> result;  // of that write, with the number of bytes read
    std::function<void()> close;                           // the program reads the end of its input
};

// Adds bytes. Returns false, and adds none, when too much waits unread or the input was ended.
bool InputAdd(InputQueue& queue, std::string_view bytes);
// Goes on writing what waits. A write that fails drops the rest, because the program has closed its input.
void InputPump(InputQueue& queue, const InputPipe& pipe);
// True once: the program has left its input unread for two seconds.
bool InputIsDoubtful(InputQueue& queue, std::uint64_t now);
