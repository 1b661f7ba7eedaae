// The thread that watches files. All file calls are on it; what it shares with the UI thread is WatchBoard.
#include "files/file_watch.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/worker.h"
#include "files/file_io.h"
#include "files/settling.h"
#include "files/share_probe.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace {

constexpr std::size_t kMostFolders = 60;  // WaitForMultipleObjects takes 64 handles
constexpr ULONGLONG kPollMs = 3000;       // between two looks at a file whose folder does not tell
constexpr ULONGLONG kRareMs = 10000;      // and at one whose folder does
constexpr ULONGLONG kAgainMs = 100;       // between two looks at a file that has not settled
constexpr std::size_t kLooksInTurn = 2;   // a look at hundreds of files leaves the disk to others in between
constexpr DWORD kBetweenTurnsMs = 10;
constexpr std::size_t kMostEntries = 20000;  // of a folder in which a renamed file is looked for
constexpr DWORD kWhatTells = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_SIZE |
                             FILE_NOTIFY_CHANGE_ATTRIBUTES;

struct WatchBoard {
    std::mutex lock;  // for the fields up to `look`
    std::vector<FileToWatch> files;
    bool filesAreNew = false;
    std::uint64_t look = 0;  // the last one that was asked for
    UniqueHandle wake{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    HWND window = nullptr;
    UINT message = 0;
};

struct NotificationTraits {
    using Type = HANDLE;
    static bool IsOpen(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { FindCloseChangeNotification(handle); }
};
using UniqueNotification = UniqueResource<NotificationTraits>;

struct FileUnderWatch {
    FileToWatch file;
    std::wstring folder;
    bool remote = false;
    ULONGLONG due = 0;
    Settling settling;
    std::optional<FileState> reported;
};

struct WatchThread {
    std::shared_ptr<WatchBoard> board;
    std::vector<FileUnderWatch> files;
    std::map<std::wstring, UniqueNotification> folders;
    std::uint64_t look = 0;  // that is being answered
    bool answers = false;
};

std::function<bool()> StopOf(const WorkerCancel& cancel) {
    return [&cancel] { return cancel.Asked(); };
}

bool IsWatched(const WatchThread& watch, const FileUnderWatch& file) {
    const auto folder = watch.folders.find(file.folder);
    return folder != watch.folders.end() && folder->second;
}

// The new path of a file that is gone, when it is still in its folder.
std::wstring NewNameOf(const FileToWatch& file, const std::wstring& folder) {
    const UniqueHandle opened{CreateFileW(PathForSystem(folder.c_str()).c_str(), FILE_LIST_DIRECTORY,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)};
    alignas(8) char block[1 << 14];
    for (std::size_t seen = 0; opened && file.known.identity.IsKnown() && seen < kMostEntries;) {
        if (GetFileInformationByHandleEx(opened.Get(), FileIdBothDirectoryInfo, block, sizeof block) == FALSE) break;
        for (const char* at = block;;) {
            const auto& entry = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(at);
            ++seen;
            // The number alone may be that of a new file by now.
            if (static_cast<std::uint64_t>(entry.FileId.QuadPart) == file.known.identity.low &&
                static_cast<std::uint64_t>(entry.LastWriteTime.QuadPart) == file.known.written &&
                static_cast<std::uint64_t>(entry.EndOfFile.QuadPart) == file.known.size)
                return folder + (folder.ends_with(L'\\') ? L"" : L"\\") +
                       std::wstring(entry.FileName, entry.FileNameLength / sizeof(wchar_t));
            if (entry.NextEntryOffset == 0) break;
            at += entry.NextEntryOffset;
        }
    }
    return {};
}

// Looks at one file. Returns what is to be reported.
std::optional<SeenFile> LookAt(FileUnderWatch& watched, bool folderTells, const WorkerCancel& cancel) {
    const FileToWatch& file = watched.file;
    const ULONGLONG time = GetTickCount64();
    watched.due = time + (folderTells ? kRareMs : kPollMs);
    if (watched.remote && !PathAnswers(file.path.c_str())) return std::nullopt;
    FileState now = FileStateOf(file.path.c_str());
    if (now.presence == FilePresence::Unknown) {  // for a moment, while the system deletes it
        if (watched.settling.began == 0) return std::nullopt;
        if (time - watched.settling.began < kRestlessMs)
            watched.due = time + kAgainMs;
        else
            watched.settling = {};
        return std::nullopt;
    }
    if (FileLooksSame(file.known, now)) {
        watched.settling = {};
        if (!std::exchange(watched.reported, std::nullopt)) return std::nullopt;
        return SeenFile{.id = file.id, .known = file.known, .now = file.known, .movedTo = {}, .path = file.path};
    }
    if (watched.reported && FileLooksSame(*watched.reported, now)) {
        watched.settling = {};
        return std::nullopt;
    }
    if (!SettlingTake(watched.settling, now, time)) {
        watched.due = time + kAgainMs;
        return std::nullopt;
    }
    const bool restless = time - watched.settling.lastMoved < kSettleMs;
    watched.settling = {};
    now = FileStateToCompare(file.path.c_str(), file.known, StopOf(cancel));
    watched.reported = now;
    const bool gone = now.presence == FilePresence::Missing && !watched.remote;
    return SeenFile{.id = file.id,
                    .known = file.known,
                    .now = now,
                    .movedTo = gone ? NewNameOf(file, watched.folder) : std::wstring{},
                    .path = file.path,
                    .restless = restless};
}

// Opens what tells of the changes in the folders of the files, and closes the rest.
void WatchFolders(WatchThread& watch) {
    std::map<std::wstring, UniqueNotification> folders;
    for (const FileUnderWatch& file : watch.files) {
        if (file.remote || folders.contains(file.folder) || folders.size() >= kMostFolders) continue;
        const auto old = watch.folders.find(file.folder);
        UniqueNotification& now = folders[file.folder];
        if (old != watch.folders.end())
            now = std::move(old->second);
        else
            now.Reset(FindFirstChangeNotificationW(PathForSystem(file.folder.c_str()).c_str(), FALSE, kWhatTells));
    }
    watch.folders = std::move(folders);
}

void TakeFiles(WatchThread& watch, std::vector<FileToWatch> files) {
    std::vector<FileUnderWatch> now;
    for (FileToWatch& file : files) {
        const auto old = std::ranges::find(watch.files, file, &FileUnderWatch::file);
        if (old != watch.files.end()) {
            now.push_back(std::move(*old));
            old->file = {};
            continue;
        }
        FileUnderWatch& added = now.emplace_back();
        added.folder = FolderOf(file.path);
        added.remote = PathIsRemote(file.path.c_str());
        added.file = std::move(file);
    }
    watch.files = std::move(now);
    // Those on the network are looked at last, because they may keep the thread waiting.
    std::stable_partition(watch.files.begin(), watch.files.end(),
                          [](const FileUnderWatch& file) { return !file.remote; });
    WatchFolders(watch);
}

void TakeOrders(WatchThread& watch) {
    std::optional<std::vector<FileToWatch>> files;
    std::uint64_t look = 0;
    {
        const std::lock_guard lock(watch.board->lock);
        if (std::exchange(watch.board->filesAreNew, false)) files = watch.board->files;
        look = watch.board->look;
    }
    if (files) TakeFiles(watch, std::move(*files));
    if (look == watch.look) return;
    watch.look = look;
    watch.answers = true;
    for (FileUnderWatch& file : watch.files) file.due = 0;
}

void LookAtDueFiles(WatchThread& watch, const WorkerCancel& cancel) {
    auto report = std::make_unique<FileWatchReport>();
    bool settling = false;
    std::size_t looks = 0;
    for (FileUnderWatch& file : watch.files) {
        if (file.due <= GetTickCount64()) {
            const bool pauses = looks != 0 && looks % kLooksInTurn == 0;
            if (WaitForSingleObject(cancel.Event(), pauses ? kBetweenTurnsMs : 0) == WAIT_OBJECT_0) return;
            ++looks;
            if (std::optional<SeenFile> seen = LookAt(file, IsWatched(watch, file), cancel))
                report->seen.push_back(std::move(*seen));
        }
        settling = settling || file.settling.began != 0;
    }
    const bool answered = watch.answers && !settling;
    if (report->seen.empty() && !answered) return;
    if (answered) watch.answers = false;
    report->look = answered ? watch.look : 0;
    WorkerPost(watch.board->window, watch.board->message, std::move(report));
}

DWORD TimeUntilDue(const WatchThread& watch) {
    ULONGLONG due = GetTickCount64() + kRareMs;
    for (const FileUnderWatch& file : watch.files) due = std::min(due, file.due);
    const ULONGLONG now = GetTickCount64();
    return watch.files.empty() ? INFINITE : due > now ? static_cast<DWORD>(due - now) : 0;
}

// A folder has told: its files are looked at, but not more often than it pays while something writes there all the time.
void OnFolderChanged(WatchThread& watch, const std::wstring& folder) {
    UniqueNotification& notification = watch.folders[folder];
    if (FindNextChangeNotification(notification.Get()) == FALSE) notification.Reset();
    const ULONGLONG soon = GetTickCount64() + kAgainMs;
    for (FileUnderWatch& file : watch.files)
        if (file.folder == folder) file.due = std::min(file.due, soon);
}

void WatchWork(WatchThread& watch, const WorkerCancel& cancel) {
    while (!cancel.Asked()) {
        TakeOrders(watch);
        LookAtDueFiles(watch, cancel);
        std::vector<HANDLE> handles = {cancel.Event(), watch.board->wake.Get()};
        std::vector<const std::wstring*> folders;
        for (const auto& [folder, notification] : watch.folders)
            if (notification) {
                handles.push_back(notification.Get());
                folders.push_back(&folder);
            }
        const DWORD signalled =
            WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE, TimeUntilDue(watch));
        if (signalled == WAIT_FAILED) {  // one of them is of no use any more; the poll does without them
            for (auto& [folder, notification] : watch.folders) notification.Reset();
            Sleep(kAgainMs);
        }
        if (signalled >= WAIT_OBJECT_0 + 2 && signalled < WAIT_OBJECT_0 + handles.size())
            OnFolderChanged(watch, *folders[signalled - WAIT_OBJECT_0 - 2]);
    }
}

struct Watching {
    std::shared_ptr<WatchBoard> board;
    Worker worker;
};
Watching g_watching;

}  // namespace

