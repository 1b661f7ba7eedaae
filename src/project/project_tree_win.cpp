// The project tree: a tree view whose folders are read, each when it is first opened, by a reader thread. Knows files
// only by their names; opening one is a file command. UI thread.
#include "project/project_tree.h"

#include "base/events.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "project/tree_actions.h"
#include "project/tree_icons.h"
#include "project/tree_internal.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/late_size.h"
#include "ui/message.h"
#include "ui/paint.h"
#include "ui/panes.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <windowsx.h>

#include <memory>
#include <string>
#include <utility>

namespace {

constexpr int kTreeIndent = 19;  // at 96 dpi

TreeFilter FilterOfSettings() {
    return {.sourcesOnly = g_settings.treeSourcesOnly != 0,
            .hidden = g_settings.treeHidden != 0,
            .binaries = g_settings.treeBinaries != 0,
            .gitIgnore = g_settings.treeGitIgnore != 0};
}

void RenewPictures() {
    const HIMAGELIST icons = TreeIconsCreate(g_ui.dpi, ThemeCurrentChrome());
    if (icons == nullptr) return;
    TreeView_SetImageList(TreeWindow(), icons, TVSIL_NORMAL);
    TreeView_SetIndent(TreeWindow(), UiScaled(kTreeIndent));  // larger pictures have made it larger for good
    if (g_tree.icons != nullptr) ImageList_Destroy(g_tree.icons);
    g_tree.icons = icons;
}

// While the tree is hidden nothing is watched; what has changed is read when it is shown again.
void OnTreeHidden() {
    TreeWatchEnd();
    g_tree.watch = 0;
    g_tree.stale = true;
}

void OnTreeDestroy(HWND window) {
    TreeWatchEnd();
    WorkerDropPosts<TreeListingPtr>(window, MSG_TREE_ITEMS);
    WorkerDropPosts<std::unique_ptr<TreeChanges>>(window, MSG_TREE_CHANGED);
    TreeTipDestroy();
    if (g_tree.icons != nullptr) ImageList_Destroy(g_tree.icons);
    g_tree = {};
}

// False when the message is not one of the tree's own.
bool RouteTreeMessage(UINT message, WPARAM wParam) {
    switch (message) {
        case MSG_TREE_ITEMS: TreeOnListing(WorkerTake<TreeListingPtr>(wParam)); return true;
        case MSG_TREE_CHANGED: TreeOnChanges(*WorkerTake<std::unique_ptr<TreeChanges>>(wParam)); return true;
        case MSG_TREE_SETTLE: TreeOnSettle(); return true;
        case MSG_TREE_NAMED: TreeOnNamed(); return true;
        default: return false;
    }
}

LRESULT OnTreeMoved(HWND window, WPARAM wParam, LPARAM lParam) {
    const LRESULT moved = SubclassNext(window, WM_WINDOWPOSCHANGED, wParam, lParam);
    const UINT flags = reinterpret_cast<const WINDOWPOS*>(lParam)->flags;
    if ((flags & SWP_HIDEWINDOW) != 0) OnTreeHidden();
    if ((flags & SWP_SHOWWINDOW) != 0 && g_tree.stale) ProjectTreePopulate();
    if ((flags & SWP_NOSIZE) == 0 && g_tree.top == nullptr)
        InvalidateRect(window, nullptr, TRUE);  // the hint is centred
    return moved;
}

LRESULT CALLBACK ProjectTreeSubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (RouteTreeMessage(message, wParam) || TreeDragMessage(message)) return 0;
    switch (message) {
        case WM_CONTEXTMENU: TreeShowMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_KEYDOWN:
            if (TreeOnKey(wParam)) return 0;
            break;
        case WM_SYSKEYDOWN:  // under Wine the control makes no WM_CONTEXTMENU of Shift+F10
            if (wParam != VK_F10 || GetKeyState(VK_SHIFT) >= 0) break;
            TreeShowMenu({-1, -1});
            return 0;
        case WM_CHAR:
            if (TreeOnCharacter(wParam)) return 0;
            break;
        case WM_CTLCOLOREDIT:
            return ControlColours(reinterpret_cast<HDC>(wParam), ThemeCurrentChrome().paneText,
                                  ThemeCurrentChrome().paneBack);
        case WM_MOUSEMOVE: TreeTipOnMouse({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); break;
        case WM_NOTIFYFORMAT:  // the tree itself may tell the tooltip to ask for narrow text
            if (g_tree.tip != nullptr && reinterpret_cast<HWND>(wParam) == g_tree.tip) return NFR_UNICODE;
            break;
        case WM_NOTIFY:
            if (TreeTipText(*reinterpret_cast<NMHDR*>(lParam))) return 0;
            break;
        case WM_WINDOWPOSCHANGED: return OnTreeMoved(window, wParam, lParam);
        case WM_NCDESTROY: OnTreeDestroy(window); break;
        default: break;
    }
    return SubclassNext(window, message, wParam, lParam);
}

// A tree without a folder says how it gets one.
void DrawTreeHint(HDC dc) {
    RECT area = {};
    GetClientRect(TreeWindow(), &area);
    InflateRect(&area, -UiScaled(12), -UiScaled(12));
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ThemeQuietText());
    DrawTextW(dc, Text(L"Choose a folder with Project > Choose Project Folder to see its files here."), -1, &area,
              DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, oldFont);
}

