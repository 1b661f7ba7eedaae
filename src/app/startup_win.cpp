// How the editor comes up once its window stands, and how it goes down. UI thread only.
#include "ai/ai_requests.h"
#include "app/app_state.h"
#include "app/jump_list.h"
#include "app/main_window.h"
#include "app/start_page.h"
#include "app/startup_rules.h"
#include "base/log.h"
#include "base/texts.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "debugui/debug_commands.h"
#include "disasm/asm_pane.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "documents/outside.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "project/project.h"
#include "recovery/recovery.h"
#include "recovery/snapshots.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "selftest/selftest.h"
#include "session/closed_tabs.h"
#include "session/session.h"
#include "session/session_owner.h"
#include "settings/settings_store.h"
#include "symbols/references.h"
#include "ui/long_work.h"
#include "ui/message.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kRecentFilesAtStart = 5;

bool g_commandLineDone = false;
bool g_startupWaits = false;
bool g_sessionEnds = false;  // the user has answered all questions of the log-off

// A file of the command line and its place, which a restore must not lose.
struct OpenedFile {
    std::wstring path;
    LRESULT caret;
};

std::vector<OpenedFile> OpenedFiles() {
    std::vector<OpenedFile> files;
    for (const DocumentTab& tab : g_app.tabs)
        if (tab.hasFile) files.push_back({tab.path, SciSend(tab.editor, SCI_GETCURRENTPOS)});
    return files;
}

void ShowOpenedFile(const OpenedFile& file) {
    if (FileShow(file.path.c_str(), true) != 0 && file.caret > 0) CaretGoTo(g_app.hEditor, file.caret);
}

void OfferSessionRestore() {
    wchar_t path[kPathCapacity] = {};
    if (!SessionIsOurs()) return;  // another copy has it open
    SessionCheckAutoSave();
    // The user who switched restoring off and names files wants these and no question.
    if (TabCount() > 0 && g_app.settings.restoreLastSession == 0) return;
    SessionAutoSavePath(path, kPathCapacity);
    if (!FileExists(path) || SessionHasFiles(path) == 0) return;
    const Answer answer = AskUser({.caption = Text(L"Restore Session"),
                                   .text = Text(L"A previous session was auto-saved. Would you like to restore it?"),
                                   .buttons = AskButtons::YesNo,
                                   .icon = AskIcon::Question,
                                   .inSelftest = Answer::No,
                                   .loses = Answer::No});
    if (answer != Answer::Yes) return;
    // A restore replaces all documents. The files that the user started the program with come back after it.
    const std::vector<OpenedFile> opened = OpenedFiles();
    SessionLoad(path, g_app.hMainWnd);
    for (const OpenedFile& file : opened) ShowOpenedFile(file);
}

void OpenRecentFiles() {
    // The oldest first, so that the tabs stand as they were opened and the newest file is shown.
    for (int i = std::min<int>(kRecentFilesAtStart, g_app.settings.mruCount) - 1; i >= 0; --i)
        // A project that is to come back does so by itself.
        if (!FileWorkCloseIsQueued() && !FileIsProject(g_app.settings.mruFiles[i]) &&
            PathAnswers(g_app.settings.mruFiles[i]) && FileExists(g_app.settings.mruFiles[i]))
            FileShow(g_app.settings.mruFiles[i], false);
}

