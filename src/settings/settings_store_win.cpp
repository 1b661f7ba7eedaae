// Loading and saving of `Editor.ini`, in the order of the table in settings_schema.h. The file is always rewritten whole:
// into a temporary file beside it, which replaces it only when it was written to its end. UI thread only.
#include "settings/settings_store.h"

#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "settings/ini_reader.h"
#include "settings/ini_text.h"
#include "settings/ini_value.h"
#include "settings/secrets.h"
#include "settings/settings_schema.h"
#include "settings/settings_state.h"

#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kSealedCapacity = 512;
constexpr wchar_t kVersion[] = L"2";

// Keys that another account protected: the record holds the stored text as far as it fits, and a save must not put that
// cut text over the whole one. By row of the table.
struct ForeignKey {
    const SettingRow* row = nullptr;
    std::wstring stored;
};
ForeignKey g_foreignKeys[2];

bool KeyExists(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key) {
    wchar_t value[4];
    return GetPrivateProfileStringW(section, key, L"", value, 4, iniPath) > 0;
}

// ------------------------------------------------------------------------------------------------------------ load

void ReadSecret(IniReader& ini, const SettingRow& row, Settings& settings) {
    wchar_t* const field = SettingText(settings, row);
    const std::wstring stored = DecodeIniValue(ini.Text(row.section, row.key, row.text));
    for (ForeignKey& foreign : g_foreignKeys)
        if (foreign.row == &row) foreign = {};
    if (DecryptString(stored.c_str(), field, row.capacity) != 0) return;
    if (!SafeCopyW(field, row.capacity, stored)) {
        for (ForeignKey& foreign : g_foreignKeys) {
            if (foreign.row == nullptr) {
                foreign = {.row = &row, .stored = stored};
                break;
            }
        }
    }
}

void ReadText(IniReader& ini, const SettingRow& row, const wchar_t* key, wchar_t* out) {
    SafeCopyW(out, row.capacity, DecodeIniValue(ini.Text(row.section, key, row.text)));
}

void ReadRow(IniReader& ini, const SettingRow& row, Settings& settings) {
    if ((row.flags & kSettingSaveOnly) != 0) return;
    switch (row.type) {
        case SettingType::Text:
            if ((row.flags & kSettingSecret) != 0)
                ReadSecret(ini, row, settings);
            else
                ReadText(ini, row, row.key, SettingText(settings, row));
            break;
        case SettingType::Bool:
            SettingNumber(settings, row.offset) = ini.Number(row.section, row.key, row.number) != 0 ? 1 : 0;
            break;
        case SettingType::Int: {
            const auto value = static_cast<std::int32_t>(ini.Number(row.section, row.key, row.number));
            SettingNumber(settings, row.offset) =
                (row.flags & kSettingLateClamp) != 0 ? value : ApplyLimits(row.limits, value);
            break;
        }
        case SettingType::List:
            for (int i = 0; i < SettingNumber(settings, row.countOffset) && i < row.rows; ++i)
                ReadText(ini, row, FormatW(row.key, i).c_str(), SettingText(settings, row, i));
            break;
    }
}

void ReadGroup(IniReader& ini, SettingGroup group, Settings& settings) {
    for (const SettingRow& row : SettingRows()) {
        if (row.group != group) continue;
        ReadRow(ini, row, settings);
        // Both services are known before their keys are read.
        if (row.offset == offsetof(Settings, lmStudioEnabled)) UpdateAssistantEnabled(settings);
        if (&row == &SettingRows().front())
            AppLogMsg(L"SettingsLoad: KVXA64 Path = '%s'", settings.compilers[kCompilerKvxa64].path);
    }
}

void ApplyLateLimits(Settings& settings) {
    for (const SettingRow& row : SettingRows())
        if ((row.flags & kSettingLateClamp) != 0)
            SettingNumber(settings, row.offset) = ApplyLimits(row.limits, SettingNumber(settings, row.offset));
}

