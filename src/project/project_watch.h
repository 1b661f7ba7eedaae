// Looks every second whether a project file was changed, removed or put back by another program. UI thread, but for the
// worker's own part.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

struct ProjectSight {
    std::wstring path;
    bool there = false;
    std::string bytes;
};
using ProjectSightPtr = std::unique_ptr<ProjectSight>;

// Ends the watch before it. Posts a ProjectSight as MSG_PROJECT_SEEN when the file is not as it was: `there` tells how it
// is now, and the first look only takes note of a file that is there. An empty path: nothing is watched.
void ProjectWatch(HWND window, const std::wstring& path, bool there);
void ProjectWatchEnd(HWND window);

// Reads a project file. False when it cannot be read; one that is too large gives more bytes than it may have.
bool ReadProjectBytes(const std::wstring& path, std::string* bytes);