// In the dark theme the system's light bar of a selection without the focus would hide the light text on it. What is no
// file is quiet.
LRESULT ColourTreeItem(NMTVCUSTOMDRAW& draw) {
    const bool empty = g_tree.top == nullptr;
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return empty ? CDRF_NOTIFYPOSTPAINT : CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage == CDDS_POSTPAINT && empty) DrawTreeHint(draw.nmcd.hdc);
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const auto* const node = reinterpret_cast<const TreeNode*>(draw.nmcd.lItemlParam);
    const bool selected = (draw.nmcd.uItemState & CDIS_SELECTED) != 0;
    const bool entry = node == nullptr || node->kind == NodeKind::File || node->kind == NodeKind::Folder;
    if (!entry && !selected) draw.clrText = ThemeQuietText();
    if (!selected || !ThemeDrawsControls()) return CDRF_DODEFAULT;
    draw.clrText = chrome.paneText;
    draw.clrTextBk = GetFocus() == TreeWindow() ? chrome.selected : chrome.hover;
    return CDRF_DODEFAULT;
}

// A folder's picture, when it is painted.
void GivePicture(NMTVDISPINFOW& wanted) {
    const bool open = (TreeView_GetItemState(TreeWindow(), wanted.item.hItem, TVIS_EXPANDED) & TVIS_EXPANDED) != 0;
    const int picture = static_cast<int>(open ? TreePicture::FolderOpen : TreePicture::Folder);
    if ((wanted.item.mask & TVIF_IMAGE) != 0) wanted.item.iImage = picture;
    if ((wanted.item.mask & TVIF_SELECTEDIMAGE) != 0) wanted.item.iSelectedImage = picture;
}

void EnterTreeItem(TreeNode* node, bool toggles) {
    switch (TreeEnterOn(node)) {
        case TreeEnter::OpenFile: TreeOpenItem(node); break;
        case TreeEnter::ShowMore: TreeShowNextPage(*node->parent); break;
        case TreeEnter::Toggle:
            if (toggles) TreeView_Expand(TreeWindow(), TreeItemOf(*node), TVE_TOGGLE);
            break;
        case TreeEnter::Nothing: break;
    }
}

}  // namespace

