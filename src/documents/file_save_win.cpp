// Saves one document under its own name or a new one, or all of them. The decisions are in save_rules and row_rules. UI
// thread.
#include "documents/file_commands.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "documents/file_dialogs.h"
#include "documents/file_work.h"
#include "documents/load_rules.h"
#include "documents/outside.h"
#include "documents/save_rules.h"
#include "editor/editor_pane.h"
#include "editor/theme.h"
#include "files/file_io.h"
#include "files/recovery.h"
#include "files/share_probe.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <atomic>
#include <cwchar>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

struct SaveState {
    bool saving = false;
    DocumentId failed = 0;  // the status bar says of this document that it was not saved
};
SaveState g_save;

// Allows one save at a time. A save may show a message box, whose message loop runs the auto-save timer; without this
// guard each tick would show another box.
class SaveGuard {
public:
    SaveGuard() : entered_(!g_save.saving) { g_save.saving = true; }
    ~SaveGuard() {
        if (entered_) g_save.saving = false;
    }
    SaveGuard(const SaveGuard&) = delete;
    SaveGuard& operator=(const SaveGuard&) = delete;
    bool Entered() const { return entered_; }

private:
    bool entered_;
};

// On the worker. Returns the system's error. The save goes on after one, because the new text matters more than the copy
// of the old one.
DWORD BackUp(const wchar_t* path, bool wanted) {
    if (!SaveMakesBackup(wanted, FileExists(path), RecoveryHasKept(path))) return 0;
    const std::wstring backup = std::wstring{path} + L".bak";
    return CopyFileW(PathExtended(path).c_str(), PathExtended(backup).c_str(), FALSE) != FALSE ? 0 : GetLastError();
}

Answer AskAboutAnsi(const wchar_t* label) {
    return AskUser({.caption = kProgramCaption,
                    .text = AnsiQuestion(label).c_str(),
                    .buttons = AskButtons::YesNoCancel,
                    .icon = AskIcon::Warning,
                    .inSelftest = Answer::Yes,
                    .yes = Text(L"Save as &UTF-8"),
                    .no = Text(L"Save as &ANSI"),
                    .loses = Answer::No});
}

struct EditorText {
    HeapBlock<char> bytes;  // null: the document is gone, or there was no memory
    std::size_t length = 0;

    std::string_view View() const { return {bytes.get(), length}; }
};

EditorText TakeText(DocumentId document) {
    EditorText text;
    const int tab = TabBarFindDocument(document);
    if (tab < 0 || TabAt(tab).editor == nullptr) return text;  // a file that could not be read has no text here
    text.bytes.reset(EditorPaneGetText(TabAt(tab).editor, &text.length));
    if (!text.bytes) AppLogMsg(L"FAIL: FileSave no memory for the text");
    return text;
}

// Returns what the user is told.
std::wstring NoteFailedSave(DocumentId document, const wchar_t* path, const SaveReport& report) {
    const std::wstring copy = RecoveryLastPath();
    AppLogMsg(L"FAIL: FileSave end=%d error=%lu path=%s", static_cast<int>(report.end), report.error, path);
    if (!copy.empty()) {
        AppLogMsg(L"FAIL: FileSave, the new text is kept in %s", copy.c_str());
        g_events.documentStatus(document, FormatW(Text(L"Not saved. The text is kept in %s"), copy.c_str()).c_str());
        g_save.failed = document;
    }
    const std::wstring reason = report.error != 0 ? SystemErrorText(report.error) : std::wstring{};
    return FailedSaveText(path, report, reason, copy);
}

// After a failed save of the document's own file. When that may be damaged now, undoing all changes does not make the
// document equal to it, so the document stays modified until a save succeeds.
void MarkUnsaved(int tab, const wchar_t* path, SaveEnd end, const FileState& found) {
    if (tab < 0 || !PathEqualsIgnoreCase(TabAt(tab).path, path)) return;
    DocumentTab& document = TabAt(tab);
    document.mustSave = document.mustSave || !FailedSaveKeptText(end, document.onDisk, found);
    document.modified = document.mustSave || SciSend(document.editor, SCI_GETMODIFY) != 0;
    // What the file is now comes from this save, so it is not compared.
    if (end == SaveEnd::NotWritten || end == SaveEnd::Different) document.onDisk = {};
    TabBarUpdateTitle(tab);
}

int SaveUnderNewName(DocumentId document);

