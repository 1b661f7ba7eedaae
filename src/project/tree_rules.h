// Decides what the project tree shows of a folder and in which order, which picture an entry has, which names can be
// given, and forms the paths and labels of its items. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What the user wants to see.
struct TreeFilter {
    bool sourcesOnly = true;
    bool hidden = false;    // also names that begin with a dot
    bool binaries = false;  // means nothing with sourcesOnly
    bool gitIgnore = false;
    bool operator==(const TreeFilter&) const = default;
};

struct TreeEntry {
    std::wstring name;
    bool isFolder = false;
    bool operator==(const TreeEntry&) const = default;
};

// Whether an entry is shown, but for what ignore files say.
bool TreeShows(const TreeFilter& filter, std::wstring_view name, bool isFolder, bool isHidden);

enum class TreePicture : std::uint8_t { Folder, FolderOpen, Basic, Include, C, Assembly, Resource, Text, Other, None };
inline constexpr int kTreePictures = 10;
// Of a file, by its extension.
TreePicture TreePictureOf(std::wstring_view name);
// Programs, libraries, objects, pictures, archives: what an editor of text cannot show.
bool TreeIsBinary(std::wstring_view name);

// Folders first, then files, each by name without regard to case.
void TreeSort(std::vector<TreeEntry>& entries);

// The read of a folder stops after so many entries, so that it cannot use up the memory.
inline constexpr std::size_t kTreeMaxRead = 500'000;

// One folder as it was read.
struct TreeListing {
    std::uint64_t request = 0;  // the number given to TreeReaderStart
    bool readable = false;
    bool more = false;               // the folder is still being read; another listing follows
    bool cut = false;                // it has more than kTreeMaxRead entries
    std::vector<TreeEntry> entries;  // what is shown, sorted
};

// --- Names and paths
// The path of an item below a folder.
std::wstring TreeJoin(std::wstring_view folder, std::wstring_view name);
// The project root without trailing backslashes. A drive's root keeps one.
std::wstring TreeRootOf(std::wstring_view setting);
// The last part of a folder's path; the whole path when it has none.
std::wstring TreeRootLabel(std::wstring_view root);
// What leads from the root to a path below it; empty for the root itself, the whole path when it is not below.
std::wstring TreeRelative(std::wstring_view root, std::wstring_view path);

// A name as it was typed, without the blanks around it.
std::wstring TreeNameTyped(std::wstring_view text);
// Why a file or folder cannot have that name, as a sentence; empty when it can.
std::wstring TreeNameProblem(std::wstring_view folder, std::wstring_view name);
// The characters of a name that are selected when it is to be changed: all but a file's extension.
std::size_t TreeStemLength(std::wstring_view name, bool isFolder);

// The width of the tree for the first project, in pixels at 96 dpi: `width`, or 200 when that is above 400.
std::int32_t TreeFirstWidth(std::int32_t width);
