// Protects texts so that only this Windows account can read them. Capacities count wide characters, the terminator
// included. Any thread.
#pragma once

#include <cstddef>
#include <string>

// Writes "[DPAPI]" and the protected bytes in hexadecimal. An empty text stays empty. Returns false, with an empty
// `out`, when the text cannot be protected or the result does not fit.
bool EncryptString(const wchar_t* clearText, wchar_t* out, std::size_t capacity);

// The protected text of any length. Empty when the text is empty or cannot be protected.
std::wstring ProtectedText(const wchar_t* clearText);

// Returns 1 when this account has protected `stored`; `out` is then the clear text, or empty when that does not fit.
// Returns 0 otherwise and leaves `out` unchanged. `stored` and `out` may be the same buffer.
int DecryptString(const wchar_t* stored, wchar_t* out, std::size_t capacity);
