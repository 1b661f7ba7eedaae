// Keeps the control of the project tree like its nodes: reads folders, takes over what was read, follows changes, marks
// and finds the active document's file. UI thread.
#include "base/events.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "project/project.h"
#include "project/tree_internal.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/redraw.h"

#include <algorithm>
#include <utility>

TreeState g_tree;

namespace {

// With more changes, the folder is closed meanwhile: each item that comes or goes in an open one costs time that grows
// with the number of the others.
constexpr std::size_t kManyChanges = 64;
constexpr std::size_t kMostReopened = 500;  // folders, because each is read

LRESULT AskTree(UINT message, WPARAM wParam, LPARAM lParam) {
    return SendMessageW(TreeWindow(), message, wParam, lParam);
}

void SetSign(const TreeNode& folder) {
    TVITEMW set = {};
    set.mask = TVIF_CHILDREN;
    set.hItem = TreeItemOf(folder);
    set.cChildren = folder.state == FolderState::Unread || TreeFolderOpens(folder) ? 1 : 0;
    AskTree(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
}

void SetText(TreeNode& node) {
    TVITEMW set = {};
    set.mask = TVIF_TEXT;
    set.hItem = TreeItemOf(node);
    set.pszText = node.name.data();
    AskTree(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
}

void SetBold(const TreeNode& node, bool bold) {
    TVITEMW set = {};
    set.mask = TVIF_STATE;
    set.hItem = TreeItemOf(node);
    set.stateMask = TVIS_BOLD;
    set.state = bold ? TVIS_BOLD : 0;
    AskTree(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
}

bool IsShown(const TreeNode& node) {
    for (const TreeNode* folder = node.parent; folder != nullptr; folder = folder->parent)
        if (!TreeIsOpen(*folder)) return false;
    return true;
}

// The node is about to be destroyed, with all below it.
void ForgetNode(const TreeNode& node) {
    TreeRequestForget(g_tree.requests, &node);
    if (TreeIsBelow(g_tree.marked, &node)) g_tree.marked = nullptr;
    if (TreeIsBelow(g_tree.tipNode, &node)) g_tree.tipNode = nullptr;
    if (TreeIsBelow(g_tree.edited, &node)) g_tree.edited = nullptr;
}

int PictureOfNode(const TreeNode& node) {
    switch (node.kind) {
        case NodeKind::File: return static_cast<int>(TreePictureOf(node.name));
        case NodeKind::Folder: return I_IMAGECALLBACK;  // open or closed
        case NodeKind::Draft: return static_cast<int>(g_tree.draftIsFolder ? TreePicture::Folder : TreePicture::Other);
        case NodeKind::Note:
        case NodeKind::More: break;
    }
    return static_cast<int>(TreePicture::None);
}

// --- Reading

void ShowReading(TreeNode& folder) {
    folder.state = FolderState::Reading;
    auto note = std::make_unique<TreeNode>();
    note->name = Text(L"Reading...");
    note->kind = NodeKind::Note;
    note->parent = &folder;
    TreeInsert(*note, nullptr);
    folder.children.push_back(std::move(note));
}

void ReadNext() {
    while (const std::optional<TreeReading> reading = TreeRequestNext(g_tree.requests)) {
        reading->folder->stale = false;
        if (TreeReaderStart(TreeWindow(), MSG_TREE_ITEMS, reading->number, TreePathOf(*reading->folder), g_tree.filter,
                            ProjectExcludedFolders()))
            continue;
        AppLogMsg(L"FAIL: ProjectTree could not start reading, pending=%d",
                  static_cast<int>(g_tree.requests.pending.size()));
        TreeRequestTake(g_tree.requests, reading->number, true);
        reading->folder->stale = true;  // opening it again tries again
        return;
    }
}

// --- Taking over a listing

// The name in this folder that is shown although the folder has too many: of the active file, or what is looked for.
std::wstring WantedName(const TreeNode& folder) {
    const std::wstring path = TreePathOf(folder);
    std::wstring wanted = g_tree.reveal;
    if (wanted.empty() && IsTabIndex(g_documents.activeTab)) wanted = TabAt(g_documents.activeTab).path;
    if (!PathIsWithin(path, wanted)) return {};
    const std::wstring rest = TreeRelative(path, wanted);
    return rest.substr(0, rest.find(L'\\'));
}

// What is selected and what is at the top of the view.
struct TreeView {
    TreeNode* selected;
    TreeNode* first;
};

TreeView ViewNow() {
    return {TreeSelected(), TreeNodeOf(reinterpret_cast<HTREEITEM>(AskTree(TVM_GETNEXTITEM, TVGN_FIRSTVISIBLE, 0)))};
}

void RestoreTreeView(const TreeView& view) {
    if (view.selected != nullptr) AskTree(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(view.selected->item));
    if (view.first != nullptr) AskTree(TVM_SELECTITEM, TVGN_FIRSTVISIBLE, reinterpret_cast<LPARAM>(view.first->item));
}

void ApplyMerge(TreeNode& folder, const TreeMerge& merge) {
    const bool many = merge.removed.size() + merge.added.size() > kManyChanges && TreeIsOpen(folder);
    TreeView view = ViewNow();
    for (const auto& gone : merge.removed) {
        if (TreeIsBelow(view.selected, gone.get())) view.selected = nullptr;
        if (TreeIsBelow(view.first, gone.get())) view.first = nullptr;
    }
    {
        const RedrawPause pause(TreeWindow());
        if (many) AskTree(TVM_EXPAND, TVE_COLLAPSE, reinterpret_cast<LPARAM>(folder.item));
        for (const auto& gone : merge.removed) {
            ForgetNode(*gone);
            AskTree(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(gone->item));
        }
        for (const TreeMerge::Added& added : merge.added) TreeInsert(*added.node, added.after);
        for (TreeNode* node : merge.relabeled) SetText(*node);
        SetSign(folder);
        if (many) {
            AskTree(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(folder.item));
            RestoreTreeView(view);
        }
    }
    InvalidateRect(TreeWindow(), nullptr, TRUE);
}

// The folders below that are open are opened again when they come back: the root may be on a drive that was unplugged.
void RememberOpenFolders(TreeNode& folder) {
    TreeForFolders(
        &folder, TreeIsOpen,
        [&](TreeNode& open) {
            if (&open != &folder && g_tree.reopen.size() < kMostReopened)
                g_tree.reopen.insert(PathKey(TreePathOf(open)));
        });
}

void ReopenAdded(const TreeMerge& merge) {
    if (g_tree.reopen.empty()) return;
    for (const TreeMerge::Added& added : merge.added)
        if (added.node->kind == NodeKind::Folder && g_tree.reopen.erase(PathKey(TreePathOf(*added.node))) != 0)
            TreeOpenFolder(*added.node);
}

// --- Finding a file

void EndReveal(const wchar_t* why) {
    if (std::exchange(g_tree.revealTells, false) && why != nullptr)
        g_events.statusText(FormatW(why, std::wstring{FileNameOf(g_tree.reveal)}.c_str()).c_str());
    g_tree.reveal.clear();
}

bool IsBeingRead(const TreeNode& folder) {
    const auto& requests = g_tree.requests;
    return std::ranges::any_of(requests.pending, [&](const auto& each) { return each.second == &folder; }) ||
           std::ranges::find(requests.waiting, &folder) != requests.waiting.end();
}

void GoOnRevealing() {
    while (!g_tree.reveal.empty() && g_tree.edited == nullptr) {
        if (const TreeNode* node = TreeFind(g_tree.top.get(), g_tree.reveal); node != nullptr) {
            AskTree(TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(node->item));
            AskTree(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node->item));
            return EndReveal(nullptr);
        }
        TreeNode* const folder = TreeFindAbove(g_tree.top.get(), g_tree.reveal);
        if (folder == nullptr) return EndReveal(Text(L"%s is not in the project folder"));
        if (folder->state == FolderState::Unread || folder->stale) TreeOpenFolder(*folder);
        if (IsBeingRead(*folder)) return;
        const std::size_t before = folder->children.size();
        const bool hasMore = before > 0 && folder->children.back()->kind == NodeKind::More;
        if (hasMore) ApplyMerge(*folder, TreeShowMore(*folder, WantedName(*folder)));
        if (!hasMore || folder->children.size() == before)
            return EndReveal(Text(L"%s is not shown in the project tree (the tree's menu says what it shows)"));
    }
}

std::vector<std::wstring> ShownFolders() {
    std::vector<std::wstring> folders;
    TreeForFolders(g_tree.top.get(), TreeIsOpen, [&](TreeNode& folder) { folders.push_back(TreePathOf(folder)); });
    return folders;
}

}  // namespace

TreeNode* TreeNodeOf(HTREEITEM item) {
    if (item == nullptr) return nullptr;
    TVITEMW get = {};
    get.mask = TVIF_PARAM;
    get.hItem = item;
    return AskTree(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get)) != 0 ? reinterpret_cast<TreeNode*>(get.lParam)
                                                                         : nullptr;
}

TreeNode* TreeSelected() { return TreeNodeOf(TreeView_GetSelection(TreeWindow())); }

bool TreeIsOpen(const TreeNode& folder) {
    return (AskTree(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(folder.item), TVIS_EXPANDED) & TVIS_EXPANDED) != 0;
}

void TreeInsert(TreeNode& node, const TreeNode* after) {
    std::wstring label = node.parent == nullptr ? TreeRootLabel(node.name) : node.name;
    TVINSERTSTRUCTW insert = {};
    insert.hParent = node.parent == nullptr ? TVI_ROOT : TreeItemOf(*node.parent);
    insert.hInsertAfter = after == nullptr ? TVI_FIRST : TreeItemOf(*after);
    insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    insert.item.pszText = label.data();
    insert.item.lParam = reinterpret_cast<LPARAM>(&node);
    insert.item.cChildren = node.kind == NodeKind::Folder ? 1 : 0;
    insert.item.iImage = insert.item.iSelectedImage = PictureOfNode(node);
    node.item = reinterpret_cast<TreeItemHandle>(AskTree(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void TreeRemove(TreeNode& node) {
    ForgetNode(node);
    AskTree(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(node.item));
    if (TreeNode* const folder = node.parent; folder != nullptr) {
        std::erase_if(folder->children, [&](const auto& child) { return child.get() == &node; });
        SetSign(*folder);
    }
}

void TreeForgetAll() {
    TreeEndEdit();
    if (g_tree.top != nullptr) {
        ForgetNode(*g_tree.top);
        TreeView_DeleteAllItems(TreeWindow());
    }
    g_tree.top.reset();
    g_tree.reopen.clear();
    g_tree.reveal.clear();
    g_tree.held.clear();
    g_tree.newIn.clear();
}

void TreeReadAgain(TreeNode& folder) {
    TreeRequestAsk(g_tree.requests, &folder);
    ReadNext();
}

void TreeOnExpanding(TreeNode& folder) {
    if (folder.state == FolderState::Unread)
        ShowReading(folder);
    else if (!folder.stale)
        return;
    TreeReadAgain(folder);
    TreeSettleSoon();
}

void TreeOpenFolder(TreeNode& folder) {
    TreeOnExpanding(folder);
    AskTree(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(folder.item));
    TreeSettleSoon();
}

void TreeReadShownAgain() {
    const auto wasRead = [](const TreeNode& folder) { return folder.state != FolderState::Unread; };
    TreeForFolders(
        g_tree.top.get(), wasRead,
        [](TreeNode& folder) {
            folder.stale = true;
            SetSign(folder);
        });
    TreeForFolders(g_tree.top.get(), TreeIsOpen, [](TreeNode& folder) { TreeRequestAsk(g_tree.requests, &folder); });
    if (g_tree.top != nullptr) TreeRequestAsk(g_tree.requests, g_tree.top.get());
    ReadNext();
}

void TreeOnListing(TreeListingPtr listing) {
    if (g_tree.edited != nullptr) return g_tree.held.push_back(std::move(listing));
    TreeNode* const folder = TreeRequestTake(g_tree.requests, listing->request, !listing->more);
    if (folder != nullptr) {
        const bool first = folder->state == FolderState::Reading;
        if (!listing->readable) RememberOpenFolders(*folder);
        const TreeMerge merge = TreeTakeListing(*folder, std::move(*listing), WantedName(*folder));
        ApplyMerge(*folder, merge);
        if (first) AskTree(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(folder->item));  // the note's end closed it
        ReopenAdded(merge);
        TreeSettleSoon();
    }
    ReadNext();
}

void TreeShowNextPage(TreeNode& folder) {
    folder.shown += kTreePage;
    const TreeMerge merge = TreeShowMore(folder, WantedName(folder));
    ApplyMerge(folder, merge);
    if (!merge.added.empty())
        AskTree(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(merge.added.front().node->item));
    TreeSettleSoon();
}

void TreeOnChanges(const TreeChanges& changes) {
    if (changes.number != g_tree.watch || g_tree.top == nullptr) return;
    if (changes.all) return TreeReadShownAgain();
    for (const std::wstring& path : changes.folders) {
        TreeNode* const folder = TreeFind(g_tree.top.get(), path);
        if (folder == nullptr || folder->kind != NodeKind::Folder || folder->state == FolderState::Unread) continue;
        folder->stale = true;
        if (IsShown(*folder) && TreeIsOpen(*folder))
            TreeReadAgain(*folder);
        else
            SetSign(*folder);
    }
}

void TreeReveal(const std::wstring& path, bool tells) {
    g_tree.reveal = path;
    g_tree.revealTells = tells;
    GoOnRevealing();
}

void TreeMarkActive(bool select) {
    if (g_tree.top == nullptr) return;
    const DocumentTab* const tab = IsTabIndex(g_documents.activeTab) ? &TabAt(g_documents.activeTab) : nullptr;
    TreeNode* const node = tab != nullptr && tab->hasFile ? TreeFind(g_tree.top.get(), tab->path) : nullptr;
    if (node != g_tree.marked) {
        if (g_tree.marked != nullptr) SetBold(*g_tree.marked, false);
        g_tree.marked = node;
        if (node != nullptr) SetBold(*node, true);
    }
    if (select && node != nullptr && g_tree.edited == nullptr && IsShown(*node))
        AskTree(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node->item));
}

void TreeSettleSoon() {
    if (!std::exchange(g_tree.settles, true)) PostMessageW(TreeWindow(), MSG_TREE_SETTLE, 0, 0);
}

void TreeOnSettle() {
    g_tree.settles = false;
    // A file that is marked for the first time is selected, unless the user has selected another one.
    const TreeNode* const selected = TreeSelected();
    TreeMarkActive(g_tree.marked == nullptr && (selected == nullptr || selected->parent == nullptr));
    GoOnRevealing();
    TreeNewGoesOn();
    TreeWatchFolders(ShownFolders());
}
