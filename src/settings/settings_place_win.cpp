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

SettingsFolders FoldersNow() {
    const std::wstring all = UserFolderPath();
    const std::wstring program = ProgramFolder();
    return {
        .program = program, .own = all.empty() ? all : all + InstallationFolderName(program) + L"\\", .shared = all};
}

bool MakeInstallationFolder(const std::wstring& folder) {
    return !UserFolder().empty() && EnsureFolder(folder.substr(0, folder.size() - 1));
}

bool HasSettings(const std::wstring& folder) { return FileExists((folder + L"Editor.ini").c_str()); }

// The settings file is the last, so that a copying that breaks off is done again at the next start.
bool CopySharedSettings(const std::wstring& from, const std::wstring& to) {
    for (const wchar_t* name : {L"Editor.ini_autosave.kvxsess", L"workspace.json"})
        CopyFileW(PathForSystem((from + name).c_str()).c_str(), PathForSystem((to + name).c_str()).c_str(), FALSE);
    return CopyFileW(PathForSystem((from + L"Editor.ini").c_str()).c_str(),
                     PathForSystem((to + L"Editor.ini").c_str()).c_str(), TRUE) != FALSE;
}

SettingsFolderSteps StepsOnDisk() {
    return {.hasSettings = HasSettings,
            .takesFiles = FolderTakesFiles,
            .make = MakeInstallationFolder,
            .copy = CopySharedSettings};
}

}  // namespace

std::wstring SettingsFolder() { return g_place.userFolder.empty() ? ProgramFolder() : g_place.userFolder; }

void SettingsChooseFolder() {
    if (!g_place.userFolder.empty()) return;
    g_place.userFolder = FolderAtStart(FoldersNow(), StepsOnDisk());
    if (!g_place.userFolder.empty()) AppLogMsg(L"Settings are in %s", g_place.userFolder.c_str());
}

bool SettingsLeaveFolder(unsigned long error) {
    if (!g_place.userFolder.empty()) return false;
    g_place.userFolder = FolderAfterFailure(FoldersNow(), StepsOnDisk(), error);
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
