// Notices what other programs do to files. One thread watches the folders of the files for changes, and looks at the files
// themselves where no folder tells: on the network, on drives that do not notify, and beyond the number of folders that
// can be watched. Nothing here waits for a file. UI thread only.
#pragma once

#include "files/disk_file.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct FileToWatch {
    int id = 0;  // the caller's
    std::wstring path;
    FileState known;  // as it was last read or written
    bool operator==(const FileToWatch&) const = default;
};

// A file that is not what it was known to be, or no longer differs from that.
struct SeenFile {
    int id = 0;
    FileState known;  // what `now` was compared with
    FileState now;
    std::wstring movedTo;   // the path of a file that is gone and has another name in its folder; empty: it has none
    std::wstring path;      // that was looked at
    bool restless = false;  // it is being changed all the time
};

struct FileWatchReport {
    std::uint64_t look = 0;  // the last FileWatchLookNow that was answered
    std::vector<SeenFile> seen;
};

// Watches these files from now on, and no others. The thread is made at the first call and posts `message` to the
// window, with a FileWatchReport* in wParam that the receiver deletes. A change is reported once it stands for a moment,
// because programs save by deleting and renaming.
void FileWatchSet(HWND window, UINT message, std::vector<FileToWatch> files);
// Looks at all files soon. Returns a number; the report that has it, or a larger one, is the answer. 0: nothing is
// watched.
std::uint64_t FileWatchLookNow();
// Ends the thread, without a wait.
void FileWatchEnd();