void OpenStartupWorkspace() {
    const std::wstring workspace = WorkspaceDefaultPath();
    if (FileExists(workspace.c_str())) WorkspaceLoad(workspace.c_str());
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
    if (SelfTestIsChild()) {
        EnsureEditableStartupTab();
        MainWindow_Layout();
        FocusCurrentEditor();
        SelfTestStart();
        return;
    }
    StartupStep step = StartupStep::OfferSession;
    while (step != StartupStep::Done) {
        if (FileWorkCloseIsQueued()) {
            // A box would swallow the close of a user who has ended the program while a large file was opened. The
            // rest of the start comes after the close, if the program still runs then.
            PostMessageW(g_app.hMainWnd, MSG_STARTUP, 0, 0);
            return;
        }
        RunStartupStep(step);
        step = StartupStepAfter(step, TabCount() > 0, g_app.settings.restoreLastSession != 0 && SessionIsOurs());
    }
    if (TabCount() == 0) {
        AppLogMsg(L"DBG WM_USER+200: calling FileNew()");
        FileNew();
        AppLogMsg(L"DBG WM_USER+200: FileNew() returned tabCount=%d", TabCount());
    }
    ProjectRestore();
    SessionStartupDone();
    EnsureEditableStartupTab();
    StartPageBegin();
    MainWindow_Layout();
    StatusBarUpdatePosition();
    FocusCurrentEditor();
    QueueFocusCurrentEditor();
    MainWindow_RequestStateRefresh();
    AppLogMsg(L"DBG WM_USER+200 EXIT tabCount=%d activeTab=%d hSci=%p", TabCount(), g_app.activeTab,
              static_cast<void*>(g_app.hEditor));
    LogFlush();
    RecoveryOffer();
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

// While a message box or a dialog is open, the frame takes no input. Messages reach it nevertheless.
static bool BoxIsOpen() { return IsWindowEnabled(g_app.hMainWnd) == FALSE; }

void MainWnd_OnAutoSaveTimer() {
    // A user who is asked whether to save, or has answered with "No" while the session ends, decides himself.
    if (BoxIsOpen() || g_sessionEnds) return;
    for (const DocumentId document : DocumentsToSave(DocumentRowEntries(), true)) {
        const int tab = TabBarFindDocument(document);  // a box about the one before may have closed or saved this one
        // A question that comes by itself would take the keys that the user types into the text.
        if (tab >= 0 && TabAt(tab).hasFile && TabAt(tab).modified) FileSaveUnasked(tab);
    }
}

static bool AnyIsModified() { return std::ranges::any_of(g_app.tabs, &DocumentTab::modified); }

// Asks about every modified document before anything is given up; one "Cancel" keeps the program running.
static bool ConfirmUnsavedDocuments() { return FileConfirmCloseAll({}) != 0; }

// True when everything was saved.
static bool SaveOnClose() {
    bool saved = SessionAutoSave(g_app.hMainWnd) != 0;
    if (SessionSavesAllowed()) {
        if (g_app.sessionPath[0] != L'\0') saved = SessionSave(g_app.sessionPath) != 0 && saved;
        if (g_app.settings.restoreLastSession != 0 && SessionIsOurs())
            WorkspaceSave(nullptr);  // its failures are in the log
    }
    return SettingsSave(L"Editor.ini") != 0 && saved;
}

static void TellNotSaved() {
    wchar_t folder[kPathCapacity] = {};
    GetIniDir(nullptr, folder, kPathCapacity);
    ErrorMessage(Text(L"The settings and the list of open files could not be saved in:\n\n%s"), folder);
}

void MainWnd_OnClose(HWND window) {
    if (LongWorkRuns()) return;
    if (FileWorkRuns()) {
        FileWorkCancel(true);
        return;
    }
    if (DebugIsWaiting()) {
        DebugStopWaiting(true);
        return;
    }
    if (BoxIsOpen()) {  // a second question would stand above the first
        SetForegroundWindow(GetLastActivePopup(window));
        return;
    }
    if (!g_selftestTabsMode) {
        const DocumentId active = ActiveDocumentId();
        if (!ConfirmUnsavedDocuments()) return;
        TabBarSelect(TabBarFindDocument(active));
        BuildShutdown();
        AsmPaneShutdown();
        if (!SaveOnClose()) TellNotSaved();
        MainWnd_ShowNotices();  // those of the save
        RecoveryEnd();          // every document is saved, or the user does not want its changes
    } else {
        AppLogMsg(L"DBG WM_CLOSE: skipped session/settings save during self-test");
    }
    ClosedTabsEnd();
    AiShutdown();
    OutsideEnd();
    DebugShutdown();
    TabBarRemoveAll();
    DestroyWindow(window);
}

bool MainWnd_OnQueryEndSession() {
    // The user has a question before him already; without his answer nothing that is unsaved may be given up.
    if (BoxIsOpen()) return !AnyIsModified();
    // First, because the system ends the process when the user takes too long to answer.
    SnapshotsWriteNow();
    g_sessionEnds = ConfirmUnsavedDocuments();
    return g_sessionEnds;
}

// The process may be gone once this returns, and the system waits five seconds at most.
void MainWnd_OnEndSession(bool ending) {
    const bool decided = std::exchange(g_sessionEnds, ending);
    if (!ending) return;
    if (!decided) SnapshotsWriteNow();  // nobody was asked
    LogFlush();                         // because the system may end the process at any moment from here on
    DebugShutdown();
    if (g_selftestTabsMode) return;
    CompilerKill();
    SaveOnClose();  // a failure is in the log; there is no time for a box
    if (decided) RecoveryEnd();
}

void MainWnd_OnDestroy(HWND window) {
    ProjectShutdown(window);
    SymbolsDropScans();
    SymbolsDropFiles();
    ReferencesDrop();
    KillTimer(window, TIMER_FOCUS);
    KillTimer(window, TIMER_SESSION);
    ToolbarDestroyImages();
    JumpListEnd();
    PostQuitMessage(0);
}
