// Saves and restores the workspace: the open files, the active one, the compiler and its flags. The text of the file is
// in workspace_text. UI thread.
#include "session/session.h"

#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "documents/caret_place.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "scintilla/sci.h"
#include "session/session_state.h"
#include "session/workspace_text.h"
#include "settings/settings_state.h"

#include <string>
#include <vector>

namespace {

std::wstring TargetFor(const wchar_t* path) {
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    return WorkspacePathFor(path != nullptr ? path : L"", g_session.workspacePath, directory);
}

std::vector<WorkspaceTab> CaptureTabs() {
    std::vector<WorkspaceTab> tabs;
    for (const DocumentTab& tab : g_documents.tabs)
        tabs.push_back({.path = tab.path, .cursor = static_cast<std::int32_t>(SciSend(tab.editor, SCI_GETCURRENTPOS))});
    return tabs;
}

void ApplyWorkspaceCompiler(const Workspace& workspace) {
    if (workspace.compiler < 0) return;
    const SettingsEdit edit;
    g_settings.activeCompiler = workspace.compiler;
    wchar_t(&flags)[1024] = g_settings.compilers[workspace.compiler].flags;
    if (workspace.flags) SafeCopyW(flags, WorkspaceFlagsToSet(flags, *workspace.flags));
}

// False when a document is open afterwards: one that the user kept, or one that was opened while a question was open.
bool CloseAllTabs() { return FileCloseAll() != 0 && TabCount() == 0; }

void OpenWorkspaceFiles(const Workspace& workspace) {
    int number = 0;
    for (const WorkspaceTab& file : workspace.files) {
        if (FileExists(file.path.c_str()) && FileShow(file.path.c_str(), false) == 0)
            AppLogMsg(L"FAIL: WorkspaceLoad FileOpen failed for file[%d]=%s", number, file.path.c_str());
        ++number;
    }
}

// The text of the file up to the first NUL; null when it cannot be read.
HeapBlock<wchar_t> ReadWorkspace(const wchar_t* path) {
    std::size_t length = 0;
    const HeapBlock<char> utf8{ReadFileUtf8(path, &length)};
    if (!utf8) {
        AppLogMsg(L"FAIL: WorkspaceLoad could not read path=%s", path);
        return {};
    }
    HeapBlock<wchar_t> text{Utf8ToWide(utf8.get())};
    if (!text) AppLogMsg(L"FAIL: WorkspaceLoad could not decode UTF-8 path=%s", path);
    return text;
}

}  // namespace

int WorkspaceSave(const wchar_t* path) {
    const std::wstring target = TargetFor(path);
    const std::vector<WorkspaceTab> tabs = CaptureTabs();
    bool anyFile = false;
    for (const WorkspaceTab& tab : tabs) anyFile = anyFile || !tab.path.empty();
    if (!anyFile) {
        // An empty workspace has no file.
        if (FileExists(target.c_str()) && DeleteFileW(PathExtended(target).c_str()) == FALSE)
            AppLogMsg(L"FAIL: WorkspaceSave could not delete error=%lu path=%s", GetLastError(), target.c_str());
        return 1;
    }
    const auto compiler = static_cast<std::uint32_t>(g_settings.activeCompiler);
    const std::size_t row = compiler < kCompilerCount ? compiler : 0;
    const std::wstring text = WorkspaceCompose(tabs, g_documents.activeTab, compiler, g_settings.compilers[row].flags);
    if (!ReplaceFileWithText(target.c_str(), ToUtf8(text))) {
        AppLogMsg(L"FAIL: WorkspaceSave could not write path=%s", target.c_str());
        return 0;
    }
    SafeCopyW(g_session.workspacePath, target);
    return 1;
}

int WorkspaceLoad(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return 0;
    const std::wstring source{path};  // `path` may be the current workspace path itself
    const HeapBlock<wchar_t> text = ReadWorkspace(source.c_str());
    if (!text) return 0;
    const Workspace workspace = WorkspaceParse(text.get());
    ApplyWorkspaceCompiler(workspace);
    if (!CloseAllTabs()) {
        AppLogMsg(L"FAIL: WorkspaceLoad could not close existing tab index=%d", TabCount() - 1);
        return 0;
    }
    OpenWorkspaceFiles(workspace);
    if (IsTabIndex(workspace.activeFile)) TabBarSelect(workspace.activeFile);
    for (const WorkspaceCaret& caret : WorkspaceCarets(workspace, TabCount()))
        CaretGoTo(TabAt(caret.tab).editor, caret.position);
    SafeCopyW(g_session.workspacePath, source);
    return 1;
}

void WorkspaceNew() {
    // When the user keeps a document open, the workspace stays as it is.
    if (!CloseAllTabs()) return;
    g_session.workspacePath[0] = L'\0';
    FileNew();
}
