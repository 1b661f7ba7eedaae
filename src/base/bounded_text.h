// Fixed-capacity wide text: the records of this program hold paths and names in bounded buffers. Pure.
#pragma once

#include <cstddef>
#include <string_view>

inline constexpr std::size_t kPathCapacity = 1024;  // wide characters, terminator included
inline constexpr std::size_t kLabelCapacity = 260;

// Appends `text` to the terminated text in `out`; cut to fit, always terminated. True when everything fitted.
bool SafeCatW(wchar_t* out, std::size_t capacity, std::wstring_view text);

// Replaces the content of `out` by `text`; cut to fit, always terminated. True when everything fitted.
bool SafeCopyW(wchar_t* out, std::size_t capacity, std::wstring_view text);

template <std::size_t N>
bool SafeCopyW(wchar_t (&out)[N], std::wstring_view text) {
    return SafeCopyW(out, N, text);
}
template <std::size_t N>
bool SafeCatW(wchar_t (&out)[N], std::wstring_view text) {
    return SafeCatW(out, N, text);
}
