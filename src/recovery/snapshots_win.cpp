#include "recovery/snapshots.h"

#include "base/log.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "recovery/run_folder.h"
#include "recovery/snapshot_note.h"
#include "recovery/text_snapshot.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t kPiece = 1 << 18;  // bytes copied at once, which takes a fraction of a millisecond
constexpr UINT kWaitMs = 250, kCopyMs = 15;
constexpr unsigned kMoveMs = 1000;  // for a program that reads the text that is kept
constexpr DWORD kEndMs = 3000;      // at the end of the program, for a text that is being written

// What is kept of one document.
struct Kept {
    DocumentId document = 0;
    std::uint32_t number = 0;   // of its files
    std::uint64_t edits = 0;    // of its text
    std::uint64_t writing = 0;  // `edits` when the text that is being written was complete
    std::uint64_t written = 0;  // the same of the text that is kept; 0: none is
    bool copying = false;       // `copy` is being filled
    bool inWorker = false;
    TextSnapshot copy;
    SnapshotTimes times;
    std::wstring path;                // of the text; empty until the first is written
    std::vector<std::wstring> older;  // files of an earlier run with the same text
};

struct SnapshotState {
    std::vector<std::unique_ptr<Kept>> kept;
    std::vector<std::wstring> unwanted;  // paths of texts that a worker was still writing when they were given up
    RunFolder folder;
    Worker worker;  // the last one; at most one runs
    std::uint32_t next = 1;
    UINT timer = 0;  // its interval; 0: it does not run
    bool told = false;
};
SnapshotState g_snapshots;

struct SnapshotWrite {
    HWND window = nullptr;
    std::uint32_t number = 0;
    std::wstring path;
    std::string note;
    std::vector<std::string> pieces;
};
struct SnapshotEnd {
    std::uint32_t number = 0;
    std::wstring path;
    DWORD error = 0;
    ULONGLONG took = 0;  // ms
};

void DeleteSnapshot(const std::wstring& path) {
    DeleteFileW(PathForSystem(path.c_str()).c_str());
    DeleteFileW(PathForSystem((path + kSnapshotNoteEnd).c_str()).c_str());
}

DWORD WriteFlushed(const std::wstring& path, const std::vector<std::string>& pieces) {
    const UniqueHandle file{CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                        CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (!file) return GetLastError();
    for (const std::string& piece : pieces) {
        DWORD count = 0;
        if (WriteFile(file.Get(), piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr) == FALSE)
            return GetLastError();
        if (count != piece.size()) return ERROR_DISK_FULL;
    }
    return FlushFileBuffers(file.Get()) != FALSE ? 0 : GetLastError();
}

// Replaces the snapshot at `path`, which is whole at every instant: the new text is written beside it first. Returns the
// system's error.
DWORD WriteSnapshot(const std::wstring& path, const std::string& note, const std::vector<std::string>& pieces) {
    const std::wstring fresh = path + L".new";
    DWORD error = WriteFlushed(path + kSnapshotNoteEnd, {note});
    if (error == 0) error = WriteFlushed(fresh, pieces);
    if (error == 0 && !MoveInPlace(PathForSystem(fresh.c_str()), PathForSystem(path.c_str()), kMoveMs))
        error = GetLastError();
    if (error != 0) DeleteFileW(PathForSystem(fresh.c_str()).c_str());
    return error;
}

void SnapshotWork(SnapshotWrite& request, const WorkerCancel&) {
    const ULONGLONG began = GetTickCount64();
    auto end = std::make_unique<SnapshotEnd>();
    end->error = WriteSnapshot(request.path, request.note, request.pieces);
    end->number = request.number;
    end->path = request.path;
    end->took = GetTickCount64() - began;
    WorkerPost(request.window, MSG_SNAPSHOT_WRITTEN, std::move(end));
}

Kept* KeptOf(DocumentId document) {
    for (const auto& kept : g_snapshots.kept)
        if (kept->document == document) return kept.get();
    return nullptr;
}

bool IsUnsaved(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    return tab >= 0 && TabAt(tab).modified;
}

void SetSnapshotTimer(UINT interval) {
    if (g_snapshots.timer == interval) return;
    if (interval == 0)
        KillTimer(g_ui.hMainWnd, TIMER_SNAPSHOTS);
    else if (SetTimer(g_ui.hMainWnd, TIMER_SNAPSHOTS, interval, nullptr) == 0)
        interval = 0;
    g_snapshots.timer = interval;
}

bool HaveFolder() {
    if (g_snapshots.folder.path.empty()) g_snapshots.folder = RunFolderCreate();
    return !g_snapshots.folder.path.empty();
}

// Says once that the text cannot be kept, because the user would rely on it.
void TellNotKept(DWORD error) {
    AppLogMsg(L"FAIL: unsaved text could not be kept, error=%lu", error);
    if (std::exchange(g_snapshots.told, true)) return;
    const std::wstring why = error != 0 ? L": " + SystemErrorText(error) : std::wstring(L"");
    g_events.statusText(TextWith(L"Unsaved text cannot be kept for a recovery{1}", {why}).c_str());
}

std::string NoteOf(const DocumentTab& tab) {
    return SnapshotNoteText({.path = tab.path,
                             .label = tab.label,
                             .encoding = tab.encoding,
                             .lineEnding = tab.lineEnding,
                             .caret = static_cast<std::uint64_t>(SciSend(tab.editor, SCI_GETCURRENTPOS)),
                             .file = tab.onDisk});
}

std::wstring PathOf(const Kept& kept, const DocumentTab& tab) {
    return kept.path.empty() ? g_snapshots.folder.path + SnapshotName(tab.label, kept.number) : kept.path;
}

// Copies the next piece. False when all of the text is copied.
bool CopyNext(Kept& kept, HWND editor) {
    const auto length = static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH));
    const std::size_t from = kept.copy.Copied();
    if (from >= length) return false;
    std::string piece(std::min(kPiece, length - from) + 1, '\0');  // Scintilla adds a NUL
    Sci_TextRangeFull range = {{static_cast<Sci_Position>(from), static_cast<Sci_Position>(from + piece.size() - 1)},
                               piece.data()};
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    piece.pop_back();
    kept.copy.Take(std::move(piece));
    return kept.copy.Copied() < length;
}

