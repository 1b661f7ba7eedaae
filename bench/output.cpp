// Measures a compiler that prints very many lines: the time until they are shown, whether the program answers
// meanwhile, and the time of Stop. Measures also how soon a prompt is shown, which has no line break.
#include "bench.h"

#include <commctrl.h>
#include <richedit.h>
#include <tlhelp32.h>

#include <algorithm>
#include <string>

#include "output/kept_lines.h"
#include "resources/ids.h"

namespace {

constexpr double kBuildLimitMs = 600000;
constexpr double kStopLimitMs = 20000;
constexpr DWORD kPauseMs = 5;     // between two messages to a program that is busy
constexpr int kStatusEvery = 10;  // the status bar is read at every tenth message

// Reads the text of the first part of the status bar.
class StatusReader {
public:
    explicit StatusReader(const Program& program) : process_(program.Process()) {
        bar_ = GetDlgItem(program.Main(), IDC_STATUS_BAR);
        remote_ = VirtualAllocEx(process_, nullptr, kBytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        if (bar_ == nullptr || remote_ == nullptr) Die("the status bar cannot be read");
    }
    ~StatusReader() { VirtualFreeEx(process_, remote_, 0, MEM_RELEASE); }
    StatusReader(const StatusReader&) = delete;
    StatusReader& operator=(const StatusReader&) = delete;

    std::wstring Text() const {
        wchar_t text[kBytes / sizeof(wchar_t)] = {};
        Ask(bar_, SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(remote_));
        if (!ReadProcessMemory(process_, remote_, text, kBytes - sizeof(wchar_t), nullptr)) Die("no status text");
        return text;
    }

private:
    static constexpr std::size_t kBytes = 2048;
    HANDLE process_;
    HWND bar_ = nullptr;
    void* remote_ = nullptr;
};

struct FloodRun {
    double time = 0;
    double slowestAnswer = 0;
    double nextBuild = 0;  // milliseconds of the command that empties the pane and starts the next build
    double residentMb = 0;
    LRESULT shown = 0;  // lines in the pane at the end
};

double AnswerTime(HWND window) {
    const double start = NowMs();
    Ask(window, WM_NULL);
    return NowMs() - start;
}

struct Opened {
    Folder folder;
    std::wstring file;
    Program program;
    explicit Opened(int floodLines)
        : folder({.compilers = false, .settings = false, .floodLines = floodLines}),
          file(MakeSource(folder)),
          program(Kind::Editor, folder, file) {
        program.AwaitReady(kSource.size());
        program.SettledMemory();
    }

private:
    static constexpr std::string_view kSource = "PRINT 1\r\n";
    static std::wstring MakeSource(const Folder& folder) {
        WriteText(folder.Path() + L"main.bas", kSource);
        WriteText(folder.Path() + L"Editor.ini", "[Editor]\r\nActiveCompiler=0\r\n");
        return folder.Path() + L"main.bas";
    }
};

FloodRun Flood(int lines) {
    Opened opened(lines);
    const HWND window = opened.program.Main();
    const StatusReader status(opened.program);
    FloodRun run;
    const double start = NowMs();
    PostMessageW(window, WM_COMMAND, IDM_BUILD, 0);
    for (int looks = 1;; ++looks) {
        run.slowestAnswer = std::max(run.slowestAnswer, AnswerTime(window));
        if (looks % kStatusEvery == 0 && status.Text().starts_with(L"Build failed (exit code 1)")) break;
        if (NowMs() - start > kBuildLimitMs) Die("the build does not end: " + Narrow(status.Text()));
        Sleep(kPauseMs);
    }
    run.time = NowMs() - start;
    const auto kept = static_cast<LRESULT>(kFirstLinesKept + kLastLinesKept);
    run.shown = Ask(GetDlgItem(window, IDC_OUTPUT), EM_GETLINECOUNT);
    if (run.shown < std::min<LRESULT>(lines, kept)) Die("only " + std::to_string(run.shown) + " lines are shown");
    run.residentMb = opened.program.SettledMemory().residentMb;
    const double again = NowMs();
    Ask(window, WM_COMMAND, IDM_BUILD);
    run.nextBuild = NowMs() - again;
    return run;
}

// Opens the running processes of this executable name. The caller closes the handles.
std::vector<HANDLE> OpenProcesses(const wchar_t* name) {
    std::vector<HANDLE> found;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
        if (_wcsicmp(entry.szExeFile, name) != 0) continue;
        const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, entry.th32ProcessID);
        if (process != nullptr) found.push_back(process);
    }
    CloseHandle(snapshot);
    return found;
}

void CloseAll(const std::vector<HANDLE>& handles) {
    for (const HANDLE handle : handles) CloseHandle(handle);
}

