// Loads and saves `Editor.ini`; settings_file.h has its content. A save writes the whole file: first a file beside it,
// which is flushed and then put in its place. UI thread only.
#include "settings/settings_store.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "files/file_turn.h"
#include "files/keep_aside.h"
#include "files/session_file.h"
#include "files/share_probe.h"
#include "settings/compilers.h"
#include "settings/ini_reader.h"
#include "settings/ini_value.h"
#include "settings/secret_text.h"
#include "settings/secrets.h"
#include "settings/settings_file.h"
#include "settings/settings_import.h"
#include "settings/settings_merge.h"
#include "settings/settings_place.h"
#include "settings/settings_state.h"

#include <algorithm>
#include <cwchar>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct SettingsStore {
    StoredKeys keys;
    std::wstring unread;       // a settings file that was there but could not be read; it is not written in this run
    std::wstring unprotected;  // keys of the file that the user was told about
    std::wstring read;         // the file that the mark is of
    SettingsMark mark;
    FILETIME written = {};  // of the file when the mark was made
    bool shared = false;    // others have written the file since it was loaded
};
SettingsStore g_store;

enum class IniState { Missing, Readable, Unreadable };

// Holds the settings file open, so that no other program can lock it while the INI functions read it.
struct OpenIni {
    IniState state = IniState::Missing;
    UniqueHandle handle;
};

bool CanReadFrom(HANDLE file) {
    char byte = 0;
    DWORD taken = 0;
    return ReadFile(file, &byte, 1, &taken, nullptr) != FALSE;  // fails when another program has locked the bytes
}

// A virus scanner or a backup keeps a file for a moment, so an unreadable one is tried again.
OpenIni OpenIniFile(const wchar_t* path) {
    constexpr int kTries = 8;
    constexpr DWORD kPause = 50;  // ms
    for (int attempt = 1;; ++attempt) {
        UniqueHandle file{CreateFileW(PathForSystem(path).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr)};
        if (!file && (GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND)) return {};
        if (file && CanReadFrom(file.Get())) return {.state = IniState::Readable, .handle = std::move(file)};
        if (attempt == kTries) return {.state = IniState::Unreadable, .handle = {}};
        Sleep(kPause);
    }
}

FILETIME WrittenAt(const wchar_t* path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    return GetFileAttributesExW(path, GetFileExInfoStandard, &data) != FALSE ? data.ftLastWriteTime : FILETIME{};
}

// Deletes the files beside the settings that saves have left when their process was killed. They are never read. A file
// of the last day may belong to a save of another process.
void DeleteStaleFiles(const wchar_t* iniPath) {
    constexpr ULONGLONG kDay = 24ULL * 60 * 60 * 10000000;  // in units of FILETIME
    wchar_t folder[kPathCapacity] = {};
    PathGetDir(iniPath, folder, kPathCapacity);
    WIN32_FIND_DATAW entry = {};
    const UniqueFind find{FindFirstFileW((std::wstring{iniPath} + L".*.tmp").c_str(), &entry)};
    if (!find) return;
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    const auto ticks = [](const FILETIME& time) {
        return (ULONGLONG{time.dwHighDateTime} << 32U) | time.dwLowDateTime;
    };
    do {
        if (ticks(entry.ftLastWriteTime) + kDay < ticks(now))
            DeleteFileW((folder + std::wstring{entry.cFileName}).c_str());
    } while (FindNextFileW(find.Get(), &entry) != FALSE);
}

std::wstring ProtectKey(const SettingRow& row, const wchar_t* clearText) {
    std::wstring stored = ProtectedText(clearText);
    const std::wstring name = row.key;
    if (stored.empty() && g_store.unprotected.find(name) == std::wstring::npos) {
        AppLogMsg(L"FAIL: SettingsSave %s cannot be protected, error=%lu", row.key, GetLastError());
        g_store.unprotected += name + L" ";
        g_events.noticeWanted(
            FormatW(Text(L"The key \"%s\" cannot be protected on this system, so it is not stored. It is "
                         L"used until the editor closes."),
                    row.key)
                .c_str());
    }
    return stored;
}

