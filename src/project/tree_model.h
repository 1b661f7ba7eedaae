// The nodes of the project tree, apart from the control that shows them: what a listing changes in a folder, which
// folders are being read, and where a path is. Pure.
#pragma once

#include "project/tree_rules.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

// An item of the tree control; whatever names it there.
using TreeItemHandle = void*;

enum class NodeKind : std::uint8_t {
    File,
    Folder,
    Note,   // a word about its folder
    More,   // stands for the entries that are not shown yet
    Draft,  // a file or folder that is being named
};
enum class FolderState : std::uint8_t { Unread, Reading, Read };

// A folder shows so many entries, and so many more each time when the user asks for more, because each item of a tree
// view takes time to add.
inline constexpr std::size_t kTreePage = 2000;

struct TreeNode {
    std::wstring name;  // of the root its path; the text of a note
    NodeKind kind = NodeKind::File;
    TreeNode* parent = nullptr;
    TreeItemHandle item = nullptr;

    // Of a folder
    FolderState state = FolderState::Unread;
    bool stale = false;  // it has changed since it was read
    std::vector<std::unique_ptr<TreeNode>> children;
    TreeListing listing;            // what was read, when not all of it is shown
    std::size_t shown = kTreePage;  // entries that are shown at most
};

std::wstring TreePathOf(const TreeNode& node);
// The node of a path below the root, or the root. Null when it is not there (yet).
TreeNode* TreeFind(TreeNode* root, std::wstring_view path);
// The deepest folder above that path that has a node. Null when the path is not below the root.
TreeNode* TreeFindAbove(TreeNode* root, std::wstring_view path);
bool TreeIsBelow(const TreeNode* node, const TreeNode* ancestor);  // or the same
// Calls `visit` for every folder for which `goesOn` holds, with those in it, from the top.
void TreeForFolders(TreeNode* folder, const std::function<bool(const TreeNode&)>& goesOn,
                    const std::function<void(TreeNode&)>& visit);

// --- What a listing changes in its folder
struct TreeMerge {
    std::vector<std::unique_ptr<TreeNode>> removed;  // their items are to be deleted
    struct Added {
        TreeNode* node;
        TreeNode* after;  // null: the first one
    };
    std::vector<Added> added;          // in the order of their places
    std::vector<TreeNode*> relabeled;  // whose letters have another case now
};
// Makes the children of the folder those of the listing. What stays, stays as it is, with all below it. `wanted` is a
// name that is shown in any case; empty: none. A listing that is not complete removes nothing.
TreeMerge TreeTakeListing(TreeNode& folder, TreeListing listing, std::wstring_view wanted = {});
// The same with the listing that the folder has, after `shown` has changed, or for another wanted name.
TreeMerge TreeShowMore(TreeNode& folder, std::wstring_view wanted = {});
// A folder that was read has a sign to open it: it holds something, or what it holds is not known.
bool TreeFolderOpens(const TreeNode& folder);
// Puts the children in order after one of them has another name.
void TreeSortChildren(TreeNode& folder);

// --- Readings under way. A listing of another number is stale.
inline constexpr std::size_t kTreeMaxPending = 16;  // readers at a time: each may hang on a share that is gone

struct TreeRequests {
    std::uint64_t last = 0;
    std::map<std::uint64_t, TreeNode*> pending;  // folders being read; null: nobody waits for it any more
    std::deque<TreeNode*> waiting;               // to be read next
    std::set<TreeNode*> again;                   // being read, but asked for again since
};
void TreeRequestAsk(TreeRequests& requests, TreeNode* folder);
// Begins the next reading. Nothing when none waits or too many are under way.
struct TreeReading {
    std::uint64_t number;
    TreeNode* folder;
};
std::optional<TreeReading> TreeRequestNext(TreeRequests& requests);
// The folder of a listing. Null: it is stale. After the last listing of a reading that is no longer under way.
TreeNode* TreeRequestTake(TreeRequests& requests, std::uint64_t number, bool last);
// The node and all below it go away.
void TreeRequestForget(TreeRequests& requests, const TreeNode* node);
