#include "process_win.h"

#include <windows.h>

#include <map>

#include "support/start_process.h"

namespace samples {
namespace {

constexpr DWORD kLimitMs = 60000;
constexpr DWORD kKilled = 0xDEAD;
constexpr DWORD kWow64Breakpoint = 0x4000001F;

std::wstring CommandLine(const std::filesystem::path& program, const std::vector<std::string>& args) {
    std::wstring line = L"\"" + program.wstring() + L"\"";
    for (const std::string& arg : args)
        line += L" \"" + std::filesystem::path(std::u8string(arg.begin(), arg.end())).wstring() + L"\"";
    return line;
}

bool IsBreakpoint(DWORD code) { return code == EXCEPTION_BREAKPOINT || code == kWow64Breakpoint; }

struct Debuggee {
    PROCESS_INFORMATION info{};
    uint64_t base = 0;
    std::map<uint64_t, uint8_t> planted;  // address and the byte that stood there
};

void Plant(Debuggee& d, const std::vector<uint32_t>& rvas) {
    for (const uint32_t rva : rvas) {
        void* const address = reinterpret_cast<void*>(d.base + rva);
        uint8_t old = 0;
        const uint8_t trap = 0xCC;
        if (ReadProcessMemory(d.info.hProcess, address, &old, 1, nullptr) &&
            WriteProcessMemory(d.info.hProcess, address, &trap, 1, nullptr))
            d.planted[d.base + rva] = old;
    }
}

// Puts the byte back and lets the program go on with it.
void Unplant(Debuggee& d, uint64_t address, DWORD threadId) {
    const auto found = d.planted.find(address);
    if (found == d.planted.end()) return;
    WriteProcessMemory(d.info.hProcess, reinterpret_cast<void*>(address), &found->second, 1, nullptr);
    d.planted.erase(found);
    const HANDLE thread = OpenThread(THREAD_GET_CONTEXT | THREAD_SET_CONTEXT, FALSE, threadId);
    CONTEXT context{};
    context.ContextFlags = CONTEXT_CONTROL;
    if (thread && GetThreadContext(thread, &context)) {
        context.Rip = address;
        SetThreadContext(thread, &context);
    }
    if (thread) CloseHandle(thread);
}

}  // namespace

Ended RunProgram(const std::filesystem::path& program, const std::vector<std::string>& args) {
    Ended ended;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) return ended;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    PROCESS_INFORMATION info{};
    ended.started = StartProcess(CommandLine(program, args), &info,
                                 {.flags = CREATE_NO_WINDOW, .output = writeEnd, .errors = writeEnd});
    CloseHandle(writeEnd);
    if (ended.started) {
        const ULONGLONG end = GetTickCount64() + kLimitMs;
        char block[4096];
        for (DWORD got = 0, waiting = 0; PeekNamedPipe(readEnd, nullptr, 0, nullptr, &waiting, nullptr);)
            if (waiting > 0 && ReadFile(readEnd, block, sizeof block, &got, nullptr))
                ended.output.append(block, got);
            else if (GetTickCount64() > end)
                break;
            else
                Sleep(1);
        if (WaitForSingleObject(info.hProcess, 1000) != WAIT_OBJECT_0) TerminateProcess(info.hProcess, kKilled);
        WaitForSingleObject(info.hProcess, kLimitMs);
        DWORD code = kKilled;
        GetExitCodeProcess(info.hProcess, &code);
        ended.exit = code;
        CloseHandle(info.hThread);
        CloseHandle(info.hProcess);
    }
    CloseHandle(readEnd);
    return ended;
}

std::vector<uint32_t> DebugRun(const std::filesystem::path& program, const std::vector<uint32_t>& plant) {
    std::vector<uint32_t> met;
    Debuggee d;
    if (!StartProcess(CommandLine(program, {}), &d.info, {.flags = DEBUG_ONLY_THIS_PROCESS | CREATE_NO_WINDOW}))
        return met;
    DEBUG_EVENT event{};
    while (WaitForDebugEvent(&event, kLimitMs)) {
        if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
            d.base = reinterpret_cast<uint64_t>(event.u.CreateProcessInfo.lpBaseOfImage);
            if (event.u.CreateProcessInfo.hFile) CloseHandle(event.u.CreateProcessInfo.hFile);
            Plant(d, plant);
        } else if (event.dwDebugEventCode == LOAD_DLL_DEBUG_EVENT && event.u.LoadDll.hFile) {
            CloseHandle(event.u.LoadDll.hFile);
        } else if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT &&
                   IsBreakpoint(event.u.Exception.ExceptionRecord.ExceptionCode)) {
            const auto address = reinterpret_cast<uint64_t>(event.u.Exception.ExceptionRecord.ExceptionAddress);
            if (address - d.base < 0x100000) {  // not the loader's own
                met.push_back(static_cast<uint32_t>(address - d.base));
                Unplant(d, address, event.dwThreadId);
            }
        }
        ContinueDebugEvent(event.dwProcessId, event.dwThreadId, DBG_CONTINUE);
        if (event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT) break;
    }
    TerminateProcess(d.info.hProcess, kKilled);  // when it hung; harmless when it ended
    CloseHandle(d.info.hThread);
    CloseHandle(d.info.hProcess);
    return met;
}

}  // namespace samples
