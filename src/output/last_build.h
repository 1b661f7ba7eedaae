// The build that was started last: its source, the places of its results, and whether it succeeded. UI thread only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Empty texts and zeros before the first build.
struct BuildRecord {
    std::wstring source;
    std::wstring output;   // path of the program; the file does not exist after a failure or a syntax check
    std::wstring staged;   // the copy that the compiler read; empty when it read the source itself
    std::wstring listing;  // path of the assembly listing, which need not exist
    std::wstring workingDirectory;
    std::vector<std::wstring> includeFolders;  // of the project, absolute
    std::uint32_t compilerId = 0;
    std::uint64_t startTime = 0;  // of the compiler: system time in units of 100 ns, as in FILETIME
    bool success = false;         // the compiler's; false while it runs
    bool programWritten =
        false;  // the compiler has written `output`; stays true after a syntax check of the same source
};
const BuildRecord& LastBuild();

// The builder calls LastBuildBegin before it starts a compiler and LastBuildEnd when that compiler has ended.
void LastBuildBegin(BuildRecord build);
void LastBuildEnd(bool success, bool programWritten);