// Returns the milliseconds from the Stop command to the end of the compiler and of the process that it started.
double StopOnce(double* answer) {
    Opened opened(0);
    const HWND window = opened.program.Main();
    const HWND pane = GetDlgItem(window, IDC_OUTPUT);
    PostMessageW(window, WM_COMMAND, IDM_BUILD, 0);
    const double limit = NowMs() + kStopLimitMs;
    while (Ask(pane, EM_GETLINECOUNT) < 3000) {
        if (NowMs() > limit) Die("the flood does not start");
        Sleep(kPauseMs);
    }
    std::vector<HANDLE> running = OpenProcesses(L"kvxa64.exe");
    if (running.size() != 2) Die("expected a compiler and its child, found " + std::to_string(running.size()));
    const double start = NowMs();
    PostMessageW(window, WM_COMMAND, IDM_BUILD_STOP, 0);
    const DWORD waited = WaitForMultipleObjects(2, running.data(), TRUE, static_cast<DWORD>(kStopLimitMs));
    const double gone = NowMs() - start;
    if (waited == WAIT_TIMEOUT) Die("Stop leaves a process running");
    *answer = AnswerTime(window);
    CloseAll(running);
    running = OpenProcesses(L"kvxa64.exe");
    if (!running.empty()) Die("Stop leaves a process behind");
    return gone;
}

// Milliseconds from each prompt's writing, which the prompt itself tells, until it is in the pane.
std::vector<double> PromptOnce() {
    constexpr int kPrompts = 10;
    Opened opened(1);
    std::string script;
    for (int i = 0; i < kPrompts; ++i) script += "ask\nsleep 300\nprint\n";
    WriteText(opened.folder.Path() + L"KVXA64\\fake.txt", script);
    const HWND pane = GetDlgItem(opened.program.Main(), IDC_OUTPUT);
    PostMessageW(opened.program.Main(), WM_COMMAND, IDM_BUILD, 0);
    const double limit = NowMs() + kBuildLimitMs;
    std::vector<double> times;
    for (std::size_t from = 0; times.size() < kPrompts; Pause(1)) {
        wchar_t text[4096] = {};
        Ask(pane, WM_GETTEXT, 4096, reinterpret_cast<LPARAM>(text));
        const double now = NowMs();
        const std::wstring_view shown = text;
        const std::size_t end = shown.find(L" ms?", from);
        if (end != std::wstring_view::npos) {
            times.push_back(now - std::stod(std::wstring(shown.substr(shown.rfind(L"at ", end) + 3))));
            from = end + 1;
        }
        if (now > limit) Die("a prompt is not shown");
    }
    return times;
}

}  // namespace

void MeasurePrompts() {
    constexpr int kRuns = 5;
    std::vector<double> slowest;
    for (int i = 0; i < Runs(kRuns); ++i) slowest.push_back(std::ranges::max(PromptOnce()));
    Report({.work = "a prompt without a line break, until it is in the output pane",
            .program = slowest,
            .figure = Figure::Most,
            .maxValue = 200,
            .note = "each run the slowest of 10",
            .headline = true});
}

void MeasureOutput() {
    constexpr int kLines = 100'000;
    constexpr int kRuns = 5;
    std::vector<double> bare, once, twice, memory, slowest, nextBuild;
    LRESULT shown = 0;
    for (int i = 0; i < Runs(kRuns); ++i) {
        bare.push_back(RunFloor(L"--output " + std::to_wstring(kLines)));
        const FloodRun small = Flood(kLines);
        const FloodRun large = Flood(2 * kLines);
        once.push_back(small.time);
        twice.push_back(large.time);
        memory.push_back(large.residentMb);
        nextBuild.push_back(std::max(small.nextBuild, large.nextBuild));
        slowest.push_back(std::max(small.slowestAnswer, large.slowestAnswer));
        shown = small.shown;
    }
    Report({.work = "100,000 lines, " + std::to_string(shown) + " of them in the pane",
            .floor = bare,
            .program = once,
            .maxRatio = 1.2,
            .note = "floor: all of them in a Rich Edit, no process",
            .headline = true});
    Report({.work = "200,000 lines, beside 100,000",
            .floor = once,
            .program = twice,
            .maxRatio = 2.2,
            .note = "floor: the row above"});
    Report({.work = "- slowest answer of the window meanwhile",
            .program = slowest,
            .figure = Figure::Most,
            .maxValue = 100,
            .headline = true});
    Report(
        {.work = "- starting the next build over them", .program = nextBuild, .figure = Figure::Most, .maxValue = 100});
    Report(
        {.work = "- resident after 200,000 lines", .program = memory, .unit = "MB", .maxValue = 250, .headline = true});
}

void MeasureStop() {
    constexpr int kRuns = 5;
    std::vector<double> times, answers;
    for (int i = 0; i < Runs(kRuns); ++i) {
        double answer = 0;
        times.push_back(StopOnce(&answer));
        answers.push_back(answer);
    }
    Report({.work = "Stop in a flood, until compiler and child are gone",
            .program = times,
            .figure = Figure::Most,
            .maxValue = 200,
            .headline = true});
    Report({.work = "- the window's answer after it", .program = answers, .figure = Figure::Most});
}
