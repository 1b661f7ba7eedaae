// Reading a file that others may be using. Any thread.
#pragma once

#include <cstddef>
#include <string>

// The file's bytes, whoever else has it open for what: a build that follows must not find its files locked. False: it
// cannot be read, or has more than `most` bytes, or is no file on a disk.
bool ReadSharedFile(const std::wstring& path, std::size_t most, std::string* bytes);