// Protects the keys that stand in clear text in a copy of the settings file, as in one that was written by hand.
bool ProtectKeysIn(const std::wstring& path) {
    IniReader reader{path.c_str()};
    bool written = true;
    for (const SettingRow& row : SettingRows()) {
        if ((row.flags & kSettingSecret) == 0) continue;
        const std::wstring text = DecodeIniValue(reader.Text(row.section, row.key, L""));
        if (text.empty() || IsSecretText(text)) continue;
        ForEachSecretPiece(row.key, ProtectedText(text.c_str()), [&](const std::wstring& key, std::wstring_view piece) {
            written = WritePrivateProfileStringW(row.section, key.c_str(), std::wstring{piece}.c_str(), path.c_str()) !=
                          FALSE &&
                      written;
        });
    }
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, path.c_str());
    return written;
}

// Copies a settings file. The copy holds no key in clear text and is put in its place whole.
bool CopySettings(const wchar_t* from, const wchar_t* to) {
    const std::wstring beside = std::wstring{to} + L"." + std::to_wstring(GetCurrentProcessId()) + L".copy";
    const bool copied = CopyFileW(from, beside.c_str(), FALSE) != FALSE && ProtectKeysIn(beside) &&
                        MoveFileExW(beside.c_str(), to, MOVEFILE_REPLACE_EXISTING) != FALSE;
    if (!copied) {
        const DWORD error = GetLastError();
        DeleteFileW(beside.c_str());  // there may be none
        SetLastError(error);
    }
    return copied;
}

bool FileHolds(const wchar_t* path, std::string_view bytes) {
    std::string found;
    return ReadSharedFile(path, bytes.size(), &found) && found == bytes;
}

// False, with a line in the log, when the file could not be written. It is as it was then.
bool WriteSettings(const wchar_t* ini, std::string_view bytes) {
    if (g_settings.backupSettings != 0 && FileExists(ini) && !CopySettings(ini, (std::wstring{ini} + L".bak").c_str()))
        AppLogMsg(L"FAIL: SettingsSave backup error=%lu", GetLastError());
    const bool written = ReplaceFileWhole(ini, bytes);
    const DWORD error = GetLastError();
    if (!written) AppLogMsg(L"FAIL: SettingsSave error=%lu, the settings file stays as it was: %s", error, ini);
    // A call with only the file's name makes the INI functions drop what they cached of the old file.
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, ini);
    SetLastError(error);
    return written;
}

constexpr DWORD kLargestIni = 4U << 20U;  // bytes; the settings take at most a tenth of it

// The INI functions read a file whole, each time.
bool IsTooLarge(const wchar_t* path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    return GetFileAttributesExW(path, GetFileExInfoStandard, &data) == FALSE || data.nFileSizeHigh != 0 ||
           data.nFileSizeLow > kLargestIni;
}

// The sections of an INI file. One that is too long for the buffer is cut; this program writes none of that length.
std::vector<IniSectionText> SectionsOf(const wchar_t* path) {
    constexpr DWORD kLongest = 1U << 18U;  // characters
    std::vector<IniSectionText> sections;
    std::wstring names(kLongest, L'\0');
    std::wstring lines(kLongest, L'\0');
    names.resize(GetPrivateProfileSectionNamesW(names.data(), kLongest, path));
    for (std::size_t at = 0; at < names.size();) {
        const std::wstring name = names.c_str() + at;
        at += name.size() + 1;
        const DWORD length = GetPrivateProfileSectionW(name.c_str(), lines.data(), kLongest, path);
        if (!name.empty()) sections.push_back({.name = name, .lines = lines.substr(0, length)});
    }
    return sections;
}

