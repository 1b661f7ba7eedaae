// Measures the debugger and a bare loop on the same program: wait for the event, write the byte, continue. The bare
// loop does only what any debugger must do; it has no table, no map, no texts and no window.
#include "bench.h"

#include "debugger/debug_session.h"
#include "editor/margins.h"
#include "program/debug_say.h"
#include "program/line_map.h"
#include "resources/ids.h"
#include "support/start_process.h"

#include <Scintilla.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int kSteps = 500;
constexpr int kRounds = 5;
constexpr int kStatements = kSteps + 300;
constexpr int kFirstLine = 1;  // line of PBMAIN's heading, which has the first record
constexpr DWORD kEventLimitMs = 10000;
constexpr double kWindowLimitMs = 60000;
// Between two looks at the window. Each is answered by the thread that steps, and without a pause the looks would take
// more of its time than the steps.
constexpr DWORD kLookEveryMs = 5;
constexpr int kSingleSteps = 200;
constexpr double kKeyRepeatMs = 33;  // of a held key
constexpr DWORD kContinue = 0x00010002;
constexpr std::uint8_t kTrap = 0xCC;

struct Debuggee {
    std::wstring source;
    std::wstring program;
    std::vector<std::uint32_t> rvas;  // addresses of the statements, ascending
};

void Compile(const Folder& folder, const Debuggee& debuggee) {
    if (RunToEnd(L"\"" + folder.Path() + L"KVXA64\\kvxa64.exe\" -o \"" + debuggee.program + L"\" --debug \"" +
                 debuggee.source + L"\"") != 0u)
        Die("the stand-in compiler does not do its work");
}

Debuggee MakeDebuggee(const Folder& folder) {
    Debuggee made = {.source = folder.Path() + L"steps.bas", .program = folder.Path() + L"steps.exe", .rvas = {}};
    std::string text = "FUNCTION PBMAIN () AS LONG\r\n    LOCAL total AS LONG\r\n";
    for (int i = 0; i < kStatements; ++i) text += "    total = total + " + std::to_string(i) + "\r\n";
    WriteText(made.source, text + "    FUNCTION = 0\r\nEND FUNCTION\r\n");
    Compile(folder, made);
    SdbgMap map;
    if (!SdbgLoad(made.program.c_str(), &map)) Die("the program has no line map");
    for (std::int32_t i = 0; i < map.lineCount; ++i) made.rvas.push_back(map.lines[i].rva);
    SdbgFree(&map);
    if (made.rvas.size() < static_cast<std::size_t>(kStatements)) Die("the line map is too short");
    return made;
}