// Asks in which form the file is written, and notes the answer in `binding`. The document may be gone afterwards.
FormChoice AskForm(DocumentId document, FileBinding& binding) {
    const int tab = TabBarFindDocument(document);
    const bool sameFile = tab >= 0 && PathEqualsIgnoreCase(TabAt(tab).path, binding.path);
    return ChooseForm(binding, sameFile, [](const FormQuestion& form) {
        return AskUser({.caption = kProgramCaption,
                        .text = form.text.c_str(),
                        .buttons = AskButtons::YesNoCancel,
                        .icon = AskIcon::Warning,
                        .inSelftest = Answer::Cancel,
                        .yes = form.yes.c_str(),
                        .no = form.no.c_str(),
                        .loses = Answer::No});
    });
}

// What the worker and the window share.
struct SaveJob {
    EditorText text;
    FileBinding binding;
    std::shared_ptr<FileProgress> progress = std::make_shared<FileProgress>();
    SaveReport report;
    std::atomic<bool> written = false;  // the file is saved, and `report` says so
    FileState expected;                 // the file, which is overwritten only while it is this; unknown: in any case
    FileState found;                    // what it was instead, when `refused`
    bool unasked = false;               // the save comes by itself
    bool refused = false;               // another program has changed the file, so nothing was written
    bool backUp = false;                // the setting
    DWORD backUpError = 0;
    bool ansiHolds = true;  // the ANSI code page has all characters
};

void LookAtCharacters(SaveJob& job) { job.ansiHolds = AnsiCanHold(job.text.View()); }

// Whether the text can be written with the encoding of the binding. A long one is looked at on a worker. False when the
// user has cancelled.
bool LookAtText(const std::shared_ptr<SaveJob>& job, ULONGLONG began) {
    if (job->binding.encoding != TextEncoding::Ansi) return true;
    if (static_cast<std::int64_t>(job->text.length) < kLargeFile) {
        LookAtCharacters(*job);
        return true;
    }
    const bool ended = FileWorkRun({.verb = Text(L"Saving"),
                                    .label = std::wstring{job->binding.label}.c_str(),
                                    .progress = job->progress,
                                    .work = [job] { LookAtCharacters(*job); },
                                    .began = began});
    return ended && !job->progress->cancel;
}

void SaveOnWorker(SaveJob& job) {
    const FileBinding& to = job.binding;
    if (job.expected.presence != FilePresence::Unknown) {
        job.found = FileStateToCompare(to.path, job.expected, [&job] { return job.progress->cancel.load(); });
        if (job.progress->cancel) job.report.end = SaveEnd::Cancelled;
        if (job.progress->cancel) return;
        job.refused = SaveMeetsChange(job.expected, job.found, job.unasked);
        if (job.refused) return;
    }
    job.backUpError = BackUp(to.path, job.backUp);
    WriteSourceFileFromEditor(to.path, job.text.bytes.get(), job.text.length, to.encoding, to.lineEnding, to.form,
                              &job.report, job.progress.get());
    job.written = job.report.end == SaveEnd::Saved;
}

// Writes the text on a worker. The document cannot be changed meanwhile, so that what was written is what it shows.
// False: the worker hangs and was left behind; nothing more is written then.
bool WriteOnWorker(DocumentId document, const std::shared_ptr<SaveJob>& job, ULONGLONG began) {
    job->backUp = g_settings.backupOnSave != 0;
    const HWND editor = TabAt(TabBarFindDocument(document)).editor;
    SciSend(editor, SCI_SETREADONLY, TRUE);
    const bool ended = FileWorkRun({.verb = Text(L"Saving"),
                                    .label = std::wstring{job->binding.label}.c_str(),
                                    .progress = job->progress,
                                    .work = [job] { SaveOnWorker(*job); },
                                    .began = began});
    if (TabBarFindEditor(editor) >= 0) SciSend(editor, SCI_SETREADONLY, FALSE);
    if (ended && job->backUpError != 0)
        AppLogMsg(L"FAIL: FileSave backup error=%lu path=%s.bak", job->backUpError, job->binding.path);
    return ended;
}

int TellCancelledSave(DocumentId document, const FileBinding& binding) {
    g_events.documentStatus(document,
                            FormatW(Text(L"Saving %s was cancelled; the file is as it was"), binding.label).c_str());
    return 0;
}

