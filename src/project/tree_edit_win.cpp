// Names in the project tree: renames in place, and names what is new. What is read meanwhile waits, because a change of
// the tree would end the edit. UI thread.
#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "project/project.h"
#include "project/tree_actions.h"
#include "project/tree_internal.h"
#include "resources/ids.h"
#include "ui/control_theme.h"
#include "ui/message.h"

#include <memory>
#include <unordered_map>
#include <utility>

namespace {

bool IsFolderNode(const TreeNode& node) {
    return node.kind == NodeKind::Folder || (node.kind == NodeKind::Draft && g_tree.draftIsFolder);
}

// Opens the field over the item. `text` is what it holds at first.
void StartEdit(TreeNode& node, const std::wstring& text) {
    FocusRetryEnd();  // it would end the edit
    SetFocus(TreeWindow());
    TreeView_EnsureVisible(TreeWindow(), TreeItemOf(node));
    TreeView_SelectItem(TreeWindow(), TreeItemOf(node));
    g_tree.edited = &node;
    g_tree.mayEdit = true;
    const auto field = reinterpret_cast<HWND>(
        SendMessageW(TreeWindow(), TVM_EDITLABELW, 0, reinterpret_cast<LPARAM>(TreeItemOf(node))));
    g_tree.mayEdit = false;
    if (field == nullptr) {
        g_tree.edited = nullptr;
        return;
    }
    ControlApplyTheme(field);
    SetWindowTextW(field, text.c_str());
    SendMessageW(field, EM_SETSEL, 0, static_cast<LPARAM>(TreeStemLength(text, IsFolderNode(node))));
}

// The edit is over: what was read meanwhile is shown.
void EndEdited() {
    TreeNode* const node = std::exchange(g_tree.edited, nullptr);
    if (node != nullptr && node->kind == NodeKind::Draft) TreeRemove(*node);
    for (TreeListingPtr& listing : std::exchange(g_tree.held, {})) TreeOnListing(std::move(listing));
    TreeSettleSoon();
}

// The nodes and the control follow a file or folder that has another name.
void ShowNewName(TreeNode& node, const std::wstring& name) {
    node.name = name;
    TVITEMW set = {};
    set.mask = TVIF_TEXT;
    set.hItem = TreeItemOf(node);
    set.pszText = node.name.data();
    if (node.kind == NodeKind::File) {
        set.mask |= TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        set.iImage = set.iSelectedImage = static_cast<int>(TreePictureOf(name));
    }
    SendMessageW(TreeWindow(), TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
    TreeSortChildren(*node.parent);
    using Places = std::unordered_map<LPARAM, int>;
    Places places;
    for (const auto& child : node.parent->children)
        places.emplace(reinterpret_cast<LPARAM>(child.get()), static_cast<int>(places.size()));
    TVSORTCB sort = {};
    sort.hParent = TreeItemOf(*node.parent);
    sort.lParam = reinterpret_cast<LPARAM>(&places);
    sort.lpfnCompare = [](LPARAM a, LPARAM b, LPARAM all) -> int {
        const Places& order = *reinterpret_cast<const Places*>(all);
        return order.at(a) - order.at(b);
    };
    SendMessageW(TreeWindow(), TVM_SORTCHILDRENCB, 0, reinterpret_cast<LPARAM>(&sort));
    TreeView_EnsureVisible(TreeWindow(), TreeItemOf(node));
}

// After the edit has ended, nodes may be gone: the listings that waited are shown then.
void ReadFolderAgain(const std::wstring& path) {
    TreeNode* const folder = TreeFind(g_tree.top.get(), path);
    if (folder != nullptr && folder->kind == NodeKind::Folder) TreeReadAgain(*folder);
}

void TellFailedName(const wchar_t* what, const std::wstring& path, DWORD error) {
    EndEdited();
    ErrorMessage(L"%s", TreeFailure(what, path, error).c_str());
    SetFocus(TreeWindow());
    ReadFolderAgain(FolderOf(path));
}

void RenameTo(TreeNode& node, const std::wstring& name) {
    const std::wstring folder = TreePathOf(*node.parent);
    const std::wstring from = TreePathOf(node);
    const std::wstring to = TreeJoin(folder, name);
    const DWORD error = TreeFileMove(from, to);
    if (error != 0) return TellFailedName(Text(L"could not be renamed"), from, error);
    ShowNewName(node, name);
    FilesFollowRename(from, to);  // which tells all that know files by their paths
    EndEdited();
    ReadFolderAgain(folder);  // the filters may hide the new name
    ProjectFollowRename(from, to);
}

void CreateNamed(const TreeNode& draft, const std::wstring& name) {
    const std::wstring folder = TreePathOf(*draft.parent);
    const std::wstring path = TreeJoin(folder, name);
    const bool isFolder = g_tree.draftIsFolder;
    const DWORD error = TreeFileCreate(path, isFolder);
    if (error != 0) return TellFailedName(Text(L"could not be made"), path, error);
    EndEdited();
    ReadFolderAgain(folder);
    TreeReveal(path, true);
    if (isFolder) return;
    FileOpen(path.c_str());
    QueueFocusCurrentEditor();
}

void BeginDraft(TreeNode& folder, bool isFolder) {
    auto draft = std::make_unique<TreeNode>();
    draft->kind = NodeKind::Draft;
    draft->parent = &folder;
    g_tree.draftIsFolder = isFolder;
    TreeInsert(*draft, nullptr);
    TreeNode& node = *draft;
    folder.children.insert(folder.children.begin(), std::move(draft));
    TVITEMW sign = {};
    sign.mask = TVIF_CHILDREN;
    sign.hItem = TreeItemOf(folder);
    sign.cChildren = 1;
    SendMessageW(TreeWindow(), TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&sign));
    TreeView_Expand(TreeWindow(), TreeItemOf(folder), TVE_EXPAND);
    StartEdit(node, {});
    if (g_tree.edited == nullptr) TreeRemove(node);
}

}  // namespace

