// Texts that only this Windows account can read again. Any thread.
#pragma once

#include <cstddef>

// "[DPAPI]" and the protected bytes in hexadecimal; empty text stays empty. False, with `out` empty, when the text cannot
// be protected or the result needs more than `capacity` characters.
bool EncryptString(const wchar_t* clearText, wchar_t* out, std::size_t capacity);

// 1: `stored` was protected by this account, and `out` holds the clear text (empty when it does not fit). 0: anything
// else, with `out` as it was. `stored` and `out` may be the same buffer.
int DecryptString(const wchar_t* stored, wchar_t* out, std::size_t capacity);
