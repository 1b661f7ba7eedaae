#include "recovery/run_folder.h"

#include "files/file_io.h"
#include "files/recovery.h"
#include "files/user_folder.h"

#include <windows.h>

#include <iterator>
#include <utility>

namespace {

constexpr wchar_t kRunPrefix[] = L"Run ";
constexpr wchar_t kOwnerFile[] = L"owner";

// Only one process at a time can have this file, and the system deletes it when that ends, however it ends.
UniqueHandle OpenOwner(const std::wstring& folder) {
    return UniqueHandle{CreateFileW(PathForSystem((folder + kOwnerFile).c_str()).c_str(), GENERIC_WRITE, 0, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr)};
}

}  // namespace

RunFolder RunFolderCreate() {
    constexpr int kTries = 3;
    const std::wstring parent = RecoveryFolder();
    for (int attempt = 0; !parent.empty() && attempt < kTries; ++attempt) {
        const std::wstring folder = parent + kRunPrefix + RecoveryRun();
        if (!EnsureFolder(folder)) continue;
        // Another copy that starts at this moment takes a folder without an owner for one that was left, and removes it.
        if (UniqueHandle owner = OpenOwner(folder + L'\\')) return {folder + L'\\', std::move(owner), RecoveryRun()};
    }
    return {};
}

std::vector<RunFolder> RunFoldersLeft() {
    std::vector<RunFolder> left;
    const std::wstring user = UserFolderPath();
    if (user.empty()) return left;
    const std::wstring parent = user + L"Recovery\\";
    WIN32_FIND_DATAW found = {};
    const UniqueFind search{FindFirstFileW(PathForSystem((parent + kRunPrefix + L"*").c_str()).c_str(), &found)};
    if (!search) return left;
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) continue;
        std::wstring folder = parent + found.cFileName + L'\\';
        if (UniqueHandle owner = OpenOwner(folder))
            left.push_back({std::move(folder), std::move(owner), found.cFileName + std::size(kRunPrefix) - 1});
    } while (FindNextFileW(search.Get(), &found) != FALSE);
    return left;
}

void RunFolderRelease(RunFolder& folder) {
    if (folder.path.empty()) return;
    folder.owner.Reset();  // deletes its file
    RemoveDirectoryW(PathForSystem(folder.path.substr(0, folder.path.size() - 1).c_str()).c_str());
    folder.path.clear();
}