// True when `iniPath` is missing, empty, or a copy of `wholePath` that broke off. The system may have given the copy its
// full length at once: zeros stand then for what is missing.
bool IsCutCopy(const wchar_t* iniPath, const wchar_t* wholePath) {
    std::size_t wholeLength = 0;
    const HeapBlock<char> whole{ReadFileUtf8(wholePath, &wholeLength)};
    if (!whole || !FileExists(iniPath)) return whole != nullptr;
    std::size_t length = 0;
    const HeapBlock<char> ini{ReadFileUtf8(iniPath, &length)};
    if (!ini || length > wholeLength) return false;
    std::string_view found{ini.get(), length};
    while (found.ends_with('\0')) found.remove_suffix(1);
    return std::string_view{whole.get(), wholeLength}.starts_with(found);
}

// The power went while a save copied its finished temporary file over the old one: the whole file is still there. A
// settings file with other text, as one written by hand, is whole itself and stays.
void FinishInterruptedSave(const wchar_t* iniPath) {
    const std::wstring temporary = std::wstring{iniPath} + L".tmp";
    if (FileExists(temporary.c_str()) && KeyExists(temporary.c_str(), L"Meta", L"Version") &&
        IsCutCopy(iniPath, temporary.c_str())) {
        const BOOL moved = MoveFileExW(temporary.c_str(), iniPath, MOVEFILE_REPLACE_EXISTING);
        AppLogMsg(L"SettingsLoad: finished an interrupted save, moved=%d", moved);
    }
}

// ------------------------------------------------------------------------------------------------------------ save

void WriteSecret(IniText& ini, const SettingRow& row, const wchar_t* key) {
    for (const ForeignKey& foreign : g_foreignKeys) {
        if (foreign.row == &row && std::wstring_view{foreign.stored}.starts_with(key) && key[0] != L'\0') {
            ini.Add(row.section, row.key, foreign.stored.c_str());
            return;
        }
    }
    wchar_t sealed[kSealedCapacity];
    if (EncryptString(key, sealed, kSealedCapacity)) {
        ini.Add(row.section, row.key, sealed);
        return;
    }
    AppLogMsg(L"FAIL: SettingsSave %s is stored unprotected", row.key);
    ini.AddText(row.section, row.key, key);
}

void WriteRow(IniText& ini, const SettingRow& row, const Settings& settings) {
    switch (row.type) {
        case SettingType::Text:
            if ((row.flags & kSettingSecret) != 0) {
                WriteSecret(ini, row, SettingText(settings, row));
            } else if ((row.flags & kSettingExeRelative) != 0) {
                wchar_t relative[kPathCapacity];
                MakeExeRelativePath(SettingText(settings, row), relative, kPathCapacity);
                ini.AddText(row.section, row.key, relative);
            } else {
                ini.AddText(row.section, row.key, SettingText(settings, row));
            }
            break;
        case SettingType::Bool:
            ini.AddNumber(row.section, row.key, SettingNumber(settings, row.offset) != 0 ? 1 : 0);
            break;
        case SettingType::Int: ini.AddNumber(row.section, row.key, SettingNumber(settings, row.offset)); break;
        case SettingType::List:
            // The file begins empty, so that rows past the count need no deleting.
            for (int i = 0; i < SettingNumber(settings, row.countOffset) && i < row.rows; ++i)
                ini.AddText(row.section, FormatW(row.key, i).c_str(), SettingText(settings, row, i));
            break;
    }
}

void WriteGroup(IniText& ini, SettingGroup group, bool late, const Settings& settings) {
    for (const SettingRow& row : SettingRows())
        if (row.group == group && ((row.flags & kSettingLateSave) != 0) == late && (row.flags & kSettingLoadOnly) == 0)
            WriteRow(ini, row, settings);
}

