// printf-style formatting of wide text. `%s` means wide text, as the C runtime reads it; MinGW's ISO swprintf would read narrow
// text. Any thread.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <span>
#include <string>

// Formats into `out`, always terminated, cut to fit. Returns the characters written, without the terminator.
std::size_t FormatBufferW(std::span<wchar_t> out, const wchar_t* format, ...);
std::size_t FormatBufferArgsW(std::span<wchar_t> out, const wchar_t* format, std::va_list args);

// Formats to a value of whatever length it takes.
std::wstring FormatW(const wchar_t* format, ...);
std::wstring FormatArgsW(const wchar_t* format, std::va_list args);
