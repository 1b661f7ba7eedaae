// The texts of message boxes: nothing in them makes a box wider than the screen. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// In these functions a character that is twice as wide as a Latin one (Chinese, Japanese, Korean) counts as two.
inline constexpr std::size_t kLongestWord = 110;

// A message box breaks lines at blanks only. Puts a line break into each word that is longer than `most`, behind a
// backslash or a slash where the second half of the line has one.
std::wstring BreakLongWords(std::wstring_view text, std::size_t most = kLongestWord);

// The path with dots in its middle when it is longer than `most`: a list of paths needs one line for each.
std::wstring ShortenedPath(std::wstring_view path, std::size_t most = 90);
