// The log files that some compilers write beside the source instead of printing.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Shows the ".log" and ".err" beside the source in the output pane, if they were written since `startTime` (in units of
// 100 ns, as files have it). UI thread only.
void SideLogsShow(const std::wstring& source, std::uint64_t startTime);

// --- The choice. Pure.
// In the order in which they are shown; the source itself is no log.
std::vector<std::wstring> SideLogPaths(std::wstring_view source);

struct SideLogFile {
    bool isFolder = false;
    std::uint64_t bytes = 0;
    std::uint64_t written = 0;  // in the unit of `startTime`
};
// Written by this build, not empty, and not too long to be read in place.
bool SideLogIsFresh(const SideLogFile& file, std::uint64_t startTime);