// A copy of a settings file in the encoding that the INI functions read right. The destructor deletes it.
struct ImportCopy {
    std::wstring path;  // empty: the file itself can be read
    bool failed = false;

    ImportCopy(const wchar_t* source, const wchar_t* ini) {
        std::string bytes;
        failed = !ReadSharedFile(source, kLargestIni, &bytes);
        const std::optional<std::string> converted = failed ? std::nullopt : IniBytesAsUtf16(bytes);
        if (!converted) return;
        path = std::wstring{ini} + L"." + std::to_wstring(GetCurrentProcessId()) + L".import";
        failed = !ReplaceFileWhole(path.c_str(), *converted);
    }
    ~ImportCopy() {
        if (path.empty()) return;
        const DWORD error = GetLastError();                                   // of the import
        WritePrivateProfileStringW(nullptr, nullptr, nullptr, path.c_str());  // drops what is cached of it
        DeleteFileW(path.c_str());
        SetLastError(error);
    }
    ImportCopy(const ImportCopy&) = delete;
    ImportCopy& operator=(const ImportCopy&) = delete;
};

bool FailWith(DWORD error) {
    SetLastError(error);
    return false;
}

bool IsDefaultFile(const wchar_t* overridePath) { return overridePath == nullptr || !PathIsAbsolute(overridePath); }

// Whether a file that is not empty has no section of the settings.
bool IsForeignIni(const wchar_t* ini) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(ini, GetFileExInfoStandard, &data) == FALSE || data.nFileSizeLow + data.nFileSizeHigh == 0)
        return false;
    constexpr DWORD kLongest = 1U << 16U;  // characters
    std::wstring names(kLongest, L'\0');
    names.resize(GetPrivateProfileSectionNamesW(names.data(), kLongest, ini));
    for (std::size_t at = 0; at < names.size(); at += std::wcslen(names.c_str() + at) + 1)
        if (std::ranges::any_of(SettingRows(), [&](const SettingRow& row) {
                return PathEqualsIgnoreCase(row.section, names.c_str() + at);
            }))
            return false;
    return true;
}

// The next save would write over what may be the user's. False when no copy of it can be made.
bool KeepForeignIni(const wchar_t* ini) {
    const std::wstring aside = KeepAside(ini);
    AppLogMsg(L"FAIL: SettingsLoad found no settings in %s, kept as %s", ini, aside.c_str());
    if (aside.empty()) return false;
    g_events.noticeWanted(TextWith(L"The settings file holds no settings:\n\n{1}\n\nThe editor runs with its default "
                                   L"settings and will write the file anew. What it held is kept in:\n\n{2}",
                                   {ini, aside})
                              .c_str());
    return true;
}

void TellUnreadable(const wchar_t* ini) {
    AppLogMsg(L"FAIL: SettingsLoad cannot read %s, nothing is written to it in this run", ini);
    g_events.noticeWanted(
        FormatW(Text(L"The settings file cannot be read at the moment:\n\n%s\n\nThe editor runs with its "
                     L"default settings and does not save them, so that yours are not lost."),
                ini)
            .c_str());
}

}  // namespace

