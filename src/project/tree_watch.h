// Notices what other programs do to the names in the folders that the project tree shows. One thread listens to the
// system's notifications for the root and all below it. Where these do not tell of inner folders (network, some
// systems), it looks at the times of the shown folders. Nothing here waits for a folder. UI thread only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct TreeChanges {
    std::uint64_t number = 0;           // of the watch
    bool all = false;                   // any of the folders may have changed
    std::vector<std::wstring> folders;  // in which names came, went or changed
};

// Watches the root from now on, and nothing else. The thread posts `message` to the window, with a TreeChanges* in
// wParam that the receiver deletes. `ignoreFiles`: also a change inside a file ".gitignore" counts. Returns the number of
// the watch; 0 when it could not be started.
std::uint64_t TreeWatchStart(HWND window, UINT message, const std::wstring& root, bool ignoreFiles);
// The folders that are shown and open.
void TreeWatchFolders(std::vector<std::wstring> folders);
// Ends the thread, without a wait.
void TreeWatchEnd();
