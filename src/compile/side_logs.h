// The log files that some compilers write beside the source instead of printing. UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Shows the ".log" and ".err" beside the source in the output pane, if they were written since `startTime`.
void SideLogsShow(const std::wstring& source, const FILETIME& startTime);
