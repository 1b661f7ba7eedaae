// A number with what is counted, in the user's language. Pure; any thread.
#pragma once

#include <cstddef>
#include <string>

// "1 hit", "3 hits": one of two texts, each with {1} in the place of the number.
std::wstring CountText(std::size_t count, const wchar_t* one, const wchar_t* several);
