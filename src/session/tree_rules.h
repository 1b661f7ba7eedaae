// What the project tree shows of a folder, in which order, and which folder each item stands for. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
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

// One folder as it was read.
struct TreeListing {
    std::uint64_t request = 0;  // the number given to TreeReaderStart
    bool readable = false;
    std::vector<TreeEntry> entries;  // what is shown, sorted, at most kTreeMaxShown
    std::size_t omitted = 0;         // entries beyond those
};

// Sorts the entries and leaves out those beyond the limit.
void TreeFinishListing(TreeListing& listing);

// What an item stands for; the states of a folder follow its reading.
enum class NodeKind : std::uint8_t { File, FolderUnread, FolderReading, FolderRead, Note };

// An item to put into the tree.
struct TreeRow {
    std::wstring text;
    NodeKind kind;
    bool open = false;  // a folder that was open before a refresh
    bool operator==(const TreeRow&) const = default;
};
// The items of a folder. `reopen` holds the paths of the folders to open again.
std::vector<TreeRow> TreeRowsOf(const TreeListing& listing, const std::wstring& folder,
                                const std::set<std::wstring>& reopen);

// The path of an item below a folder.
std::wstring TreeJoin(std::wstring_view folder, std::wstring_view name);

// The root as the tree keeps it: without trailing backslashes, but for a drive's root.
std::wstring TreeRootOf(std::wstring_view setting);

// Last part of a folder's path, the whole path where there is none (a drive's root).
std::wstring TreeRootLabel(std::wstring_view root);

// The width, in pixels, with which the tree comes up for the first project: one wider than 400 was never meant for it.
std::int32_t TreeFirstWidth(std::int32_t width);
