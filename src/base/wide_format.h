// printf-style formatting of wide text. `%s` means wide text, as the C runtime of Windows takes it; MinGW's ISO
// swprintf takes it for narrow text. Any thread.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <span>
#include <string>

// Formats into `out`, cut to fit and always terminated. Returns the number of characters without the terminator.
std::size_t FormatBufferW(std::span<wchar_t> out, const wchar_t* format, ...);
std::size_t FormatBufferArgsW(std::span<wchar_t> out, const wchar_t* format, std::va_list args);

// Formats into a string of the length that is needed.
std::wstring FormatW(const wchar_t* format, ...);
std::wstring FormatArgsW(const wchar_t* format, std::va_list args);
