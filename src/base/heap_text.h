// Copies of texts as blocks for a caller that frees them with free(). Pure; any thread.
#pragma once

#include <cstdlib>
#include <cstring>
#include <string_view>

// A terminated copy; null when memory runs out.
inline char* HeapText(std::string_view text) {
    char* block = static_cast<char*>(std::malloc(text.size() + 1));
    if (block == nullptr) return nullptr;
    std::memcpy(block, text.data(), text.size());
    block[text.size()] = '\0';
    return block;
}
