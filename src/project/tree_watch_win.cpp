// The thread that watches the folders of the project tree. All file calls are on it; what it shares with the UI thread
// is WatchedTree.
#include "project/tree_watch.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/worker.h"
#include "files/ignore_scope.h"
#include "files/share_probe.h"
#include "project/tree_rules.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace {

constexpr DWORD kPollMs = 1500;         // between two looks at the folders' times
constexpr DWORD kLostMs = 3000;         // and between two looks for a root that went away
constexpr DWORD kSettleMs = 120;        // without a change, before the changes are told
constexpr ULONGLONG kLongestMs = 1000;  // that changes wait at most
constexpr std::size_t kMostFolders = 500;
constexpr std::size_t kBlock = 1 << 14;  // DWORDs

struct WatchedTree {
    std::uint64_t number = 0;
    HWND window = nullptr;
    UINT message = 0;
    std::wstring root;
    bool ignoreFiles = false;
    UniqueHandle wake{CreateEventW(nullptr, FALSE, FALSE, nullptr)};  // `folders` are others
    std::mutex lock;                                                  // for what follows
    std::vector<std::wstring> folders;                                // shown
};

// The notifications of the root. It outlives the wait for the system to give back the block that it writes into.
struct Listening {
    UniqueHandle root;
    UniqueHandle event{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    OVERLAPPED overlapped = {};
    std::unique_ptr<DWORD[]> block = std::make_unique<DWORD[]>(kBlock);
    bool waits = false;  // the system has the block
};

struct TreeWatcher {
    std::shared_ptr<WatchedTree> tree;
    std::unique_ptr<Listening> listening;
    std::map<std::wstring, std::uint64_t> times;  // of the shown folders
    bool tellsOfInner = false;                    // a notification about a name in an inner folder has come
    bool lost = false;                            // the root is not there
    TreeChanges changes;
    ULONGLONG firstChange = 0, lastChange = 0;  // 0: none
};

void NoteChange(TreeWatcher& watcher, const std::wstring* folder) {
    watcher.lastChange = GetTickCount64();
    if (watcher.firstChange == 0) watcher.firstChange = watcher.lastChange;
    std::vector<std::wstring>& folders = watcher.changes.folders;
    if (folder == nullptr || folders.size() >= kMostFolders)
        watcher.changes.all = true;
    else if (std::ranges::find(folders, *folder) == folders.end())
        folders.push_back(*folder);
}

// The time at which a name in the folder was last changed; 0 when it cannot be asked.
std::uint64_t TimeOf(const std::wstring& folder) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(PathExtended(folder).c_str(), GetFileExInfoStandard, &data) == FALSE) return 0;
    return (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) | data.ftLastWriteTime.dwLowDateTime;
}

// Asks for the next notification. False when the root cannot be listened to.
bool ListenOn(TreeWatcher& watcher) {
    Listening& listening = *watcher.listening;
    DWORD what = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME;
    if (watcher.tree->ignoreFiles) what |= FILE_NOTIFY_CHANGE_LAST_WRITE;
    ResetEvent(listening.event.Get());
    listening.overlapped = {};
    listening.overlapped.hEvent = listening.event.Get();
    listening.waits = ReadDirectoryChangesW(listening.root.Get(), listening.block.get(), kBlock * sizeof(DWORD), TRUE,
                                            what, nullptr, &listening.overlapped, nullptr) != FALSE;
    return listening.waits;
}

// Gives up the notifications. A block that the system does not give back at once is left to it.
void StopListening(TreeWatcher& watcher) {
    std::unique_ptr<Listening> listening = std::move(watcher.listening);
    if (listening == nullptr || !listening->waits) return;
    CancelIoEx(listening->root.Get(), &listening->overlapped);
    if (WaitForSingleObject(listening->event.Get(), 500) != WAIT_OBJECT_0) static_cast<void>(listening.release());
}

void StartListening(TreeWatcher& watcher) {
    StopListening(watcher);
    if (!PathAnswers(watcher.tree->root.c_str())) return;
    watcher.listening = std::make_unique<Listening>();
    watcher.listening->root.Reset(CreateFileW(PathExtended(watcher.tree->root).c_str(), FILE_LIST_DIRECTORY,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED,
                                              nullptr));
    if (!watcher.listening->root || !ListenOn(watcher)) watcher.listening.reset();
}

void TakeNotification(TreeWatcher& watcher, const FILE_NOTIFY_INFORMATION& entry) {
    const std::wstring name(entry.FileName, entry.FileNameLength / sizeof(wchar_t));
    const std::size_t slash = name.rfind(L'\\');
    watcher.tellsOfInner = watcher.tellsOfInner || slash != std::wstring::npos;
    const bool ignoreFile = FileNameOf(name) == kIgnoreFile;
    if (entry.Action == FILE_ACTION_MODIFIED && !ignoreFile) return;
    if (ignoreFile && watcher.tree->ignoreFiles) return NoteChange(watcher, nullptr);
    const std::wstring folder =
        slash == std::wstring::npos ? watcher.tree->root : TreeJoin(watcher.tree->root, name.substr(0, slash));
    NoteChange(watcher, &folder);
}

