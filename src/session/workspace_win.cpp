// Saving and restoring the workspace: the open files, the active one, the compiler and its flags. UI thread.
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "scintilla/sci.h"
#include "session/session.h"
#include "session/session_state.h"
#include "session/workspace_text.h"
#include "settings/settings_state.h"

#include <memory>
#include <string>
#include <vector>

namespace {

struct FileList {
    wchar_t paths[kWorkspaceMaxFiles][kPathCapacity];
    int cursors[kWorkspaceMaxFiles];
};

void WorkspacePathFor(const wchar_t* path, wchar_t* out, std::size_t capacity) {
    if (path == nullptr || path[0] == L'\0')
        path = g_session.workspacePath[0] != L'\0' ? g_session.workspacePath : L"workspace.json";
    if (path[0] == L'\\' || PathIsAbsolute(path)) {
        SafeCopyW(out, capacity, path);
        return;
    }
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    PathJoin(directory, path, out, capacity);
}

std::vector<WorkspaceTab> CaptureTabs() {
    std::vector<WorkspaceTab> tabs;
    for (const DocumentTab& tab : g_documents.tabs)
        tabs.push_back({.path = tab.path, .cursor = static_cast<std::int32_t>(SciSend(tab.editor, SCI_GETCURRENTPOS))});
    return tabs;
}

// The file holds the flags without escaping, so that a quote or a backslash in them does not survive the trip. Flags
// that are in the settings whole are therefore not replaced by their own mutilated copy.
void ApplyFlags(wchar_t (&flags)[1024], const wchar_t* read) {
    if (WorkspaceFlagsAsRead(flags) != read) SafeCopyW(flags, read);
}

void ApplyCompiler(const wchar_t* text) {
    wchar_t name[32] = {};
    if (JsonExtractString(text, L"compiler", name, std::size(name)) == 0) return;
    const int compiler = WorkspaceCompilerId(name);
    if (compiler < 0) return;
    const SettingsEdit edit;
    g_settings.activeCompiler = compiler;
    wchar_t flags[kWorkspaceFlagsCapacity] = {};
    if (JsonExtractString(text, L"compilerFlags", flags, kWorkspaceFlagsCapacity) != 0)
        ApplyFlags(g_settings.compilers[compiler].flags, flags);
}

// From the last tab to the first. Returns -1, or the index of a tab that the user kept.
int CloseAllTabs() {
    while (TabCount() > 0) {
        const int before = TabCount();
        if (FileClose(before - 1) == 0 || TabCount() >= before) return before - 1;
    }
    return -1;
}

void OpenFiles(const FileList& files, int count) {
    for (int i = 0; i < count; ++i)
        if (FileExists(files.paths[i]) && FileShow(files.paths[i], false) == 0)
            AppLogMsg(L"FAIL: WorkspaceLoad FileOpen failed for file[%d]=%s", i, files.paths[i]);
}

// Entries belong to tabs by position: a file that is gone shifts the later carets.
void PlaceCarets(const FileList& files, int count) {
    for (int i = 0; i < count && i < TabCount(); ++i)
        if (files.cursors[i] > 0) SciSend(TabAt(i).editor, SCI_GOTOPOS, static_cast<WPARAM>(files.cursors[i]));
}

}  // namespace

int WorkspaceSave(const wchar_t* path) {
    wchar_t target[kPathCapacity] = {};
    WorkspacePathFor(path, target, kPathCapacity);
    const std::vector<WorkspaceTab> tabs = CaptureTabs();
    bool anyFile = false;
    for (const WorkspaceTab& tab : tabs) anyFile = anyFile || !tab.path.empty();
    if (!anyFile) {
        // An empty workspace is the absence of its file.
        if (FileExists(target) && DeleteFileW(PathExtended(target).c_str()) == FALSE)
            AppLogMsg(L"FAIL: WorkspaceSave could not delete error=%lu path=%s", GetLastError(), target);
        return 1;
    }
    const auto compiler = static_cast<std::uint32_t>(g_settings.activeCompiler);
    const std::size_t row = compiler < kCompilerCount ? compiler : 0;
    const std::wstring text = WorkspaceCompose(tabs, g_documents.activeTab, compiler, g_settings.compilers[row].flags);
    const HeapBlock<char> utf8{WideToUtf8(text.c_str())};
    if (!utf8) return 0;
    if (!ReplaceFileWithText(target, utf8.get())) {
        AppLogMsg(L"FAIL: WorkspaceSave could not write path=%s", target);
        return 0;
    }
    SafeCopyW(g_session.workspacePath, target);
    return 1;
}

int WorkspaceLoad(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return 0;
    std::size_t length = 0;
    const HeapBlock<char> utf8{ReadFileUtf8(path, &length)};
    if (!utf8) {
        AppLogMsg(L"FAIL: WorkspaceLoad could not read path=%s", path);
        return 0;
    }
    const HeapBlock<wchar_t> text{Utf8ToWide(utf8.get())};
    if (!text) {
        AppLogMsg(L"FAIL: WorkspaceLoad could not decode UTF-8 path=%s", path);
        return 0;
    }
    wchar_t source[kPathCapacity];
    SafeCopyW(source, path);  // `path` may be the current workspace path itself

    const auto files = std::make_unique<FileList>();  // 128 kB: too much for the stack
    const int count = JsonParseFiles(text.get(), files->paths, files->cursors, kWorkspaceMaxFiles);
    const int activeFile = JsonExtractInt(text.get(), L"activeFile", 0);
    ApplyCompiler(text.get());
    const int kept = CloseAllTabs();
    if (kept >= 0) {
        AppLogMsg(L"FAIL: WorkspaceLoad could not close existing tab index=%d", kept);
        return 0;
    }
    OpenFiles(*files, count);
    if (IsTabIndex(activeFile)) TabBarSelect(activeFile);
    PlaceCarets(*files, count);
    SafeCopyW(g_session.workspacePath, source);
    return 1;
}

void WorkspaceNew() {
    // A document that the user would not close stays, and with it the workspace as it was: nothing is thrown away by a
    // question answered with "cancel".
    if (CloseAllTabs() >= 0) return;
    g_session.workspacePath[0] = L'\0';
    FileNew();
}
