// Reads one folder for the project tree. Runs on its own thread: touches no window and no global record.
#include "session/tree_reader.h"

#include "base/handles.h"
#include "base/path.h"

#include <memory>

namespace {

struct Job {
    HWND window;
    UINT message;
    std::uint64_t request;
    std::wstring folder;
};

void ReadFolder(const std::wstring& folder, TreeListing& listing) {
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
    TreeSort(listing.entries);
    if (listing.entries.size() > kTreeMaxShown) {
        listing.omitted = listing.entries.size() - kTreeMaxShown;
        listing.entries.resize(kTreeMaxShown);
    }
}

DWORD WINAPI ReaderThread(void* parameter) {
    const std::unique_ptr<Job> job{static_cast<Job*>(parameter)};
    auto listing = std::make_unique<TreeListing>();
    listing->request = job->request;
    ReadFolder(job->folder, *listing);
    if (PostMessageW(job->window, job->message, reinterpret_cast<WPARAM>(listing.get()), 0) != FALSE)
        static_cast<void>(listing.release());  // now the window's
    return 0;
}

}  // namespace

bool TreeReaderStart(HWND window, UINT message, std::uint64_t request, const std::wstring& folder) {
    auto job = std::make_unique<Job>(Job{window, message, request, folder});
    const UniqueHandle thread{CreateThread(nullptr, 0, ReaderThread, job.get(), 0, nullptr)};
    if (!thread) return false;
    static_cast<void>(job.release());  // now the thread's
    return true;
}
