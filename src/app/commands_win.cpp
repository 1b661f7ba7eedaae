// Commands, from menu, toolbar and keys, to whoever carries them out. UI thread only.
#include "app/app_state.h"
#include "app/main_window.h"
#include "commands/command_state.h"
#include "commands/status_bar.h"
#include "commands/view_commands.h"
#include "compile/build.h"
#include "debugui/debug_commands.h"
#include "documents/document_row.h"
#include "documents/editor_pane.h"
#include "documents/file_commands.h"
#include "language/format.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/find.h"
#include "session/session.h"
#include "settings/version.h"
#include "ui/clipboard.h"
#include "ui/message.h"

#include <commdlg.h>

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

void SaveAndBuildIfAsked() {
    const int tab = g_app.activeTab;
    if (FileSave(tab) == 0 || !IsTabIndex(tab) || g_app.settings.buildOnSave == 0 || CompilerIsBuilding()) return;
    const DocumentTab& document = TabAt(tab);
    if (document.hasFile) StartCompilerBuild(false, false);
}

void CloseOthers(int kept) {
    for (int tab = TabCount() - 1; tab >= 0; --tab) {
        if (tab != kept && FileClose(tab) == 0) return;
        if (tab < kept) --kept;
    }
}

// Edit commands go to the text field that has the keyboard when that is not the editor.
void SendToText(int command) {
    static constexpr struct {
        int command;
        UINT scintilla;
        UINT field;
        WPARAM wParam;
        LPARAM lParam;
    } kRows[] = {
        {IDM_EDIT_UNDO, SCI_UNDO, WM_UNDO, 0, 0},    {IDM_EDIT_REDO, SCI_REDO, 0, 0, 0},
        {IDM_EDIT_CUT, SCI_CUT, WM_CUT, 0, 0},       {IDM_EDIT_COPY, SCI_COPY, WM_COPY, 0, 0},
        {IDM_EDIT_PASTE, SCI_PASTE, WM_PASTE, 0, 0}, {IDM_EDIT_SELECT_ALL, SCI_SELECTALL, EM_SETSEL, 0, -1},
    };
    for (const auto& row : kRows) {
        if (row.command != command) continue;
        if (HWND field = FocusedTextField()) {
            if (row.field != 0) SendMessageW(field, row.field, row.wParam, row.lParam);
        } else {
            SciSend(g_app.hEditor, row.scintilla);
        }
    }
}

// Lines with their breaks.
std::vector<std::string_view> LinesWithBreaks(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        std::size_t end = text.find_first_of("\r\n");
        if (end == std::string_view::npos)
            end = text.size();
        else
            end += text.substr(end).starts_with("\r\n") ? 2 : 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

std::string_view WithoutBreak(std::string_view line) { return line.substr(0, line.find_last_not_of("\r\n") + 1); }

// Line by line, only those that differ, and not their breaks: what is marked on a line stays on it, also when this is
// undone. A line that loses its break for a moment gives its marks to the next one.
void ReplaceLines(HWND editor, LRESULT start, std::string_view before, std::string_view after) {
    const auto replace = [&](std::string_view old, std::string_view wanted) {
        SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(start), start + static_cast<LRESULT>(old.size()));
        SciSend(editor, SCI_REPLACETARGET, wanted.size(), reinterpret_cast<LPARAM>(wanted.data()));
    };
    const std::vector<std::string_view> old = LinesWithBreaks(before);
    const std::vector<std::string_view> wanted = LinesWithBreaks(after);
    if (old.size() != wanted.size()) {
        replace(before, after);
        return;
    }
    for (std::size_t i = 0; i < old.size(); ++i) {
        if (old[i] != wanted[i]) replace(WithoutBreak(old[i]), WithoutBreak(wanted[i]));
        start += static_cast<LRESULT>(wanted[i].size());
    }
}

