// Takes what the watch of files has seen into the documents, and asks about it. UI thread.
#include "documents/outside.h"

#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "documents/reload.h"
#include "editor/theme.h"
#include "files/file_watch.h"
#include "files/share_probe.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr UINT kTimerMs = 300;
constexpr UINT kReloadTimerMs = 10;   // while documents wait to be reloaded
constexpr ULONGLONG kReloadMs = 30;   // of reloads in a row, because each is on the UI thread and there may be hundreds
constexpr ULONGLONG kFirstMs = 1500;  // after the first document was opened, so that the start is not slower
// A question waits for a pause in the user's input, because it would take the keys that are meant for the text.
constexpr DWORD kPauseMs = 1000, kPauseOnReturnMs = 400;
// And for a pause in the changes, because a program that changes many files does not do it at once.
constexpr ULONGLONG kStillMs = 400, kMostStillMs = 3000;

struct OutsideState {
    bool timer = false;
    ULONGLONG renewAt = 0;  // tick count at which what is watched is renewed; 0: it is as it should be
    bool watches = false;
    bool pending = false;     // a document may have a change that the user does not know
    bool returned = false;    // the user came back to the program, and all files were looked at
    ULONGLONG firstSeen = 0;  // tick counts of the first and the last change of those that are pending
    ULONGLONG lastSeen = 0;
    std::uint64_t look = 0;  // that was asked for when he came back; 0: it was answered
    std::uint32_t stay = 1;  // counts how often he came back
    std::vector<DocumentId> toReload;
    bool reloads = false;  // a reload handles messages
};
OutsideState g_outside;

void StartOutsideTimer() {
    if (g_outside.timer) return;
    g_outside.timer = SetTimer(g_ui.hMainWnd, TIMER_OUTSIDE, kTimerMs, nullptr) != 0;
}

bool IsPending(const DocumentTab& tab) { return tab.outside.kind != OutsideKind::None && !tab.outside.asked; }

// The documents were not modified when they were chosen. The one that the user sees comes first.
void ReloadSoon(DocumentId document) {
    if (document == ActiveDocumentId())
        g_outside.toReload.insert(g_outside.toReload.begin(), document);
    else
        g_outside.toReload.push_back(document);
    g_outside.timer = SetTimer(g_ui.hMainWnd, TIMER_OUTSIDE, kReloadTimerMs, nullptr) != 0;
}

void ReloadNext() {
    const DocumentId document = g_outside.toReload.front();
    g_outside.toReload.erase(g_outside.toReload.begin());
    const int index = TabBarFindDocument(document);
    if (index < 0 || OutsideStepOf(TabAt(index).outside.kind, TabAt(index).modified, true) == OutsideStep::None) return;
    if (!TabAt(index).modified) {
        ReloadFromDisk(document, ReloadFailure::Status);
        return;
    }
    TabAt(index).outside.asked = false;  // edited since, so it is asked about
    g_outside.pending = true;
}

void ReloadSome() {
    if (g_outside.reloads || g_outside.toReload.empty() || FileWorkRuns()) return;
    g_outside.reloads = true;
    const ULONGLONG began = GetTickCount64();
    do ReloadNext();
    while (!g_outside.toReload.empty() && GetTickCount64() - began < kReloadMs);
    g_outside.reloads = false;
    if (g_outside.toReload.empty()) SetTimer(g_ui.hMainWnd, TIMER_OUTSIDE, kTimerMs, nullptr);
}

void RenewWatch() {
    std::vector<FileToWatch> files;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.hasFile && tab.onDisk.presence != FilePresence::Unknown)
            files.push_back({.id = tab.id, .path = tab.path, .known = tab.onDisk});
    FileWatchSet(g_ui.hMainWnd, MSG_OUTSIDE_SEEN, std::move(files));
    g_outside.renewAt = 0;
    g_outside.watches = true;
}

// --- What was seen

void SetUnsaved(DocumentTab& tab, bool unsaved) {
    tab.mustSave = unsaved;
    tab.modified = unsaved || SciSend(tab.editor, SCI_GETMODIFY) != 0;
}

// The file has the text that was last read or written.
void TakeBack(DocumentTab& tab, const FileState& now) {
    const ContentHash hash = tab.onDisk.hash;
    tab.onDisk = now;
    tab.onDisk.hash = hash;
    if (std::exchange(tab.outside, {}).madeUnsaved) SetUnsaved(tab, false);
}