void BeginWriting(Kept& kept, const DocumentTab& tab) {
    SnapshotWrite request{.window = g_ui.hMainWnd,
                          .number = kept.number,
                          .path = PathOf(kept, tab),
                          .note = NoteOf(tab),
                          .pieces = kept.copy.Release()};
    kept.copying = false;
    kept.path = request.path;
    kept.writing = kept.edits;
    g_snapshots.worker = WorkerStart<SnapshotWork>(std::move(request));
    kept.inWorker = static_cast<bool>(g_snapshots.worker);
    if (!kept.inWorker) kept.times.written = GetTickCount64(), kept.times.failed = true;
}

void DeleteAll(std::vector<std::wstring>& files) {
    for (const std::wstring& file : std::exchange(files, {})) DeleteFileW(PathForSystem(file.c_str()).c_str());
}

void Forget(DocumentId document) {
    std::erase_if(
        g_snapshots.kept,
        [document](const auto& kept) {
            if (kept->document != document) return false;
            if (kept->inWorker)
                g_snapshots.unwanted.push_back(kept->path);
            else if (!kept->path.empty())
                DeleteSnapshot(kept->path);
            DeleteAll(kept->older);
            return true;
        });
}

Kept& KeptFrom(DocumentId document) {
    if (Kept* const kept = KeptOf(document); kept != nullptr) return *kept;
    Kept& added = *g_snapshots.kept.emplace_back(std::make_unique<Kept>());
    added.document = document;
    added.number = g_snapshots.next++;
    return added;
}

// The text is another than the one that is kept.
void NoteEdit(Kept& kept) {
    const ULONGLONG now = GetTickCount64();
    // An edit behind the copied part of a text that is being copied is in the copy, too.
    if (kept.edits == std::max(kept.written, kept.writing)) kept.times.firstEdit = now;
    kept.times.lastEdit = now;
    ++kept.edits;
    if (g_snapshots.timer == 0) SetSnapshotTimer(kWaitMs);
}

bool IsKept(const Kept& kept) { return kept.written == kept.edits; }

}  // namespace

void SnapshotsOnModified(DocumentId document, const SCNotification& change) {
    const bool inserted = (change.modificationType & SC_MOD_INSERTTEXT) != 0;
    if (!inserted && (change.modificationType & SC_MOD_DELETETEXT) == 0) return;
    if (g_selftestTabsMode) return;
    Kept& kept = KeptFrom(document);
    if (kept.copying && inserted)
        kept.copy.Inserted(static_cast<std::size_t>(change.position),
                           {change.text, static_cast<std::size_t>(change.length)});
    else if (kept.copying)
        kept.copy.Removed(static_cast<std::size_t>(change.position), static_cast<std::size_t>(change.length));
    NoteEdit(kept);
}

