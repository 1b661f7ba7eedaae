// Commands, from menu, toolbar and keys, to whoever carries them out. UI thread only.
#include "ai/ai_commands.h"
#include "ai/ai_pane.h"
#include "app/about.h"
#include "app/app_state.h"
#include "app/main_window.h"
#include "app/pane_titles.h"
#include "app/recent_menu.h"
#include "app/splitters.h"
#include "app/start_page.h"
#include "app/tab_commands.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "commands/command_state.h"
#include "commands/edit_target.h"
#include "commands/editor_commands.h"
#include "commands/quick_open.h"
#include "commands/status_bar.h"
#include "commands/view_commands.h"
#include "compile/build.h"
#include "completion/completion.h"
#include "completion/completion_commands.h"
#include "debugui/debug_commands.h"
#include "debugui/debug_run.h"
#include "documents/document_row.h"
#include "documents/editor_format.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "documents/nav_history.h"
#include "editor/bookmarks.h"
#include "editor/caret_steps.h"
#include "editor/editor_pane.h"
#include "editor/line_commands.h"
#include "output/output_pane.h"
#include "project/project.h"
#include "project/project_tree.h"
#include "recovery/recovery.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/files_search.h"
#include "search/find.h"
#include "search/find_bar.h"
#include "session/session.h"
#include "settingsui/settings_dialog.h"
#include "symbols/symbol_commands.h"
#include "tabs/tab_bar.h"
#include "ui/long_work.h"
#include "ui/message.h"
#include "ui/panes.h"
#include "ui/path_dialog.h"

#include <algorithm>
#include <span>
#include <vector>

