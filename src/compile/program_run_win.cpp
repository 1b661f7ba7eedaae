#include "compile/program_run.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/path.h"
#include "base/texts.h"
#include "compile/build_plan.h"
#include "compile/build_runner.h"
#include "compile/build_source.h"
#include "compile/build_stage.h"
#include "compile/child_process.h"
#include "compile/compile_state.h"
#include "compile/file_stamp.h"
#include "compile/held_console.h"
#include "compile/program_input.h"
#include "compile/terminal.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/start_path.h"
#include "output/line_colours.h"
#include "output/output_feed.h"
#include "output/output_pane.h"
#include "program/image_kind.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <shellapi.h>

#include <utility>

namespace {

constexpr std::size_t kMostFile = 16 << 20;  // reading more would be felt

std::wstring ProgramToRun() {
    const std::optional<BuildProject> project = BuildProjectAtHand();
    const bool other = project && !SamePathText(project->source, LastBuild().source);
    if (!LastBuild().output.empty() && !other) return LastBuild().output;
    const std::wstring source = BuildSourceMeant();
    if (source.empty()) return {};
    wchar_t output[kPathCapacity] = {};
    CompilerMakeOutputPath(source.c_str(), output, kPathCapacity);
    return output;
}

// How a program is started: as the project says whose program it is, else as the settings do.
ProgramStart StartOf(const std::wstring& program) {
    ProgramStart start = ProgramStartOf(program);
    if (start.folder.empty()) start.folder = FolderOf(program);
    return start;
}

// Whether the source has changes that the program cannot have, saved or not.
bool SourceIsModified(const std::wstring& program) {
    const std::wstring& source = LastBuild().source;
    const int tab = TabBarFindPath(source.c_str());
    FileStamp written, built;
    return (IsTabIndex(tab) && TabAt(tab).modified) ||
           (ReadFileStamp(source, &written) && ReadFileStamp(program, &built) && written.written > built.written);
}

// Said again only after another program ran, because it is true of each run.
void SayConsoleKeys(const std::wstring& program) {
    static std::wstring last;
    std::string bytes;
    if (std::exchange(last, program) == program || !ReadSharedFile(program, kMostFile, &bytes)) return;
    const PeImage image = PeImageRead({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    OutputPaneAppend(ConsoleKeysText(image).c_str(), kLineYellow);
}

std::wstring EditorPath() {
    wchar_t path[kPathCapacity] = {};
    GetModuleFileNameW(nullptr, path, kPathCapacity);
    return path;
}

// Starts a program in a window of its own without the shell.
bool StartDirectly(const std::wstring& program, const std::wstring& arguments, const std::wstring& folder) {
    std::wstring commandLine = ProgramCommandLine(program, arguments);
    const std::wstring working = WorkingFolderOf(folder);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NEW_CONSOLE, nullptr,
                       working.empty() ? nullptr : working.c_str(), &startup, &process) == FALSE)
        return false;
    const UniqueHandle thread(process.hThread), running(process.hProcess);
    return true;
}

void SayRunProblem(const std::wstring& text) {
    OutputPaneAppend(text.c_str(), kLineRed);
    g_events.statusText(Text(L"Run failed"));
}

}  // namespace

void RunInOutputPane() {
    StageSettle(false);
    const BuildRefusal refusal = BuildRefusalOfCommand(BuildSituationNow());
    if (refusal != BuildRefusal::None && refusal != BuildRefusal::ProgramDebugged) {
        BuildApplyStep(BuildRefused(refusal));
        return;
    }
    const std::wstring program = ProgramToRun();
    if (program.empty() || !FileExists(program.c_str())) {
        OutputPaneAppend(Text(L"Nothing to run: build a program first (Ctrl+B).\r\n"), kLineRed);
        g_events.statusText(Text(L"Nothing to run"));
        return;
    }
    PaneShow(PaneId::Output, true);
    if (!ProgramCanBeStarted(program)) {
        SayRunProblem(TextWith(L"Run failed. {1}\r\n", {LongProgramText(program)}));
        return;
    }
    const auto [arguments, folder] = StartOf(program);
    OutputPaneAppend(RunningText(program, arguments).c_str(), 0);
    if (SamePathText(LastBuild().output, program))
        OutputPaneAppend(RunDoubt(LastBuild(), SourceIsModified(program)).c_str(), kLineYellow);
    SayConsoleKeys(program);
    OutputFeedBegin({.diagnostics = false});  // what a program prints may look like a diagnostic
    DWORD error = 0;
    if (!StageStart(
            {.stage = BuildStage::Program, .commandLine = ProgramCommandLine(program, arguments), .directory = folder},
            &error)) {
        OutputFeedBegin({});
        SayRunProblem(RunFailedText(error, ChildStartProblem(error, folder)));
        return;
    }
    PaneShow(PaneId::Terminal, true);
    TerminalShowCue();
    SetFocus(g_compile.hTerminal);
    g_events.statusText(Text(L"Program runs in the output pane"));
}

void ProgramWatchInput() {
    if (ProgramInputIsDoubtful()) OutputFeedMessage(UnreadInputText(), kLineYellow);
}

void RunBuiltProgram(const std::wstring& program) {
    if (!ProgramCanBeStarted(program)) {
        SayRunProblem(TextWith(L"Run failed. {1}\r\n", {LongProgramText(program)}));
        return;
    }
    const ProgramStart start = StartOf(program);
    if (g_settings.keepConsoleOpen != 0 && ImageKindOf(program.c_str()).console) {
        const std::wstring held =
            HeldArguments({.commandLine = ProgramCommandLine(program, start.arguments),
                           .farewell = Text(L"Program ended (exit code {1}). Press any key to close this window.")});
        if (StartDirectly(EditorPath(), held, start.folder)) return;
    }
    const auto result = reinterpret_cast<INT_PTR>(ShellExecuteW(
        g_ui.hMainWnd, L"open", program.c_str(), start.arguments.c_str(), start.folder.c_str(), SW_SHOWNORMAL));
    // The shell takes "%TEMP%" in a path for the value of that variable, and so misses the file.
    const bool missed = (result == SE_ERR_FNF || result == SE_ERR_PNF) && FileExists(program.c_str());
    if (result > 32 || (missed && StartDirectly(program, start.arguments, start.folder))) return;
    SayRunProblem(RunErrorLine(program, static_cast<long>(result)));
}

void ProgramOnStageEnd(const StageResult& result) {
    const bool failed = result.end == BuildEnd::Stopped || result.exitCode != 0;
    OutputPaneAppend(ProgramEndText(result).c_str(), failed ? kLineRed : 0);
    g_events.statusText(result.end == BuildEnd::Stopped ? Text(L"Program stopped") : Text(L"Program ended"));
    OutputFeedBegin({});
    TerminalShowCue();
    // Somebody who is typing a line must not go on in the source.
    const bool typing = TerminalProgramEnded() && result.end != BuildEnd::Stopped;
    if (GetFocus() == g_compile.hTerminal && !typing) FocusCurrentEditor();
}
