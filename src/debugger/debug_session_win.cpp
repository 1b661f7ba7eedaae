// Starts a program under the debugger and ends it. UI thread only.
#include "debugger/debug_exit_trap.h"
#include "debugger/debug_process.h"
#include "program/image_kind.h"
#include "program/line_map.h"

#include "base/log.h"
#include "base/process_start.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "files/start_path.h"

#include <cwchar>
#include <iterator>
#include <string>

namespace {

constexpr int kStopTries = 20;
constexpr DWORD kStopWaitMs = 100;
constexpr DWORD kDrainMs = 10;

DebugPlantHook g_plantHook = nullptr;
bool g_windowSaysStart = false;

struct LaunchOptions {
    std::wstring arguments;
    std::wstring folder;
};
LaunchOptions g_launch;

void SayLaunchFailed(DWORD error) {
    AppLogMsg(L"FAIL: DebugStart CreateProcess error=%lu", error);
    DebugSay(kDebugRed, Text(L"[Debug] Failed to launch process.\n"));
    DebugSay(kDebugRed, L"[Debug] Win32 error %lu: %s\n", error, SystemErrorText(error).c_str());
}

bool Launch(const wchar_t* executable, DebuggerState* state) {
    const std::wstring path = executable;
    std::wstring commandLine = ProgramCommandLine(path, g_launch.arguments);
    const std::size_t slash = path.find_last_of(L"\\/");
    const std::wstring own = slash == std::wstring::npos ? std::wstring() : path.substr(0, slash + 1);
    const std::wstring directory = g_launch.folder.empty() ? own : g_launch.folder;
    if (!ProgramCanBeStarted(path)) {
        DebugSay(kDebugRed, L"[Debug] %s\n", LongProgramText(path).c_str());
        return false;
    }
    const ImageKind kind = ImageKindOf(executable);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    if (kind.console) {  // its console must not take the focus, because the next key belongs to the editor
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_SHOWNOACTIVATE;
    }
    PROCESS_INFORMATION process = {};
    // A console of its own, because the editor has none to share.
    LogFlush();
    const DWORD flags = DEBUG_PROCESS | DEBUG_ONLY_THIS_PROCESS | CREATE_NEW_CONSOLE;
    const wchar_t* const folder = directory.empty() ? nullptr : directory.c_str();
    if (!StartAgainIfLost([&] {
            return CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, flags, nullptr, folder,
                                  &startup, &process) != FALSE;
        })) {
        SayLaunchFailed(GetLastError());
        return false;
    }
    state->isX64 = kind.x64 ? 1 : 0;
    state->process = process.hProcess;
    state->thread = process.hThread;
    state->processId = process.dwProcessId;
    state->threadId = process.dwThreadId;
    state->mainThreadId = process.dwThreadId;
    return true;
}

// The window says where the program stands after its start, in one line with the file's name.
void SayOfStart(const std::wstring& text) {
    if (g_windowSaysStart)
        AppLogMsg(L"DBG DebugStart: %s", text.substr(0, text.size() - 1).c_str());
    else
        DebugSay(0, L"%s", text.c_str());
}

// Says how the start ended.
void SayStart(const DebuggerState& state, DebugAwaits awaits, int event) {
    const std::wstring text = StartText(awaits, event, state.currentLine);
    if (text.empty()) return;
    const bool reached = event == kDebugStopped && state.currentLine > 0;
    reached ? SayOfStart(text) : DebugSay(0, L"%s", text.c_str());
}

StartStop StartStopOf(const DebuggerState& state) {
    const bool outside = state.imageSize != 0 && state.currentAddress - state.map.imageBase >= state.imageSize;
    return {.awaits = state.awaits,
            .tries = state.startTries,
            .line = state.currentLine,
            .ofLoader = state.isX64 == 0 && state.currentLine == 0 && outside};
}

void ResumeStart(DebuggerState* state) {
    ++state->startTries;
    state->startDeadline = GetTickCount64() + StartWaitMs(state->awaits);
    DebugResume(state);
}

void RunToFirstLine(DebuggerState* state) {
    const int line = static_cast<int>(state->map.lines[0].line);
    if (DebugSetBreakpoint(state, line)) state->startAddress = state->map.imageBase + SdbgLineToRva(&state->map, line);
    if (g_plantHook != nullptr) g_plantHook(state);
    SayOfStart(FormatW(Text(L"[Debug] Started. Breakpoint at line %d.\n"), line));
}

void RunToFirst(DebuggerState* state) {
    state->awaits = state->map.nativeTrapMap != 0 ? DebugAwaits::FirstTrap : DebugAwaits::FirstLine;
    if (state->awaits == DebugAwaits::FirstLine)
        RunToFirstLine(state);
    else if (g_plantHook != nullptr)
        g_plantHook(state);
    ResumeStart(state);
    DebugWaitStart(state, StartWaitMs(state->awaits));
}

