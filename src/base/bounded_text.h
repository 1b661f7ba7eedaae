// Wide text in buffers of a fixed capacity, as the records of this program hold paths and names. Pure; any thread.
#pragma once

#include <cstddef>
#include <string_view>

inline constexpr std::size_t kPathCapacity = 1024;  // wide characters, terminator included
inline constexpr std::size_t kLabelCapacity = 260;

// Both cut the text to fit and terminate it always. `capacity` counts wide characters, the terminator included. They
// return true when everything fitted, and false for a null `out` or a capacity of 0. `text` may lie in `out`.

// Appends `text` to the terminated text in `out`.
bool SafeCatW(wchar_t* out, std::size_t capacity, std::wstring_view text);

// Replaces the content of `out` by `text`.
bool SafeCopyW(wchar_t* out, std::size_t capacity, std::wstring_view text);

template <std::size_t N>
bool SafeCopyW(wchar_t (&out)[N], std::wstring_view text) {
    return SafeCopyW(out, N, text);
}
template <std::size_t N>
bool SafeCatW(wchar_t (&out)[N], std::wstring_view text) {
    return SafeCatW(out, N, text);
}
