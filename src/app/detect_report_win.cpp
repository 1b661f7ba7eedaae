// The compiler-detection report. UI thread only.
#include "app/detect_report.h"

#include "app/app_state.h"
#include "base/log.h"
#include "base/wide_format.h"
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
    constexpr std::uint32_t kOrder[] = {kCompilerKeldorBasic, kCompilerKvxa32, kCompilerKvxa64, kCompilerKvxb64,
                                        kCompilerKvxc64};
    int found = 0;
    for (const std::uint32_t id : kOrder)
        if (IsCompilerPathValid(g_app.settings.compilers[id].path)) ++found;
    AppLogMsg(L"=== Summary: %d/%d compilers found ===", found, static_cast<int>(kCompilerCount));
    return found;
}

static const wchar_t* PathOrNotFound(std::uint32_t id) {
    const wchar_t* path = g_app.settings.compilers[id].path;
    return path[0] != L'\0' ? path : L"(not found)";
}

void ShowDetectReport() {
    const int found = RunCompilerDetect();
    CloseLog();
    const std::wstring text = FormatW(
        L"Compiler Auto-Detect Results\n================================\n\nKeldorBasic: %s\n\nKVXA32: "
        L"%s\n\nKVXA64: %s\n\nKVXB64: %s\n\nKVXC64: %s\n\nFound: %d/5\n\nLog file: Editor_Detect.log",
        PathOrNotFound(kCompilerKeldorBasic), PathOrNotFound(kCompilerKvxa32), PathOrNotFound(kCompilerKvxa64),
        PathOrNotFound(kCompilerKvxb64), PathOrNotFound(kCompilerKvxc64), found);
    TellUser(L"KVX-Editor Detect", text.c_str(), AskIcon::Information);
}