void SnapshotsOnChanged(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0) return;
    if (!TabAt(tab).modified) return Forget(document);
    // The text may be nowhere else, although nobody has typed: its file was deleted, or a save of it failed.
    if (TabAt(tab).mustSave && !g_selftestTabsMode && KeptOf(document) == nullptr) NoteEdit(KeptFrom(document));
}

void SnapshotsOnTextArrived(DocumentId document) { Forget(document); }

void SnapshotsOnClosed(DocumentId document) { Forget(document); }

void SnapshotsOnTimer() {
    const ULONGLONG now = GetTickCount64();
    const bool busy = std::ranges::any_of(g_snapshots.kept, &Kept::inWorker) || !g_snapshots.unwanted.empty();
    bool waits = false;
    for (const auto& kept : g_snapshots.kept) {
        const int tab = TabBarFindDocument(kept->document);
        if (tab < 0 || !TabAt(tab).modified || IsKept(*kept)) continue;
        waits = true;
        if (busy || (!kept->copying && !SnapshotIsDue(kept->times, now))) continue;
        if (g_snapshots.folder.path.empty() && HaveFolder()) return SetSnapshotTimer(kCopyMs);  // takes its time, too
        if (!HaveFolder()) {
            kept->times = {.firstEdit = now, .lastEdit = now, .written = now, .failed = true};
            TellNotKept(GetLastError());
            continue;
        }
        if (!std::exchange(kept->copying, true)) kept->copy.Release();
        if (!CopyNext(*kept, TabAt(tab).editor)) BeginWriting(*kept, TabAt(tab));
        return SetSnapshotTimer(kCopyMs);  // one document after the other
    }
    SetSnapshotTimer(waits ? kWaitMs : 0);
}

void SnapshotsOnWritten(WPARAM wParam) {
    const auto end = WorkerTake<std::unique_ptr<SnapshotEnd>>(wParam);
    if (std::erase(g_snapshots.unwanted, end->path) > 0) return DeleteSnapshot(end->path);
    for (const auto& kept : g_snapshots.kept) {
        if (kept->number != end->number) continue;
        kept->inWorker = false;
        kept->times.written = GetTickCount64();
        kept->times.cost = end->took;
        kept->times.failed = end->error != 0;
        if (end->error != 0) return TellNotKept(end->error);
        kept->written = kept->writing;
        DeleteAll(kept->older);
        return;
    }
}

int SnapshotsWriteNow() {
    WorkerWait(g_snapshots.worker, kEndMs);
    int count = 0;
    for (const auto& kept : g_snapshots.kept) {
        const int tab = TabBarFindDocument(kept->document);
        if (tab < 0 || !TabAt(tab).modified) continue;
        ++count;
        if (IsKept(*kept) || !HaveFolder()) continue;
        const HWND editor = TabAt(tab).editor;
        std::vector<std::string> text{
            std::string(reinterpret_cast<const char*>(SciSend(editor, SCI_GETCHARACTERPOINTER)),
                        static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)))};
        kept->path = PathOf(*kept, TabAt(tab));
        if (WriteSnapshot(kept->path, NoteOf(TabAt(tab)), text) == 0) kept->written = kept->edits;
    }
    return count;
}

void SnapshotsTakeOver(DocumentId document, std::vector<std::wstring> files) {
    Kept* kept = KeptOf(document);
    if (kept != nullptr && IsUnsaved(document))
        kept->older.insert(kept->older.end(), files.begin(), files.end());
    else
        DeleteAll(files);
}

void SnapshotsEnd() {
    SetSnapshotTimer(0);
    WorkerWait(g_snapshots.worker, kEndMs);
    WorkerDropPosts<std::unique_ptr<SnapshotEnd>>(g_ui.hMainWnd, MSG_SNAPSHOT_WRITTEN);
    for (const auto& kept : g_snapshots.kept) {
        if (!kept->path.empty()) DeleteSnapshot(kept->path);
        DeleteAll(kept->older);
    }
    for (const std::wstring& path : g_snapshots.unwanted) DeleteSnapshot(path);
    g_snapshots.kept.clear();
    g_snapshots.unwanted.clear();
    RunFolderRelease(g_snapshots.folder);
}

const std::wstring& SnapshotsFolder() { return g_snapshots.folder.path; }
