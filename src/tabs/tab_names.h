// What tells documents with the same file name apart. Pure.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

// For each path the part of its folder that no other path with the same file name has: "lib" for C:\lib\main.bas beside
// C:\app\main.bas, and "lib\src" or "lib\...\src" where one folder is not enough. Empty where the name is the only one,
// and for an empty path (a document without a file). Letter case is ignored.
std::vector<std::wstring> DistinguishingFolders(std::span<const std::wstring_view> paths);