// --- The bare loop
class BareLoop {
public:
    explicit BareLoop(const Debuggee& debuggee) {
        const DWORD flags = DEBUG_PROCESS | DEBUG_ONLY_THIS_PROCESS | CREATE_NEW_CONSOLE;
        if (!StartProcess(L"\"" + debuggee.program + L"\"", &process_,
                          {.flags = flags, .beforeEachTry = [this] { begun_ = NowMs(); }}))
            Die("the debuggee does not start");
        AwaitBreakpoint();
    }
    ~BareLoop() {
        TerminateProcess(process_.hProcess, 0);
        Continue();
        while (WaitForDebugEvent(&event_, 1000)) {
            Continue();
            if (event_.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT) break;
        }
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    double Begun() const { return begun_; }  // NowMs() at the start of the program

    void RunTo(std::uint32_t rva) {
        std::uint8_t original = 0;
        auto* place = reinterpret_cast<void*>(base_ + rva);
        if (!ReadProcessMemory(process_.hProcess, place, &original, 1, nullptr)) Die("no byte");
        Write(place, kTrap);
        Continue();
        AwaitBreakpoint();
        Write(place, original);
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_CONTROL;
        GetThreadContext(process_.hThread, &context);
        context.Rip = base_ + rva;
        if (!SetThreadContext(process_.hThread, &context)) Die("no context");
    }

private:
    void Write(void* place, std::uint8_t byte) {
        if (!WriteProcessMemory(process_.hProcess, place, &byte, 1, nullptr)) Die("a byte is not written");
        FlushInstructionCache(process_.hProcess, place, 1);
    }
    void Continue() { ContinueDebugEvent(event_.dwProcessId, event_.dwThreadId, kContinue); }
    void AwaitBreakpoint() {
        for (;; Continue()) {
            if (!WaitForDebugEvent(&event_, kEventLimitMs)) Die("no event");
            if (event_.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
                base_ = reinterpret_cast<std::uint64_t>(event_.u.CreateProcessInfo.lpBaseOfImage);
                CloseHandle(event_.u.CreateProcessInfo.hFile);  // while it is open, the program cannot be built again
            }
            if (event_.dwDebugEventCode == LOAD_DLL_DEBUG_EVENT) CloseHandle(event_.u.LoadDll.hFile);
            if (event_.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT) Die("the debuggee has ended");
            if (event_.dwDebugEventCode == EXCEPTION_DEBUG_EVENT) return;
        }
    }

    PROCESS_INFORMATION process_ = {};
    DEBUG_EVENT event_ = {};
    std::uint64_t base_ = 0;
    double begun_ = 0;
};

struct Times {
    std::vector<double> start, steps, plant, window, single;
};

void MeasureBare(const Debuggee& debuggee, Times* times) {
    BareLoop loop(debuggee);
    loop.RunTo(debuggee.rvas[0]);
    const double stopped = NowMs();
    for (int i = 1; i <= kSteps; ++i) loop.RunTo(debuggee.rvas[static_cast<std::size_t>(i)]);
    times->start.push_back(stopped - loop.Begun());
    times->steps.push_back(NowMs() - stopped);
}

// --- The editor's debugger, without its windows
void MeasureSession(const Debuggee& debuggee, Times* times) {
    DebuggerState state;
    DebugSetSink([](const std::wstring&, COLORREF) {});
    DebugSetSourcePath(debuggee.source.c_str());
    const double begun = NowMs();
    if (!DebugStartForCompiler(debuggee.program.c_str(), 0, &state)) Die("no session");
    const double stopped = NowMs();
    for (int i = 0; i < kSteps; ++i)
        if (!DebugStepOver(&state) || DebugWaitEvent(&state, kEventLimitMs) != kDebugStopped) Die("a step failed");
    const double stepped = NowMs();
    // The table already has the breakpoint of the first line. The loop fills the rest of it.
    for (int line = state.currentLine + 1; state.breakpointCount < kMaxBreakpoints; ++line)
        if (!DebugSetBreakpoint(&state, line)) Die("a breakpoint is not planted");
    times->plant.push_back(NowMs() - stepped);
    times->start.push_back(stopped - begun);
    times->steps.push_back(stepped - stopped);
    DebugStop(&state);
    DebugSetSink(nullptr);
}

// --- The window
int MarkedLine(HWND sci) { return static_cast<int>(Ask(sci, SCI_MARKERNEXT, 0, 1 << kMarkCurrent)) + 1; }

void AwaitMark(HWND sci, int line) {
    const double limit = NowMs() + kWindowLimitMs;
    while (MarkedLine(sci) != line) {
        if (NowMs() > limit) Die("the window does not show line " + std::to_string(line));
        Sleep(kLookEveryMs);
    }
}

void AwaitMarkPainted(HWND sci, int line) {
    const double limit = NowMs() + kWindowLimitMs;
    for (; MarkedLine(sci) != line; Pause(kLookMs))
        if (NowMs() > limit) Die("the window does not show line " + std::to_string(line));
    AwaitPainted(sci, limit);
    Ask(sci, WM_NULL);  // answered after the painting
}

void MeasureWindow(const Folder& folder, const Debuggee& debuggee, Times* times) {
    const HANDLE file = CreateFileW(debuggee.source.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    const auto length = static_cast<std::size_t>(GetFileSize(file, nullptr));
    CloseHandle(file);
    Program editor(Kind::Editor, folder, debuggee.source);
    editor.AwaitReady(length);
    Ask(editor.Main(), WM_COMMAND, IDM_USE_KVXA64);
    Ask(editor.Main(), WM_COMMAND, IDM_DEBUG_START);
    AwaitMark(editor.Sci(), kFirstLine);
    int line = MarkedLine(editor.Sci()) + 1;  // the declaration after the heading has no code
    const double begun = NowMs();
    const auto step = [&] { PostMessageW(editor.Main(), WM_COMMAND, IDM_DEBUG_STEP_OVER, 0); };
    for (int i = 0; i < kSteps; ++i) step();
    AwaitMark(editor.Sci(), line += kSteps);
    times->window.push_back(NowMs() - begun);
    std::vector<double> single;
    for (int i = 0; i < kSingleSteps; ++i) {
        const double pressed = NowMs();
        step();
        AwaitMarkPainted(editor.Sci(), ++line);
        single.push_back(NowMs() - pressed);
    }
    times->single.push_back(Quantile(single, 0.95));
    Ask(editor.Main(), WM_COMMAND, IDM_DEBUG_STOP);
}

}  // namespace

void MeasureDebugger() {
    const Folder folder;
    const Debuggee debuggee = MakeDebuggee(folder);
    Times bare;
    Times session;
    for (int i = 0; i < Runs(kRounds); ++i) {
        MeasureBare(debuggee, &bare);
        MeasureSession(debuggee, &session);
        MeasureWindow(folder, debuggee, &session);
    }
    Report({.work = "start to the first line",
            .floor = bare.start,
            .program = session.start,
            .maxRatio = 2,
            .note = "floor: a bare loop of wait, write and continue",
            .headline = true});
    Report({.work = "500 steps of the session", .floor = bare.steps, .program = session.steps, .maxRatio = 1.3});
    Report({.work = "500 steps in the window, shown",
            .floor = bare.steps,
            .program = session.window,
            .maxRatio = 2,
            .note = "posted commands, until the last line is marked",
            .headline = true});
    Report({.work = "- a step shown and painted, 95 of 100 within",
            .program = session.single,
            .maxValue = kKeyRepeatMs,
            .note = "each after the one before",
            .headline = true});
    Report({.work = "64 breakpoints planted", .program = session.plant, .maxValue = 50});
}
