// The start-up search for compilers installed beside the editor. UI thread only.
#include "settings/compiler_table.h"

#include "base/log.h"
#include "base/path.h"
#include "files/file_io.h"
#include "settings/settings_schema.h"
#include "settings/settings_state.h"

#include <string>

namespace {

// The order of the search and of its lines in the log.
constexpr std::uint32_t kDetectOrder[kCompilerCount] = {kCompilerKvxa64, kCompilerKvxb64, kCompilerKvxc64,
                                                        kCompilerKvxa32, kCompilerKeldorBasic};

const wchar_t* Or(const wchar_t* text, const wchar_t* other) { return text[0] != L'\0' ? text : other; }

void Detect(const wchar_t* exeDirectory, std::uint32_t id) {
    wchar_t* const path = g_settings.compilers[id].path;
    if (IsCompilerPathValid(path)) return;
    for (const CompilerCandidate& candidate : CompilerCandidates(id)) {
        wchar_t found[kPathCapacity] = {};
        PathJoin(exeDirectory, (std::wstring{candidate.directory} + L'\\' + candidate.file).c_str(), found,
                 kPathCapacity);
        if (FileExists(found)) {
            SafeCopyW(path, kPathCapacity, found);
            AppLogMsg(L"FOUND: %s", found);
            return;
        }
    }
}

}  // namespace

void SettingsAutoDetectCompilers() {
    const CompilerSettings* const compilers = g_settings.compilers;
    wchar_t exeDirectory[kPathCapacity] = {};
    AppExeDirectory(exeDirectory, kPathCapacity);
    AppLogMsg(L"=== Auto-Detect Compilers ===");
    AppLogMsg(L"EXE dir: %s", exeDirectory);
    for (const std::uint32_t id : kDetectOrder)
        AppLogMsg(L"Before: %s=%s", kCompilerSections[id], Or(compilers[id].path, L"(empty)"));
    for (const std::uint32_t id : kDetectOrder) Detect(exeDirectory, id);
    for (const std::uint32_t id : kDetectOrder)
        AppLogMsg(L"  %s: %s", kCompilerSections[id], Or(compilers[id].path, L"(not found)"));
}
