// Where the fenced code of a reply begins and ends. This is the only rule of it: what is applied to a document, and what
// the chat shows, copies and inserts as code, follow it. Texts are UTF-8. Pure; any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// Positions are bytes of the reply.
struct CodeFence {
    std::size_t open = 0;   // the three backticks that open it
    std::size_t start = 0;  // the code: after the line of the opening fence, with which the language goes
    std::size_t end = 0;    // of the code, without the white space before the closing fence
    std::size_t close = 0;  // the backticks that close it; npos: the reply ends without them
    std::size_t next = 0;   // where the next fence is looked for
};

// The first fence that opens at `from` or after it. When no line feed comes after an opening fence, its code begins right
// after the backticks.
std::optional<CodeFence> NextCodeFence(std::string_view reply, std::size_t from = 0);
// The same for code that begins at `start`, when the fence that opens it is known. `open` is `start` then.
CodeFence CodeFenceFrom(std::string_view reply, std::size_t start);

inline constexpr std::string_view kCodeFence = "```";
