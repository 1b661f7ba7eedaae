// The mouse in the project tree: a file is dragged to the editor, and a tooltip shows the whole path. UI thread.
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "project/tree_internal.h"
#include "ui/control_theme.h"
#include "ui/monitor.h"
#include "ui/mouse_drag.h"
#include "ui/ui_state.h"

#include <utility>

namespace {

// The editor, its tabs and what else is not a pane of its own take a file.
bool IsOverEditor() {
    POINT at = {};
    GetCursorPos(&at);
    RECT editor = {};
    if (g_documents.hEditor != nullptr) {
        GetWindowRect(g_documents.hEditor, &editor);
        // The row of tabs lies above.
        RECT frame = {};
        GetWindowRect(TreeWindow(), &frame);
        editor.top = std::min(editor.top, frame.top);
        return PtInRect(&editor, at) != FALSE;
    }
    const HWND below = WindowFromPoint(at);
    return below == g_ui.hMainWnd;
}

void ShowDragCursor() { SetCursor(LoadCursorW(nullptr, IsOverEditor() ? IDC_HAND : IDC_NO)); }

void EndTreeDrag() {
    g_tree.dragged.clear();
    if (GetCapture() == TreeWindow()) ReleaseCapture();
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
}

void DropOnEditor() {
    const bool over = IsOverEditor();
    const std::wstring path = std::exchange(g_tree.dragged, {});
    EndTreeDrag();
    if (!over) return;
    FileOpen(path.c_str());
    QueueFocusCurrentEditor();
}

// The tooltip is made when the pointer first comes over the tree, because most starts end without one.
void CreateTreeTip() {
    g_tree.tip =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, TreeWindow(), nullptr, g_ui.hInstance, nullptr);
    if (g_tree.tip == nullptr) return;
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
    tool.hwnd = TreeWindow();  // gets the WM_NOTIFY that asks for the text
    tool.uId = reinterpret_cast<UINT_PTR>(TreeWindow());
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(g_tree.tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    const RECT screen = WorkAreaOf(TreeWindow());
    SendMessageW(g_tree.tip, TTM_SETMAXTIPWIDTH, 0, (screen.right - screen.left) / 2);
    TooltipApplyTheme(g_tree.tip);
}

}  // namespace

void TreeDragBegin(const TreeNode& node) {
    if (node.kind != NodeKind::File) return;
    g_tree.dragged = TreePathOf(node);
    MouseDragBegin(TreeWindow());
    ShowDragCursor();
}

bool TreeDragMessage(UINT message) {
    if (g_tree.dragged.empty()) return false;
    switch (message) {
        case WM_MOUSEMOVE: ShowDragCursor(); return true;
        case WM_LBUTTONUP: DropOnEditor(); return true;
        case WM_CAPTURECHANGED: EndTreeDrag(); return false;
        default: return false;
    }
}

void TreeTipOnMouse(POINT at) {
    if (g_tree.tip == nullptr) CreateTreeTip();
    TVHITTESTINFO hit = {.pt = at, .flags = 0, .hItem = nullptr};
    const HTREEITEM item = TreeView_HitTest(TreeWindow(), &hit);
    TreeNode* const node = (hit.flags & TVHT_ONITEM) != 0 ? TreeNodeOf(item) : nullptr;
    if (std::exchange(g_tree.tipNode, node) != node && g_tree.tip != nullptr) SendMessageW(g_tree.tip, TTM_POP, 0, 0);
}

bool TreeTipText(NMHDR& header) {
    if (g_tree.tip == nullptr || header.hwndFrom != g_tree.tip || header.code != TTN_GETDISPINFOW) return false;
    static std::wstring text;
    const TreeNode* const node = g_tree.tipNode;
    const bool entry = node != nullptr && (node->kind == NodeKind::File || node->kind == NodeKind::Folder);
    text = entry ? TreePathOf(*node) : std::wstring{};
    reinterpret_cast<NMTTDISPINFOW&>(header).lpszText = text.data();
    return true;
}

void TreeTipDestroy() {
    if (g_tree.tip != nullptr) DestroyWindow(g_tree.tip);
    g_tree.tip = nullptr;
}