// Within a stay the user is asked again only about a change that came after his answer, and never about a file that is
// being changed all the time.
void MarkChange(DocumentTab& tab, const FileState& now, const std::wstring& movedTo, bool restless) {
    const OutsideKind kind = OutsideKindOf(FileChangeOf(tab.onDisk, now), !movedTo.empty());
    tab.outside.kind = kind;
    tab.outside.now = now;
    tab.outside.movedTo = movedTo;
    tab.outside.asked = tab.outside.again = tab.askedIn == g_outside.stay && (restless || !tab.answered);
    g_outside.lastSeen = GetTickCount64();
    if (!std::exchange(g_outside.pending, true)) g_outside.firstSeen = g_outside.lastSeen;
    if (kind != OutsideKind::Gone && kind != OutsideKind::Moved) {
        // It is there again, so the document is not unsaved because of that any more.
        if (std::exchange(tab.outside.madeUnsaved, false)) SetUnsaved(tab, false);
        return;
    }
    // Nothing else has the text now, so closing the document has to ask.
    tab.onDisk.presence = FilePresence::Missing;
    tab.outside.madeUnsaved = tab.outside.madeUnsaved || !tab.mustSave;
    SetUnsaved(tab, true);
}

void TakeSeen(const SeenFile& seen) {
    const int index = TabBarFindDocument(seen.id);
    // The file may have been read, saved or renamed here since.
    if (index < 0 || TabAt(index).onDisk != seen.known || !PathEqualsIgnoreCase(TabAt(index).path, seen.path)) return;
    DocumentTab& tab = TabAt(index);
    const OutsideNews news = OutsideNewsOf(tab.onDisk, seen.now, tab.outside);
    switch (news) {
        case OutsideNews::Nothing: return;
        case OutsideNews::AsBefore:
        case OutsideNews::ReadOnly: TakeBack(tab, seen.now); break;
        case OutsideNews::Marked: MarkChange(tab, seen.now, seen.movedTo, seen.restless); break;
    }
    g_events.documentChanged(seen.id);
    if (news == OutsideNews::ReadOnly)
        g_events.documentNotice(seen.id, OutsideReadOnlyText(TabAt(index).label).c_str());
    OutsideOnDocuments();
}

// --- Asking

DWORD MillisecondsSinceInput() {
    LASTINPUTINFO input = {.cbSize = sizeof(LASTINPUTINFO), .dwTime = 0};
    return GetLastInputInfo(&input) != FALSE ? GetTickCount() - input.dwTime : kPauseMs;
}

// The text stays as it is here, and a save overwrites the file that was asked about, but nothing newer.
void KeepMine(int index, const FileState& askedAbout) {
    if (index < 0 || askedAbout.presence != FilePresence::There) return;
    DocumentTab& tab = TabAt(index);
    tab.onDisk = askedAbout;
    tab.outside = {};
    SetUnsaved(tab, true);
    TabBarUpdateTitle(index);
    OutsideOnDocuments();
}

void UseNewName(int index) {
    const std::wstring path = TabAt(index).outside.movedTo;
    DocumentTab& tab = TabAt(index);
    const std::wstring before = tab.path;
    SafeCopyW(tab.path, path.c_str());
    PathGetFile(tab.path, tab.label, kLabelCapacity);
    tab.onDisk.presence = FilePresence::There;
    if (std::exchange(tab.outside, {}).madeUnsaved) SetUnsaved(tab, false);
    SyntaxThemeApply(tab.editor, tab.compilerId, tab.path);
    TabBarUpdateTitle(index);
    g_events.fileRenamed(before.c_str(), path.c_str(), false);
    MruAddFile(path.c_str());
    OutsideOnDocuments();
}

bool MayUseNewName(const DocumentTab& tab) {
    return tab.outside.kind == OutsideKind::Moved && tab.outside.movedTo.size() < kPathCapacity &&
           TabBarFindPath(tab.outside.movedTo.c_str()) < 0;
}

void NoteAnswer(DocumentId document) {
    if (const int index = TabBarFindDocument(document); index >= 0) TabAt(index).answered = true;
}

OutsideRow RowOf(const DocumentTab& tab) {
    const bool changed = tab.outside.kind == OutsideKind::Changed || tab.outside.kind == OutsideKind::Replaced;
    // Whether the user has edited it; a lost file makes a document unsaved, too.
    const bool edited = tab.outside.madeUnsaved ? SciSend(tab.editor, SCI_GETMODIFY) != 0 : tab.modified;
    const bool moved = MayUseNewName(tab);
    return {.document = tab.id,
            .label = tab.label,
            .path = tab.path,
            .what = OutsideWhatText(tab.outside),
            .now = tab.outside.now,
            .modified = edited,
            .mayTick = changed || moved,
            .ticked = moved || (changed && !edited)};
}

