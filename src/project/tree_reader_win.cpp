// Reads one folder for the project tree in a worker, which uses no window and no global state except to post the
// listings.
#include "project/tree_reader.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/worker.h"
#include "files/ignore_scope.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr ULONGLONG kFirstPartMs = 40;          // what was read by then is shown
constexpr std::size_t kLookEvery = 256;         // entries, between two looks at the clock
constexpr std::size_t kMostOfFirstPart = 5000;  // entries; sorting and copying them takes a few milliseconds

struct TreeReadRequest {
    HWND window;
    UINT message;
    std::uint64_t number;
    std::wstring folder;
    TreeFilter filter;
    ExcludedFolders excluded;
};

// Takes out what the ignore files say. The ignore file is looked for in the folder, because it may be a hidden entry.
void LeaveOutIgnored(const std::wstring& folder, TreeListing& listing) {
    const std::wstring slashed = folder.ends_with(L'\\') ? folder : folder + L'\\';
    const std::shared_ptr<const IgnoreScope> scope = IgnoreScopeInside(IgnoreScopeAround(slashed), slashed);
    if (scope == nullptr) return;
    std::erase_if(listing.entries, [&](const TreeEntry& entry) {
        return IsIgnored(scope.get(), PathKey(slashed + entry.name), entry.isFolder);
    });
}

bool IsLeftOut(const TreeReadRequest& request, const wchar_t* name, bool isFolder) {
    return isFolder && !request.filter.hidden && !request.excluded.rules.empty() &&
           IsInExcludedFolder(request.excluded, TreeJoin(request.folder, name), true);
}

void PostPart(const TreeReadRequest& request, const TreeListing& listing) {
    auto part = std::make_unique<TreeListing>(listing);
    part->more = true;
    TreeSort(part->entries);
    WorkerPost(request.window, request.message, std::move(part));
}

void ReadTreeFolder(const TreeReadRequest& request, TreeListing& listing) {
    const ULONGLONG began = GetTickCount64();
    WIN32_FIND_DATAW found;
    const UniqueFind find{FindFirstFileExW(PathExtended(TreeJoin(request.folder, L"*")).c_str(), FindExInfoBasic,
                                           &found, FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH)};
    if (!find) {
        listing.readable = GetLastError() == ERROR_FILE_NOT_FOUND;  // the root of an empty drive
        return;
    }
    listing.readable = true;
    // What is ignored is known when the whole folder was read, so nothing of it is shown before.
    bool partShown = request.filter.gitIgnore;
    std::size_t seen = 0;
    do {
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool isHidden = (found.dwFileAttributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) != 0;
        if (TreeShows(request.filter, found.cFileName, isFolder, isHidden) &&
            !IsLeftOut(request, found.cFileName, isFolder))
            listing.entries.push_back({.name = found.cFileName, .isFolder = isFolder});
        if (!partShown && ++seen % kLookEvery == 0 &&
            (listing.entries.size() >= kMostOfFirstPart || GetTickCount64() - began >= kFirstPartMs)) {
            PostPart(request, listing);
            partShown = true;
        }
        listing.cut = listing.entries.size() >= kTreeMaxRead;
    } while (!listing.cut && FindNextFileW(find.Get(), &found) != FALSE);
}

void ReadForTree(TreeReadRequest& request, const WorkerCancel&) {
    auto listing = std::make_unique<TreeListing>();
    listing->request = request.number;
    ReadTreeFolder(request, *listing);
    if (request.filter.gitIgnore && listing->readable) LeaveOutIgnored(request.folder, *listing);
    TreeSort(listing->entries);
    WorkerPost(request.window, request.message, std::move(listing));
}

}  // namespace

bool TreeReaderStart(HWND window, UINT message, std::uint64_t request, const std::wstring& folder,
                     const TreeFilter& filter, const ExcludedFolders& excluded) {
    return static_cast<bool>(
        WorkerStart<ReadForTree>(TreeReadRequest{window, message, request, folder, filter, excluded}));
}
