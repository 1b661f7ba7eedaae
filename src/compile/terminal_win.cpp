// The terminal line: runs the typed command in the active document's folder. UI thread only.
#include "compile/terminal.h"

#include "base/events.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "compile/build.h"
#include "compile/build_stage.h"
#include "compile/child_process.h"
#include "compile/compile_state.h"
#include "compile/program_input.h"
#include "compile/terminal_complete.h"
#include "compile/terminal_text.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/libraries.h"
#include "files/session_file.h"
#include "files/user_folder.h"
#include "output/line_colours.h"
#include "output/output_feed.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <cwchar>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr WPARAM kCtrlZ = 0x1A;

constexpr std::size_t kLargestHistory = 2 << 20;  // bytes of the file that are read

struct Terminal {
    TerminalHistory history;
    bool historyRead = false;      // the commands of earlier runs are in it
    bool typedForProgram = false;  // the line's text was typed for a program that has ended meanwhile
    bool commandRuns = false;      // a command of the line
};
Terminal g_terminal;

// --- The history. Its file is the user's, shared by all copies of the program. What is typed as a program's input is no
// command and stays out of it, because it may be a password.

std::wstring HistoryPath() {
    const std::wstring folder = UserFolder();
    return folder.empty() ? folder : folder + L"TerminalHistory.txt";
}

std::vector<std::wstring> KeptCommands(const std::wstring& path) {
    std::string bytes;
    if (path.empty() || !ReadSharedFile(path, kLargestHistory, &bytes)) return {};
    return TerminalHistoryOf(bytes);
}

void ReadTerminalHistory() {
    if (std::exchange(g_terminal.historyRead, true)) return;
    g_terminal.history.commands = KeptCommands(HistoryPath());
    g_terminal.history.at = g_terminal.history.commands.size();
}

// Adds to what other copies have written meanwhile.
void KeepCommand(const std::wstring& command) {
    const std::wstring path = HistoryPath();
    if (path.empty() || !TerminalIsKept(command)) return;
    TerminalHistory kept;
    for (const std::wstring& each : KeptCommands(path)) TerminalRemember(kept, each);
    TerminalRemember(kept, command);
    if (!ReplaceFileWhole(path.c_str(), TerminalHistoryBytes(kept.commands)))
        AppLogMsg(L"FAIL: terminal history error=%lu", GetLastError());
}

void ShowTerminalHistory(HWND window, bool older) {
    ReadTerminalHistory();
    std::wstring command = WindowText(window);
    if (!TerminalRecall(g_terminal.history, older, &command)) return;
    SetWindowTextW(window, command.c_str());
    SendMessageW(window, EM_SETSEL, 0x7FFFFFFF, 0x7FFFFFFF);
}

std::wstring TerminalFolder() {
    if (IsTabIndex(g_documents.activeTab)) {
        const DocumentTab& tab = TabAt(g_documents.activeTab);
        if (tab.hasFile) return FolderOf(tab.path);
    }
    wchar_t own[kPathCapacity] = {};
    AppExeDirectory(own, kPathCapacity);
    return own;
}

// Shows what a program gets as its input, after the prompt that it has printed.
void EchoInput(const std::wstring& text) { OutputFeedStream(_wcsdup((text + L"\r\n").c_str()), 0); }

// The running program gets the line, also an empty one.
void SendToProgram(HWND window) {
    const std::wstring text = WindowText(window);
    if (!ProgramInputSend(text + L"\r\n")) {
        g_events.statusText(Text(L"The program does not read its input."));
        return;
    }
    EchoInput(text);
    ReadTerminalHistory();
    if (!text.empty()) TerminalRemember(g_terminal.history, text);
    SetWindowTextW(window, L"");
}

// Ctrl+Z in the empty line ends the input of the running program. Elsewhere it is the line's own undo.
bool EndsProgramInput(HWND window) {
    if (GetKeyState(VK_CONTROL) >= 0 || !ProgramInputIsOpen() || GetWindowTextLengthW(window) > 0) return false;
    ProgramInputEnd();
    TerminalShowCue();
    EchoInput(L"^Z");
    return true;
}

