// How the editor comes up once its window stands, and how it goes down. UI thread only.
#include "app/app_state.h"
#include "app/main_window.h"
#include "app/startup_rules.h"
#include "base/log.h"
#include "base/path.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "debugui/debug_commands.h"
#include "disasm/asm_pane.h"
#include "documents/document_row.h"
#include "documents/editor_pane.h"
#include "documents/file_commands.h"
#include "documents/save_rules.h"
#include "files/file_io.h"
#include "resources/ids.h"
#include "session/session.h"
#include "settings/settings_store.h"
#include "ui/long_work.h"
#include "ui/message.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int kRecentFilesAtStart = 5;

bool g_commandLineDone = false;
bool g_startupWaits = false;

void OfferSessionRestore() {
    wchar_t path[kPathCapacity] = {};
    SessionAutoSavePath(path, kPathCapacity);
    if (!FileExists(path) || SessionHasFiles(path) == 0) return;
    const Answer answer = AskUser({.caption = L"Restore Session",
                                   .text = L"A previous session was auto-saved. Would you like to restore it?",
                                   .buttons = AskButtons::YesNo,
                                   .icon = AskIcon::Question,
                                   .inSelftest = Answer::No});
    if (answer == Answer::Yes) SessionLoad(path, g_app.hMainWnd);
}

void OpenRecentFiles() {
    const int count = std::min<int>(kRecentFilesAtStart, g_app.settings.mruCount);
    for (int i = 0; i < count; ++i)
        if (FileExists(g_app.settings.mruFiles[i])) FileShow(g_app.settings.mruFiles[i], false);
    TabBarSelect(0);
}

void OpenStartupWorkspace() {
    wchar_t directory[kPathCapacity] = {};
    wchar_t workspace[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    PathJoin(directory, L"workspace.json", workspace, kPathCapacity);
    if (FileExists(workspace)) WorkspaceLoad(workspace);
}

void RunStartupStep(StartupStep step) {
    switch (step) {
        case StartupStep::OfferSession: OfferSessionRestore(); break;
        case StartupStep::Workspace: OpenStartupWorkspace(); break;
        case StartupStep::RecentFiles: OpenRecentFiles(); break;
        case StartupStep::NewDocument: FileNew(); break;
        case StartupStep::Done: break;
    }
}

}  // namespace

void EnsureEditableStartupTab() {
    if (TabCount() == 0 && FileNew() == 0) return;
    if (!IsTabIndex(g_app.activeTab)) TabBarSelect(0);
}

void MainWnd_OnStartup() {
    // A box of the command line ("--help", a file that is not there) lets messages through before the rest of the line
    // was read: its files come first, and "--detect" leaves without opening or saving anything.
    if (!g_commandLineDone) {
        g_startupWaits = true;
        return;
    }
    AppLogMsg(L"DBG WM_USER+200 ENTER");
    StartupStep step = StartupStep::OfferSession;
    while (step != StartupStep::Done) {
        RunStartupStep(step);
        step = StartupStepAfter(step, TabCount() > 0, g_app.settings.restoreLastSession != 0);
    }
    if (TabCount() == 0) {
        AppLogMsg(L"DBG WM_USER+200: calling FileNew()");
        FileNew();
        AppLogMsg(L"DBG WM_USER+200: FileNew() returned tabCount=%d", TabCount());
    }
    EnsureEditableStartupTab();
    MainWindow_Layout();
    StatusBarUpdatePosition();
    FocusCurrentEditor();
    QueueFocusCurrentEditor();
    MainWindow_RequestStateRefresh();
    AppLogMsg(L"DBG WM_USER+200 EXIT tabCount=%d activeTab=%d hSci=%p", TabCount(), g_app.activeTab,
              static_cast<void*>(g_app.hEditor));
    LogFlush();
}

void MainWnd_CommandLineDone() {
    g_commandLineDone = true;
    if (g_startupWaits) PostMessageW(g_app.hMainWnd, MSG_STARTUP, 0, 0);
}

void MainWnd_OnReinitEditor(int tab, DocumentId id) {
    if (id != 0) tab = TabBarFindDocument(id);  // the row may have changed since the message was posted
    if (!IsTabIndex(tab)) return;
    const DocumentTab& document = TabAt(tab);
    EditorPaneInit(document.editor, document.compilerId);
    if (document.editor == g_app.hEditor) {
        StatusBarUpdatePosition();
        FocusCurrentEditor();
    }
}

void MainWnd_OnAutoSaveTimer() {
    for (const DocumentId document : DocumentsToSave(DocumentRowEntries(), true)) {
        const int tab = TabBarFindDocument(document);  // a box about the one before may have closed or saved this one
        // A question that comes by itself would take the keys that the user types into the text.
        if (tab >= 0 && TabAt(tab).hasFile && TabAt(tab).modified && !SaveAsksAboutForm(TabAt(tab))) FileSave(tab);
    }
}

// Asks about every modified document before anything is given up; one "Cancel" keeps the program running.
static bool ConfirmUnsavedDocuments() {
    std::vector<DocumentId> asked;
    while (const DocumentId document = NextToAskAbout(DocumentRowEntries(), asked)) {
        asked.push_back(document);
        TabBarSelect(TabBarFindDocument(document));
        if (FileConfirmClose(TabBarFindDocument(document)) == 0) return false;
    }
    return true;
}

static void SaveOnClose() {
    if (g_app.settings.autoSaveEnabled != 0) {
        wchar_t path[kPathCapacity] = {};
        SessionAutoSavePath(path, kPathCapacity);
        SessionSave(path);
    }
    if (g_app.sessionPath[0] != L'\0') SessionSave(g_app.sessionPath);
    if (g_app.settings.restoreLastSession != 0) WorkspaceSave(nullptr);
    SettingsSave(L"Editor.ini");
}

void MainWnd_OnClose(HWND window) {
    if (LongWorkRuns()) return;
    if (DebugIsWaiting()) {
        DebugStopWaiting(true);
        return;
    }
    if (!g_selftestTabsMode) {
        const DocumentId active = ActiveDocumentId();
        if (!ConfirmUnsavedDocuments()) return;
        TabBarSelect(TabBarFindDocument(active));
        BuildShutdown();
        AsmPaneShutdown();
        SaveOnClose();
    } else {
        AppLogMsg(L"DBG WM_CLOSE: skipped session/settings save during self-test");
    }
    DebugShutdown();
    for (int tab = TabCount() - 1; tab >= 0; --tab) TabBarRemove(tab);
    DestroyWindow(window);
}

bool MainWnd_OnQueryEndSession() { return ConfirmUnsavedDocuments(); }

// The process may be gone once this returns, and the system waits five seconds at most.
void MainWnd_OnEndSession(bool ending) {
    if (!ending) return;
    LogFlush();  // because the system may end the process at any moment from here on
    DebugShutdown();
    if (g_selftestTabsMode) return;
    CompilerKill();
    SaveOnClose();
}

void MainWnd_OnDestroy(HWND window) {
    KillTimer(window, TIMER_FOCUS);
    KillTimer(window, TIMER_SESSION);
    ToolbarDestroyImages();
    PostQuitMessage(0);
}
