// The context menu and the keys of the project tree. UI thread.
#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "project/project_tree.h"
#include "project/tree_actions.h"
#include "project/tree_internal.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/clipboard.h"
#include "ui/menu.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <shellapi.h>

#include <string>

namespace {

enum TreeMenuCommand : UINT {
    kTreeOpen = 1,
    kTreeNewFile,
    kTreeNewFolder,
    kTreeRename,
    kTreeDelete,
    kTreeCopyPath,
    kTreeCopyRelative,
    kTreeExplore,
    kTreeSearch,
    kTreeSources,
    kTreeHidden,
    kTreeBinaries,
    kTreeGitIgnore,
    kTreeFollow,
    kTreeRevealActive,
    kTreeRefresh,
};

struct TreeToggle {
    UINT command;
    std::int32_t Settings::*setting;
};
constexpr TreeToggle kToggles[] = {{kTreeSources, &Settings::treeSourcesOnly},
                                   {kTreeHidden, &Settings::treeHidden},
                                   {kTreeBinaries, &Settings::treeBinaries},
                                   {kTreeGitIgnore, &Settings::treeGitIgnore},
                                   {kTreeFollow, &Settings::treeFollowsTab}};

bool ToggleOf(UINT command) {
    for (const TreeToggle& toggle : kToggles) {
        if (toggle.command != command) continue;
        SettingsChange([&](Settings& settings) { settings.*toggle.setting = settings.*toggle.setting != 0 ? 0 : 1; });
        SettingsSave(nullptr);
        return true;
    }
    return false;
}

void Explore(const std::wstring& path) {
    const std::wstring parameters = L"/select,\"" + path + L"\"";
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(g_ui.hMainWnd, L"open", L"explorer.exe", parameters.c_str(), nullptr, SW_SHOWNORMAL));
    if (result <= 32) ErrorMessage(Text(L"The Explorer could not be started (error %d)."), static_cast<int>(result));
}

void SearchIn(const TreeNode* node) {
    const TreeNode* const folder = TreeFolderFor(node);
    if (folder != nullptr) g_events.searchFolderWanted(TreePathOf(*folder).c_str());
}

// Messages were handled while the menu was open, so the node is looked for again.
void RunTreeCommand(UINT command, const std::wstring& path) {
    TreeNode* const node = path.empty() ? nullptr : TreeFind(g_tree.top.get(), path);
    switch (command) {
        case kTreeOpen: TreeOpenItem(node); break;
        case kTreeNewFile: TreeNew(node, false); break;
        case kTreeNewFolder: TreeNew(node, true); break;
        case kTreeRename: TreeRename(node); break;
        case kTreeDelete: TreeDelete(node); break;
        case kTreeCopyPath: ClipboardPutText(g_ui.hMainWnd, path); break;
        case kTreeCopyRelative: ClipboardPutText(g_ui.hMainWnd, TreeRelative(g_tree.root, path)); break;
        case kTreeExplore: Explore(path); break;
        case kTreeSearch: SearchIn(node); break;
        case kTreeRevealActive: ProjectTreeRevealActive(); break;
        case kTreeRefresh: ProjectTreePopulate(); break;
        default: ToggleOf(command); break;
    }
}

// Where the menu comes up, and the item that it is for: the one below the mouse, or the selected one.
POINT MenuPlace(POINT at) {
    if (at.x != -1 || at.y != -1) {
        TVHITTESTINFO hit = {.pt = at, .flags = 0, .hItem = nullptr};
        ScreenToClient(TreeWindow(), &hit.pt);
        const HTREEITEM item = TreeView_HitTest(TreeWindow(), &hit);
        // Beside the items the menu is for the root.
        TreeView_SelectItem(TreeWindow(), item != nullptr ? item : TreeView_GetRoot(TreeWindow()));
        return at;
    }
    RECT rect = {};
    const HTREEITEM selected = TreeView_GetSelection(TreeWindow());
    if (selected != nullptr) TreeView_EnsureVisible(TreeWindow(), selected);
    const bool known = selected != nullptr && TreeView_GetItemRect(TreeWindow(), selected, &rect, TRUE) != FALSE;
    POINT place = {known ? rect.left : 0, known ? rect.bottom : 0};
    ClientToScreen(TreeWindow(), &place);
    return place;
}

}  // namespace