// After a save: the document belongs to the file, and is as it is there.
void NoteSaved(int tab, FileBinding binding, const FileState& onDisk) {
    const DocumentId document = TabAt(tab).id;
    // What the status bar says of this document is no longer true: the recovery copy is gone, the form is chosen.
    const bool failed = std::exchange(g_save.failed, 0) == document;
    if (failed || TabAt(tab).mustSave || SaveAsksAboutForm(TabAt(tab))) g_events.documentStatus(document, L"");
    binding.form.inexact = false;  // the file now holds what the text says
    binding.form.mixedBreaks = false;
    static_cast<FileBinding&>(TabAt(tab)) = binding;
    TabAt(tab).modified = false;
    TabAt(tab).mustSave = false;
    TabAt(tab).onDisk = onDisk;
    TabAt(tab).outside = {};
    const HWND editor = TabAt(tab).editor;
    SciSend(editor, SCI_SETSAVEPOINT);
    EditorPaneClearChangeMarks(editor);
    TabBarUpdateTitle(tab);
    g_events.documentSaved(document);
}

// How a save came about. Unasked: by itself, so it asks nothing and leaves out a document about which it would have to.
enum class SaveManner : std::uint8_t { Asked, Unasked };

// The file that a save expects under its name. A name that the user has just chosen may lead to any file.
FileState ExpectedFile(DocumentId document, const FileBinding& binding) {
    const DocumentTab& tab = TabAt(TabBarFindDocument(document));
    return tab.hasFile && PathEqualsIgnoreCase(tab.path, binding.path) ? tab.onDisk : FileState{};
}

// Takes the text and settles in which encoding it is written. Null when the user cancelled, or there is no text.
std::shared_ptr<SaveJob> PrepareSave(DocumentId document, FileBinding& binding, SaveManner manner, ULONGLONG* began) {
    auto job = std::make_shared<SaveJob>();
    job->binding = binding;
    job->unasked = manner == SaveManner::Unasked;
    job->text = TakeText(document);
    if (!job->text.bytes) return nullptr;
    if (!LookAtText(job, *began)) {
        TellCancelledSave(document, binding);
        return nullptr;
    }
    bool asked = false;
    const std::optional<TextEncoding> encoding = EncodingToSave(binding.encoding, job->ansiHolds, [&] {
        asked = true;
        return job->unasked ? Answer::Cancel : AskAboutAnsi(binding.label);
    });
    // Messages were handled while the box was open: the document may be gone or changed.
    if (asked) *began = GetTickCount64();
    if (asked) job->text = TakeText(document);
    if (!encoding || !job->text.bytes) return nullptr;
    job->binding.encoding = binding.encoding = *encoding;
    return job;
}

OutsideAnswer AskAboutChange(DocumentId document) {
    const DocumentTab& tab = TabAt(TabBarFindDocument(document));
    OutsideQuestion question{.caption = kProgramCaption,
                             .text = OutsideSaveText(tab.label),
                             .first = Text(L"&Overwrite"),
                             .second = Text(L"&Save As..."),
                             .later = Text(L"Cancel"),
                             .enterIsLater = true,
                             .inSelftest = OutsideAnswer::First,
                             .rows = {}};
    question.rows.push_back({.document = document, .label = tab.label, .path = tab.path, .what = {}});
    return OutsideDialogShow(question);
}

enum class SaveNext : std::uint8_t { Saved, NotSaved, Again, OtherName };

// Tells a failed save. Returns Again when the user chose `remedy`, the button that removes the cause.
SaveNext AskAboutRemedy(const std::wstring& told, const wchar_t* remedy) {
    const Answer answer = AskUser({.caption = kProgramCaption,
                                   .text = told.c_str(),
                                   .buttons = AskButtons::YesNoCancel,
                                   .icon = AskIcon::Error,
                                   .inSelftest = Answer::Cancel,
                                   .enterIsNo = true,
                                   .yes = remedy,
                                   .no = Text(L"Save &As...")});
    if (answer == Answer::Yes) return SaveNext::Again;
    return answer == Answer::No ? SaveNext::OtherName : SaveNext::NotSaved;
}

// A file that must not be written may be made writable, when the user says so.
SaveNext AskAboutReadOnly(const wchar_t* path, const std::wstring& told) {
    const SaveNext next = AskAboutRemedy(told, Text(L"&Make Writable and Save"));
    if (next != SaveNext::Again) return next;
    const std::wstring system = PathExtended(path);
    const DWORD attributes = GetFileAttributesW(system.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        SetFileAttributesW(system.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY)) != FALSE)
        return SaveNext::Again;
    ErrorMessage(Text(L"The file stays read-only: %s\n\n%s"), path, SystemErrorText(GetLastError()).c_str());
    return SaveNext::NotSaved;
}