void FileWatchSet(HWND window, UINT message, std::vector<FileToWatch> files) {
    if (g_watching.board == nullptr) {
        if (files.empty()) return;
        g_watching.board = std::make_shared<WatchBoard>();
        g_watching.board->window = window;
        g_watching.board->message = message;
        g_watching.worker = WorkerStart<WatchWork>(WatchThread{.board = g_watching.board});
        if (!g_watching.worker) return g_watching.board.reset();
        WorkerLowerPriority(g_watching.worker);
    }
    {
        const std::lock_guard lock(g_watching.board->lock);
        if (g_watching.board->files == files) return;
        g_watching.board->files = std::move(files);
        g_watching.board->filesAreNew = true;
    }
    SetEvent(g_watching.board->wake.Get());
}

std::uint64_t FileWatchLookNow() {
    if (g_watching.board == nullptr) return 0;
    std::uint64_t look = 0;
    {
        const std::lock_guard lock(g_watching.board->lock);
        look = ++g_watching.board->look;
    }
    SetEvent(g_watching.board->wake.Get());
    return look;
}

void FileWatchEnd() {
    WorkerAskToEnd(g_watching.worker);
    if (g_watching.board != nullptr)
        WorkerDropPosts<std::unique_ptr<FileWatchReport>>(g_watching.board->window, g_watching.board->message);
    g_watching = {};
}