namespace {

void SaveAndBuildIfAsked() {
    const int tab = g_app.activeTab;
    if (FileSave(tab) == 0 || !IsTabIndex(tab) || g_app.settings.buildOnSave == 0 || CompilerIsBuilding()) return;
    const DocumentTab& document = TabAt(tab);
    if (document.hasFile) StartCompilerBuild(false, false);
}

// Edit commands go to the window that has the keyboard when that takes them instead of the editor.
void EditText(int command) {
    static constexpr struct {
        int command;
        UINT scintilla;
    } kRows[] = {{IDM_EDIT_COPY, SCI_COPY}, {IDM_EDIT_SELECT_ALL, SCI_SELECTALL}};
    if (const HWND target = EditTargetNow(); target != nullptr) return EditTargetDo(target, command);
    if (command == IDM_EDIT_UNDO) return EditorUndo(g_app.hEditor);
    if (command == IDM_EDIT_REDO) return EditorRedo(g_app.hEditor);
    if (command == IDM_EDIT_CUT) return EditorCut(g_app.hEditor);
    if (command == IDM_EDIT_PASTE) return EditorPaste(g_app.hEditor);
    for (const auto& row : kRows)
        if (row.command == command) SciSend(g_app.hEditor, row.scintilla);
}

void GoToBookmark(int command) {
    if (!BookmarkGo(g_app.hEditor, command == IDM_BOOKMARK_NEXT))
        StatusBarSetDocumentText(ActiveDocumentId(), Text(L"No bookmarks in this document (Ctrl+F2 sets one)"));
}

void ChooseProjectFolder() {
    std::wstring folder = g_app.settings.projectRoot;
    if (!AskFolderPath(g_app.hMainWnd, Text(L"Choose the folder that the project tree shows"), folder)) return;
    SettingsChange([&](Settings& settings) {
        SafeCopyW(settings.projectRoot, folder);
        settings.showProjectTree = 1;
    });
    SettingsSave(nullptr);
}

void OpenWorkspace() {
    std::wstring path;
    if (!AskFilePath(
            {.owner = g_app.hMainWnd, .filter = English(L"Workspace (*.json)\0*.json\0All Files (*.*)\0*.*\0")}, path))
        return;
    switch (WorkspaceFileAt(path.c_str())) {
        case WorkspaceFile::Ours:  // it fails when the user keeps a document open
            if (WorkspaceLoad(path.c_str()) == 0) break;
            EnsureEditableStartupTab();  // all its files may be away
            FocusCurrentEditor();
            StatusBarSetText(Text(L"Workspace opened"));
            break;
        case WorkspaceFile::Foreign:
            ErrorMessage(Text(L"Failed to open workspace: %s\n\nThe file is not a workspace of this program."),
                         path.c_str());
            break;
        default: ErrorMessage(Text(L"Failed to open workspace: %s"), path.c_str()); break;
    }
}

// Where a text is modified, the closing itself asks, and can be cancelled.
void NewWorkspace() {
    const auto files = std::ranges::count_if(g_app.tabs, &DocumentTab::hasFile);
    const std::wstring text =
        FormatW(files == 1 ? Text(L"A new workspace closes the open file. It can be opened again with "
                                  L"Ctrl+Shift+T.")
                           : Text(L"A new workspace closes the %d open files. They can be opened "
                                  L"again with Ctrl+Shift+T."),
                static_cast<int>(files));
    const bool asked = std::ranges::any_of(g_app.tabs, &DocumentTab::modified);
    if (files > 0 && !asked &&
        AskUser({.caption = Text(L"New Workspace"),
                 .text = text.c_str(),
                 .buttons = AskButtons::OkCancel,
                 .icon = AskIcon::Question,
                 .inSelftest = Answer::Yes,
                 .yes = Text(L"Close &Files")}) != Answer::Yes)
        return;
    WorkspaceNew();
}

void SaveWorkspace(int) {
    const std::wstring target = g_app.workspacePath[0] != L'\0' ? g_app.workspacePath : WorkspaceDefaultPath();
    if (WorkspaceFileAt(target.c_str()) == WorkspaceFile::Foreign) {
        ErrorMessage(
            Text(L"Failed to save workspace: %s\n\nThe file is not a workspace of this program and stays as it is."),
            target.c_str());
        return;
    }
    StatusBarSetText(WorkspaceSave(nullptr) != 0 ? Text(L"Workspace saved") : Text(L"Workspace could not be saved"));
}

void CloseFocusedPane() {
    const PaneSpec* pane = PaneOfWindow(GetFocus());
    if (pane == nullptr) return StatusBarSetText(Text(L"No pane has the keyboard (F6 goes to one)"));
    PaneShow(pane->id, false);
}

// Leads the keyboard to the document that came to the front. Without one, it stays where it is.
template <typename Work>
void ToAnotherDocument(Work work) {
    const DocumentId before = ActiveDocumentId();
    work();
    if (ActiveDocumentId() != before) FocusCurrentEditor();
}

constexpr CommandHandler kFrameHandlers[] = {
    {IDM_FILE_NEW, [](int) { ToAnotherDocument([] { FileNew(); }); }},
    {IDM_FILE_OPEN, [](int) { ToAnotherDocument([] { FileOpen(nullptr); }); }},
    {IDM_FILE_SAVE, [](int) { SaveAndBuildIfAsked(); }},
    {IDM_FILE_SAVE_AS, [](int) { FileSaveAs(g_app.activeTab); }},
    {IDM_FILE_SAVE_ALL, [](int) { FileSaveAll(); }},
    {IDM_FILE_RELOAD, [](int) { FileReload(g_app.activeTab); }},
    {IDM_FILE_CLOSE, [](int) { FileClose(g_app.activeTab); }},
    {IDM_FILE_CLOSE_ALL, [](int) { FileCloseAll(); }},
    {IDM_FILE_EXIT, [](int) { PostMessageW(g_app.hMainWnd, WM_CLOSE, 0, 0); }},
    {IDM_FILE_RECOVERED, [](int) { ToAnotherDocument(RecoveryShow); }},
    {IDM_EDIT_UNDO, EditText},
    {IDM_EDIT_REDO, EditText},
    {IDM_EDIT_CUT, EditText},
    {IDM_EDIT_COPY, EditText},
    {IDM_EDIT_PASTE, EditText},
    {IDM_EDIT_SELECT_ALL, EditText},
    {IDM_EDIT_FIND, [](int) { FindDialogShow(g_app.hMainWnd, false); }},
    {IDM_EDIT_REPLACE, [](int) { FindDialogShow(g_app.hMainWnd, true); }},
    {IDM_FIND_NEXT, [](int) { FindNext(true); }},
    {IDM_FIND_PREVIOUS, [](int) { FindNext(false); }},
    {IDM_SEARCH_INCREMENTAL, [](int) { FindBarShow(); }},
    {IDM_SEARCH_CLEAR_MARKS, [](int) { FindMarksClear(); }},
    {IDM_EDIT_GOTO, [](int) { GotoLineDialogShow(g_app.hMainWnd); }},
    {IDM_EDIT_FORMAT_DOCUMENT, [](int) { EditorFormat(g_app.hEditor, false); }},
    {IDM_EDIT_FORMAT_SELECTION, [](int) { EditorFormat(g_app.hEditor, true); }},
    {IDM_EDIT_MATCH, [](int) { EditorPaneGoToMatch(g_app.hEditor); }},
    {IDM_NAV_BACK, [](int) { NavHistoryBack(); }},
    {IDM_NAV_FORWARD, [](int) { NavHistoryForward(); }},
    {IDM_BOOKMARK_TOGGLE, [](int) { BookmarkToggle(g_app.hEditor); }},
    {IDM_BOOKMARK_NEXT, GoToBookmark},
    {IDM_BOOKMARK_PREVIOUS, GoToBookmark},
    {IDM_BOOKMARKS_CLEAR, [](int) { BookmarksClear(g_app.hEditor); }},
    {IDM_PROJECT_SETTINGS, [](int) { SettingsDialogShow(g_app.hMainWnd); }},
    {IDM_PROJECT_FOLDER, [](int) { ChooseProjectFolder(); }},
    {IDM_TREE_REVEAL, [](int) { ProjectTreeRevealActive(); }},
    {IDM_PANE_RESIZE, [](int) { SplittersTakeKeys(); }},
    {IDM_PANE_SIZES, [](int) { SplittersRestoreSizes(); }},
    {IDM_PANE_CLOSE, [](int) { CloseFocusedPane(); }},
    {IDM_WORKSPACE_NEW, [](int) { NewWorkspace(); }},
    {IDM_WORKSPACE_OPEN, [](int) { OpenWorkspace(); }},
    {IDM_WORKSPACE_SAVE, SaveWorkspace},
    {IDM_HELP_ABOUT, [](int) { AboutShow(); }},
    {IDM_HELP_DOCUMENTATION, [](int) { DocumentationShow(); }},
};

}  // namespace