void AskToReload(const DocumentTab& tab) {
    const DocumentId document = tab.id;
    OutsideQuestion question{.caption = kProgramCaption,
                             .text = OutsideReloadText(tab.label, tab.outside.kind, tab.modified),
                             .first = Text(L"&Reload"),
                             .second = Text(L"&Keep Mine"),
                             .later = Text(L"&Later"),
                             .enterIsLater = tab.modified,
                             .rows = {RowOf(tab)}};
    const OutsideAnswer answer = OutsideDialogShow(question);
    if (answer != OutsideAnswer::Later) NoteAnswer(document);
    switch (answer) {
        case OutsideAnswer::First: ReloadFromDisk(document, ReloadFailure::Box); break;
        case OutsideAnswer::Second: KeepMine(TabBarFindDocument(document), question.rows.front().now); break;
        case OutsideAnswer::Later: break;
    }
}

void AskAboutName(const DocumentTab& tab) {
    const DocumentId document = tab.id;
    const std::wstring path = tab.outside.movedTo;
    if (!MayUseNewName(tab)) return TellUser(kProgramCaption, OutsideGoneText(tab.label).c_str(), AskIcon::Warning);
    const Answer answer = AskUser({.caption = kProgramCaption,
                                   .text = OutsideMovedText(tab.label, std::wstring(FileNameOf(path))).c_str(),
                                   .buttons = AskButtons::YesNo,
                                   .icon = AskIcon::Question,
                                   .inSelftest = Answer::No,
                                   .yes = Text(L"&Use New Name"),
                                   .no = Text(L"&Keep Old Name")});
    const int index = TabBarFindDocument(document);
    if (answer == Answer::Yes && index >= 0 && TabAt(index).outside.movedTo == path && MayUseNewName(TabAt(index)))
        UseNewName(index);
}

void AskAboutOne(const DocumentTab& tab) {
    const DocumentId document = tab.id;
    switch (OutsideStepOf(tab.outside.kind, tab.modified, false)) {
        case OutsideStep::AskReload: return AskToReload(tab);
        case OutsideStep::AskName: AskAboutName(tab); break;
        case OutsideStep::Tell: TellUser(kProgramCaption, OutsideGoneText(tab.label).c_str(), AskIcon::Warning); break;
        case OutsideStep::Reload:
        case OutsideStep::None: break;
    }
    NoteAnswer(document);
}

void AskAboutMany(const std::vector<DocumentId>& documents) {
    std::vector<OutsideRow> rows;
    bool anyMoved = false;
    for (const DocumentId document : documents) {
        const DocumentTab& tab = TabAt(TabBarFindDocument(document));
        anyMoved = anyMoved || MayUseNewName(tab);
        rows.push_back(RowOf(tab));
    }
    OutsideQuestion question{.caption = kProgramCaption,
                             .text = OutsideListText(documents.size(), anyMoved),
                             .first = anyMoved ? Text(L"&Take Ticked") : Text(L"&Reload Ticked"),
                             .second = Text(L"&Keep All"),
                             .later = Text(L"&Later"),
                             .rows = std::move(rows)};
    const OutsideAnswer answer = OutsideDialogShow(question);
    if (answer == OutsideAnswer::Later) return;
    for (const OutsideRow& row : question.rows) {
        NoteAnswer(row.document);
        const int index = TabBarFindDocument(row.document);
        if (!row.mayTick || index < 0) continue;
        if (answer == OutsideAnswer::First && row.ticked && MayUseNewName(TabAt(index)))
            UseNewName(index);
        else if (answer == OutsideAnswer::First && row.ticked && !TabAt(index).modified)
            ReloadSoon(row.document);
        else if (answer == OutsideAnswer::First && row.ticked)
            ReloadFromDisk(row.document, ReloadFailure::Status);
        else
            KeepMine(index, row.now);
    }
}

// The documents with a change that the user does not know. He is asked about each at most once a stay.
std::vector<DocumentId> TakePending() {
    std::vector<DocumentId> documents;
    for (DocumentTab& tab : g_documents.tabs) {
        if (!IsPending(tab)) continue;
        tab.outside.asked = true;
        tab.askedIn = g_outside.stay;
        tab.answered = false;
        documents.push_back(tab.id);
    }
    return documents;
}

