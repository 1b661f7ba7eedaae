// Which program an include file belongs to, as far as the texts tell. Pure.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The names that a source includes, as written, with backslashes: those in lines that begin with #INCLUDE or $INCLUDE.
std::vector<std::wstring> IncludedNames(std::string_view source);
// Whether a source includes a file of that name, in any folder.
bool IncludesFile(std::string_view source, std::wstring_view fileName);

struct IncludeWalk {
    std::vector<std::wstring> folders;  // in which the compiler looks, beside that of the file with the line
    // The text of a file; nothing when there is none.
    std::function<std::optional<std::string>(const std::wstring& path)> read;
    std::size_t most = 500;  // files that are read
};
// The same through files that the source at `path` includes, and those that they include. Each is read once.
bool IncludesFileThrough(const IncludeWalk& walk, const std::wstring& path, std::string source,
                         std::wstring_view fileName);
