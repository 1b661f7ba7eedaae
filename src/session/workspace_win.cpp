// Saves and restores the workspace: the open files, the active one, the compiler and its flags. The text of the file is
// in workspace_text. UI thread.
#include "session/session.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/caret_place.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "files/share_probe.h"
#include "scintilla/sci.h"
#include "session/session_close.h"
#include "session/session_state.h"
#include "session/workspace_text.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::wstring TargetFor(const wchar_t* path) {
    wchar_t directory[kPathCapacity] = {};
    GetIniDir(nullptr, directory, kPathCapacity);
    return WorkspacePathFor(path != nullptr ? path : L"", g_session.workspacePath, directory);
}

// The documents and, after them, the files that could not be opened.
std::vector<WorkspaceTab> CaptureTabs() {
    std::vector<WorkspaceTab> tabs;
    for (const DocumentTab& tab : g_documents.tabs)
        tabs.push_back({.path = tab.path, .cursor = static_cast<std::int32_t>(SessionCaretOf(tab))});
    for (const SessionFile& missing : g_session.missing) {
        const std::wstring path = Utf8ToWideText(missing.path);
        if (TabBarFindPath(path.c_str()) < 0)
            tabs.push_back({.path = path, .cursor = static_cast<std::int32_t>(missing.cursor)});
    }
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

void KeepMissing(const WorkspaceTab& file) {
    const std::string path = ToUtf8(file.path);
    if (std::ranges::find(g_session.missing, path, &SessionFile::path) != g_session.missing.end()) return;
    const auto cursor = static_cast<std::uint64_t>(std::max(file.cursor, 0));
    g_session.missing.push_back({.path = path, .hasEditor = true, .cursor = cursor});
}

// Missing files are passed over in silence, and stay in the workspace.
void OpenWorkspaceFiles(const Workspace& workspace) {
    int number = 0;
    for (const WorkspaceTab& file : workspace.files) {
        const bool opens =
            number < kWorkspaceMaxFiles && PathAnswers(file.path.c_str()) && FileExists(file.path.c_str());
        if (opens && FileAdd(file.path.c_str()) < 0)
            AppLogMsg(L"FAIL: WorkspaceLoad FileOpen failed for file[%d]=%s", number, file.path.c_str());
        if (TabBarFindPath(file.path.c_str()) < 0 && !file.path.empty()) KeepMissing(file);
        if (TabCount() == 1 && !IsTabIndex(g_documents.activeTab)) TabBarSelect(0);
        ++number;
    }
}

// The text of the file up to the first NUL; null when it cannot be read.
HeapBlock<wchar_t> ReadWorkspace(const wchar_t* path) {
    constexpr std::size_t kMost = 1U << 24U;  // bytes, more than any workspace of ours
    std::string utf8;
    if (!ReadSharedFile(path, kMost, &utf8)) {
        AppLogMsg(L"FAIL: WorkspaceLoad could not read path=%s", path);
        return {};
    }
    HeapBlock<wchar_t> text{Utf8ToWide(utf8.c_str())};
    if (!text) AppLogMsg(L"FAIL: WorkspaceLoad could not decode UTF-8 path=%s", path);
    return text;
}

}  // namespace

std::wstring WorkspaceDefaultPath() {
    wchar_t directory[kPathCapacity] = {};
    GetIniDir(nullptr, directory, kPathCapacity);
    return WorkspacePathFor(L"", L"", directory);
}

WorkspaceFile WorkspaceFileAt(const wchar_t* path) {
    if (!FileExists(path)) return WorkspaceFile::Missing;
    return WorkspaceFileOf(true, ReadWorkspace(path).get());
}

static int WriteWorkspace(const std::wstring& target, const std::vector<WorkspaceTab>& tabs) {
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

int WorkspaceSave(const wchar_t* path) {
    const std::wstring target = TargetFor(path);
    const std::vector<WorkspaceTab> tabs = CaptureTabs();
    switch (WorkspaceSaveStepOf(WorkspaceFileAt(target.c_str()), tabs,
                                PathEqualsIgnoreCase(target, WorkspaceDefaultPath()))) {
        case WorkspaceSaveStep::Refuse:
            AppLogMsg(L"FAIL: WorkspaceSave leaves a file that is not a workspace: %s", target.c_str());
            return 0;
        case WorkspaceSaveStep::DeleteFile:
            if (DeleteFileW(PathExtended(target).c_str()) == FALSE)
                AppLogMsg(L"FAIL: WorkspaceSave could not delete error=%lu path=%s", GetLastError(), target.c_str());
            return 1;
        case WorkspaceSaveStep::LeaveFile: return 1;
        case WorkspaceSaveStep::Write: break;
    }
    return WriteWorkspace(target, tabs);
}

int WorkspaceLoad(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return 0;
    const std::wstring source{path};  // `path` may be the current workspace path itself
    const HeapBlock<wchar_t> text = ReadWorkspace(source.c_str());
    if (!text) return 0;
    if (!WorkspaceIsOurs(text.get())) {
        AppLogMsg(L"FAIL: WorkspaceLoad: not a workspace of this program: path=%s", source.c_str());
        g_events.statusText(Text(L"Not a workspace of this program"));
        return 0;
    }
    const Workspace workspace = WorkspaceParse(text.get());
    const RestoreScope restore;
    // The settings change after the last question, because the user may cancel there.
    if (!CloseAllTabs()) {
        AppLogMsg(L"FAIL: WorkspaceLoad could not close existing tab index=%d", TabCount() - 1);
        return 0;
    }
    // At the start the workspace follows a session whose files are all away, and these stay in both.
    if (!g_session.starting) g_session.missing.clear();
    ApplyWorkspaceCompiler(workspace);
    OpenWorkspaceFiles(workspace);
    TabBarActivate(IsTabIndex(workspace.activeFile) ? workspace.activeFile : TabCount() - 1);
    for (const WorkspaceCaret& caret : WorkspaceCarets(workspace, TabCount()))
        CaretGoTo(TabAt(caret.tab).editor, caret.position);
    SafeCopyW(g_session.workspacePath, source);
    return 1;
}

void WorkspaceNew() {
    // When the user keeps a document open, the workspace stays as it is.
    if (!CloseAllTabs()) return;
    g_session.workspacePath[0] = L'\0';
    g_session.missing.clear();
    FileNew();
}