// Replaces whole lines [first, last] by their formatted text, as one step of undo.
void FormatLines(HWND editor, int first, int last) {
    const auto lineStart = [editor](int line) {
        return SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(line));
    };
    const LRESULT start = lineStart(first);
    const bool toEnd = last + 1 >= static_cast<int>(SciSend(editor, SCI_GETLINECOUNT));
    const LRESULT end = toEnd ? SciSend(editor, SCI_GETLENGTH) : lineStart(last + 1);
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(start), end);
    std::string text(static_cast<std::size_t>(end - start), '\0');
    SciSend(editor, SCI_GETTARGETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));

    const Settings& settings = g_app.settings;
    const int width = std::max(1, static_cast<int>(settings.tabWidth));
    const int depth =
        first > 0 ? static_cast<int>(SciSend(editor, SCI_GETLINEINDENTATION, static_cast<WPARAM>(first))) / width : 0;
    const std::string formatted = FormatBasicSource(
        text,
        {.indentWidth = width, .useTabs = settings.useTabs != 0, .upperKeywords = settings.autoUpperKeywords != 0},
        depth);
    if (formatted == text) return;
    const LRESULT caretLine =
        SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(SciSend(editor, SCI_GETCURRENTPOS)));
    const LRESULT topLine = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    SciSend(editor, SCI_BEGINUNDOACTION);
    ReplaceLines(editor, start, text, formatted);
    SciSend(editor, SCI_ENDUNDOACTION);
    SciSend(editor, SCI_GOTOPOS,
            static_cast<WPARAM>(SciSend(editor, SCI_GETLINEINDENTPOSITION, static_cast<WPARAM>(caretLine))));
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(topLine));
}

void FormatDocument(bool selectionOnly) {
    HWND editor = g_app.hEditor;
    if (editor == nullptr) return;
    int first = 0;
    int last = static_cast<int>(SciSend(editor, SCI_GETLINECOUNT)) - 1;
    if (selectionOnly) {
        const LRESULT start = SciSend(editor, SCI_GETSELECTIONSTART);
        const LRESULT end = SciSend(editor, SCI_GETSELECTIONEND);
        first = static_cast<int>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(start)));
        last = static_cast<int>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(end)));
        const bool endsAtLineStart = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(last)) == end;
        if (endsAtLineStart && last > first) --last;
    }
    FormatLines(editor, first, last);
}

void SelectTabBeside(int command) {
    TabBarActivate((g_app.activeTab + (command == IDM_NEXT_TAB ? 1 : TabCount() - 1)) % TabCount());
}

void OpenWorkspace() {
    wchar_t path[kPathCapacity] = {};
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = g_app.hMainWnd;
    dialog.lpstrFilter = L"Workspace (*.json)\0*.json\0All Files (*.*)\0*.*\0";
    dialog.lpstrFile = path;
    dialog.nMaxFile = static_cast<DWORD>(kPathCapacity);
    dialog.Flags = OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR;
    if (GetOpenFileNameW(&dialog) && WorkspaceLoad(path) == 0) ErrorMessage(L"Failed to open workspace: %s", path);
}

void SaveWorkspace(int) {
    StatusBarSetText(WorkspaceSave(nullptr) != 0 ? L"Workspace saved" : L"Workspace could not be saved");
}

void ShowAbout(int) {
    InfoMessage(
        L"KVX-"
        L"Editor " KVX_VERSION L"\n\nA source editor for BASIC, C and assembly: write, build, go to the error, run.");
}

