#include "project/project_watch.h"

#include "base/log.h"
#include "base/worker.h"
#include "files/file_io.h"
#include "project/project_file.h"
#include "resources/ids.h"

#include <utility>

namespace {

constexpr DWORD kLookMs = 1000;
constexpr int kMissesToBeGone = 2;  // a program that saves by renaming removes a file for a moment

struct WatchRequest {
    HWND window;
    std::wstring path;
    bool there;
};

struct ProjectStamp {
    bool there = false;
    FILETIME written = {};
    DWORD low = 0, high = 0;
    bool operator==(const ProjectStamp& other) const {
        return there == other.there && CompareFileTime(&written, &other.written) == 0 && low == other.low &&
               high == other.high;
    }
};

ProjectStamp StampOfProject(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data) == FALSE ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return {};
    return {true, data.ftLastWriteTime, data.nFileSizeLow, data.nFileSizeHigh};
}

// False: the window is gone.
bool PostSight(const WatchRequest& request, bool there, std::string bytes) {
    auto sight = std::make_unique<ProjectSight>();
    sight->path = request.path;
    sight->there = there;
    sight->bytes = std::move(bytes);
    return WorkerPost(request.window, MSG_PROJECT_SEEN, std::move(sight));
}

void WatchProject(WatchRequest& request, const WorkerCancel& cancel) {
    ProjectStamp known = StampOfProject(request.path);
    known.there = known.there && request.there;  // one that has come back meanwhile is told
    int misses = 0;
    while (WaitForSingleObject(cancel.Event(), kLookMs) == WAIT_TIMEOUT) {
        const ProjectStamp now = StampOfProject(request.path);
        misses = now.there ? 0 : misses + 1;
        if (now == known || (!now.there && misses < kMissesToBeGone)) continue;
        std::string bytes;
        if (now.there && !ReadProjectBytes(request.path, &bytes)) continue;  // it is being written: look again
        known = now;
        if (!PostSight(request, now.there, std::move(bytes))) return;
    }
}

Worker g_projectWatch;

}  // namespace

void ProjectWatch(HWND window, const std::wstring& path, bool there) {
    WorkerAskToEnd(g_projectWatch);
    g_projectWatch = {};
    if (path.empty()) return;
    g_projectWatch = WorkerStart<WatchProject>(WatchRequest{window, path, there});
    if (!g_projectWatch) AppLogMsg(L"FAIL: ProjectWatch error=%lu", GetLastError());
}

void ProjectWatchEnd(HWND window) {
    ProjectWatch(window, L"", false);
    WorkerDropPosts<ProjectSightPtr>(window, MSG_PROJECT_SEEN);
}

bool ReadProjectBytes(const std::wstring& path, std::string* bytes) {
    if (ReadSharedFile(path, kMostProjectBytes, bytes)) return true;
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data) == FALSE ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ||
        (data.nFileSizeHigh == 0 && data.nFileSizeLow <= kMostProjectBytes))
        return false;
    bytes->assign(kMostProjectBytes + 1, ' ');
    return true;
}
