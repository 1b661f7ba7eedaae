// The project tree: a tree view whose folders are read, each when it is first opened, by a reader thread. Knows files
// only by their names; opening one is a file command. UI thread.
#include "project/project_tree.h"

#include "base/log.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "project/project_state.h"
#include "project/tree_actions.h"
#include "project/tree_icons.h"
#include "project/tree_reader.h"
#include "project/tree_rules.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/clipboard.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/menu.h"
#include "ui/message.h"
#include "ui/paint.h"
#include "ui/redraw.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <windows.h>
#include <windowsx.h>

#include <commctrl.h>

#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

enum MenuCommand : UINT { kMenuOpen = 1, kMenuCopyPath, kMenuRefresh };

struct TreeState {
    std::wstring root;  // as TreeRootOf() gives it
    TreeRequests requests;
    std::set<std::wstring> reopen;  // paths that were open before a refresh
    HIMAGELIST icons = nullptr;
    bool stale = false;  // to be populated when it is shown
};
TreeState g_tree;

HWND Tree() { return g_project.hProjectTree; }

std::wstring ItemText(HTREEITEM item) {
    wchar_t text[MAX_PATH + 1] = {};
    TVITEMW get = {};
    get.mask = TVIF_TEXT;
    get.hItem = item;
    get.pszText = text;
    get.cchTextMax = static_cast<int>(std::size(text));
    SendMessageW(Tree(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get));
    return get.pszText;
}

NodeKind ItemKind(HTREEITEM item) {
    TVITEMW get = {};
    get.mask = TVIF_PARAM;
    get.hItem = item;
    SendMessageW(Tree(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&get));
    return static_cast<NodeKind>(get.lParam);
}

std::optional<NodeKind> KindIfAny(HTREEITEM item) {
    return item != nullptr ? std::optional(ItemKind(item)) : std::nullopt;
}

