// The log of a process: the ".buildlog" file beside the source with the header of the last build and its output, or a
// temporary file with the output of a command. It is UTF-8. The reader thread writes it while the output comes, so the
// log is complete even when the editor ends before the build.
#pragma once

#include "base/handles.h"

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr std::size_t kBuildLogLimit = 64 * 1024 * 1024;  // bytes; the rest of the output is not written

struct BuildLog {
    UniqueHandle file;  // empty when no log can be written, which is no error
    std::size_t left = kBuildLogLimit;
};

BuildLog BuildLogOpen(const std::wstring& path);
void BuildLogWrite(BuildLog& log, std::wstring_view text);

// --- Temporary logs. UI thread only.
// The path of a new log in the folder for temporary files; empty when there is no such folder.
std::wstring CommandLogNew();
// Called when the process of that log has ended. A log that is not `needed` is deleted; other paths are ignored.
void CommandLogDone(const std::wstring& path, bool needed);
// Deletes those that were needed. One that is open in a tab stays, because the next start opens it again.
void CommandLogsDelete();
