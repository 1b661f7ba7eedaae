// The log files that some compilers write beside the source instead of printing.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Shows the ".log" and ".err" files beside the source in the output pane, if they were written since `startTime` (units
// of 100 ns, as in FILETIME). UI thread only.
void SideLogsShow(const std::wstring& source, std::uint64_t startTime);

// --- Which files are shown. Pure.
// The paths in the order in which they are shown, without the source itself.
std::vector<std::wstring> SideLogPaths(std::wstring_view source);

struct SideLogFile {
    bool isFolder = false;
    std::uint64_t bytes = 0;
    std::uint64_t written = 0;  // time of the last write, in units of 100 ns
};
// True when the file was written by this build, is not empty, and is not too long.
bool SideLogIsFresh(const SideLogFile& file, std::uint64_t startTime);
