// Decides what the project tree shows of a folder and in which order, and forms the paths and labels of its items.
// Pure.
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

// A folder with more entries is shown in part, because each item of a tree view takes time to add.
inline constexpr std::size_t kTreeMaxShown = 2000;
// The read of a folder stops after so many entries, so that it cannot use up the memory.
inline constexpr std::size_t kTreeMaxRead = 200000;

// Whether an entry is shown: folders and source files, but none that is hidden or whose name begins with a dot.
bool TreeShows(std::wstring_view name, bool isFolder, bool isHidden);

// Folders first, then files, each by name without regard to case.
void TreeSort(std::vector<TreeEntry>& entries);

// One folder as it was read.
struct TreeListing {
    std::uint64_t request = 0;  // the number given to TreeReaderStart
    bool readable = false;
    std::vector<TreeEntry> entries;  // what is shown; after TreeFinishListing sorted and at most kTreeMaxShown
    std::size_t omitted = 0;         // number of entries left out
};

// Sorts the entries and leaves out those beyond the limit.
void TreeFinishListing(TreeListing& listing);

// What an item is. A folder goes from FolderUnread to FolderReading to FolderRead.
enum class NodeKind : std::uint8_t { File, FolderUnread, FolderReading, FolderRead, Note };

// An item to add to the tree.
struct TreeRow {
    std::wstring text;
    NodeKind kind;
    bool open = false;  // the folder is to be opened
    bool operator==(const TreeRow&) const = default;
};
// The items of a folder. `reopen` has the paths of the folders that were open before a refresh.
std::vector<TreeRow> TreeRowsOf(const TreeListing& listing, const std::wstring& folder,
                                const std::set<std::wstring>& reopen);

// The path of an item below a folder.
std::wstring TreeJoin(std::wstring_view folder, std::wstring_view name);

// The project root without trailing backslashes. A drive's root keeps one.
std::wstring TreeRootOf(std::wstring_view setting);

// The last part of a folder's path; the whole path when it has none.
std::wstring TreeRootLabel(std::wstring_view root);

// The width of the tree for the first project, in pixels at 96 dpi: `width`, or 200 when that is above 400.
std::int32_t TreeFirstWidth(std::int32_t width);
