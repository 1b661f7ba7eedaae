// Bytes of a process's output as text. Any thread.
#pragma once

#include <cstddef>

// A new block of terminated wide text that the caller frees with free(), or null: for no bytes, or without memory. UTF-8,
// the ANSI and the OEM code page are tried in this order and the first that takes every byte wins; if none does, the
// ANSI code page with replacements. NUL bytes are left out, so that what follows them is seen.
wchar_t* DecodeCompilerText(const char* bytes, std::size_t count);

// The same for what is typed at a console: the OEM code page, which console commands print in, before the ANSI one.
wchar_t* DecodeConsoleText(const char* bytes, std::size_t count);
