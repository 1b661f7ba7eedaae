// Lists the files of the project on a worker. UI thread, but for the worker's own part.
#include "search/project_files.h"

#include "base/clock.h"
#include "base/log.h"
#include "base/path.h"
#include "base/worker.h"
#include "files/share_probe.h"
#include "project/project.h"
#include "search/file_walk.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kBlockFiles = 8192;
constexpr ULONGLONG kBlockMs = 150;      // a block is posted after this time, so that the first files are soon there
constexpr ULONGLONG kFreshMs = 5000;     // a list is not made again within this time, or five times what it took
constexpr std::size_t kMostWorkers = 4;  // each may hang on a share that is gone
constexpr wchar_t kNotText[] =
    L"*.exe;*.exe.*;*.pbd;*.dll;*.obj;*.o;*.a;*.lib;*.pdb;*.ilk;*.exp;*.res;*.com;*.sys;*.ocx;*.pch;*.gch;*.class;*."
    L"pyc;*.zip;*.7z;"
    L"*.gz;*.rar;*.cab;*.msi;*.png;*.jpg;*.jpeg;*.gif;*.bmp;*.ico;*.cur;*.tif;*.webp;*.mp3;*.wav;*.mp4;*.avi;*.pdf;"
    L"*.ttf;*.otf;*.woff;*.woff2;*.db;*.mdb;*.chm;*.bin;*.iso";

struct FilesBlock {
    unsigned request = 0;
    std::shared_ptr<FuzzyIndex> files = std::make_shared<FuzzyIndex>();
    bool last = false;
    bool cut = false;
    std::size_t unreadable = 0;
};
using FilesBlockPtr = std::unique_ptr<FilesBlock>;

struct FilesRequest {
    HWND window;
    UINT message;
    unsigned number;
    std::wstring root;
    ExcludedFolders excluded;
};

struct FilesState {
    ProjectFiles now;
    FuzzyIndices next;  // while a list that is shown is made again
    bool replaces = false;
    unsigned request = 0;
    ULONGLONG began = 0, finished = 0;  // the last list
    std::vector<Worker> workers;        // the last one, and others that have not ended yet
};
FilesState g_files;

// ------------------------------------------------------------------------------------------------ on the worker

bool PostFiles(const FilesRequest& request, std::vector<std::wstring>* paths, FilesBlockPtr block) {
    std::ranges::sort(*paths);
    for (const std::wstring& path : *paths) {
        const std::size_t root = request.root.size();
        FuzzyAdd(block->files.get(), std::wstring_view(path).substr(root), path.rfind(L'\\') + 1 - root);
    }
    paths->clear();
    block->request = request.number;
    return WorkerPost(request.window, request.message, std::move(block));
}

void ListProjectFiles(FilesRequest& request, const WorkerCancel& cancel) {
    FileWalk walk(
        {.root = request.root, .only = {}, .except = NameListRules(kNotText), .excluded = std::move(request.excluded)});
    std::vector<std::wstring> paths;
    std::vector<WalkedFile> found;
    auto end = std::make_unique<FilesBlock>();
    std::size_t count = 0;
    ULONGLONG posted = GetTickCount64();
    const bool answers = PathAnswers(request.root.c_str());
    if (!answers) end->unreadable = 1;
    for (WalkStep step = answers ? WalkStep::Listed : WalkStep::Done; step != WalkStep::Done && !end->cut;) {
        if (cancel.Asked()) return;
        std::wstring unreadable;
        found.clear();
        step = walk.Next(&found, &unreadable);
        if (!unreadable.empty()) ++end->unreadable;
        end->cut = count + found.size() > kMostProjectFiles;
        if (end->cut) found.resize(kMostProjectFiles - count);
        count += found.size();
        for (WalkedFile& file : found) paths.push_back(std::move(file.path));
        const ULONGLONG now = GetTickCount64();
        if (paths.size() < kBlockFiles && (paths.empty() || now - posted < kBlockMs)) continue;
        if (!PostFiles(request, &paths, std::make_unique<FilesBlock>())) return;
        posted = now;
    }
    end->last = true;
    PostFiles(request, &paths, std::move(end));
}

// --------------------------------------------------------------------------------------------- on the UI thread

void ForgetEndedWorkers() {
    std::erase_if(
        g_files.workers, [](const Worker& worker) { return WorkerWait(worker, 0); });
}

void StartListing(HWND window, UINT message) {
    for (const Worker& worker : g_files.workers) WorkerAskToEnd(worker);
    ForgetEndedWorkers();
    g_files.now.reading = false;
    if (g_files.workers.size() >= kMostWorkers) return;
    g_files.replaces = !g_files.now.files.empty();
    g_files.next.clear();
    Worker worker = WorkerStart<ListProjectFiles>(
        FilesRequest{window, message, ++g_files.request, g_files.now.root, ProjectExcludedFolders()});
    if (!worker) {
        AppLogMsg(L"FAIL: ProjectFiles could not start a worker, error=%lu", GetLastError());
        return;
    }
    if (g_files.replaces) WorkerLowerPriority(worker);
    g_files.workers.push_back(std::move(worker));
    g_files.now.reading = true;
    g_files.began = GetTickCount64();
}

bool IsFresh() {
    if (g_files.finished < g_files.began) return false;  // it was not finished
    const ULONGLONG took = g_files.finished - g_files.began;
    return GetTickCount64() - g_files.finished < std::max(kFreshMs, 5 * took);
}

}  // namespace

const ProjectFiles& ProjectFilesNow() { return g_files.now; }

void ProjectFilesWant(HWND window, UINT message, const std::wstring& root) {
    ProjectFiles& now = g_files.now;
    std::wstring folder = root;
    if (!folder.empty() && !folder.ends_with(L'\\')) folder += L'\\';
    const bool same = PathEqualsIgnoreCase(now.root, folder);
    if (same && (now.reading || IsFresh())) return;
    if (!same) now = {.root = folder, .files = {}, .generation = now.generation + 1};
    if (!folder.empty()) StartListing(window, message);
}

bool ProjectFilesOnBlock(WPARAM posted) {
    const FilesBlockPtr block = WorkerTake<FilesBlockPtr>(posted);
    ProjectFiles& now = g_files.now;
    if (block->request != g_files.request || !now.reading) return false;
    FuzzyIndices& list = g_files.replaces ? g_files.next : now.files;
    if (!block->files->entries.empty()) list.push_back(block->files);
    if (!block->last) return !g_files.replaces;
    now.reading = false;
    now.cut = block->cut;
    now.unreadable = block->unreadable;
    g_files.finished = GetTickCount64();
    if (g_files.replaces) {
        now.files = std::exchange(g_files.next, {});
        ++now.generation;
    }
    return true;
}

void ProjectFilesEnd(HWND window, UINT message) {
    for (const Worker& worker : g_files.workers) WorkerAskToEnd(worker);
    g_files = {};
    WorkerDropPosts<FilesBlockPtr>(window, message);
}