std::vector<CommandHandler> AllCommandHandlers() {
    std::vector<CommandHandler> all;
    for (const std::span<const CommandHandler> area :
         {std::span<const CommandHandler>(kFrameHandlers), RecentCommandHandlers(), TabCommandHandlers(),
          ViewCommandHandlers(), EditorCommandHandlers(), QuickOpenCommandHandlers(), BuildCommandHandlers(),
          DebugCommandHandlers(), AiCommandHandlers(), FilesSearchCommandHandlers(), SymbolCommandHandlers(),
          CompletionCommandHandlers(), ProjectCommandHandlers()})
        all.insert(all.end(), area.begin(), area.end());
    return all;
}

void MainWnd_OnCommand(int command, int notification, HWND control) {
    if (control != nullptr && control == g_app.hAiInput && notification == EN_CHANGE) AiPaneUpdateSend();
    if (PaneTitleOnCommand(control, notification)) return;
    // Other notifications of controls are of no interest: only the toolbar and the Send button send commands.
    const bool isSend = control == g_app.hAiSend && notification == BN_CLICKED;
    if (control != nullptr && control != g_app.hToolbar && !isSend) return;
    if (DebugIsWaiting()) {  // nothing may lead back into a session that is inside a wait
        if (command == IDM_DEBUG_STOP || command == IDM_DEBUG_BUTTON_STOP) DebugStopWaiting(false);
        return;
    }
    if (LongWorkRuns() || FileWorkRuns()) return;
    if (command != IDM_QUICK_OPEN && command != IDM_COMMAND_PALETTE) QuickOpenClose();
    if (command != IDM_EDIT_COMPLETE) CompletionClose();
    // F5 is the key of Build & Run; while a program stands, it is expected to go on.
    if (command == IDM_BUILD_RUN && FlowIsStopped(DebugFlowNow())) command = IDM_DEBUG_CONTINUE;
    // A key or a posted command may come when the command is not possible; the table decides, not the sender.
    if (!CommandStateOf(command, CurrentCommandView()).enabled) return;
    if (RunCommandHandler(kFrameHandlers, command) || RunCommandHandler(RecentCommandHandlers(), command) ||
        RunCommandHandler(TabCommandHandlers(), command) || RunCommandHandler(ViewCommandHandlers(), command) ||
        RunCommandHandler(EditorCommandHandlers(), command) || RunCommandHandler(QuickOpenCommandHandlers(), command) ||
        CmdHandle_Build(command) || CmdHandle_Debug(command) || CmdHandle_AI(command) ||
        RunCommandHandler(FilesSearchCommandHandlers(), command) ||
        RunCommandHandler(SymbolCommandHandlers(), command) ||
        RunCommandHandler(CompletionCommandHandlers(), command) || RunCommandHandler(ProjectCommandHandlers(), command))
        MainWindow_RequestStateRefresh();
}

void MainWnd_OnInitMenuPopup(HMENU menu) {
    RecentMenuFill(menu);
    TabMenuFill(menu);
    MenuShowKeys(menu);
    MenuApplyState(menu, CurrentCommandView());
}
