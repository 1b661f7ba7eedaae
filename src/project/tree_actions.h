// What the project tree is waiting for, and what can be done with an item. Pure.
#pragma once

#include "project/tree_rules.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

// --- Readings under way. A listing of another number is stale: it was asked for before the last refresh.
inline constexpr std::size_t kTreeMaxPending = 16;  // readers at a time: each may hang on a share that is gone

// An item of the tree control; whatever names it there.
using TreeItemHandle = void*;

struct TreeRequests {
    std::uint64_t last = 0;
    std::map<std::uint64_t, TreeItemHandle> pending;  // folders being read
};
// A number for the next reading, used by no other of this run; nothing while too many are under way.
std::optional<std::uint64_t> TreeRequestNumber(TreeRequests& requests);
// The folder of a reading that has ended; it is no longer under way. Null: it is stale.
TreeItemHandle TreeRequestTake(TreeRequests& requests, std::uint64_t number);

// --- Folders to open again after a refresh, by their paths. No more than these, because each is read.
inline constexpr std::size_t kTreeMaxReopened = 500;

// The tree as it is shown. Items are null where there is none.
struct TreeWalk {
    std::function<TreeItemHandle(TreeItemHandle)> firstChild;
    std::function<TreeItemHandle(TreeItemHandle)> next;  // the one below it in the same folder
    std::function<bool(TreeItemHandle)> isOpen;
    std::function<std::wstring(TreeItemHandle)> path;
};
// The paths of the open folders from `first` on. What is open in a closed folder cannot be seen and is not read again.
std::set<std::wstring> OpenTreeFolders(const TreeWalk& walk, TreeItemHandle first);

// --- Items
// A folder that was read has a sign to open it: it holds something, or what it holds is not known.
bool TreeFolderOpens(const TreeListing& listing);

struct TreeItemCommands {
    bool open = false;
    bool copyPath = false;
    bool operator==(const TreeItemCommands&) const = default;
};
// What the menu of an item offers; without an item, nothing of it.
TreeItemCommands TreeCommandsOf(std::optional<NodeKind> item);

// What Enter does: a file is opened, anything else opens or closes its children. A double click only opens files, because
// the control itself opens folders then.
enum class TreeEnter : std::uint8_t { Nothing, OpenFile, Toggle };
TreeEnter TreeEnterOn(std::optional<NodeKind> item);