void RunTerminalCommand(HWND window) {
    if (ProgramInputIsOpen()) {
        SendToProgram(window);
        return;
    }
    const std::wstring command = WindowText(window);
    if (std::exchange(g_terminal.typedForProgram, false) && !command.empty()) {
        g_events.statusText(Text(L"The program has ended. Enter again runs this line as a command."));
        SendMessageW(window, EM_SETSEL, 0, -1);
        return;
    }
    if (command.find_first_not_of(L" \t") == std::wstring::npos) return;
    if (CompilerIsBuilding()) {
        g_events.statusText(Text(L"Something still runs: stop it first (Ctrl+Break)."));
        return;
    }
    StageSettle(false);
    if (CompilerIsBuilding()) return;
    ReadTerminalHistory();
    TerminalRemember(g_terminal.history, command);
    KeepCommand(command);
    SetWindowTextW(window, L"");
    if (lstrcmpiW(command.c_str(), L"cls") == 0) {
        OutputPaneClear();
        return;
    }
    OutputFeedBegin({.diagnostics = false});  // the command itself may look like a diagnostic
    OutputPaneAppend((L"> " + command + L"\r\n").c_str(), kLineTeal);
    const std::wstring folder = TerminalFolder();
    DWORD error = 0;
    if (StageStart({.stage = BuildStage::Terminal,
                    .commandLine = TerminalCommandLine(SystemFolder(), command),
                    .directory = folder},
                   &error)) {
        g_terminal.commandRuns = true;
        g_events.statusText(Text(L"Running command..."));
    } else {
        OutputFeedBegin({});
        OutputPaneAppend(FormatW(Text(L"The command could not be started (Win32 error %lu): %s\r\n"), error,
                                 ChildStartProblem(error, folder).c_str())
                             .c_str(),
                         kLineRed);
    }
}

// First empties the line, then stops what runs, then leaves.
void OnTerminalEscape(HWND window) {
    if (GetWindowTextLengthW(window) > 0) {
        SetWindowTextW(window, L"");
        g_terminal.history.at = g_terminal.history.commands.size();
    } else if (g_terminal.commandRuns || StageIsProgram()) {
        PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_BUILD_STOP, 0);
    } else {
        FocusEditorFromPane();
    }
}

bool OnTerminalKey(HWND window, WPARAM key) {
    switch (key) {
        case VK_RETURN: RunTerminalCommand(window); return true;
        case VK_UP:
        case VK_DOWN: ShowTerminalHistory(window, key == VK_UP); return true;
        case VK_ESCAPE: OnTerminalEscape(window); return true;
        case VK_TAB:
            if (GetKeyState(VK_CONTROL) >= 0) TerminalComplete(window, TerminalFolder(), GetKeyState(VK_SHIFT) >= 0);
            return true;
        case L'Z': return EndsProgramInput(window);
        default: return false;
    }
}

}  // namespace

void TerminalOnStageEnd(const StageResult& result) {
    g_terminal.commandRuns = false;
    OutputFeedBegin({});
    if (const std::wstring text = TerminalEndText(result); !text.empty())
        OutputPaneAppend(text.c_str(), result.end == BuildEnd::Stopped ? kLineRed : kLineTeal);
    g_events.statusText(result.end == BuildEnd::Stopped ? Text(L"Command stopped") : Text(L"Command finished"));
}

void TerminalShowCue() {
    const bool input = ProgramInputIsOpen();
    const wchar_t* const cue =
        input ? Text(L"Input of the program: Enter sends a line, Ctrl+Z ends the input") : Text(L"Command");
    SendMessageW(g_compile.hTerminal, EM_SETCUEBANNER, input ? TRUE : FALSE, reinterpret_cast<LPARAM>(cue));
    InvalidateRect(g_compile.hTerminal, nullptr, TRUE);  // an edit field without the focus does not repaint it
}

bool TerminalProgramEnded() {
    g_terminal.typedForProgram = GetWindowTextLengthW(g_compile.hTerminal) > 0;
    return g_terminal.typedForProgram;
}

LRESULT CALLBACK TerminalSubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnTerminalKey(window, wParam)) return 0;
            break;
        case WM_CHAR:
            // Handled on WM_KEYDOWN; the edit control would beep.
            if (wParam == L'\r' || wParam == VK_ESCAPE || wParam == L'\t') return 0;
            if (wParam == kCtrlZ && StageIsProgram() && GetWindowTextLengthW(window) == 0) return 0;
            break;
        case MSG_TERMINAL_NAMES: TerminalOnNames(window, wParam); return 0;
        case WM_KILLFOCUS: g_terminal.typedForProgram = false; break;
        default: break;
    }
    return SubclassNext(window, message, wParam, lParam);
}