void GetIniPath(const wchar_t* overridePath, wchar_t* out, std::size_t capacity) {
    const bool given = overridePath != nullptr && overridePath[0] != L'\0';
    if (given && PathIsAbsolute(overridePath)) {
        SafeCopyW(out, capacity, overridePath);
        return;
    }
    PathJoin(SettingsFolder().c_str(), given ? overridePath : L"Editor.ini", out, capacity);
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

static SettingsSource SourceOf(IniReader& reader, bool read, const wchar_t* programFolder) {
    return {
        .text = [&reader, read](auto section, auto key,
                                auto value) { return read ? reader.Text(section, key, value) : std::wstring{value}; },
        .number = [&reader, read](auto section, auto key,
                                  auto value) { return read ? reader.Number(section, key, value) : value; },
        .unprotect = [](auto stored, auto out, auto capacity) { return DecryptString(stored, out, capacity) != 0; },
        .fileExists = FileExists,
        .programFolder = programFolder};
}

void SettingsLoad(const wchar_t* overridePath) {
    if (IsDefaultFile(overridePath)) SettingsChooseFolder();
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(overridePath, ini, kPathCapacity);
    AppLogMsg(L"SettingsLoad: INI = %s", ini);
    DeleteStaleFiles(ini);
    OpenIni open = OpenIniFile(ini);
    if (open.state == IniState::Readable && IsForeignIni(ini) && !KeepForeignIni(ini))
        open.state = IniState::Unreadable;
    g_store.unread = open.state == IniState::Unreadable ? ini : L"";
    if (open.state == IniState::Unreadable) TellUnreadable(ini);
    // The reader of a file that cannot be read gets no path: all defaults are better than a part of the settings.
    IniReader reader{ini};
    const bool read = open.state != IniState::Unreadable;
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    const SettingsSource source = SourceOf(reader, read, folder);
    const wchar_t* const first = g_compilers[kCompilerKvxa64].section;
    AppLogMsg(L"SettingsLoad: KVXA64 Path = '%s'", DecodeIniValue(source.text(first, L"Path", L"")).c_str());
    ParseSettings(source, g_settings, g_store.keys);
    if (read)
        SessionMRULoad(overridePath);
    else
        g_settings.sessionMruCount = 0;
    g_store.read = read ? ini : L"";
    g_store.mark = MarkOf(g_settings);
    g_store.written = WrittenAt(ini);
    g_store.shared = false;
}

// Others may have written the file since it was read: what this run has not changed is taken from it.
static void MergeWithFile(const wchar_t* ini, Settings& settings) {
    if (g_store.read != ini || !FileExists(ini)) return;
    const FILETIME now = WrittenAt(ini);
    g_store.shared = g_store.shared || CompareFileTime(&now, &g_store.written) != 0;
    if (!g_store.shared || OpenIniFile(ini).state != IniState::Readable) return;
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, ini);  // drops what is cached of the old file
    const auto theirs = std::make_unique<Settings>(settings);    // 150 kB, too much for the stack
    StoredKeys keys;
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    IniReader reader{ini};
    ParseSettings(SourceOf(reader, true, folder), *theirs, keys);
    theirs->sessionMruCount = std::clamp(reader.Number(L"Session", L"MRUCount", 0), 0, kMruCapacity);
    for (int i = 0; i < theirs->sessionMruCount; ++i)
        SafeCopyW(theirs->sessionMruFiles[i],
                  DecodeIniValue(reader.Text(L"Session", FormatW(L"MRU%d", i).c_str(), L"")));
    MergeSettings(settings, g_store.mark, *theirs);
    // A key of theirs is written as they have protected it.
    for (const StoredKey& key : keys)
        if (key.row != nullptr && key.held == SettingText(settings, *key.row))
            for (StoredKey& place : g_store.keys)
                if (place.row == key.row || place.row == nullptr) {
                    place = key;
                    break;
                }
    CopyRecentLists(g_settings, settings);
}

void SettingsTellLockedKeys() {
    std::wstring names;
    for (const SettingRow& row : SettingRows())
        if ((row.flags & kSettingSecret) != 0 && IsSecretText(SettingText(g_settings, row)))
            names += (names.empty() ? L"" : L", ") + std::wstring{row.key};
    if (names.empty()) return;
    AppLogMsg(L"FAIL: SettingsLoad cannot unprotect %s", names.c_str());
    g_events.noticeWanted(
        FormatW(Text(L"The settings file holds a key that cannot be read here: %s.\n\nIt was protected by "
                     L"another Windows account, or it is damaged. It is kept as it is and sent to nobody. "
                     L"To use the service, enter the key anew in the settings."),
                names.c_str())
            .c_str());
}

