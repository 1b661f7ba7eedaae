// The start-up search for compilers installed beside the editor. UI thread only.
#include "settings/compiler_table.h"

#include "base/log.h"
#include "files/file_io.h"
#include "settings/settings_state.h"

#include <string>

namespace {

const wchar_t* TextOr(const wchar_t* text, const wchar_t* other) { return text[0] != L'\0' ? text : other; }

void Detect(const wchar_t* exeDirectory, std::uint32_t id) {
    wchar_t* const path = g_settings.compilers[id].path;
    if (IsCompilerPathValid(path)) return;
    const std::wstring found = FindCompiler(id, exeDirectory, FileExists);
    if (found.empty()) return;
    SafeCopyW(path, kPathCapacity, found);
    AppLogMsg(L"FOUND: %s", found.c_str());
}

}  // namespace

void SettingsAutoDetectCompilers() {
    const CompilerSettings* const compilers = g_settings.compilers;
    wchar_t exeDirectory[kPathCapacity] = {};
    AppExeDirectory(exeDirectory, kPathCapacity);
    AppLogMsg(L"=== Auto-Detect Compilers ===");
    AppLogMsg(L"EXE dir: %s", exeDirectory);
    for (const std::uint32_t id : kCompilerSearchOrder)
        AppLogMsg(L"Before: %s=%s", Profile(id).section, TextOr(compilers[id].path, L"(empty)"));
    for (const std::uint32_t id : kCompilerSearchOrder) Detect(exeDirectory, id);
    for (const std::uint32_t id : kCompilerSearchOrder)
        AppLogMsg(L"  %s: %s", Profile(id).section, TextOr(compilers[id].path, L"(not found)"));
}