void TreeOpenItem(TreeNode* node) {
    if (!TreeCommandsOf(node).open) return;
    FileOpen(TreePathOf(*node).c_str());
    QueueFocusCurrentEditor();
}

void TreeShowMenu(POINT screen) {
    const POINT at = MenuPlace(screen);
    TreeNode* const node = TreeSelected();
    const TreeItemCommands can = TreeCommandsOf(node);
    const Settings& settings = g_settings;
    const bool hasFile = IsTabIndex(g_documents.activeTab) && TabAt(g_documents.activeTab).hasFile;
    const MenuItem items[] = {
        {.id = kTreeOpen, .text = Text(L"&Open\tEnter"), .enabled = can.open},
        {},
        {.id = kTreeNewFile, .text = Text(L"&New File...\tIns"), .enabled = can.create},
        {.id = kTreeNewFolder, .text = Text(L"New Fol&der...\tShift+Ins"), .enabled = can.create},
        {.id = kTreeRename, .text = Text(L"Rena&me\tF2"), .enabled = can.change},
        {.id = kTreeDelete, .text = Text(L"De&lete...\tDel"), .enabled = can.change},
        {},
        {.id = kTreeCopyPath, .text = Text(L"&Copy Path\tCtrl+C"), .enabled = can.place},
        {.id = kTreeCopyRelative, .text = Text(L"Copy Relati&ve Path"), .enabled = can.change},
        {.id = kTreeExplore, .text = Text(L"Reveal in E&xplorer"), .enabled = can.place},
        {.id = kTreeSearch, .text = Text(L"&Find in This Folder..."), .enabled = can.create},
        {},
        {.id = kTreeSources, .text = Text(L"&Source Files Only"), .checked = settings.treeSourcesOnly != 0},
        {.id = kTreeHidden, .text = Text(L"&Hidden Files"), .checked = settings.treeHidden != 0},
        {.id = kTreeBinaries,
         .text = Text(L"&Binaries"),
         .enabled = settings.treeSourcesOnly == 0,
         .checked = settings.treeBinaries != 0},
        {.id = kTreeGitIgnore, .text = Text(L"Respect .&gitignore"), .checked = settings.treeGitIgnore != 0},
        {},
        {.id = kTreeFollow, .text = Text(L"Follow Active &Tab"), .checked = settings.treeFollowsTab != 0},
        {.id = kTreeRevealActive, .text = Text(L"Reveal &Active File\tAlt+Shift+E"), .enabled = hasFile},
        {.id = kTreeRefresh, .text = Text(L"&Refresh\tCtrl+R")}};
    const std::wstring path = can.create ? TreePathOf(can.place ? *node : *TreeFolderFor(node)) : std::wstring{};
    const UINT command = ShowPopupMenu(TreeWindow(), items, at);
    if (command != 0) RunTreeCommand(command, path);
}

bool TreeOnKey(WPARAM key) {
    TreeNode* const node = TreeSelected();
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (control || GetKeyState(VK_MENU) < 0) return false;
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    switch (key) {
        case VK_INSERT: TreeNew(node, shift); return true;
        case VK_F2:
            if (!shift) TreeRename(node);
            return true;
        case VK_DELETE:
            if (!shift) TreeDelete(node);
            return true;
        case VK_ESCAPE: FocusEditorFromPane(); return true;
        default: return false;
    }
}

bool TreeOnCharacter(WPARAM character) {
    constexpr WPARAM kCtrlC = 'C' - '@', kCtrlR = 'R' - '@';
    if (character == kCtrlR) ProjectTreePopulate();
    if (character == kCtrlC)
        if (const TreeNode* node = TreeSelected(); TreeCommandsOf(node).place)
            ClipboardPutText(g_ui.hMainWnd, TreePathOf(*node));
    return character == kCtrlR || character == kCtrlC;
}