constexpr CommandHandler kFrameHandlers[] = {
    {IDM_FILE_NEW, [](int) { FileNew(); }},
    {IDM_FILE_OPEN, [](int) { FileOpen(nullptr); }},
    {IDM_FILE_SAVE, [](int) { SaveAndBuildIfAsked(); }},
    {IDM_FILE_SAVE_AS, [](int) { FileSaveAs(g_app.activeTab); }},
    {IDM_FILE_SAVE_ALL, [](int) { FileSaveAll(); }},
    {IDM_FILE_RELOAD, [](int) { FileReload(g_app.activeTab); }},
    {IDM_FILE_CLOSE, [](int) { FileClose(g_app.activeTab); }},
    {IDM_FILE_CLOSE_ALL, [](int) { FileCloseAll(); }},
    {IDM_FILE_EXIT, [](int) { PostMessageW(g_app.hMainWnd, WM_CLOSE, 0, 0); }},
    {IDM_TAB_CLOSE_OTHERS, [](int) { CloseOthers(g_app.activeTab); }},
    {IDM_TAB_COPY_PATH, [](int) { ClipboardPutText(g_app.hMainWnd, TabAt(g_app.activeTab).path); }},
    {IDM_EDIT_UNDO, SendToText},
    {IDM_EDIT_REDO, SendToText},
    {IDM_EDIT_CUT, SendToText},
    {IDM_EDIT_COPY, SendToText},
    {IDM_EDIT_PASTE, SendToText},
    {IDM_EDIT_SELECT_ALL, SendToText},
    {IDM_EDIT_FIND, [](int) { FindDialogShow(g_app.hMainWnd, false); }},
    {IDM_EDIT_REPLACE, [](int) { FindDialogShow(g_app.hMainWnd, true); }},
    {IDM_FIND_NEXT, [](int) { FindNext(true); }},
    {IDM_FIND_PREVIOUS, [](int) { FindNext(false); }},
    {IDM_EDIT_GOTO, [](int) { GotoLineDialogShow(g_app.hMainWnd); }},
    {IDM_EDIT_FORMAT_DOCUMENT, [](int) { FormatDocument(false); }},
    {IDM_EDIT_FORMAT_SELECTION, [](int) { FormatDocument(true); }},
    {IDM_NAV_BACK, [](int) { NavHistoryBack(); }},
    {IDM_NAV_FORWARD, [](int) { NavHistoryForward(); }},
    {IDM_NEXT_TAB, SelectTabBeside},
    {IDM_PREVIOUS_TAB, SelectTabBeside},
    {IDM_WORKSPACE_NEW, [](int) { WorkspaceNew(); }},
    {IDM_WORKSPACE_OPEN, [](int) { OpenWorkspace(); }},
    {IDM_WORKSPACE_SAVE, SaveWorkspace},
    {IDM_HELP_ABOUT, ShowAbout},
};

}  // namespace

std::vector<CommandHandler> AllCommandHandlers() {
    std::vector<CommandHandler> all;
    for (const std::span<const CommandHandler> area :
         {std::span<const CommandHandler>(kFrameHandlers), ViewCommandHandlers(), BuildCommandHandlers(),
          DebugCommandHandlers()})
        all.insert(all.end(), area.begin(), area.end());
    return all;
}

void MainWnd_OnCommand(int command, int notification, HWND control) {
    const bool fromControl = control != nullptr && control != g_app.hToolbar;
    if (fromControl) return;  // notifications of edit fields; no control of ours but the toolbar sends commands
    (void)notification;
    if (DebugIsWaiting()) {  // nothing may lead back into a session that is inside a wait
        if (command == IDM_DEBUG_STOP || command == IDM_DEBUG_BUTTON_STOP) DebugStopWaiting(false);
        return;
    }
    // A key or a posted command may come when the command is not possible; the table decides, not the sender.
    if (!CommandStateOf(command, CurrentCommandView()).enabled) return;
    static const std::vector<CommandHandler> handlers = AllCommandHandlers();
    const auto handler = std::ranges::find(handlers, command, &CommandHandler::command);
    if (handler == handlers.end()) return;
    handler->run(command);
    MainWindow_RequestStateRefresh();
}

void MainWnd_OnInitMenuPopup(HMENU menu) { MenuApplyState(menu, CurrentCommandView()); }