void TakeNotifications(TreeWatcher& watcher) {
    Listening& listening = *watcher.listening;
    listening.waits = false;
    DWORD length = 0;
    const bool good = GetOverlappedResult(listening.root.Get(), &listening.overlapped, &length, FALSE) != FALSE;
    if (!good || length == 0) NoteChange(watcher, nullptr);  // too much for the block, or the root is gone
    const auto* const block = reinterpret_cast<const std::byte*>(listening.block.get());
    for (std::size_t at = 0; good && length > 0;) {
        const auto& entry = *reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(block + at);
        TakeNotification(watcher, entry);
        if (entry.NextEntryOffset == 0) break;
        at += entry.NextEntryOffset;
    }
    if (!good || !ListenOn(watcher)) StopListening(watcher);
}

// Compares the times of the shown folders with those of the last look.
void LookAtTimes(TreeWatcher& watcher) {
    if (!PathAnswers(watcher.tree->root.c_str())) return;
    std::vector<std::wstring> folders;
    {
        const std::lock_guard lock(watcher.tree->lock);
        folders = watcher.tree->folders;
    }
    const bool lost = TimeOf(watcher.tree->root) == 0;
    if (lost != std::exchange(watcher.lost, lost)) NoteChange(watcher, nullptr);
    if (lost) return StopListening(watcher);
    if (watcher.listening == nullptr) StartListening(watcher);
    if (watcher.tellsOfInner && watcher.listening != nullptr) return watcher.times.clear();
    std::map<std::wstring, std::uint64_t> now;
    for (const std::wstring& folder : folders) {
        const std::uint64_t time = TimeOf(folder);
        const auto before = watcher.times.find(folder);
        if (before != watcher.times.end() && before->second != time) NoteChange(watcher, &folder);
        now[folder] = time;
    }
    watcher.times = std::move(now);
}

// Tells the changes once they have settled. Returns the milliseconds until that is to be tried again.
DWORD TellChanges(TreeWatcher& watcher) {
    if (watcher.firstChange == 0) return watcher.lost ? kLostMs : kPollMs;
    const ULONGLONG now = GetTickCount64();
    if (now - watcher.lastChange < kSettleMs && now - watcher.firstChange < kLongestMs) return kSettleMs;
    watcher.changes.number = watcher.tree->number;
    WorkerPost(watcher.tree->window, watcher.tree->message,
               std::make_unique<TreeChanges>(std::exchange(watcher.changes, {})));
    watcher.firstChange = 0;
    return kPollMs;
}

void WatchTree(TreeWatcher& watcher, const WorkerCancel& cancel) {
    StartListening(watcher);
    ULONGLONG looked = 0;
    while (!cancel.Asked()) {
        if (const ULONGLONG now = GetTickCount64(); now - looked >= kPollMs) {
            looked = now;
            LookAtTimes(watcher);
        }
        const DWORD wait = TellChanges(watcher);
        const HANDLE handles[] = {cancel.Event(), watcher.tree->wake.Get(),
                                  watcher.listening != nullptr ? watcher.listening->event.Get() : nullptr};
        const DWORD count = watcher.listening != nullptr ? 3 : 2;
        const DWORD signalled = WaitForMultipleObjects(count, handles, FALSE, wait);
        if (signalled == WAIT_OBJECT_0 + 1) looked = 0;  // from now on their times are compared
        if (signalled == WAIT_OBJECT_0 + 2) TakeNotifications(watcher);
        if (signalled == WAIT_FAILED) Sleep(kSettleMs);
    }
    StopListening(watcher);
}

struct TreeWatching {
    std::shared_ptr<WatchedTree> tree;
    Worker worker;
    std::uint64_t last = 0;
};
TreeWatching g_treeWatch;

}  // namespace

std::uint64_t TreeWatchStart(HWND window, UINT message, const std::wstring& root, bool ignoreFiles) {
    TreeWatchEnd();
    g_treeWatch.tree = std::make_shared<WatchedTree>();
    g_treeWatch.tree->number = ++g_treeWatch.last;
    g_treeWatch.tree->window = window;
    g_treeWatch.tree->message = message;
    g_treeWatch.tree->root = root;
    g_treeWatch.tree->ignoreFiles = ignoreFiles;
    TreeWatcher watcher;
    watcher.tree = g_treeWatch.tree;
    g_treeWatch.worker = WorkerStart<WatchTree>(std::move(watcher));
    if (!g_treeWatch.worker) {
        g_treeWatch.tree.reset();
        return 0;
    }
    WorkerLowerPriority(g_treeWatch.worker);
    return g_treeWatch.last;
}

void TreeWatchFolders(std::vector<std::wstring> folders) {
    if (g_treeWatch.tree == nullptr) return;
    {
        const std::lock_guard lock(g_treeWatch.tree->lock);
        if (g_treeWatch.tree->folders == folders) return;
        g_treeWatch.tree->folders = std::move(folders);
    }
    SetEvent(g_treeWatch.tree->wake.Get());
}

void TreeWatchEnd() {
    WorkerAskToEnd(g_treeWatch.worker);
    g_treeWatch.worker = {};
    g_treeWatch.tree.reset();
}
