// Time and length of a file, to notice that it was changed. Any thread.
#pragma once

#include <cstdint>
#include <string>

struct FileStamp {
    std::uint64_t written = 0;  // time of the last write, in units of 100 ns
    std::uint64_t length = 0;   // bytes
    bool operator==(const FileStamp&) const = default;
};

// Returns false, and leaves `stamp` as it is, when there is no such file.
bool ReadFileStamp(const std::wstring& path, FileStamp* stamp);
