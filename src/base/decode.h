// The output of other processes as wide text. Any thread.
#pragma once

#include <cstddef>
#include <string>

// The bytes with which characters of two bytes begin in a code page, for WholeDoubleBytes. Empty for most code pages.
std::string LeadBytesOf(unsigned codePage);

// Decodes the bytes as UTF-8, as the ANSI or as the OEM code page: the first one of these that can decode every byte is
// taken. If none can, the ANSI code page is taken, with replacements. NUL bytes are left out, because the text after
// them would be lost. Returns a new terminated block that the caller frees with free(). Returns null when `count` is 0
// or is 2 GiB or more, and when memory runs out.
wchar_t* DecodeCompilerText(const char* bytes, std::size_t count);

// The same for the output of console commands. The OEM code page is tried instead of the ANSI one, because console
// commands print in it.
wchar_t* DecodeConsoleText(const char* bytes, std::size_t count);
