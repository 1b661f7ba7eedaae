// The one project tree of the window, shared by its files. Private to project/. UI thread only.
#pragma once

#include "project/project_state.h"
#include "project/tree_model.h"
#include "project/tree_reader.h"
#include "project/tree_watch.h"

#include <windows.h>

#include <commctrl.h>

#include <set>
#include <string>
#include <vector>

struct TreeState {
    std::wstring root;  // as TreeRootOf() gives it
    TreeFilter filter;  // with which it was read
    std::unique_ptr<TreeNode> top;
    TreeRequests requests;
    std::set<std::wstring> reopen;  // keys of the paths of folders that are opened when they are there again
    HIMAGELIST icons = nullptr;
    bool picturesStale = true;   // to be drawn when it is shown
    bool stale = true;           // to be populated when it is shown
    bool settles = false;        // MSG_TREE_SETTLE is posted
    std::uint64_t watch = 0;     // number of the watch; 0: none
    TreeNode* marked = nullptr;  // the active document's file
    std::wstring reveal;         // a path that is selected once the folders down to it are read; empty: none
    bool revealTells = false;    // the user asked for it, so he is told when it is not shown

    // Private to tree_edit_win.cpp.
    TreeNode* edited = nullptr;  // whose name is being changed
    bool mayEdit = false;        // the change is begun by a command
    bool draftIsFolder = false;
    std::wstring typed;  // the new name; `cancelled` when there is none
    bool cancelled = false;
    std::wstring newIn;                // the folder in which something new is to be named once it is read; empty: none
    std::vector<TreeListingPtr> held;  // listings that have come meanwhile

    // Private to tree_mouse_win.cpp.
    HWND tip = nullptr;
    TreeNode* tipNode = nullptr;
    std::wstring dragged;  // the path of a file that is being dragged; empty: none
};
extern TreeState g_tree;

inline HWND TreeWindow() { return g_project.hProjectTree; }
TreeNode* TreeNodeOf(HTREEITEM item);  // null for null
TreeNode* TreeSelected();              // null: none
inline HTREEITEM TreeItemOf(const TreeNode& node) { return static_cast<HTREEITEM>(node.item); }

// --- tree_show_win.cpp: what the control shows
bool TreeIsOpen(const TreeNode& folder);
void TreeInsert(TreeNode& node, const TreeNode* after);  // null: first in its folder
void TreeRemove(TreeNode& node);                         // from its folder and from the control
void TreeOpenFolder(TreeNode& folder);                   // reads it when it was not read
void TreeReadAgain(TreeNode& folder);                    // without showing that it is read
void TreeReadShownAgain();                               // every open folder; the others when they are opened
void TreeOnListing(TreeListingPtr listing);
void TreeOnExpanding(TreeNode& folder);
void TreeShowNextPage(TreeNode& folder);
void TreeOnChanges(const TreeChanges& changes);
// Selects the file or folder as soon as the folders down to it are read.
void TreeReveal(const std::wstring& path, bool tells);
void TreeMarkActive(bool select);
void TreeSettleSoon();
void TreeOnSettle();
void TreeForgetAll();  // empties the tree

// --- tree_menu_win.cpp: what the user wants of an item
void TreeOpenItem(TreeNode* node);
void TreeShowMenu(POINT screen);  // {-1, -1}: from the keyboard
// A key or a character of the tree. True when it was taken.
bool TreeOnKey(WPARAM key);
bool TreeOnCharacter(WPARAM character);

// --- tree_edit_win.cpp: names
void TreeRename(TreeNode* node);
void TreeNew(TreeNode* node, bool isFolder);  // in the folder, or beside the file
void TreeNewGoesOn();                         // after a folder was read
bool TreeMayEdit();                           // TVN_BEGINLABELEDIT
void TreeOnEdited(const wchar_t* text);       // TVN_ENDLABELEDIT; null: cancelled
void TreeOnNamed();                           // MSG_TREE_NAMED
void TreeEndEdit();                           // drops the name that is being typed

// --- tree_files_win.cpp: files on the disk. Each runs on a worker for which the window waits, and returns the system's
// error, 0 when it was done.
DWORD TreeFileCreate(const std::wstring& path, bool isFolder);
DWORD TreeFileMove(const std::wstring& from, const std::wstring& to);
// Asks, closes the documents of what is deleted, deletes.
void TreeDelete(TreeNode* node);
std::wstring TreeFailure(const wchar_t* what, const std::wstring& path, DWORD error);

// --- tree_mouse_win.cpp: dragging and tooltips
void TreeDragBegin(const TreeNode& node);
// Handles a message of the mouse while a file is dragged. True when it was taken.
bool TreeDragMessage(UINT message);
void TreeTipOnMouse(POINT at);
bool TreeTipText(NMHDR& header);
void TreeTipDestroy();
