// Loads and saves `Editor.ini`; settings_file.h has its content. A save writes the whole file: first a temporary file
// beside it, which is compared and then put in its place. UI thread only.
#include "settings/settings_store.h"

#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "files/file_io.h"
#include "settings/compilers.h"
#include "settings/ini_reader.h"
#include "settings/ini_value.h"
#include "settings/secrets.h"
#include "settings/settings_file.h"
#include "settings/settings_state.h"

#include <memory>
#include <string>
#include <string_view>

namespace {

ForeignKeys g_foreignKeys;

bool KeyExists(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key) {
    wchar_t value[4];
    return GetPrivateProfileStringW(section, key, L"", value, 4, iniPath) > 0;
}

// True when `iniPath` is missing, empty, or a copy of `wholePath` that broke off.
bool IsCutFile(const wchar_t* iniPath, const wchar_t* wholePath) {
    std::size_t wholeLength = 0;
    const HeapBlock<char> whole{ReadFileUtf8(wholePath, &wholeLength)};
    if (!whole || !FileExists(iniPath)) return whole != nullptr;
    std::size_t length = 0;
    const HeapBlock<char> ini{ReadFileUtf8(iniPath, &length)};
    return ini && IsCutCopy({ini.get(), length}, {whole.get(), wholeLength});
}

// Finishes a save that was interrupted while it copied its complete temporary file over the old one. A settings file
// with other text, such as one written by hand, is complete itself and stays.
void FinishInterruptedSave(const wchar_t* iniPath) {
    const std::wstring temporary = std::wstring{iniPath} + L".tmp";
    if (FileExists(temporary.c_str()) && KeyExists(temporary.c_str(), L"Meta", L"Version") &&
        IsCutFile(iniPath, temporary.c_str())) {
        const BOOL moved = MoveFileExW(temporary.c_str(), iniPath, MOVEFILE_REPLACE_EXISTING);
        AppLogMsg(L"SettingsLoad: finished an interrupted save, moved=%d", moved);
    }
}

bool ProtectKey(const SettingRow& row, const wchar_t* clearText, wchar_t* out, std::size_t capacity) {
    if (EncryptString(clearText, out, capacity)) return true;
    AppLogMsg(L"FAIL: SettingsSave %s is stored unprotected", row.key);
    return false;
}

bool FileHolds(const wchar_t* path, std::string_view bytes) {
    std::size_t length = 0;
    const HeapBlock<char> found{ReadFileUtf8(path, &length)};
    return found && std::string_view{found.get(), length} == bytes;
}

bool ReplaceBy(const wchar_t* temporary, const wchar_t* iniPath) {
    return CopyFileW(temporary, iniPath, FALSE) != FALSE ||
           MoveFileExW(temporary, iniPath, MOVEFILE_REPLACE_EXISTING) != FALSE;
}

}  // namespace

void GetIniPath(const wchar_t* overridePath, wchar_t* out, std::size_t capacity) {
    const bool given = overridePath != nullptr && overridePath[0] != L'\0';
    if (given && PathIsAbsolute(overridePath)) {
        SafeCopyW(out, capacity, overridePath);
        return;
    }
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    PathJoin(directory, given ? overridePath : L"Editor.ini", out, capacity);
}

void GetIniDir(const wchar_t* overridePath, wchar_t* out, std::size_t capacity) {
    wchar_t path[kPathCapacity] = {};
    GetIniPath(overridePath, path, kPathCapacity);
    PathGetDir(path, out, capacity);
}

void ReadIniText(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key, const wchar_t* defaultText,
                 wchar_t* out, std::size_t capacity) {
    SafeCopyW(out, capacity, DecodeIniValue(IniReader{iniPath}.Text(section, key, defaultText)));
}

bool WriteIniText(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key, const wchar_t* text) {
    return WritePrivateProfileStringW(section, key, EncodeIniValue(text).c_str(), iniPath) != FALSE;
}

