// The terminal line: a command typed there runs in the active document's folder, its output in the output pane. UI
// thread only.
#include "compile/terminal.h"

#include "base/events.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "compile/build.h"
#include "compile/build_paths.h"
#include "compile/build_stage.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "output/output_feed.h"
#include "output/output_pane.h"

#include <commctrl.h>

#include <string>
#include <vector>

namespace {

constexpr COLORREF kTeal = 0x808000;
constexpr COLORREF kRed = 0x0000FF;
constexpr std::size_t kHistory = 50;  // commands remembered for one run of the program

struct History {
    std::vector<std::wstring> commands;  // oldest first
    std::size_t at = 0;                  // the one shown; the count of commands: the line being typed
};
History g_history;

void Remember(const std::wstring& command) {
    std::erase(g_history.commands, command);
    g_history.commands.push_back(command);
    if (g_history.commands.size() > kHistory) g_history.commands.erase(g_history.commands.begin());
    g_history.at = g_history.commands.size();
}

void ShowHistory(HWND window, bool older) {
    const std::size_t count = g_history.commands.size();
    if (older ? g_history.at == 0 : g_history.at >= count) return;
    g_history.at += older ? static_cast<std::size_t>(-1) : 1;
    SetWindowTextW(window, g_history.at < count ? g_history.commands[g_history.at].c_str() : L"");
    SendMessageW(window, EM_SETSEL, 0x7FFFFFFF, 0x7FFFFFFF);
}

std::wstring Directory() {
    if (IsTabIndex(g_documents.activeTab)) {
        const DocumentTab& tab = TabAt(g_documents.activeTab);
        if (tab.hasFile) return FolderOf(tab.path);
    }
    wchar_t own[kPathCapacity] = {};
    AppExeDirectory(own, kPathCapacity);
    return own;
}

// The system's own command interpreter, by its full path: the folder of a document must not supply another one.
std::wstring CommandLine(const std::wstring& command) {
    wchar_t system[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(system, MAX_PATH);
    const std::wstring folder = length > 0 && length < MAX_PATH ? std::wstring(system) + L"\\" : std::wstring();
    return L"\"" + folder + L"cmd.exe\" /d /s /c \"" + command + L"\"";
}

void Run(HWND window) {
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
    Remember(command);
    SetWindowTextW(window, L"");
    if (OutputFeedIsLong() || lstrcmpiW(command.c_str(), L"cls") == 0) OutputPaneClear();
    if (lstrcmpiW(command.c_str(), L"cls") == 0) return;
    OutputPaneAppend((L"> " + command + L"\r\n").c_str(), kTeal);
    DWORD error = 0;
    if (StageStart({.stage = BuildStage::Terminal, .commandLine = CommandLine(command), .directory = Directory()},
                   &error))
        g_events.statusText(L"Running command...");
    else
        OutputPaneAppend(FormatW(L"The command could not be started (Win32 error %lu).\r\n", error).c_str(), kRed);
}

bool OnKey(HWND window, WPARAM key) {
    switch (key) {
        case VK_RETURN: Run(window); return true;
        case VK_UP:
        case VK_DOWN: ShowHistory(window, key == VK_UP); return true;
        case VK_ESCAPE: FocusCurrentEditor(); return true;
        default: return false;
    }
}

}  // namespace

void TerminalOnStageEnd(const StageResult& result) {
    if (result.end == BuildEnd::Stopped)
        OutputPaneAppend(L"--- Command stopped ---\r\n", kRed);
    else if (result.exitCode != 0)
        OutputPaneAppend(FormatW(L"--- Exit code %lu ---\r\n", result.exitCode).c_str(), kTeal);
    g_events.statusText(result.end == BuildEnd::Stopped ? L"Command stopped" : L"Command finished");
}

LRESULT CALLBACK TerminalSubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnKey(window, wParam)) return 0;
            break;
        case WM_CHAR:
            if (wParam == L'\r' || wParam == VK_ESCAPE)  // answered above; an edit control would beep
                return 0;
            break;
        case WM_NCDESTROY: RemoveWindowSubclass(window, TerminalSubclassProc, id); break;
        default: break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}
