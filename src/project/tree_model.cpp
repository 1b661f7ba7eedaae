// The nodes of the project tree. Pure.
#include "project/tree_model.h"

#include "base/path.h"
#include "base/texts.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

bool IsEntry(const TreeNode& node) { return node.kind == NodeKind::File || node.kind == NodeKind::Folder; }

std::wstring KeyOf(std::wstring_view name, bool isFolder) { return (isFolder ? L'\\' : L'/') + PathKey(name); }

std::unique_ptr<TreeNode> NewNode(TreeNode& folder, std::wstring name, NodeKind kind) {
    auto node = std::make_unique<TreeNode>();
    node->name = std::move(name);
    node->kind = kind;
    node->parent = &folder;
    return node;
}

TreeNode* ChildNamed(const TreeNode& folder, std::wstring_view name) {
    const auto child = std::ranges::find_if(folder.children, [&](const std::unique_ptr<TreeNode>& each) {
        return IsEntry(*each) && PathEqualsIgnoreCase(each->name, name);
    });
    return child == folder.children.end() ? nullptr : child->get();
}

// The entries that are shown, and the notes about the others.
class Merging {
public:
    Merging(TreeNode& folder, bool keepsRest) : folder_(folder), keepsRest_(keepsRest) {
        for (std::unique_ptr<TreeNode>& child : folder_.children)
            if (child->kind == NodeKind::Draft)
                drafts_.push_back(std::move(child));
            else if (IsEntry(*child))
                old_.emplace(KeyOf(child->name, child->kind == NodeKind::Folder), std::move(child));
            else
                merge_.removed.push_back(std::move(child));
        folder_.children.clear();
        for (std::unique_ptr<TreeNode>& draft : drafts_) folder_.children.push_back(std::move(draft));
    }

    void Entry(const TreeEntry& entry) {
        const auto found = old_.find(KeyOf(entry.name, entry.isFolder));
        if (found == old_.end() || found->second == nullptr)
            return Add(NewNode(folder_, entry.name, entry.isFolder ? NodeKind::Folder : NodeKind::File));
        std::unique_ptr<TreeNode> node = std::move(found->second);
        if (node->name != entry.name) {
            node->name = entry.name;
            merge_.relabeled.push_back(node.get());
        }
        folder_.children.push_back(std::move(node));
    }

    void Note(std::wstring text, NodeKind kind) { Add(NewNode(folder_, std::move(text), kind)); }

    TreeMerge End() {
        for (auto& [key, node] : old_) {
            if (node == nullptr) continue;
            (keepsRest_ ? folder_.children : merge_.removed).push_back(std::move(node));
        }
        return std::move(merge_);
    }

private:
    void Add(std::unique_ptr<TreeNode> node) {
        merge_.added.push_back({node.get(), folder_.children.empty() ? nullptr : folder_.children.back().get()});
        folder_.children.push_back(std::move(node));
    }

    TreeNode& folder_;
    bool keepsRest_;
    std::vector<std::unique_ptr<TreeNode>> drafts_;
    std::unordered_map<std::wstring, std::unique_ptr<TreeNode>> old_;
    TreeMerge merge_;
};

}  // namespace

std::wstring TreePathOf(const TreeNode& node) {
    return node.parent == nullptr ? node.name : TreeJoin(TreePathOf(*node.parent), node.name);
}

TreeNode* TreeFindAbove(TreeNode* root, std::wstring_view path) {
    if (root == nullptr || !PathIsWithin(root->name, path)) return nullptr;
    const std::wstring rest = TreeRelative(root->name, path);
    TreeNode* folder = root;
    for (std::size_t from = 0;;) {
        const std::size_t slash = rest.find(L'\\', from);
        if (slash == std::wstring::npos) return folder;
        TreeNode* const next = ChildNamed(*folder, std::wstring_view{rest}.substr(from, slash - from));
        if (next == nullptr || next->kind != NodeKind::Folder) return folder;
        folder = next;
        from = slash + 1;
    }
}

TreeNode* TreeFind(TreeNode* root, std::wstring_view path) {
    while (path.ends_with(L'\\')) path.remove_suffix(1);
    TreeNode* const folder = TreeFindAbove(root, path);
    if (folder == nullptr) return nullptr;
    const std::wstring rest = TreeRelative(TreePathOf(*folder), path);
    return rest.empty() ? folder : ChildNamed(*folder, rest);
}

bool TreeIsBelow(const TreeNode* node, const TreeNode* ancestor) {
    while (node != nullptr && node != ancestor) node = node->parent;
    return node != nullptr;
}