// What is reloaded without a question.
bool WasReloaded(DocumentId document, bool (*isOwn)(const std::wstring& path)) {
    const int index = TabBarFindDocument(document);
    DocumentTab& tab = TabAt(index);
    if (OutsideStepOf(tab.outside.kind, tab.modified, true) != OutsideStep::Reload) return false;
    if (g_settings.reloadChangedFiles == 0 && !(PathAnswers(tab.path) && isOwn(tab.path))) return false;
    tab.askedIn = 0;  // it was not asked about
    ReloadSoon(document);
    return true;
}

// What has changed again since the user was asked is another change.
void AskAgain(DocumentTab& tab) {
    if (!std::exchange(tab.outside.again, false)) return;
    tab.outside.asked = false;
    g_outside.pending = true;
    StartOutsideTimer();
}

}  // namespace

void OutsideOnDocuments() {
    if (g_outside.renewAt == 0) g_outside.renewAt = GetTickCount64() + (g_outside.watches ? kTimerMs : kFirstMs);
    StartOutsideTimer();
}

void OutsideOnTimer() {
    ReloadSome();
    if (g_outside.renewAt != 0 && GetTickCount64() >= g_outside.renewAt) RenewWatch();
    const bool waits = g_outside.renewAt != 0 || !g_outside.toReload.empty() ||
                       (g_outside.pending && std::ranges::any_of(g_documents.tabs, IsPending));
    if (waits || !std::exchange(g_outside.timer, false)) return;
    KillTimer(g_ui.hMainWnd, TIMER_OUTSIDE);
    g_outside.pending = false;
}

void OutsideOnSeen(WPARAM wParam) {
    const auto report = WorkerTake<std::unique_ptr<FileWatchReport>>(wParam);
    for (const SeenFile& seen : report->seen) TakeSeen(seen);
    if (g_outside.look != 0 && report->look >= g_outside.look) {
        g_outside.look = 0;
        g_outside.returned = std::ranges::any_of(g_documents.tabs, IsPending);
    }
    if (g_outside.pending) StartOutsideTimer();
}

void OutsideOnProgramActive() {
    ++g_outside.stay;
    for (DocumentTab& tab : g_documents.tabs) AskAgain(tab);
    if (g_outside.watches) g_outside.look = FileWatchLookNow();
}

void OutsideOnDocumentActive() {
    static DocumentId last = 0;
    const DocumentId now = ActiveDocumentId();
    if (std::exchange(last, now) == now || now == 0) return;
    if (std::erase(g_outside.toReload, now) != 0) ReloadSoon(now);
    TabAt(g_documents.activeTab).askedIn = 0;
    AskAgain(TabAt(g_documents.activeTab));
}

bool OutsideWantsToAsk() {
    // A minimised frame may still be the foreground window, and its question would be behind it when it comes back.
    if (!g_outside.pending || GetForegroundWindow() != g_ui.hMainWnd || IsIconic(g_ui.hMainWnd) != FALSE) return false;
    if (MillisecondsSinceInput() < (g_outside.returned ? kPauseOnReturnMs : kPauseMs)) return false;
    const ULONGLONG now = GetTickCount64();
    if (now - g_outside.lastSeen < kStillMs && now - g_outside.firstSeen < kMostStillMs) return false;
    if (g_outside.returned) return std::ranges::any_of(g_documents.tabs, IsPending);
    return IsTabIndex(g_documents.activeTab) && IsPending(TabAt(g_documents.activeTab));
}

void OutsideAsk(bool (*isOwn)(const std::wstring& path)) {
    g_outside.returned = false;
    std::vector<DocumentId> documents = TakePending();
    std::erase_if(documents, [isOwn](DocumentId document) { return WasReloaded(document, isOwn); });
    if (documents.size() == 1)
        AskAboutOne(TabAt(TabBarFindDocument(documents.front())));
    else if (!documents.empty())
        AskAboutMany(documents);
}

void OutsideMark(int index, const FileState& now, bool asked) {
    if (!IsTabIndex(index)) return;
    DocumentTab& tab = TabAt(index);
    if (OutsideKindOf(FileChangeOf(tab.onDisk, now), false) == OutsideKind::None) return;
    MarkChange(tab, now, {}, false);
    tab.outside.asked = tab.outside.asked || asked;
    g_events.documentChanged(tab.id);
    OutsideOnDocuments();
}

void OutsideEnd() {
    FileWatchEnd();
    if (std::exchange(g_outside.timer, false)) KillTimer(g_ui.hMainWnd, TIMER_OUTSIDE);
}
