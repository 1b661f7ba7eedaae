// The ".buildlog" file beside the source: the header of the last build and its output, as UTF-8. The reader thread
// writes it while the output comes, so the log is complete even when the editor ends before the build.
#pragma once

#include "base/handles.h"

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr std::size_t kBuildLogLimit = 16 * 1024 * 1024;  // bytes; the rest of the output is not written

struct BuildLog {
    UniqueHandle file;  // empty when no log can be written, which is no error
    std::size_t left = kBuildLogLimit;
};

BuildLog BuildLogOpen(const std::wstring& path);
void BuildLogWrite(BuildLog& log, std::wstring_view text);
