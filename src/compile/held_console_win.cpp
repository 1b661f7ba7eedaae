// The copy of the editor that holds a console open: see held_console.h. Nothing of the editor runs in it.
#include "compile/held_console.h"

#include "base/handles.h"
#include "base/process_start.h"
#include "base/system_error.h"

#include <windows.h>

namespace {

// The program may end by Ctrl+C; its console stays.
BOOL WINAPI OnConsoleSignal(DWORD signal) { return signal == CTRL_C_EVENT || signal == CTRL_BREAK_EVENT; }

UniqueHandle OpenConsole(const wchar_t* name) {
    SECURITY_ATTRIBUTES inheritable = {.nLength = sizeof(SECURITY_ATTRIBUTES), .bInheritHandle = TRUE};
    return UniqueHandle(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    &inheritable, OPEN_EXISTING, 0, nullptr));
}

void Say(HANDLE output, const std::wstring& text) {
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    const bool atStart = GetConsoleScreenBufferInfo(output, &info) != FALSE && info.dwCursorPosition.X == 0;
    const std::wstring lines = (atStart ? L"\r\n" : L"\r\n\r\n") + text;
    DWORD written = 0;
    WriteConsoleW(output, lines.c_str(), static_cast<DWORD>(lines.size()), &written, nullptr);
}

bool IsKeyOfItsOwn(const KEY_EVENT_RECORD& key) {
    switch (key.wVirtualKeyCode) {
        case VK_SHIFT:
        case VK_CONTROL:
        case VK_MENU:
        case VK_LWIN:
        case VK_RWIN:
        case VK_CAPITAL:
        case VK_NUMLOCK:
        case VK_SCROLL: return false;
        default: return key.bKeyDown != FALSE;
    }
}

// Keys that the program has not read do not count.
void WaitForKey(HANDLE input) {
    FlushConsoleInputBuffer(input);
    INPUT_RECORD record = {};
    DWORD count = 0;
    do {
        if (ReadConsoleInputW(input, &record, 1, &count) == FALSE || count == 0) return;
    } while (record.EventType != KEY_EVENT || !IsKeyOfItsOwn(record.Event.KeyEvent));
}

}  // namespace

int HoldConsole(const HeldProgram& program) {
    if (AllocConsole() == FALSE) return 1;
    SetConsoleCtrlHandler(OnConsoleSignal, TRUE);
    SetConsoleTitleW(program.commandLine.c_str());
    const UniqueHandle input = OpenConsole(L"CONIN$"), output = OpenConsole(L"CONOUT$");
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.Get();
    startup.hStdOutput = startup.hStdError = output.Get();
    std::wstring commandLine = program.commandLine;
    PROCESS_INFORMATION process = {};
    DWORD code = 0;
    const bool started = StartAgainIfLost([&] {
        return CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                              &process) != FALSE;
    });
    if (started) {
        const UniqueHandle thread(process.hThread), running(process.hProcess);
        WaitForSingleObject(running.Get(), INFINITE);
        GetExitCodeProcess(running.Get(), &code);
        if (code == kEndedForBuild) return 0;
        Say(output.Get(), FarewellText(program.farewell, code));
    } else {
        code = GetLastError();
        Say(output.Get(), SystemErrorText(code));
    }
    WaitForKey(input.Get());
    return static_cast<int>(code);
}
