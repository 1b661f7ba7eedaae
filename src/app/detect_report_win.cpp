// Searches for the compilers, logs and shows the result. UI thread.
#include "app/detect_report.h"

#include "app/app_state.h"
#include "base/log.h"
#include "files/file_io.h"
#include "settings/compiler_table.h"
#include "ui/message.h"

#include <iterator>

int RunCompilerDetect() {
    wchar_t path[kPathCapacity] = {};
    wchar_t directory[kPathCapacity] = {};
    GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
    const DWORD error = GetLastError();
    AppExeDirectory(directory, kPathCapacity);
    OpenLog(directory);
    AppLogMsg(L"=== KVX-Editor Compiler Auto-Detect ===");
    AppLogMsg(L"EXE path:  %s", path);
    AppLogMsg(L"EXE dir:   %s", directory);
    AppLogMsg(L"GetLastError: %lu", error);
    AppLogMsg(L"");
    SettingsAutoDetectCompilers();
    const int found = DetectCount(g_app.settings, IsCompilerPathValid);
    AppLogMsg(L"=== Summary: %d/%d compilers found ===", found, static_cast<int>(kCompilerCount));
    return found;
}

void ShowDetectReport() {
    const int found = RunCompilerDetect();
    CloseLog();
    TellUser(L"KVX-Editor Detect", DetectReportText(g_app.settings, found).c_str(), AskIcon::Information);
}
