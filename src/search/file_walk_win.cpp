// Walks over folders. Any thread.
#include "search/file_walk.h"

#include "base/handles.h"
#include "base/path.h"
#include "files/file_handle.h"
#include "files/ignore_scope.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

struct FoundEntry : WalkEntry {
    bool isLink = false;
    std::uint64_t size = 0;
    std::uint64_t modified = 0;
};

FoundEntry EntryOf(const WIN32_FIND_DATAW& found) {
    const DWORD attributes = found.dwFileAttributes;
    FoundEntry entry;
    entry.name = found.cFileName;
    entry.isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    entry.isHidden = (attributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) != 0;
    entry.isLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    entry.size = (static_cast<std::uint64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
    entry.modified =
        (static_cast<std::uint64_t>(found.ftLastWriteTime.dwHighDateTime) << 32) | found.ftLastWriteTime.dwLowDateTime;
    return entry;
}

// `folder` has its backslash. False when it cannot be listed.
bool ListFolder(const std::wstring& folder, const std::atomic<bool>* cancel, std::vector<FoundEntry>* entries) {
    WIN32_FIND_DATAW found;
    const UniqueFind find{FindFirstFileExW(PathExtended(folder + L"*").c_str(), FindExInfoBasic, &found,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH)};
    if (!find) return GetLastError() == ERROR_FILE_NOT_FOUND;  // the root of an empty drive
    do {
        entries->push_back(EntryOf(found));
        if (cancel != nullptr && *cancel) return true;
    } while (FindNextFileW(find.Get(), &found) != FALSE);
    return GetLastError() == ERROR_NO_MORE_FILES;
}

// The real path of a folder, without links. Empty when the system does not tell it.
std::wstring FinalPath(const std::wstring& folder) {
    const UniqueHandle handle{CreateFileW(PathExtended(folder).c_str(), 0,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)};
    std::wstring path(4096, L'\0');
    const DWORD length =
        handle ? GetFinalPathNameByHandleW(handle.Get(), path.data(), static_cast<DWORD>(path.size()), 0) : 0;
    path.resize(length < path.size() ? length : 0);
    return path.empty() || path.ends_with(L'\\') ? path : path + L'\\';
}

FileIdentity FolderIdentity(const std::wstring& folder) {
    const UniqueHandle handle{CreateFileW(PathExtended(folder).c_str(), 0,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)};
    return handle ? FileIdentityOfHandle(handle.Get()) : FileIdentity{};
}

}  // namespace

FileWalk::FileWalk(WalkRules rules) : rules_(std::move(rules)) {
    std::wstring root = rules_.root;
    if (!root.ends_with(L'\\')) root += L'\\';
    rootLength_ = root.size();
    folders_.push_back({std::move(root), nullptr});
}

// A link is not followed to a folder around it, to one in which another link has led, or to one that the walk reaches
// anyway: a loop would not end, and files would be found twice.
bool FileWalk::MayFollow(const std::wstring& folder, const std::wstring& link) {
    const FileIdentity target = FolderIdentity(link);
    if (!target.IsKnown()) return false;
    const std::wstring root = FinalPath(folder.substr(0, rootLength_));
    const std::wstring real = FinalPath(link);
    if (!root.empty() && real.size() >= root.size() && !PathEqualsIgnoreCase(real, link) &&
        !PathEqualsIgnoreCase(real, L"\\\\?\\" + link) &&
        PathEqualsIgnoreCase(std::wstring_view{real}.substr(0, root.size()), root))
        return false;
    for (std::wstring around = folder; around.size() >= rootLength_ && !around.empty();) {
        if (FolderIdentity(around) == target) return false;
        const std::size_t end = around.rfind(L'\\', around.size() - 2);
        around.resize(end == std::wstring::npos ? 0 : end + 1);
    }
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(followed_, target) != followed_.end()) return false;
    followed_.push_back(target);
    return true;
}

bool FileWalk::List(const Folder& folder, std::vector<WalkedFile>* files, std::vector<Folder>* folders,
                    const std::atomic<bool>* cancel) {
    std::vector<FoundEntry> entries;
    if (!ListFolder(folder.path, cancel, &entries)) return false;
    std::shared_ptr<const IgnoreScope> scope = folder.ignore;
    if (rules_.gitIgnore) {
        const auto has = [&](const wchar_t* name) {
            return std::ranges::any_of(entries, [name](const FoundEntry& entry) { return entry.name == name; });
        };
        if (folder.path.size() > rootLength_ && has(kRepository)) scope = nullptr;  // a repository inside another one
        if (has(kIgnoreFile)) scope = IgnoreScopeInside(std::move(scope), folder.path);
    }
    for (const FoundEntry& entry : entries) {
        if (!WalkTakes(rules_, folder.path, entry, scope.get())) continue;
        std::wstring path = folder.path + entry.name;
        if (!entry.isFolder)
            files->push_back({std::move(path), entry.size, !entry.isLink, entry.modified});
        else if (path += L'\\'; !entry.isLink || MayFollow(folder.path, path))
            folders->push_back({std::move(path), scope});
    }
    return true;
}

WalkStep FileWalk::Next(std::vector<WalkedFile>* files, std::wstring* unreadable, const std::atomic<bool>* cancel) {
    unreadable->clear();
    Folder folder;
    bool first = false;
    {
        const std::lock_guard lock(mutex_);
        if (folders_.empty()) return listing_ > 0 ? WalkStep::Waiting : WalkStep::Done;
        folder = std::move(folders_.back());
        folders_.pop_back();
        first = !std::exchange(started_, true);
        ++listing_;
    }
    if (first && rules_.gitIgnore) folder.ignore = IgnoreScopeAround(folder.path);
    std::vector<Folder> inner;
    if (!List(folder, files, &inner, cancel)) *unreadable = folder.path;
    const std::lock_guard lock(mutex_);
    folders_.insert(folders_.end(), std::make_move_iterator(inner.rbegin()), std::make_move_iterator(inner.rend()));
    --listing_;
    return WalkStep::Listed;
}
