// Text between UTF-8 and wide characters (UTF-16 on Windows, UTF-32 elsewhere). Pure; any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// A surrogate without its partner becomes U+FFFD.
std::string ToUtf8(std::wstring_view wide);
// Malformed bytes become U+FFFD: one for each byte, or one for the start of a sequence that is cut off.
std::wstring Utf8ToWideText(std::string_view utf8);

// Length of the part of `bytes` that ends between two characters. The rest, at most three bytes, is the start of a
// character whose other bytes come with the next piece.
std::size_t WholeCharacters(std::string_view bytes);

// The same for a code page in which some characters have two bytes; `leadBytes` are the first bytes of these.
std::size_t WholeDoubleBytes(std::string_view bytes, std::string_view leadBytes);

// ToUtf8 and Utf8ToWideText for terminated text. They return a new block that the caller frees with free(), or null for null and when
// memory runs out.
char* WideToUtf8(const wchar_t* wide);
wchar_t* Utf8ToWide(const char* utf8);
