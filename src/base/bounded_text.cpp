// Fixed-capacity wide text. Pure; any thread.
#include "base/bounded_text.h"

#include <algorithm>
#include <cwchar>

bool SafeCatW(wchar_t* out, std::size_t capacity, std::wstring_view text) {
    if (out == nullptr || capacity == 0) return false;
    const wchar_t* terminator = std::wmemchr(out, L'\0', capacity);
    if (terminator == nullptr) {
        out[capacity - 1] = L'\0';  // `out` was not terminated: its content is cut to the buffer
        return text.empty();
    }
    const auto used = static_cast<std::size_t>(terminator - out);
    const std::size_t taken = std::min(text.size(), capacity - 1 - used);
    // wmemmove, because `text` may lie in `out` itself.
    std::wmemmove(out + used, text.data(), taken);
    out[used + taken] = L'\0';
    return taken == text.size();
}

bool SafeCopyW(wchar_t* out, std::size_t capacity, std::wstring_view text) {
    if (out == nullptr || capacity == 0) return false;
    const std::size_t taken = std::min(text.size(), capacity - 1);
    std::wmemmove(out, text.data(), taken);
    out[taken] = L'\0';
    return taken == text.size();
}