HWND ProjectTreeCreate(HWND parent, int controlId) {
    const HWND window = CreateWindowExW(
        0, WC_TREEVIEWW, L"",
        WS_CHILD | WS_TABSTOP | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS | TVS_EDITLABELS | TVS_NOTOOLTIPS,
        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (window == nullptr) {
        AppLogMsg(L"FAIL: ProjectTreeCreate error=%lu", GetLastError());
        return nullptr;
    }
    if (SubclassAdd(window, ProjectTreeSubclassProc) == FALSE) AppLogMsg(L"FAIL: ProjectTreeCreate could not subclass");
    SizeLate(window, SizeWaits::InSlowDrag);
    return window;
}

void ProjectTreePopulate() {
    if (TreeWindow() == nullptr) return;
    // Nothing is read for a tree that is not shown: most people never open it, and every start would pay for it.
    g_tree.stale = (GetWindowLongW(TreeWindow(), GWL_STYLE) & WS_VISIBLE) == 0;
    if (g_tree.stale) return;
    if (std::exchange(g_tree.picturesStale, false)) RenewPictures();
    const std::wstring root = TreeRootOf(g_settings.projectRoot);
    const TreeFilter filter = FilterOfSettings();
    const bool otherWatch = g_tree.watch == 0 || root != g_tree.root || filter.gitIgnore != g_tree.filter.gitIgnore;
    g_tree.filter = filter;
    if (root == g_tree.root && g_tree.top != nullptr) {
        TreeReadShownAgain();
    } else {
        TreeForgetAll();
        g_tree.root = root;
    }
    if (otherWatch)
        g_tree.watch = root.empty() ? 0 : TreeWatchStart(TreeWindow(), MSG_TREE_CHANGED, root, filter.gitIgnore);
    if (g_tree.top == nullptr && !root.empty()) {
        g_tree.top = std::make_unique<TreeNode>();
        g_tree.top->name = root;
        g_tree.top->kind = NodeKind::Folder;
        TreeInsert(*g_tree.top, nullptr);
        TreeOpenFolder(*g_tree.top);
    }
    if (root.empty()) TreeWatchEnd();
    TreeSettleSoon();
    ProjectTreeOnActive();
}

void ProjectTreeOnActive() {
    if (TreeWindow() == nullptr || g_tree.stale || g_tree.top == nullptr) return;
    TreeMarkActive(true);
    const bool hasFile = IsTabIndex(g_documents.activeTab) && TabAt(g_documents.activeTab).hasFile;
    if (g_settings.treeFollowsTab != 0 && hasFile && PathIsWithin(g_tree.root, TabAt(g_documents.activeTab).path))
        TreeReveal(TabAt(g_documents.activeTab).path, false);
}

void ProjectTreeOnProject() {
    if (g_tree.top != nullptr && !g_tree.stale) TreeReadShownAgain();
}

void ProjectTreeOnRenamed() {
    if (TreeWindow() != nullptr && !g_tree.stale) TreeMarkActive(false);
}

void ProjectTreeRevealActive() {
    if (!IsTabIndex(g_documents.activeTab) || !TabAt(g_documents.activeTab).hasFile) return;
    const std::wstring path = TabAt(g_documents.activeTab).path;
    if (g_settings.projectRoot[0] == L'\0') return g_events.statusText(Text(L"There is no project folder"));
    if (!PaneIsShown(PaneId::Tree)) PaneShow(PaneId::Tree, true);
    if (TreeWindow() == nullptr) return;
    TreeEndEdit();
    TreeReveal(path, true);
    FocusRetryEnd();
    SetFocus(TreeWindow());
}

bool ProjectTreeHandleNotify(const NMHDR& header, LRESULT* result) {
    if (TreeWindow() == nullptr || header.hwndFrom != TreeWindow()) return false;
    *result = 0;
    NMHDR& changed = const_cast<NMHDR&>(header);
    switch (header.code) {
        case TVN_ITEMEXPANDINGW: {
            const auto& expanding = reinterpret_cast<const NMTREEVIEWW&>(header);
            TreeNode* const node = TreeNodeOf(expanding.itemNew.hItem);
            if (expanding.action == TVE_EXPAND && node != nullptr) TreeOnExpanding(*node);
            return true;
        }
        case TVN_ITEMEXPANDEDW: TreeSettleSoon(); return true;
        case TVN_GETDISPINFOW: GivePicture(reinterpret_cast<NMTVDISPINFOW&>(changed)); return true;
        case TVN_BEGINLABELEDITW: *result = TreeMayEdit() ? FALSE : TRUE; return true;
        case TVN_ENDLABELEDITW: TreeOnEdited(reinterpret_cast<NMTVDISPINFOW&>(changed).item.pszText); return true;
        case TVN_BEGINDRAGW:
            if (const TreeNode* node = TreeNodeOf(reinterpret_cast<const NMTREEVIEWW&>(header).itemNew.hItem))
                TreeDragBegin(*node);
            return true;
        case NM_CUSTOMDRAW: *result = ColourTreeItem(reinterpret_cast<NMTVCUSTOMDRAW&>(changed)); return true;
        case NM_DBLCLK: EnterTreeItem(TreeSelected(), false); return true;
        case NM_RETURN:
            EnterTreeItem(TreeSelected(), true);
            *result = 1;  // no beep
            return true;
        default: return false;
    }
}

void ProjectTreeApplyTheme() {
    if (TreeWindow() == nullptr) return;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    TreeView_SetBkColor(TreeWindow(), chrome.paneBack);
    TreeView_SetTextColor(TreeWindow(), chrome.paneText);
    TreeView_SetLineColor(TreeWindow(), chrome.line);
    SendMessageW(TreeWindow(), WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), TRUE);
    if (!g_tree.stale) RenewPictures();
    g_tree.picturesStale = g_tree.stale;
    TreeView_SetItemHeight(TreeWindow(), UiScaled(22));
    ScrollBarsApplyTheme(TreeWindow());
    TooltipApplyTheme(g_tree.tip);
    InvalidateRect(TreeWindow(), nullptr, TRUE);
}

void ProjectTreeOfferRoot(const wchar_t* folder) {
    if (g_selftestTabsMode || g_settings.projectRoot[0] != L'\0' || TreeWindow() == nullptr) return;
    SettingsChange([folder](Settings& settings) {
        SafeCopyW(settings.projectRoot, folder);
        settings.projectTreeWidth = TreeFirstWidth(settings.projectTreeWidth);
    });
}
