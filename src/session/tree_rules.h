// What the project tree shows of a folder, and in which order. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct TreeEntry {
    std::wstring name;
    bool isFolder = false;
};

// A folder of more entries than this is shown in part: filling a tree view takes time that grows with the items.
inline constexpr std::size_t kTreeMaxShown = 2000;
// Reading a folder stops here, so that no folder can take the memory.
inline constexpr std::size_t kTreeMaxRead = 200000;

// Folders and source files; nothing hidden, nothing whose name begins with a dot, not "." and "..".
bool TreeShows(std::wstring_view name, bool isFolder, bool isHidden);

// Folders first, each group by name without regard to case.
void TreeSort(std::vector<TreeEntry>& entries);

// Last part of a folder's path, the whole path where there is none (a drive's root).
std::wstring TreeRootLabel(std::wstring_view root);
