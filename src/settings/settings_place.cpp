// Which folder the settings are in. Pure.
#include "settings/settings_place.h"

#include "base/path.h"

#include <cstdint>

std::wstring InstallationFolderName(std::wstring_view programFolder) {
    while (programFolder.ends_with(L'\\')) programFolder.remove_suffix(1);
    std::uint64_t hash = 0xCBF29CE484222325U;  // FNV-1a
    for (const wchar_t character : PathKey(programFolder)) {
        hash ^= static_cast<std::uint32_t>(character);
        hash *= 0x100000001B3U;
    }
    wchar_t file[64] = {};
    PathGetFile(std::wstring{programFolder}.c_str(), file, 64);  // a long name is cut
    std::wstring name = file;
    name += L'-';
    for (int shift = 60; shift >= 32; shift -= 4) name += L"0123456789abcdef"[(hash >> shift) & 15];
    return name;
}

std::wstring FolderAtStart(const SettingsFolders& folders, const SettingsFolderSteps& steps) {
    if (folders.own.empty()) return {};
    const bool own = steps.hasSettings(folders.own);
    if (!own && !steps.hasSettings(folders.shared)) return {};
    // A portable copy of the program elsewhere has its settings beside it.
    if (steps.takesFiles(folders.program)) return {};
    const bool ready = own || (steps.make(folders.own) && steps.copy(folders.shared, folders.own));
    return ready ? folders.own : folders.shared;
}

std::wstring FolderAfterFailure(const SettingsFolders& folders, const SettingsFolderSteps& steps, unsigned long error) {
    constexpr unsigned long kAccessDenied = 5, kWriteProtect = 19;  // errors of the system
    if (folders.own.empty() || (error != kAccessDenied && error != kWriteProtect)) return {};
    return !steps.takesFiles(folders.program) && steps.make(folders.own) ? folders.own : std::wstring{};
}