void TreeForFolders(TreeNode* folder, const std::function<bool(const TreeNode&)>& goesOn,
                    const std::function<void(TreeNode&)>& visit) {
    if (folder == nullptr || folder->kind != NodeKind::Folder || !goesOn(*folder)) return;
    visit(*folder);
    for (const std::unique_ptr<TreeNode>& child : folder->children) TreeForFolders(child.get(), goesOn, visit);
}

TreeMerge TreeShowMore(TreeNode& folder, std::wstring_view wanted) {
    const TreeListing& listing = folder.listing;
    const std::size_t shown = std::min(folder.shown, listing.entries.size());
    Merging merging(folder, listing.more);
    if (!listing.readable) merging.Note(Text(L"(cannot be read)"), NodeKind::Note);
    std::size_t left = listing.entries.size() - shown;
    for (std::size_t i = 0; i < shown; ++i) merging.Entry(listing.entries[i]);
    for (std::size_t i = shown; i < listing.entries.size() && !wanted.empty(); ++i) {
        if (!PathEqualsIgnoreCase(listing.entries[i].name, wanted)) continue;
        merging.Entry(listing.entries[i]);
        --left;
    }
    if (left > 0 || listing.cut)
        merging.Note(TextWith(listing.cut ? English(L"({1} and more, not shown)") : English(L"({1} more...)"),
                              {std::to_wstring(left)}),
                     left > 0 ? NodeKind::More : NodeKind::Note);
    return merging.End();
}

TreeMerge TreeTakeListing(TreeNode& folder, TreeListing listing, std::wstring_view wanted) {
    folder.listing = std::move(listing);
    folder.state = folder.listing.more ? FolderState::Reading : FolderState::Read;
    TreeMerge merge = TreeShowMore(folder, wanted);
    // A folder that is shown whole needs its listing no more.
    if (folder.listing.entries.size() <= folder.shown) folder.listing.entries = {};
    return merge;
}

bool TreeFolderOpens(const TreeNode& folder) { return !folder.children.empty() || folder.stale; }

void TreeSortChildren(TreeNode& folder) {
    std::vector<TreeEntry> order;
    std::unordered_map<std::wstring, std::size_t> rank;
    for (const std::unique_ptr<TreeNode>& child : folder.children)
        if (IsEntry(*child)) order.push_back({child->name, child->kind == NodeKind::Folder});
    TreeSort(order);
    for (std::size_t i = 0; i < order.size(); ++i) rank[KeyOf(order[i].name, order[i].isFolder)] = i + 1;
    const auto rankOf = [&](const std::unique_ptr<TreeNode>& node) {
        if (node->kind == NodeKind::Draft) return std::size_t{0};
        return IsEntry(*node) ? rank[KeyOf(node->name, node->kind == NodeKind::Folder)] : order.size() + 1;
    };
    std::ranges::stable_sort(folder.children, {}, rankOf);
}

void TreeRequestAsk(TreeRequests& requests, TreeNode* folder) {
    if (std::ranges::find(requests.waiting, folder) != requests.waiting.end()) return;
    const bool read = std::ranges::any_of(requests.pending, [&](const auto& each) { return each.second == folder; });
    if (read)
        requests.again.insert(folder);
    else
        requests.waiting.push_back(folder);
}

std::optional<TreeReading> TreeRequestNext(TreeRequests& requests) {
    if (requests.waiting.empty() || requests.pending.size() >= kTreeMaxPending) return std::nullopt;
    TreeNode* const folder = requests.waiting.front();
    requests.waiting.pop_front();
    requests.pending[++requests.last] = folder;
    return TreeReading{requests.last, folder};
}

TreeNode* TreeRequestTake(TreeRequests& requests, std::uint64_t number, bool last) {
    const auto found = requests.pending.find(number);
    if (found == requests.pending.end()) return nullptr;
    TreeNode* const folder = found->second;
    if (!last) return folder;
    requests.pending.erase(found);
    if (folder != nullptr && requests.again.erase(folder) != 0) requests.waiting.push_back(folder);
    return folder;
}

void TreeRequestForget(TreeRequests& requests, const TreeNode* node) {
    for (auto& [number, folder] : requests.pending)
        if (TreeIsBelow(folder, node)) folder = nullptr;
    std::erase_if(
        requests.waiting, [&](const TreeNode* folder) { return TreeIsBelow(folder, node); });
    std::erase_if(requests.again, [&](const TreeNode* folder) { return TreeIsBelow(folder, node); });
}
