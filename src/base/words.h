// Words of a text in which single blanks part them. Pure; any thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

// Calls `visit(word)` for each word.
template <typename Visit>
void ForEachWord(std::string_view words, Visit visit) {
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        visit(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
}
