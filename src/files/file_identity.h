// Which file a path leads to, so that a file with two names (a link, a short name, a share) is known again. Any thread.
#pragma once

#include <cstdint>

struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t high = 0;  // the file's number on its volume, 128 bits
    std::uint64_t low = 0;

    bool IsKnown() const { return high != 0 || low != 0; }
    bool operator==(const FileIdentity&) const = default;
};

// Not known (IsKnown() is false) when there is no such file, or when its file system does not number its files.
FileIdentity FileIdentityOf(const wchar_t* path);
