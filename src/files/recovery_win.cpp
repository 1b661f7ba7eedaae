// Recovery copies on disk. Any thread, because a lock guards the list of the copies that failed saves have left.
#include "files/recovery.h"

#include "base/texts.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "files/user_folder.h"
#include "files/whole_file.h"

#include <atomic>
#include <mutex>

namespace {

constexpr unsigned kMoveMs = 1000;  // for a program that reads the copy at this moment

std::mutex g_keptLock;
KeptCopies g_kept;  // guarded by g_keptLock
std::atomic<std::uint32_t> g_nextNumber{1};

// A copy that cannot be written whole is deleted, because half a copy would mislead the user.
bool WriteCopy(const std::wstring& path, std::string_view bytes, FileProgress* progress) {
    return WriteWholeFile(PathForSystem(path.c_str()), bytes,
                          {.disposition = CREATE_NEW, .removeFailed = true, .progress = progress});
}

void DeleteCopy(const RecoveryCopy& copy) {
    // A copy that cannot be deleted is a leftover in the user's recovery folder, not a loss.
    if (!copy.path.empty()) DeleteFileW(PathForSystem(copy.path.c_str()).c_str());
    if (!copy.notePath.empty()) DeleteFileW(PathForSystem(copy.notePath.c_str()).c_str());
}

// A name that no file in the folder has: an earlier process with the same id may have left a copy.
std::wstring FreeName(const std::wstring& folder, const wchar_t* target) {
    const auto isThere = [](const std::wstring& file) {
        return GetFileAttributesW(PathForSystem(file.c_str()).c_str()) != INVALID_FILE_ATTRIBUTES;
    };
    std::wstring path;
    do {
        path = folder + RecoveryCopyName(target, GetCurrentProcessId(), g_nextNumber++);
    } while (isThere(path) || isThere(path + kRecoveryUnfinished));
    return path;
}

bool WriteInUserFolder(const wchar_t* target, std::string_view bytes, RecoveryCopy* copy, FileProgress* progress) {
    const std::wstring folder = RecoveryFolder();
    if (folder.empty()) return false;
    const std::string note = ToUtf8(target + (L'\n' + RecoveryRun()));
    const std::wstring path = FreeName(folder, target);
    const RecoveryCopy wanted{.path = path, .notePath = path + L".path"};
    // The ".path" file is written first, so that no copy is without one.
    // It gets its name when it is whole, because the next start would offer half a copy after a kill.
    const std::wstring fresh = wanted.path + kRecoveryUnfinished;
    const bool written = WriteFileUtf8(wanted.notePath.c_str(), note.data(), note.size()) &&
                         WriteCopy(fresh, bytes, progress) &&
                         MoveInPlace(PathForSystem(fresh.c_str()), PathForSystem(wanted.path.c_str()), kMoveMs);
    if (!written) {
        DeleteFileW(PathForSystem(fresh.c_str()).c_str());
        DeleteFileW(PathForSystem(wanted.notePath.c_str()).c_str());
        return false;
    }
    *copy = wanted;
    return true;
}

}  // namespace

std::wstring RecoveryRun() {
    FILETIME started = {}, ended = {}, kernel = {}, user = {};
    GetProcessTimes(GetCurrentProcess(), &started, &ended, &kernel, &user);
    return FormatW(L"%lx%08lx-%lx", started.dwHighDateTime, started.dwLowDateTime, GetCurrentProcessId());
}

std::wstring RecoveryFolder() {
    const std::wstring parent = UserFolder();
    const std::wstring folder = parent + L"Recovery";
    return !parent.empty() && EnsureFolder(folder) ? folder + L'\\' : std::wstring{};
}

bool RecoveryWrite(const wchar_t* target, const char* bytes, std::size_t length, RecoveryCopy* copy,
                   FileProgress* progress) {
    *copy = {};
    if (WriteInUserFolder(target, {bytes, length}, copy, progress)) return true;
    if (progress != nullptr && progress->cancel) return false;
    // The volume of the user's folder may be full or gone, while the target's own volume has room.
    std::wstring folder{target};
    folder.resize(folder.rfind(L'\\') + 1);  // npos + 1 is 0: the current folder
    const std::wstring beside = FreeName(folder, target);
    if (!WriteCopy(beside, {bytes, length}, progress)) return false;
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