void SetItem(HTREEITEM item, NodeKind kind, int children) {
    TVITEMW set = {};
    set.mask = TVIF_PARAM | TVIF_CHILDREN;
    set.hItem = item;
    set.lParam = static_cast<LPARAM>(kind);
    set.cChildren = children;
    SendMessageW(Tree(), TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
}

HTREEITEM Related(HTREEITEM item, UINT relation) { return TreeView_GetNextItem(Tree(), item, relation); }

std::wstring ItemPath(HTREEITEM item) {
    const HTREEITEM parent = Related(item, TVGN_PARENT);
    return parent == nullptr ? g_tree.root : TreeJoin(ItemPath(parent), ItemText(item));
}

HTREEITEM InsertTreeItem(HTREEITEM parent, HTREEITEM after, const std::wstring& text, NodeKind kind) {
    const bool isFolder = kind == NodeKind::FolderUnread;
    const int image = kind == NodeKind::Note ? kTreeIconNone : isFolder ? kTreeIconFolder : kTreeIconFile;
    TVINSERTSTRUCTW insert = {};
    insert.hParent = parent;
    insert.hInsertAfter = after;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    insert.item.pszText = const_cast<wchar_t*>(text.c_str());  // read only, in spite of its type
    insert.item.lParam = static_cast<LPARAM>(kind);
    insert.item.cChildren = isFolder ? 1 : 0;
    insert.item.iImage = image;
    insert.item.iSelectedImage = image;
    return reinterpret_cast<HTREEITEM>(SendMessageW(Tree(), TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void RemoveChildren(HTREEITEM folder) {
    while (const HTREEITEM child = Related(folder, TVGN_CHILD)) TreeView_DeleteItem(Tree(), child);
}

// A folder opened for the first time shows a note until its listing arrives.
void StartReading(HTREEITEM folder) {
    const std::optional<std::uint64_t> request = TreeRequestNumber(g_tree.requests);
    if (!request || !TreeReaderStart(Tree(), MSG_TREE_ITEMS, *request, ItemPath(folder))) {
        AppLogMsg(L"FAIL: ProjectTree could not start reading, pending=%d",
                  static_cast<int>(g_tree.requests.pending.size()));
        return;  // still unread: opening it again tries again
    }
    SetItem(folder, NodeKind::FolderReading, 1);
    InsertTreeItem(folder, TVI_FIRST, L"Reading...", NodeKind::Note);
    g_tree.requests.pending[*request] = folder;
}

void OpenTreeFolder(HTREEITEM folder) {
    if (ItemKind(folder) == NodeKind::FolderUnread) StartReading(folder);
    TreeView_Expand(Tree(), folder, TVE_EXPAND);
}

void InsertListing(HTREEITEM folder, const TreeListing& listing) {
    HTREEITEM last = TVI_FIRST;  // each item goes after the one before it, which needs no search for the end
    std::vector<HTREEITEM> reopened;
    for (const TreeRow& row : TreeRowsOf(listing, ItemPath(folder), g_tree.reopen)) {
        last = InsertTreeItem(folder, last, row.text, row.kind);
        if (row.open) reopened.push_back(last);
    }
    for (const HTREEITEM item : reopened) OpenTreeFolder(item);
}

void OnTreeListing(const TreeListing& listing) {
    const auto folder = static_cast<HTREEITEM>(TreeRequestTake(g_tree.requests, listing.request));
    if (folder == nullptr) return;
    {
        const RedrawPause pause(Tree());
        RemoveChildren(folder);
        SetItem(folder, NodeKind::FolderRead, TreeFolderOpens(listing) ? 1 : 0);
        InsertListing(folder, listing);
        TreeView_Expand(Tree(), folder, TVE_EXPAND);  // removing the note has closed it
    }
    InvalidateRect(Tree(), nullptr, TRUE);
}

bool IsOpenInTree(TreeItemHandle item) {
    return (SendMessageW(Tree(), TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED) & TVIS_EXPANDED) != 0;
}

std::set<std::wstring> OpenFolderPaths() {
    const auto related = [](UINT relation) {
        return [relation](TreeItemHandle item) { return Related(static_cast<HTREEITEM>(item), relation); };
    };
    return OpenTreeFolders({.firstChild = related(TVGN_CHILD),
                            .next = related(TVGN_NEXT),
                            .isOpen = IsOpenInTree,
                            .path = [](TreeItemHandle item) { return ItemPath(static_cast<HTREEITEM>(item)); }},
                           TreeView_GetRoot(Tree()));
}

void OpenTreeItem(HTREEITEM item) {
    if (!TreeCommandsOf(KindIfAny(item)).open) return;
    FileOpen(ItemPath(item).c_str());
    QueueFocusCurrentEditor();
}

void ShowTreeMenu(POINT at) {
    if (at.x == -1 && at.y == -1) {  // from the keyboard: below the selected item
        RECT rect = {};
        const HTREEITEM selected = TreeView_GetSelection(Tree());
        if (selected != nullptr && TreeView_GetItemRect(Tree(), selected, &rect, TRUE) != FALSE)
            at = {rect.left, rect.bottom};
        else
            at = {0, 0};
        ClientToScreen(Tree(), &at);
    } else {
        TVHITTESTINFO hit = {.pt = at, .flags = 0, .hItem = nullptr};
        ScreenToClient(Tree(), &hit.pt);
        TreeView_SelectItem(Tree(), TreeView_HitTest(Tree(), &hit));
    }
    const HTREEITEM item = TreeView_GetSelection(Tree());
    const TreeItemCommands can = TreeCommandsOf(KindIfAny(item));
    const MenuItem items[] = {{.id = kMenuOpen, .text = L"&Open\tEnter", .enabled = can.open},
                              {.id = kMenuCopyPath, .text = L"&Copy Path", .enabled = can.copyPath},
                              {},
                              {.id = kMenuRefresh, .text = L"&Refresh\tCtrl+R"}};
    const UINT command = ShowPopupMenu(Tree(), items, at);
    if (command == kMenuOpen)
        OpenTreeItem(item);
    else if (command == kMenuCopyPath)
        ClipboardPutText(g_ui.hMainWnd, ItemPath(item));
    else if (command == kMenuRefresh)
        ProjectTreePopulate();
}

void OnTreeDestroy(HWND window) {
    WorkerDropPosts<TreeListingPtr>(window, MSG_TREE_ITEMS);
    if (g_tree.icons != nullptr) ImageList_Destroy(g_tree.icons);
    g_tree = {};
}

LRESULT CALLBACK ProjectTreeSubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case MSG_TREE_ITEMS: {
            OnTreeListing(*WorkerTake<TreeListingPtr>(wParam));
            return 0;
        }
        case WM_CONTEXTMENU: ShowTreeMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_CHAR:
            if (wParam == 'R' - '@') {  // Ctrl+R
                ProjectTreePopulate();
                return 0;
            }
            break;
        case WM_WINDOWPOSCHANGED: {
            const LRESULT moved = SubclassNext(window, message, wParam, lParam);
            const bool shown = (reinterpret_cast<const WINDOWPOS*>(lParam)->flags & SWP_SHOWWINDOW) != 0;
            if (shown && g_tree.stale) ProjectTreePopulate();
            return moved;
        }
        case WM_NCDESTROY: OnTreeDestroy(window); break;
        default: break;
    }
    return SubclassNext(window, message, wParam, lParam);
}

}  // namespace

HWND ProjectTreeCreate(HWND parent, int controlId) {
    const HWND window = CreateWindowExW(
        0, WC_TREEVIEWW, L"", WS_CHILD | WS_TABSTOP | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS, 0, 0, 0, 0,
        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (window == nullptr) {
        AppLogMsg(L"FAIL: ProjectTreeCreate error=%lu", GetLastError());
        return nullptr;
    }
    if (SubclassAdd(window, ProjectTreeSubclassProc) == FALSE) AppLogMsg(L"FAIL: ProjectTreeCreate could not subclass");
    return window;
}

void ProjectTreePopulate() {
    if (Tree() == nullptr) return;
    // Nothing is read for a tree that is not shown: most people never open it, and every start would pay for it.
    g_tree.stale = (GetWindowLongW(Tree(), GWL_STYLE) & WS_VISIBLE) == 0;
    if (g_tree.stale) return;
    const std::wstring root = TreeRootOf(g_settings.projectRoot);
    g_tree.reopen.clear();
    if (root == g_tree.root) g_tree.reopen = OpenFolderPaths();
    g_tree.requests.pending.clear();
    g_tree.root = root;
    TreeView_DeleteAllItems(Tree());
    if (!root.empty()) OpenTreeFolder(InsertTreeItem(TVI_ROOT, TVI_FIRST, TreeRootLabel(root), NodeKind::FolderUnread));
}

// In the dark theme the system's light bar of a selection without the focus would hide the light text on it.
static LRESULT ColourTreeItem(NMTVCUSTOMDRAW& draw) {
    if (!ThemeIsDark()) return CDRF_DODEFAULT;
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || (draw.nmcd.uItemState & CDIS_SELECTED) == 0)
        return CDRF_DODEFAULT;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    draw.clrText = chrome.paneText;
    draw.clrTextBk = GetFocus() == Tree() ? MixColours(chrome.paneBack, chrome.accent, 30) : chrome.hover;
    return CDRF_DODEFAULT;
}

bool ProjectTreeHandleNotify(const NMHDR& header, LRESULT* result) {
    if (Tree() == nullptr || header.hwndFrom != Tree()) return false;
    *result = 0;
    const HTREEITEM selected = TreeView_GetSelection(Tree());
    switch (header.code) {
        case TVN_ITEMEXPANDINGW: {
            const auto& expanding = reinterpret_cast<const NMTREEVIEWW&>(header);
            if (expanding.action == TVE_EXPAND && ItemKind(expanding.itemNew.hItem) == NodeKind::FolderUnread)
                StartReading(expanding.itemNew.hItem);
            return true;
        }
        case NM_CUSTOMDRAW:
            *result = ColourTreeItem(*reinterpret_cast<NMTVCUSTOMDRAW*>(const_cast<NMHDR*>(&header)));
            return true;
        case NM_DBLCLK: OpenTreeItem(selected); return true;
        case NM_RETURN:
            if (TreeEnterOn(KindIfAny(selected)) == TreeEnter::Toggle) TreeView_Expand(Tree(), selected, TVE_TOGGLE);
            OpenTreeItem(selected);
            *result = 1;  // no beep
            return true;
        default: return false;
    }
}

void ProjectTreeApplyTheme() {
    if (Tree() == nullptr) return;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    TreeView_SetBkColor(Tree(), chrome.paneBack);
    TreeView_SetTextColor(Tree(), chrome.paneText);
    TreeView_SetLineColor(Tree(), chrome.line);

    SendMessageW(Tree(), WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), TRUE);
    const HIMAGELIST icons = TreeIconsCreate(g_ui.dpi, chrome);
    if (icons != nullptr) {
        TreeView_SetImageList(Tree(), icons, TVSIL_NORMAL);
        if (g_tree.icons != nullptr) ImageList_Destroy(g_tree.icons);
        g_tree.icons = icons;
    }
    TreeView_SetItemHeight(Tree(), UiScaled(22));
    ScrollBarsApplyTheme(Tree());
    InvalidateRect(Tree(), nullptr, TRUE);
}

void ProjectTreeOfferRoot(const wchar_t* folder) {
    if (g_selftestTabsMode || g_settings.projectRoot[0] != L'\0' || g_project.hProjectTree == nullptr) return;
    SettingsChange([folder](Settings& settings) {
        SafeCopyW(settings.projectRoot, folder);
        settings.projectTreeWidth = TreeFirstWidth(settings.projectTreeWidth);
    });
}
