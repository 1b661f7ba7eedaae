// The folder of the settings. UI thread only.
#include "settings/settings_place.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/log.h"
#include "files/file_io.h"
#include "files/user_folder.h"

#include <windows.h>

namespace {

struct SettingsPlace {
    std::wstring testFolder;  // instead of the program's folder; empty: none
    std::wstring userFolder;  // in use; empty: the program's folder is
};
SettingsPlace g_place;

std::wstring ProgramFolder() {
    if (!g_place.testFolder.empty()) return g_place.testFolder;
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    return folder;
}

}  // namespace

std::wstring SettingsFolder() { return g_place.userFolder.empty() ? ProgramFolder() : g_place.userFolder; }

void SettingsChooseFolder() {
    const std::wstring own = UserFolderPath();
    if (!g_place.userFolder.empty() || own.empty() || !FileExists((own + L"Editor.ini").c_str())) return;
    if (FolderTakesFiles(ProgramFolder())) return;
    g_place.userFolder = own;
    AppLogMsg(L"Settings are in %s", own.c_str());
}

bool SettingsLeaveFolder(unsigned long error) {
    if (!g_place.userFolder.empty() || (error != ERROR_ACCESS_DENIED && error != ERROR_WRITE_PROTECT)) return false;
    if (FolderTakesFiles(ProgramFolder())) return false;
    g_place.userFolder = UserFolder();
    return !g_place.userFolder.empty();
}

bool FolderTakesFiles(const std::wstring& folder) {
    const std::wstring probe = folder + L"KVX-Editor." + std::to_wstring(GetCurrentProcessId()) + L".probe";
    const UniqueHandle file{CreateFileW(PathForSystem(probe.c_str()).c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
                                        CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)};
    return static_cast<bool>(file);
}

void SettingsFolderForTest(const std::wstring& programFolder) {
    g_place = {.testFolder = programFolder, .userFolder = {}};
}