void WriteWindowPlace(IniText& ini) {
    const WindowPlace& place = g_windowPlace;
    if (!place.known) return;
    ini.AddNumber(L"Window", L"Left", place.left);
    ini.AddNumber(L"Window", L"Top", place.top);
    ini.AddNumber(L"Window", L"Width", place.width);
    ini.AddNumber(L"Window", L"Height", place.height);
    ini.AddNumber(L"Window", L"Max", place.maximised ? 1 : 0);
}

// The whole file as it is to be, in the order of the table; [Session] closes it.
std::string ComposeFile(Settings& settings) {
    UpdateAssistantEnabled(settings);
    IniText ini;
    WriteGroup(ini, SettingGroup::Compilers, false, settings);
    WriteGroup(ini, SettingGroup::Preferences, false, settings);
    WriteGroup(ini, SettingGroup::Recent, false, settings);
    WriteGroup(ini, SettingGroup::Compilers, true, settings);
    WriteGroup(ini, SettingGroup::Assistant, false, settings);
    WriteWindowPlace(ini);
    WriteGroup(ini, SettingGroup::Window, false, settings);
    ini.Add(L"Meta", L"Version", kVersion);
    // With the rest instead of into the finished file: no instant has a settings file without its sessions, and there
    // is no second write that could fail.
    ini.AddNumber(L"Session", L"MRUCount", settings.sessionMruCount);
    for (int i = 0; i < settings.sessionMruCount; ++i)
        ini.AddText(L"Session", FormatW(L"MRU%d", i), settings.sessionMruFiles[i]);
    return ini.Bytes();
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

    ReadGroup(reader, SettingGroup::Compilers, settings);
    for (CompilerSettings& compiler : settings.compilers)
        ResolveExeRelative(compiler.path, compiler.path, kPathCapacity);
    ReadGroup(reader, SettingGroup::Preferences, settings);
    FillEmptyDescriptions(settings);
    // [Meta] "Version" tells nothing that the load would need: every key has a default.
    for (CompilerSettings& compiler : settings.compilers)
        if (!FileExists(compiler.path)) compiler.path[0] = L'\0';  // a stale path never reaches a build
    CheckAssistantKeys(settings);
    ReadGroup(reader, SettingGroup::Assistant, settings);
    ReadGroup(reader, SettingGroup::Recent, settings);
    ReadGroup(reader, SettingGroup::Window, settings);
    SessionMRULoad(overridePath);
    ApplyLateLimits(settings);
}

void SettingsSave(const wchar_t* overridePath) {
    Settings& settings = g_settings;
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(overridePath, ini, kPathCapacity);
    const std::wstring temporary = std::wstring{ini} + L".tmp";

    UpdateAssistantEnabled(settings);
    const auto stored = std::make_unique<Settings>(settings);  // too large for the stack
    RestoreStored(g_overrides, *stored);
    const std::string bytes = ComposeFile(*stored);

    if (settings.backupSettings == 0 && FileHolds(ini, bytes))
        return;  // opening the newest recent file once more changes nothing
    if (!WriteFileUtf8(temporary.c_str(), bytes.data(), bytes.size()) || !FileHolds(temporary.c_str(), bytes)) {
        // A full disk, a folder that may not be written to: the old file is better than half a new one.
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
    // Nothing but the name: the INI functions forget what they cached of the old file.
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
    // By way of a second file, so that a copy that breaks off leaves the settings as they were.
    const std::wstring incoming = std::wstring{ini} + L".import";
    if (source == nullptr || CopyFileW(source, incoming.c_str(), FALSE) == FALSE) {
        DeleteFileW(incoming.c_str());
        return false;
    }
    if (MoveFileExW(incoming.c_str(), ini, MOVEFILE_REPLACE_EXISTING) == FALSE) {
        DeleteFileW(incoming.c_str());
        return false;
    }
    SettingsLoad(nullptr);
    return true;
}

void SettingsResetAll() {
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    if (DeleteFileW(ini) == FALSE && GetLastError() != ERROR_FILE_NOT_FOUND)
        AppLogMsg(L"FAIL: SettingsReset delete error=%lu path=%s", GetLastError(), ini);
    SettingsReset(g_settings);
}