// What this run has now is what its next changes are told by. Always 1, the result of a save.
static int NoteWritten(const wchar_t* ini) {
    const auto now = std::make_unique<Settings>(g_settings);  // 150 kB, too much for the stack
    RestoreStored(g_overrides, *now);
    g_store.read = ini;
    g_store.mark = MarkOf(*now);
    g_store.written = WrittenAt(ini);
    return 1;
}

// After a 0, GetLastError() tells why the file could not be written.
int SettingsSave(const wchar_t* overridePath) {
    Settings& settings = g_settings;
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(overridePath, ini, kPathCapacity);
    if (g_store.unread == ini) return 1;
    UpdateAssistantEnabled(settings);
    const auto stored = std::make_unique<Settings>(settings);  // 150 kB, too much for the stack
    RestoreStored(g_overrides, *stored);
    const FileTurn turn(L"Settings");
    MergeWithFile(ini, *stored);
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    const std::string bytes = ComposeSettings(
        *stored, g_store.keys, {.protect = ProtectKey, .programFolder = folder, .windowPlace = g_windowPlace});
    if (settings.backupSettings == 0 && FileHolds(ini, bytes))
        return NoteWritten(ini);  // unchanged, as when the newest recent file is opened again
    if (WriteSettings(ini, bytes)) return NoteWritten(ini);
    const DWORD error = GetLastError();
    if (!IsDefaultFile(overridePath) || !SettingsLeaveFolder(error)) {
        SetLastError(error);
        return 0;
    }
    GetIniPath(overridePath, ini, kPathCapacity);
    g_events.noticeWanted(
        FormatW(
            Text(L"The program's folder cannot be written. Settings and sessions are kept in your own folder instead:"
                 L"\n\n%s"),
            SettingsFolder().c_str())
            .c_str());
    return WriteSettings(ini, bytes) ? NoteWritten(ini) : 0;
}

bool SettingsExport(const wchar_t* target) {
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    if (target == nullptr || !PathAnswers(target)) return FailWith(ERROR_BAD_NETPATH);
    return CopySettings(ini, target);
}

bool SettingsImport(const wchar_t* source, std::vector<std::wstring>* notUnderstood) {
    if (source == nullptr || !PathAnswers(source)) return FailWith(ERROR_BAD_NETPATH);
    if (!FileExists(source)) return FailWith(ERROR_FILE_NOT_FOUND);
    if (IsTooLarge(source)) return FailWith(ERROR_FILE_TOO_LARGE);
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    const ImportCopy readable{source, ini};
    if (readable.failed) return false;
    if (!readable.path.empty()) source = readable.path.c_str();
    ImportFinding finding = LookAtImport(SectionsOf(source));
    if (finding.given.empty()) return FailWith(ERROR_INVALID_DATA);
    if (FileExists(ini) && !CopySettings(ini, (std::wstring{ini} + L".bak").c_str()))
        AppLogMsg(L"FAIL: SettingsImport backup error=%lu", GetLastError());
    // A copy that breaks off does not change the settings, because it is made beside them.
    if (!CopySettings(source, ini)) return false;
    const SettingsEdit edit;
    const auto before = std::make_unique<Settings>(g_settings);  // 150 kB, too much for the stack
    SettingsLoad(nullptr);
    KeepWhatImportLacks(finding, *before, g_settings);
    if (notUnderstood != nullptr) *notUnderstood = std::move(finding.notUnderstood);
    SettingsSave(nullptr);  // tells of a failure in the log; the file holds what was imported even then
    return true;
}

void SettingsResetAll() {
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    if (DeleteFileW(ini) == FALSE && GetLastError() != ERROR_FILE_NOT_FOUND)
        AppLogMsg(L"FAIL: SettingsReset delete error=%lu path=%s", GetLastError(), ini);
    g_store = {};
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