// A folder that was deleted or renamed may be made again, when the user says so.
SaveNext AskAboutFolder(const wchar_t* path, const std::wstring& told) {
    const SaveNext next = AskAboutRemedy(told, Text(L"&Make Folder and Save"));
    if (next != SaveNext::Again) return next;
    return MakeFolder(FolderOf(path)) ? SaveNext::Again : SaveNext::NotSaved;
}

// After the file was written, or not.
SaveNext EndSave(DocumentId document, const SaveJob& job, const FileBinding& binding, bool ended) {
    const int tab = TabBarFindDocument(document);
    if (job.refused) return SaveNext::NotSaved;  // and the document is gone
    if ((!ended && !job.written) || (ended && job.report.end == SaveEnd::Cancelled)) {
        TellCancelledSave(document, binding);
        return SaveNext::NotSaved;
    }
    if (job.report.end != SaveEnd::Saved) {
        MarkUnsaved(tab, binding.path, job.report.end, job.found);
        const std::wstring told = NoteFailedSave(document, binding.path, job.report);
        if (job.report.end == SaveEnd::ReadOnly && !job.unasked) return AskAboutReadOnly(binding.path, told);
        if (job.report.end == SaveEnd::NoFolder && !job.unasked) return AskAboutFolder(binding.path, told);
        ErrorMessage(L"%s", told.c_str());
        return SaveNext::NotSaved;
    }
    if (tab < 0) return SaveNext::NotSaved;
    NoteSaved(tab, binding, job.report.state);
    return SaveNext::Saved;
}

// Writes the document to the file of `binding`, then binds the document to that file. When the save fails, the document
// keeps its old binding, so that the next save does not take an unfinished file for its own. Returns 1 or 0.
int SaveAsBound(DocumentId document, FileBinding binding, SaveManner manner) {
    const FormChoice choice = AskForm(document, binding);
    if (choice != FormChoice::Save || TabBarFindDocument(document) < 0)
        return choice == FormChoice::OtherName ? SaveUnderNewName(document) : 0;
    FileState expected = ExpectedFile(document, binding);
    for (;;) {
        ULONGLONG began = GetTickCount64();
        const auto job = PrepareSave(document, binding, manner, &began);
        if (job == nullptr || TabBarFindDocument(document) < 0) return 0;
        job->expected = expected;
        const bool ended = WriteOnWorker(document, job, began);
        if (!ended || !job->refused || TabBarFindDocument(document) < 0) {
            const SaveNext next = EndSave(document, *job, binding, ended);
            if (TabBarFindDocument(document) < 0) return 0;
            if (next == SaveNext::Again) continue;
            if (next == SaveNext::OtherName) return SaveUnderNewName(document);
            return next == SaveNext::Saved ? 1 : 0;
        }
        OutsideMark(TabBarFindDocument(document), job->found, manner == SaveManner::Asked);
        if (manner == SaveManner::Unasked) return 0;
        const OutsideAnswer answer = AskAboutChange(document);
        if (TabBarFindDocument(document) < 0 || answer == OutsideAnswer::Later) return 0;
        if (answer == OutsideAnswer::Second) return SaveUnderNewName(document);
        expected = job->found;  // what the user has said may be overwritten, and nothing newer
    }
}

// The folder of the file that was opened last in an earlier run. False when there is none, or it cannot be reached.
bool RecentFolder(wchar_t (&folder)[kPathCapacity]) {
    if (g_settings.mruCount < 1) return false;
    PathGetDir(g_settings.mruFiles[0], folder, kPathCapacity);
    return folder[0] != L'\0' && PathAnswers(folder) && DirectoryExists(folder);
}

// False when another document has the file, which the user is told.
bool IsFreeFor(DocumentId document, const wchar_t* path) {
    const int other = TabBarFindFile(path);
    if (other < 0 || TabAt(other).id == document) return true;
    ErrorMessage(Text(L"%s is open in another tab. Close it there first, or choose another name."), path);
    return false;
}

