// Recovery copies on disk. Any thread: the list of the copies that failed saves have left stands under its own lock.
#include "files/recovery.h"

#include "files/file_io.h"
#include "files/whole_file.h"

#include <shlobj.h>

#include <atomic>
#include <iterator>
#include <mutex>

namespace {

std::mutex g_keptLock;
KeptCopies g_kept;  // under g_keptLock
std::atomic<std::uint32_t> g_nextNumber{1};

// The environment variable comes first: a user can redirect it, and asking the shell would load its libraries at a save.
std::wstring LocalAppData() {
    wchar_t folder[1024];
    const DWORD length = GetEnvironmentVariableW(L"LOCALAPPDATA", folder, static_cast<DWORD>(std::size(folder)));
    if (length > 0 && length < std::size(folder)) return folder;
    wchar_t known[MAX_PATH];
    return SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, known)) ? known : L"";
}

bool EnsureFolder(const std::wstring& folder) {
    return CreateDirectoryW(PathForSystem(folder.c_str()).c_str(), nullptr) != FALSE ||
           GetLastError() == ERROR_ALREADY_EXISTS;
}

// Half a copy would only mislead.
bool WriteCopy(const std::wstring& path, std::string_view bytes) {
    return WriteWholeFile(PathForSystem(path.c_str()), bytes, {.disposition = CREATE_NEW, .removeFailed = true});
}

void DeleteCopy(const RecoveryCopy& copy) {
    // What cannot be deleted is a leftover in the user's recovery folder, not a loss.
    if (!copy.path.empty()) DeleteFileW(PathForSystem(copy.path.c_str()).c_str());
    if (!copy.notePath.empty()) DeleteFileW(PathForSystem(copy.notePath.c_str()).c_str());
}

// A name that is free in the folder: an earlier process with the same number may have left a copy.
std::wstring FreeName(const std::wstring& folder, const wchar_t* target) {
    std::wstring path;
    do {
        path = folder + RecoveryCopyName(target, GetCurrentProcessId(), g_nextNumber++);
    } while (GetFileAttributesW(PathForSystem(path.c_str()).c_str()) != INVALID_FILE_ATTRIBUTES);
    return path;
}

bool WriteInUserFolder(const wchar_t* target, const char* bytes, std::size_t length, RecoveryCopy* copy) {
    const std::wstring folder = RecoveryFolder();
    if (folder.empty()) return false;
    const std::string note = ToUtf8(target);
    const std::wstring path = FreeName(folder, target);
    const RecoveryCopy wanted{.path = path, .notePath = path + L".path"};
    // The note first: with the copy on disk, so is what it belongs to.
    const bool written =
        WriteFileUtf8(wanted.notePath.c_str(), note.data(), note.size()) && WriteCopy(wanted.path, {bytes, length});
    if (!written) {
        DeleteFileW(PathForSystem(wanted.notePath.c_str()).c_str());
        return false;
    }
    *copy = wanted;
    return true;
}

}  // namespace

std::wstring RecoveryFolder() {
    std::wstring folder = LocalAppData();
    if (folder.empty()) return {};
    for (const wchar_t* part : {L"\\KVX-Editor", L"\\Recovery"}) {
        folder += part;
        if (!EnsureFolder(folder)) return {};
    }
    return folder + L'\\';
}

bool RecoveryWrite(const wchar_t* target, const char* bytes, std::size_t length, RecoveryCopy* copy) {
    *copy = {};
    if (WriteInUserFolder(target, bytes, length, copy)) return true;
    // The volume of the user's folder is full or gone; the target's own volume may have room.
    std::wstring folder{target};
    folder.resize(folder.rfind(L'\\') + 1);  // npos + 1 is 0: the current folder
    const std::wstring beside = FreeName(folder, target);
    if (!WriteCopy(beside, {bytes, length})) return false;
    copy->path = beside;
    return true;
}

void RecoveryDiscard(const wchar_t* target, const RecoveryCopy& copy) {
    DeleteCopy(copy);
    const std::lock_guard lock{g_keptLock};
    for (const RecoveryCopy& older : g_kept.Forget(target)) DeleteCopy(older);
}

void RecoveryKeep(const wchar_t* target, const RecoveryCopy& copy) {
    const std::lock_guard lock{g_keptLock};
    for (const RecoveryCopy& older : g_kept.Keep(target, copy)) DeleteCopy(older);
}

bool RecoveryHasKept(const wchar_t* target) {
    const std::lock_guard lock{g_keptLock};
    return g_kept.Has(target);
}

std::wstring RecoveryLastPath() {
    const std::lock_guard lock{g_keptLock};
    return g_kept.LastPath();
}
