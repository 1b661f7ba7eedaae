#include "selftest/console.h"

#include "base/handles.h"
#include "base/utf8.h"
#include "files/file_io.h"
#include "files/user_folder.h"

#include <windows.h>

#include <string>

namespace {

struct Console {
    HANDLE output = nullptr;
    bool isConsole = false;
    UniqueHandle log;
};
Console g_console;

bool IsUsable(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }

}  // namespace

void SelfTestOpenConsole() {
    g_console.output = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!IsUsable(g_console.output) && AttachConsole(ATTACH_PARENT_PROCESS) != FALSE)
        g_console.output = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD mode = 0;
    g_console.isConsole = IsUsable(g_console.output) && GetConsoleMode(g_console.output, &mode) != FALSE;
    const std::wstring folder = UserFolder();
    if (folder.empty()) return;
    g_console.log.Reset(CreateFileW(PathForSystem((folder + L"SelfTest.log").c_str()).c_str(), GENERIC_WRITE,
                                    FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

void SelfTestPrint(std::string_view utf8) {
    DWORD put = 0;
    const auto size = static_cast<DWORD>(utf8.size());
    if (g_console.isConsole) {
        const std::wstring wide = Utf8ToWideText(utf8);
        WriteConsoleW(g_console.output, wide.data(), static_cast<DWORD>(wide.size()), &put, nullptr);
    } else if (IsUsable(g_console.output)) {
        WriteFile(g_console.output, utf8.data(), size, &put, nullptr);
    }
    if (g_console.log) WriteFile(g_console.log.Get(), utf8.data(), size, &put, nullptr);
}
