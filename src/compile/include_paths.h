// Where a compiler looks for an included file. Pure.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

// The folders of an include-path setting, which may hold several with semicolons between them.
std::vector<std::wstring> IncludeFolders(std::wstring_view setting);

// The paths that an included name may mean, in the order in which the compiler looks: beside the file with the line, then
// in the folders. An absolute name means itself.
std::vector<std::wstring> IncludePlaces(std::wstring_view name, std::wstring_view folderOfFile,
                                        std::span<const std::wstring> folders);
