// Connects the events (base/events.h) with the functions that handle them. UI thread.
#include "app/main_window.h"

#include "ai/ai_replace.h"
#include "app/app_state.h"
#include "app/start_page.h"
#include "base/events.h"
#include "base/wide_format.h"
#include "commands/command_state.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "compile/build_source.h"
#include "completion/completion.h"
#include "debugui/breakpoint_list.h"
#include "debugui/debug_commands.h"
#include "debugui/debug_pane.h"
#include "debugui/debug_run.h"
#include "debugui/kept_names.h"
#include "debugui/location.h"
#include "disasm/asm_pane.h"
#include "documents/document_row.h"
#include "documents/outside.h"
#include "editor/editor_pane.h"
#include "output/line_colours.h"
#include "output/mark_view.h"
#include "output/output_feed.h"
#include "output/output_pane.h"
#include "output/show_timer.h"
#include "project/project.h"
#include "project/project_tree.h"
#include "recovery/snapshots.h"
#include "search/files_search.h"
#include "search/find_bar.h"
#include "session/closed_tabs.h"
#include "session/session.h"
#include "symbols/document_symbols.h"
#include "symbols/outline_pane.h"
#include "symbols/symbol_commands.h"
#include "tabs/tab_bar.h"
#include "ui/panes.h"

namespace {

void OnDocumentOpened(DocumentId document) {
    TabBarOnOpened(document);
    DebugOnDocumentOpened();
    OutsideOnDocuments();
}

void OnDocumentActivated(DocumentId document) {
    TabBarOnActivated();
    SessionOnShown(document);
    FindBarOnActivated(document);
    StatusBarForgetOthers(document);
    MainWindow_UpdateTitle();
    StatusBarUpdatePosition();
    if (BuildProjectNow()) MainWindow_UpdateCompilerSelection();  // a file that is not of the project has its own
    MenuUpdateState();
    OutlineOnActivated(document);
    ProjectTreeOnActive();
    OutsideOnDocumentActive();
    SourceMarksOnCaret(document);
    StartPageUpdate();
}

void OnDocumentChanged(DocumentId document) {
    TabBarOnChanged(document);
    SnapshotsOnChanged(document);
    StartPageUpdate();
    if (document != ActiveDocumentId()) return;
    MainWindow_UpdateTitle();
    ProjectTreeOnRenamed();
    MainWindow_RequestStateRefresh();
}

void OnDocumentClosed(DocumentId document, int index) {
    TabBarOnClosed(index);
    SymbolsOnClosed(document);
    SnapshotsOnClosed(document);
    SessionOnClosed(document);
    OutsideOnDocuments();
}

void OnDocumentSaved(DocumentId document) {
    OutsideOnDocuments();
    ProjectOnSaved(document);
    SourceMarksOnSaved(document);
}

void OnTextLeaving(DocumentId document) {
    BreakpointsKeepLines(document);
    AiOnTextLeaving(document);
    FilesSearchOnTextLeaving(document);
    SourceMarksOnTextLeaving(document);
}

void OnTextArrived(DocumentId document) {
    const HWND editor = TabAt(TabBarFindDocument(document)).editor;
    DefinitionLinksAttach(editor);  // once: each knows what it is attached to
    CompletionAttach(editor);
    BreakpointsRestoreMarkers(document);
    SessionOnTextArrived(document);
    DebugRestoreLocation(document);
    FilesSearchOnTextArrived(document);
    SymbolsOnTextArrived(document);
    SnapshotsOnTextArrived(document);
    SourceMarksOnTextArrived(document);
    OutsideOnDocuments();
}

void OnDocumentNotice(DocumentId document, const wchar_t* notice) {
    OutputPaneAppend(FormatW(L"[File] %s\r\n", notice).c_str(), kLineYellow);
    StatusBarSetDocumentText(document, notice);
}

void OnFileRenamed(const wchar_t* from, const wchar_t* to, bool copied) {
    if (copied) {
        BreakpointsUpdate();  // they take the new path from their document
        DebugPaneInvalidate();
        return NamesFollowCopy(from, to);
    }
    BreakpointsFollowRename(from, to);
    NamesFollowRename(from, to);
    SourceMarksFollowRename(from, to);
    DebugFollowRename(from, to);
}

void OnProjectChosen(const wchar_t* path, bool* open) { *open = ProjectOpenFile(path); }

// The files of a project are built with its compiler.
void OnCompilerChoiceAsked(const wchar_t* path, bool* stays) {
    *stays = BuildProjectNow() && ProjectHoldsFile(*BuildProjectNow(), path);
}

void OnProjectChanged() {
    StatusBarSetProject(ProjectName());
    ProjectTreeOnProject();
    MainWindow_UpdateCompilerSelection();
}

void OnProgramBuilt(const wchar_t* source, const wchar_t* listing) {
    if (PaneIsShown(PaneId::Asm)) AsmPaneLoad(source, listing);
}

void OnBuildEnded(bool success, bool debug) {
    SourceMarksOnBuildEnd();
    DebugOnBuildEnd(success, debug);
}

}  // namespace

void MainWnd_ConnectEvents() {
    g_events.documentsComing = TabBarOnComing;
    g_events.documentOpened = OnDocumentOpened;
    g_events.documentActivated = OnDocumentActivated;
    g_events.documentChanged = OnDocumentChanged;
    g_events.documentMoved = TabBarOnMoved;
    g_events.documentSaved = OnDocumentSaved;
    g_events.documentClosing = ClosedTabsOnClosing;
    g_events.documentClosed = OnDocumentClosed;
    g_events.textLeaving = OnTextLeaving;
    g_events.textArrived = OnTextArrived;
    g_events.documentNotice = OnDocumentNotice;
    g_events.markerRenewed = [](DocumentId document, int before, int after) {
        BreakpointsOnMarkerRenewed(document, before, after);
        DebugOnMarkerRenewed(document, before, after);
    };
    g_events.fileRenamed = OnFileRenamed;
    g_events.variableAsked = SymbolsOnVariableAsked;
    g_events.folderChosen = ProjectTreeOfferRoot;
    g_events.projectChosen = OnProjectChosen;
    g_events.compilerChoiceAsked = OnCompilerChoiceAsked;
    g_events.projectChanged = OnProjectChanged;
    g_events.searchFolderWanted = [](const wchar_t* folder) { FilesDialogShowFolder(g_app.hMainWnd, folder); };
    g_events.settingsChanged = MainWnd_OnSettingsChanged;
    g_events.programBuilt = OnProgramBuilt;
    g_events.buildEnded = OnBuildEnded;
    g_events.aiReplacementChanged = ToolbarUpdateAiDo;
    g_events.debuggerChanged = DebugPaneInvalidate;
    g_events.statusText = StatusBarSetText;
    g_events.documentStatus = StatusBarSetDocumentText;
    g_events.statusProgress = StatusBarSetProgress;
    g_events.noticeWanted = MainWnd_OnNoticeWanted;
    g_events.layoutWanted = MainWindow_Layout;
    g_events.refreshNow = MenuUpdateState;
    g_events.refreshWanted = MainWindow_RequestStateRefresh;
}

void MainWnd_OnOutputTimer() {
    OutputFeedShowNext();
    OutputPaneTrim();
    AsmPaneShowNext();
    const bool allShown = OutputFeedIsEmpty() && OutputFeedIsRevealed() && AsmPaneIsEmpty();
    const bool more = BuildOnShown(allShown);
    if (!more && OutputFeedIsEmpty() && OutputFeedIsRevealed() && AsmPaneIsEmpty()) ShowTimerStop();
}
