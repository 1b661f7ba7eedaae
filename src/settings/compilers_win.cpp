// The accessors on the settings of the compilers. UI thread only.
#include "settings/compiler_table.h"

#include "base/log.h"
#include "base/path.h"
#include "files/file_io.h"
#include "settings/compiler_presence.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"

namespace {

const CompilerSettings& SettingsOf(std::uint32_t id) { return g_settings.compilers[id < kCompilerCount ? id : 0]; }

}  // namespace

void CompilerBridgeInit() {
    if (!LogIsOpen()) return;
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) {
        AppLogMsg(L"DBG CompilerBridgeInit: %s found=%d path=%s", CompilerName(id), CompilerExists(id) ? 1 : 0,
                  CompilerPath(id));
    }
}

const wchar_t* CompilerName(std::uint32_t id) { return Profile(id).name; }

const wchar_t* CompilerPath(std::uint32_t id) { return SettingsOf(id).path; }

void CompilerPathResolved(std::uint32_t id, wchar_t* out, std::size_t capacity) {
    const wchar_t* const path = CompilerPath(id);
    if (path[0] == L'\0' || PathIsAbsolute(path)) {
        SafeCopyW(out, capacity, path);
        return;
    }
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    PathJoin(directory, path, out, capacity);
}

const wchar_t* CompilerFlags(std::uint32_t id) { return SettingsOf(id).flags; }

const wchar_t* CompilerIncludePath(std::uint32_t id) { return SettingsOf(id).includePath; }

const wchar_t* CompilerSyntaxFlags(std::uint32_t id) {
    const wchar_t* const flags = SettingsOf(id).syntaxFlags;
    return flags[0] != L'\0' ? flags : Profile(id).syntaxFlags;
}

const wchar_t* CompilerDebugFlags(std::uint32_t id) { return Profile(id).debugFlags; }

bool CompilerExists(std::uint32_t id) {
    wchar_t path[kPathCapacity] = {};
    CompilerPathResolved(id, path, kPathCapacity);
    return IsCompilerPathValid(path);
}

bool IsCompilerPathValid(const wchar_t* path) { return path != nullptr && path[0] != L'\0' && FileExists(path); }

std::uint32_t CompilerDefaultForFile(const wchar_t* path) {
    return PickCompilerForFile(path != nullptr ? path : L"", static_cast<std::uint32_t>(g_settings.activeCompiler),
                               CompilerSeemsInstalled);
}
