// Reads one folder for the project tree in a worker, which uses no window and no global state except to post the
// listing.
#include "project/tree_reader.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/worker.h"

#include <memory>
#include <utility>

namespace {

struct TreeReadRequest {
    HWND window;
    UINT message;
    std::uint64_t number;
    std::wstring folder;
};

void ReadTreeFolder(const std::wstring& folder, TreeListing& listing) {
    const std::wstring pattern = folder + (folder.ends_with(L'\\') ? L"*" : L"\\*");
    WIN32_FIND_DATAW found;
    const UniqueFind find{FindFirstFileExW(PathExtended(pattern).c_str(), FindExInfoBasic, &found,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH)};
    if (!find) return;
    listing.readable = true;
    do {
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool isHidden = (found.dwFileAttributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) != 0;
        if (TreeShows(found.cFileName, isFolder, isHidden))
            listing.entries.push_back({.name = found.cFileName, .isFolder = isFolder});
    } while (listing.entries.size() < kTreeMaxRead && FindNextFileW(find.Get(), &found) != FALSE);
    TreeFinishListing(listing);
}

void ReadForTree(TreeReadRequest& request, const WorkerCancel&) {
    auto listing = std::make_unique<TreeListing>();
    listing->request = request.number;
    ReadTreeFolder(request.folder, *listing);
    WorkerPost(request.window, request.message, std::move(listing));
}

}  // namespace

bool TreeReaderStart(HWND window, UINT message, std::uint64_t request, const std::wstring& folder) {
    return static_cast<bool>(WorkerStart<ReadForTree>(TreeReadRequest{window, message, request, folder}));
}
