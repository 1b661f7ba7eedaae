// Notifications of the child controls, sorted to their areas. UI thread only.
#include "app/app_state.h"
#include "app/main_window.h"
#include "app/shell.h"
#include "build/output_pane.h"
#include "documents/file_commands.h"
#include "editor/editor_pane.h"
#include "files/bounded_text.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "session/project_tree.h"
#include "tabs/tab_bar.h"
#include "toolbar/toolbar.h"

#include <shellapi.h>

#include <vector>

namespace {

void OnSavePoint(int tab, bool modified) {
    g_app.tabs[static_cast<std::size_t>(tab)].modified = modified;
    TabBarUpdateTitle(tab);
    MainWnd_RequestStateRefresh();
}

void OnZoom(HWND editor) {
    const auto zoom = static_cast<int>(SciSend(editor, SCI_GETZOOM));
    if (zoom == g_app.settings.editorZoom) return;
    g_app.settings.editorZoom = zoom;
    for (const DocumentTab& tab : g_app.tabs) {
        if (tab.editor != editor) SciSend(tab.editor, SCI_SETZOOM, static_cast<WPARAM>(zoom));
    }
}

// The status bar follows with the pending refresh: shown here, it would be painted ahead of the typed character.
void OnCaretOrSelection() {
    UpdateStickyHeader(g_app.hEditor, g_app.hStickyHeader);
    EditorPaneUpdateBraces(g_app.hEditor);
    NavHistoryMaybeAdd();
    MainWnd_RequestStateRefresh();
}

void OnEditorNotification(const SCNotification& notification) {
    HWND editor = static_cast<HWND>(notification.nmhdr.hwndFrom);
    const int tab = TabBarFindEditor(editor);
    if (tab < 0) return;
    switch (notification.nmhdr.code) {
        case SCN_MODIFIED: EditorPaneOnModified(editor, notification); break;
        case SCN_SAVEPOINTLEFT: OnSavePoint(tab, true); break;
        case SCN_SAVEPOINTREACHED: OnSavePoint(tab, false); break;
        case SCN_UPDATEUI:
            if (editor == g_app.hEditor && (notification.updated & (SC_UPDATE_CONTENT | SC_UPDATE_SELECTION)) != 0)
                OnCaretOrSelection();
            break;
        case SCN_ZOOM: OnZoom(editor); break;
        default: break;
    }
}

bool IsEditor(int controlId) { return controlId >= IDC_EDITOR_FIRST; }

}  // namespace

LRESULT MainWnd_OnNotify(const NMHDR& header) {
    if (IsEditor(static_cast<int>(header.idFrom))) {
        OnEditorNotification(reinterpret_cast<const SCNotification&>(header));
        return 0;
    }
    LRESULT result = 0;
    if (TabBarHandleNotify(header) || ToolbarHandleNotify(header, &result) || ErrorListHandleNotify(header) ||
        ProjectTreeHandleNotify(header, &result))
        return result;
    return 0;
}

void MainWnd_OnDropFiles(HDROP drop) {
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    std::vector<std::wstring> paths;
    for (UINT i = 0; i < count; ++i) {
        std::wstring path(DragQueryFileW(drop, i, nullptr, 0), L'\0');
        DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size() + 1));
        paths.push_back(path);
    }
    DragFinish(drop);  // before opening: the source program waits for it, and a message box may come up
    for (const std::wstring& path : paths) FileOpen(path.c_str());
    SetForegroundWindow(g_app.hMainWnd);
}
