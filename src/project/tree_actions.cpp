// What the project tree is waiting for, and what can be done with an item. Pure.
#include "project/tree_actions.h"

namespace {

void AddOpenFolders(const TreeWalk& walk, TreeItemHandle item, std::set<std::wstring>* paths) {
    for (; item != nullptr && paths->size() < kTreeMaxReopened; item = walk.next(item)) {
        if (!walk.isOpen(item)) continue;
        paths->insert(walk.path(item));
        AddOpenFolders(walk, walk.firstChild(item), paths);
    }
}

}  // namespace

std::optional<std::uint64_t> TreeRequestNumber(TreeRequests& requests) {
    if (requests.pending.size() >= kTreeMaxPending) return std::nullopt;
    return ++requests.last;
}

TreeItemHandle TreeRequestTake(TreeRequests& requests, std::uint64_t number) {
    const auto found = requests.pending.find(number);
    if (found == requests.pending.end()) return nullptr;
    TreeItemHandle const folder = found->second;
    requests.pending.erase(found);
    return folder;
}

std::set<std::wstring> OpenTreeFolders(const TreeWalk& walk, TreeItemHandle first) {
    std::set<std::wstring> paths;
    AddOpenFolders(walk, first, &paths);
    return paths;
}

bool TreeFolderOpens(const TreeListing& listing) { return !listing.entries.empty() || !listing.readable; }

TreeItemCommands TreeCommandsOf(std::optional<NodeKind> item) {
    return {.open = item == NodeKind::File, .copyPath = item && item != NodeKind::Note};
}

TreeEnter TreeEnterOn(std::optional<NodeKind> item) {
    if (!item) return TreeEnter::Nothing;
    return item == NodeKind::File ? TreeEnter::OpenFile : TreeEnter::Toggle;
}