// Asks for the new name, and again when it cannot be used. False when the user cancelled.
bool AskNewPath(DocumentId document, wchar_t* out, std::size_t capacity) {
    const DocumentTab& tab = TabAt(TabBarFindDocument(document));
    std::wstring chosen = tab.hasFile ? tab.path : NameToPropose(tab.label);
    wchar_t directory[kPathCapacity] = {};
    if (g_documents.lastDirectory[0] != L'\0' || !RecentFolder(directory))
        FileOpenResolveInitialDirectory(directory, kPathCapacity);
    for (;;) {
        if (!AskSavePath(chosen, directory) || !PathNormalizeInput(chosen.c_str(), out, capacity)) return false;
        if (OfferFolder(FolderOf(out)) && IsFreeFor(document, out)) return true;
        if (TabBarFindDocument(document) < 0 || g_selftestTabsMode) return false;
        // What was typed is not typed again. The dialog takes no folder that is missing.
        chosen = FileNameOf(out);
        std::wstring folder = FolderOf(out);
        while (!DirectoryExists(folder.c_str()) && FolderOf(folder).size() < folder.size()) folder = FolderOf(folder);
        SafeCopyW(directory, folder);
    }
}

int SaveUnderNewName(DocumentId document) {
    wchar_t path[kPathCapacity] = {};
    if (TabBarFindDocument(document) < 0 || !AskNewPath(document, path, kPathCapacity) ||
        TabBarFindDocument(document) < 0)
        return 0;
    PathGetDir(path, g_documents.lastDirectory, kPathCapacity);
    const std::wstring before =
        TabAt(TabBarFindDocument(document)).hasFile ? TabAt(TabBarFindDocument(document)).path : L"";
    const FileBinding binding =
        BindingForNewName(path, TabAt(TabBarFindDocument(document)), EncodingOfNewFiles(g_settings));
    if (SaveAsBound(document, binding, SaveManner::Asked) == 0) return 0;
    if (!before.empty() && !PathEqualsIgnoreCase(before, path)) g_events.fileRenamed(before.c_str(), path, true);
    MruAddFile(path);
    const int tab = TabBarFindDocument(document);
    TabBarUpdateLineEnding(tab);
    const DocumentTab& saved = TabAt(tab);
    SyntaxThemeApply(saved.editor, saved.compilerId, saved.path);  // because the extension may mean another language
    return 1;
}

// False for a file that cannot be read: the document has no text that could be saved. Tries again, which tells the user.
bool HasText(int tab) {
    if (IsTabIndex(tab) && TabAt(tab).editor == nullptr) TabBarSelect(tab);
    return IsTabIndex(tab) && TabAt(tab).editor != nullptr;
}

}  // namespace

bool FileSaveHasFailed(DocumentId document) { return document != 0 && g_save.failed == document; }

int FileSave(int tab) {
    const SaveGuard guard;
    if (!guard.Entered() || !HasText(tab)) return 0;
    const DocumentTab& document = TabAt(tab);
    const bool named = document.hasFile && document.path[0] != L'\0';
    return named ? SaveAsBound(document.id, static_cast<const FileBinding&>(document), SaveManner::Asked)
                 : SaveUnderNewName(document.id);
}

int FileSaveUnasked(int tab) {
    const SaveGuard guard;
    if (!guard.Entered() || !IsTabIndex(tab)) return 0;
    const DocumentTab& document = TabAt(tab);
    if (!document.hasFile || SaveAsksAboutForm(document) || document.outside.kind != OutsideKind::None) return 0;
    // A share that went away would stop the user's work at every tick of the timer.
    if (document.editor == nullptr || !PathAnswers(document.path)) return 0;
    return SaveAsBound(document.id, static_cast<const FileBinding&>(document), SaveManner::Unasked);
}

int FileSaveAs(int tab) {
    const SaveGuard guard;
    return guard.Entered() && HasText(tab) ? SaveUnderNewName(TabAt(tab).id) : 0;
}

int FileSaveAll() {
    // Each document with a file is tried, even after a failure. Untitled documents follow until one of them is not
    // saved.
    bool files = true;
    for (const DocumentId document : DocumentsToSave(DocumentRowEntries(), true))
        files = FileSave(TabBarFindDocument(document)) != 0 && files;
    for (const DocumentId document : DocumentsToSave(DocumentRowEntries(), false)) {
        const int tab = TabBarFindDocument(document);
        TabBarSelect(tab);  // shows which document needs a name
        if (FileSave(tab) == 0) return 0;
    }
    return files ? 1 : 0;
}
