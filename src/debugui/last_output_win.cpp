// The console of a program closes at its end, before anybody can read it. UI thread only.
#include "debugui/last_output.h"

#include "base/handles.h"
#include "base/log.h"
#include "base/texts.h"
#include "debugui/console_text.h"
#include "program/debug_say.h"

#include <algorithm>

namespace {

// The rows that were written, from the top, at most the last kMostConsoleRows.
std::vector<std::wstring> RowsOf(HANDLE screen) {
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (!GetConsoleScreenBufferInfo(screen, &info) || info.dwSize.X <= 0) return {};
    const int last = info.dwCursorPosition.Y;
    std::vector<std::wstring> rows;
    for (int row = std::max(0, last + 1 - kMostConsoleRows); row <= last; ++row) {
        std::wstring text(static_cast<std::size_t>(info.dwSize.X), L' ');
        DWORD read = 0;
        if (!ReadConsoleOutputCharacterW(screen, text.data(), static_cast<DWORD>(text.size()),
                                         {0, static_cast<SHORT>(row)}, &read))
            break;
        text.resize(read);
        rows.push_back(std::move(text));
    }
    return rows;
}

}  // namespace

void SayLastOutput(DebuggerState* state) {
    // Attached for a moment only, because the user may close the console, which ends every process that is attached.
    FreeConsole();  // one of the editor's own would refuse a second; whoever starts the editor may have given it one
    if (!AttachConsole(state->processId)) {  // a program without a console
        AppLogMsg(L"DBG SayLastOutput: no console, error=%lu", GetLastError());
        return;
    }
    UniqueHandle screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, 0, nullptr));
    const std::vector<std::wstring> rows = screen ? RowsOf(screen.Get()) : std::vector<std::wstring>();
    if (!screen) AppLogMsg(L"FAIL: SayLastOutput error=%lu", GetLastError());
    screen.Reset();
    FreeConsole();
    const std::wstring text = ConsoleText(rows);
    if (!text.empty()) DebugSay(0, Text(L"[Debug] The program's last output:\n%s"), text.c_str());
}
