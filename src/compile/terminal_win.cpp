// The terminal line: runs the typed command in the active document's folder. UI thread only.
#include "compile/terminal.h"

#include "base/events.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "compile/build.h"
#include "compile/build_stage.h"
#include "compile/terminal_text.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "output/line_colours.h"
#include "output/output_feed.h"
#include "output/output_pane.h"

#include <commctrl.h>

#include <string>

namespace {

TerminalHistory g_terminalHistory;

void ShowTerminalHistory(HWND window, bool older) {
    std::wstring command;
    if (!TerminalRecall(g_terminalHistory, older, &command)) return;
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

std::wstring SystemFolder() {
    wchar_t system[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(system, MAX_PATH);
    return length > 0 && length < MAX_PATH ? system : L"";
}

void RunTerminalCommand(HWND window) {
    const int length = GetWindowTextLengthW(window);
    std::wstring command(static_cast<std::size_t>(length) + 1, L'\0');
    command.resize(static_cast<std::size_t>(GetWindowTextW(window, command.data(), length + 1)));
    if (command.find_first_not_of(L" \t") == std::wstring::npos) return;
    if (CompilerIsBuilding()) {
        g_events.statusText(L"Something still runs: stop it first (Ctrl+Break).");
        return;
    }
    StageSettle(false);
    if (CompilerIsBuilding()) return;
    TerminalRemember(g_terminalHistory, command);
    SetWindowTextW(window, L"");
    if (OutputFeedIsLong() || lstrcmpiW(command.c_str(), L"cls") == 0) OutputPaneClear();
    if (lstrcmpiW(command.c_str(), L"cls") == 0) return;
    OutputFeedBegin(false);  // the command itself may look like a diagnostic
    OutputPaneAppend((L"> " + command + L"\r\n").c_str(), kLineTeal);
    DWORD error = 0;
    if (StageStart({.stage = BuildStage::Terminal,
                    .commandLine = TerminalCommandLine(SystemFolder(), command),
                    .directory = TerminalFolder()},
                   &error)) {
        g_events.statusText(L"Running command...");
    } else {
        OutputFeedBegin(true);
        OutputPaneAppend(FormatW(L"The command could not be started (Win32 error %lu).\r\n", error).c_str(), kLineRed);
    }
}

bool OnTerminalKey(HWND window, WPARAM key) {
    switch (key) {
        case VK_RETURN: RunTerminalCommand(window); return true;
        case VK_UP:
        case VK_DOWN: ShowTerminalHistory(window, key == VK_UP); return true;
        case VK_ESCAPE: FocusCurrentEditor(); return true;
        default: return false;
    }
}

}  // namespace

void TerminalOnStageEnd(const StageResult& result) {
    OutputFeedBegin(true);
    if (const std::wstring text = TerminalEndText(result); !text.empty())
        OutputPaneAppend(text.c_str(), result.end == BuildEnd::Stopped ? kLineRed : kLineTeal);
    g_events.statusText(result.end == BuildEnd::Stopped ? L"Command stopped" : L"Command finished");
}

LRESULT CALLBACK TerminalSubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnTerminalKey(window, wParam)) return 0;
            break;
        case WM_CHAR:
            if (wParam == L'\r' || wParam == VK_ESCAPE)  // handled on WM_KEYDOWN; the edit control would beep
                return 0;
            break;
        case WM_NCDESTROY: RemoveWindowSubclass(window, TerminalSubclassProc, id); break;
        default: break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}