// Ends the program before its pending event is continued, so that it runs nothing more.
void Terminate(DebuggerState* state) {
    DebugClearBreakpoints(state);
    if (!TerminateProcess(state->process, 0)) AppLogMsg(L"FAIL: DebugStop error=%lu", GetLastError());
    state->owedIp = {};
    state->passPending = 0;
    if (state->eventPending != 0) DebugResume(state);
}

// Waits for the end of a program that was told to end, and continues its events.
void AwaitEnd(DebuggerState* state) {
    bool ended = false;
    const ULONGLONG limit = GetTickCount64() + kStopTries * (kStopWaitMs + kDrainMs);
    const auto timeIsLeft = [limit] { return GetTickCount64() < limit; };
    for (int i = 0; i < kStopTries && !ended && timeIsLeft(); ++i) {
        DEBUG_EVENT event = {};
        while (!ended && timeIsLeft() && WaitForDebugEvent(&event, kDrainMs)) ended = DebugDropEvent(state, event);
        if (!ended) WaitForSingleObject(state->process, kStopWaitMs);
    }
    if (ended) WaitForSingleObject(state->process, kStopWaitMs);
    if (ended) return;
    AppLogMsg(L"FAIL: DebugStop process %lu has not ended", state->processId);
    DebugLeaveBehind(state->processId);
}

}  // namespace

void DebugSetPlantHook(DebugPlantHook hook) { g_plantHook = hook; }
void DebugWindowSaysStart() { g_windowSaysStart = true; }

void DebugSetLaunch(const wchar_t* arguments, const wchar_t* folder) {
    g_launch = {.arguments = arguments, .folder = folder};
}

bool DebugStart(const wchar_t* executable, DebuggerState* state) { return DebugStartForCompiler(executable, 1, state); }

bool DebugStartForCompiler(const wchar_t* executable, std::uint32_t compilerId, DebuggerState* state) {
    if (executable == nullptr || state == nullptr || state->active != 0) return false;
    DebugEndSession(state);
    return DebugLoadMap(executable, compilerId, &state->map) && DebugStartLoaded(executable, state);
}

bool DebugStartLoaded(const wchar_t* executable, DebuggerState* state) {
    if (!Launch(executable, state)) {
        DebugEndSession(state);
        return false;
    }
    state->active = 1;
    state->run = DebugRun::Running;
    if (const int event = DebugWaitEvent(state, INFINITE); event != kDebugStopped) {
        SayStart(*state, DebugAwaits::FirstLine, event);
        DebugStop(state);
        return false;
    }
    DebugNeutralizeNativeTraps(state);
    DebugPlantExitTrap(state);
    if (state->map.nativeTrapMap != 0 || state->map.lineCount > 0)
        RunToFirst(state);
    else
        DebugSay(0, Text(L"[Debug] Started (no source line info).\n"));
    return state->active != 0;
}

int DebugWaitStart(DebuggerState* state, DWORD timeoutMs) {
    for (;;) {
        const DebugAwaits awaits = state->awaits;
        const bool paused = state->pause == DebugPause::Wanted;
        const int event = DebugWaitEvent(state, timeoutMs);
        if (event == kDebugTimeout && GetTickCount64() < state->startDeadline) return event;
        if (event == kDebugStopped && !paused && IsFalseStart(StartStopOf(*state))) {
            ResumeStart(state);
            continue;
        }
        state->awaits = DebugAwaits::Nothing;
        SayStart(*state, awaits, event);
        return event;
    }
}

void DebugStop(DebuggerState* state) {
    if (state == nullptr || state->active == 0) return;
    DebugSayLeftOut(state);
    Terminate(state);
    AwaitEnd(state);
    DebugEndSession(state);
    DebugSay(kDebugRed, Text(L"[Debug] Stopped.\n"));
}

void DebugNeutralizeNativeTraps(DebuggerState* state) {
    if (state == nullptr || state->active == 0 || state->map.neutralizeTraps == 0) return;
    constexpr std::uint8_t kNop = 0x90;
    constexpr std::uint64_t kBytesBefore = 4;
    int changed = 0;
    for (std::int32_t i = 0; i < state->map.lineCount; ++i) {
        const std::uint64_t address = state->map.imageBase + state->map.lines[i].rva;
        for (std::uint64_t before = 1; before <= kBytesBefore; ++before) {
            std::uint8_t byte = 0;
            if (!DebugReadRaw(*state, address - before, &byte, 1) || byte != kTrapByte) continue;
            if (DebugWriteRaw(*state, address - before, &kNop, 1)) ++changed;
        }
    }
    FlushInstructionCache(state->process, nullptr, 0);
    AppLogMsg(L"DBG DebugStart: neutralized %d native trap bytes", changed);
}