void TreeRename(TreeNode* node) {
    if (TreeCommandsOf(node).change && g_tree.edited == nullptr) StartEdit(*node, node->name);
}

void TreeNew(TreeNode* node, bool isFolder) {
    const TreeNode* const folder = TreeFolderFor(node != nullptr ? node : g_tree.top.get());
    if (folder == nullptr || g_tree.edited != nullptr) return;
    g_tree.newIn = TreePathOf(*folder);
    g_tree.draftIsFolder = isFolder;
    TreeOpenFolder(const_cast<TreeNode&>(*folder));
    TreeNewGoesOn();
}

void TreeNewGoesOn() {
    if (g_tree.newIn.empty() || g_tree.edited != nullptr) return;
    TreeNode* const folder = TreeFind(g_tree.top.get(), g_tree.newIn);
    if (folder != nullptr && folder->kind == NodeKind::Folder && folder->state != FolderState::Read) return;
    g_tree.newIn.clear();
    if (folder != nullptr && folder->kind == NodeKind::Folder) BeginDraft(*folder, g_tree.draftIsFolder);
}

// A second click on a name does not begin a change: it is more often meant to open the file.
bool TreeMayEdit() { return g_tree.mayEdit; }

void TreeOnEdited(const wchar_t* text) {
    g_tree.cancelled = text == nullptr;
    g_tree.typed = text != nullptr ? text : L"";
    PostMessageW(TreeWindow(), MSG_TREE_NAMED, 0, 0);
}

void TreeOnNamed() {
    TreeNode* const node = g_tree.edited;
    if (node == nullptr) return;
    const std::wstring name = TreeNameTyped(g_tree.typed);
    const bool isDraft = node->kind == NodeKind::Draft;
    if (g_tree.cancelled || (isDraft ? name.empty() : name == node->name)) return EndEdited();
    const std::wstring problem = TreeNameProblem(TreePathOf(*node->parent), name);
    if (!problem.empty()) {
        ErrorMessage(L"%s\n\n%s", name.c_str(), problem.c_str());
        if (g_tree.edited == node) StartEdit(*node, g_tree.typed);
        return;
    }
    isDraft ? CreateNamed(*node, name) : RenameTo(*node, name);
}

void TreeEndEdit() {
    if (g_tree.edited == nullptr) return;
    TreeView_EndEditLabelNow(TreeWindow(), TRUE);
    EndEdited();
}
