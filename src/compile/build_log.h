// The ".buildlog" file beside the source: what the last build was and printed, as UTF-8. Written by the reader thread
// as the output comes, so that it is whole even if the editor is not there at the end.
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
