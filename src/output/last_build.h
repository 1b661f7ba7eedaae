// The build that was started last: what it was given, where its results are, and whether it succeeded. Its diagnostics, its
// program and its listing are found by this record. UI thread only.
#pragma once

#include <cstdint>
#include <string>

// Empty texts and zeros before the first build.
struct BuildRecord {
    std::wstring source;
    std::wstring output;   // the program; none is there after a failure or a syntax check
    std::wstring staged;   // the copy that the compiler saw, empty when it saw the source itself
    std::wstring listing;  // where an assembly listing would be
    std::wstring workingDirectory;
    std::uint32_t compilerId = 0;
    std::uint64_t startTime = 0;  // of the compiler, system time in units of 100 ns as files have it
    bool success = false;         // of the compiler; false while it runs
};
const BuildRecord& LastBuild();

// By the builder: a compiler is about to be started, and has ended.
void LastBuildBegin(BuildRecord build);
void LastBuildEnd(bool success);
