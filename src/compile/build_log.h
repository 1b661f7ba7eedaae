// The ".buildlog" file beside the source: the header of the last build and what it printed, as UTF-8. The reader thread writes
// it as the output comes, so that it has everything even when the editor ends before the build does.
#pragma once

#include "base/handles.h"

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr std::size_t kBuildLogLimit = 16 * 1024 * 1024;  // bytes; what goes beyond is not written

struct BuildLog {
    UniqueHandle file;  // empty: no log can be written here, which is no error
    std::size_t left = kBuildLogLimit;
};

BuildLog BuildLogOpen(const std::wstring& path);
void BuildLogWrite(BuildLog& log, std::wstring_view text);
