#include "ai/code_fence.h"

CodeFence CodeFenceFrom(std::string_view reply, std::size_t start) {
    CodeFence fence = {.open = start, .start = start, .close = reply.find(kCodeFence, start)};
    const std::string_view code = reply.substr(start, fence.close - start);
    fence.end = start + code.find_last_not_of("\n\r \t") + 1;  // npos + 1 is 0
    fence.next = fence.close == std::string_view::npos ? reply.size() : fence.close + kCodeFence.size();
    return fence;
}

std::optional<CodeFence> NextCodeFence(std::string_view reply, std::size_t from) {
    const std::size_t open = reply.find(kCodeFence, from);
    if (open == std::string_view::npos) return std::nullopt;
    const std::size_t after = open + kCodeFence.size();
    const std::size_t lineEnd = reply.find('\n', after);
    CodeFence fence = CodeFenceFrom(reply, lineEnd == std::string_view::npos ? after : lineEnd + 1);
    fence.open = open;
    return fence;
}