void SettingsLoad(const wchar_t* overridePath) {
    Settings& settings = g_settings;
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(overridePath, ini, kPathCapacity);
    AppLogMsg(L"SettingsLoad: INI = %s", ini);
    FinishInterruptedSave(ini);
    IniReader reader{ini};
    const wchar_t* const first = g_compilers[kCompilerKvxa64].section;
    AppLogMsg(L"SettingsLoad: KVXA64 Path = '%s'", DecodeIniValue(reader.Text(first, L"Path", L"")).c_str());
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    const SettingsSource source = {
        .text = [&](auto section, auto key, auto value) { return reader.Text(section, key, value); },
        .number = [&](auto section, auto key, auto value) { return reader.Number(section, key, value); },
        .unprotect = [](auto stored, auto out, auto capacity) { return DecryptString(stored, out, capacity) != 0; },
        .fileExists = FileExists,
        .programFolder = folder};
    ParseSettings(source, settings, g_foreignKeys);
    SessionMRULoad(overridePath);
}

void SettingsSave(const wchar_t* overridePath) {
    Settings& settings = g_settings;
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(overridePath, ini, kPathCapacity);
    const std::wstring temporary = std::wstring{ini} + L".tmp";

    UpdateAssistantEnabled(settings);
    const auto stored = std::make_unique<Settings>(settings);  // 150 kB, too much for the stack
    RestoreStored(g_overrides, *stored);
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    const std::string bytes = ComposeSettings(
        *stored, g_foreignKeys, {.protect = ProtectKey, .programFolder = folder, .windowPlace = g_windowPlace});

    if (settings.backupSettings == 0 && FileHolds(ini, bytes))
        return;  // unchanged, as when the newest recent file is opened again
    if (!WriteFileUtf8(temporary.c_str(), bytes.data(), bytes.size()) || !FileHolds(temporary.c_str(), bytes)) {
        // The disk may be full, or the folder read-only. The old file is better than half a new one.
        AppLogMsg(L"FAIL: SettingsSave cannot write %s, the settings file stays as it was", temporary.c_str());
        DeleteFileW(temporary.c_str());
        return;
    }
    if (settings.backupSettings != 0 && FileExists(ini)) {
        const std::wstring backup = std::wstring{ini} + L".bak";
        if (CopyFileW(ini, backup.c_str(), FALSE) == FALSE)
            AppLogMsg(L"FAIL: SettingsSave backup error=%lu", GetLastError());
    }
    if (!ReplaceBy(temporary.c_str(), ini))
        AppLogMsg(L"FAIL: SettingsSave replace error=%lu path=%s", GetLastError(), ini);
    DeleteFileW(temporary.c_str());
    // A call with only the file's name makes the INI functions drop what they cached of the old file.
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, ini);
}

bool SettingsExport(const wchar_t* target) {
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    return target != nullptr && CopyFileW(ini, target, FALSE) != FALSE;
}

bool SettingsImport(const wchar_t* source) {
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    // Copied to a second file first, so that a copy that breaks off does not change the settings.
    const std::wstring incoming = std::wstring{ini} + L".import";
    if (source == nullptr || CopyFileW(source, incoming.c_str(), FALSE) == FALSE) {
        DeleteFileW(incoming.c_str());
        return false;
    }
    if (MoveFileExW(incoming.c_str(), ini, MOVEFILE_REPLACE_EXISTING) == FALSE) {
        DeleteFileW(incoming.c_str());
        return false;
    }
    const SettingsEdit edit;
    SettingsLoad(nullptr);
    return true;
}

void SettingsResetAll() {
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    if (DeleteFileW(ini) == FALSE && GetLastError() != ERROR_FILE_NOT_FOUND)
        AppLogMsg(L"FAIL: SettingsReset delete error=%lu path=%s", GetLastError(), ini);
    SettingsChange(SettingsReset);
}

void ResolveExeRelative(const wchar_t* in, wchar_t* out, std::size_t capacity) {
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    ResolveAgainstFolder(directory, in, out, capacity);
}

void MakeExeRelativePath(const wchar_t* in, wchar_t* out, std::size_t capacity) {
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    MakeFolderRelative(directory, in, out, capacity);
}
