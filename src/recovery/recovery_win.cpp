#include "recovery/recovery.h"

#include "base/bounded_text.h"
#include "base/events.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/caret_place.h"
#include "editor/text_change.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "recovery/crash.h"
#include "recovery/leftovers.h"
#include "recovery/recovery_dialog.h"
#include "recovery/snapshots.h"
#include "scintilla/sci.h"
#include "ui/message.h"

#include <algorithm>
#include <string>

namespace {

// A document that holds the text and is not saved.
int NewDocumentWith(const std::wstring& label, const SnapshotNote& note, const std::string& text) {
    const int tab = TabBarAdd(L"", label.c_str());
    if (tab < 0) return -1;
    TabAt(tab).mustSave = true;  // before the text comes: the end of an undo is no saved state either
    SciSend(TabAt(tab).editor, SCI_ADDTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    SciSend(TabAt(tab).editor, SCI_EMPTYUNDOBUFFER);
    TabAt(tab).modified = true;
    TabAt(tab).encoding = note.encoding;
    TabAt(tab).lineEnding = note.lineEnding;
    TabBarUpdateLineEnding(tab);
    TabBarUpdateTitle(tab);
    return tab;
}

// The file is gone: a save writes it again.
int NewDocumentOf(const SnapshotNote& note, const std::string& text) {
    const int tab = NewDocumentWith(note.label, note, text);
    if (tab < 0) return -1;
    DocumentTab& document = TabAt(tab);
    if (!note.path.empty()) {
        SafeCopyW(document.path, note.path);
        document.hasFile = true;
    }
    TabBarUpdateTitle(tab);
    return tab;
}

// Another program has changed the file since the text was made from it: that is noticed, and asked about at a save, as a
// change that comes now.
void NoteOlderFile(DocumentTab& document, const FileState& madeFrom) {
    FileState& known = document.onDisk;
    if (!document.modified || !madeFrom.hash.IsKnown() || madeFrom.hash == known.hash) return;
    known.hash = madeFrom.hash;
    known.size = madeFrom.size;
    known.written = madeFrom.written;
}

// Puts the text into the document of its file. -1: into none, because it could not be opened or the user has changed it.
int IntoItsFile(const SnapshotNote& note, const std::string& text) {
    int tab = TabBarFindPath(note.path.c_str());
    if (tab < 0 && PathAnswers(note.path.c_str()) && FileExists(note.path.c_str())) tab = FileAdd(note.path.c_str());
    if (tab < 0) return -1;
    const DocumentId document = TabAt(tab).id;
    if (!TabBarRead(tab)) return -1;  // that of a session waits for being shown
    tab = TabBarFindDocument(document);
    if (tab < 0 || TabAt(tab).modified || SciSend(TabAt(tab).editor, SCI_GETREADONLY) != 0) return -1;
    EditorChangeLines(TabAt(tab).editor, text);
    NoteOlderFile(TabAt(tab), note.file);
    return tab;
}

int OpenBeside(const Leftover& leftover, const std::string& text) {
    return NewDocumentWith(TextWith(L"{1} (recovered)", {leftover.note.label}), leftover.note, text);
}

int Restore(const Leftover& leftover, const std::string& text) {
    if (leftover.note.path.empty()) return NewDocumentOf(leftover.note, text);
    const int tab = IntoItsFile(leftover.note, text);
    if (tab >= 0) return tab;
    const bool isThere = TabBarFindPath(leftover.note.path.c_str()) >= 0;
    return isThere ? OpenBeside(leftover, text) : NewDocumentOf(leftover.note, text);
}

// Returns true when the text is in a document.
bool BringBack(const Leftover& leftover, RecoveryWish wish) {
    std::string text;
    const int tab = !LeftoverRead(leftover, &text)  ? -1
                    : wish == RecoveryWish::Restore ? Restore(leftover, text)
                                                    : OpenBeside(leftover, text);
    // Its files go only when it stands in the document.
    if (tab < 0 || static_cast<std::size_t>(SciSend(TabAt(tab).editor, SCI_GETLENGTH)) != text.size()) {
        AppLogMsg(L"FAIL: the recovered text could not be opened: %s", leftover.text.c_str());
        return false;
    }
    const DocumentId document = TabAt(tab).id;
    TabBarSelect(tab);
    CaretGoToMiddle(TabAt(tab).editor, static_cast<LRESULT>(leftover.note.caret));
    SnapshotsTakeOver(document, leftover.files);
    return true;
}

void TellBroughtBack(int count) {
    const wchar_t* const format = count == 1 ? Text(L"%d text was brought back; it is not saved yet")
                                             : Text(L"%d texts were brought back; they are not saved yet");
    g_events.documentStatus(ActiveDocumentId(), FormatW(format, count).c_str());
}

void CarryOut(const std::vector<Leftover>& leftovers, const std::vector<RecoveryWish>& wishes) {
    int back = 0, failed = 0;
    for (std::size_t i = 0; i < leftovers.size(); ++i) {
        if (wishes[i] == RecoveryWish::Discard) LeftoverDelete(leftovers[i]);
        if (wishes[i] != RecoveryWish::Restore && wishes[i] != RecoveryWish::Beside) continue;
        ++(BringBack(leftovers[i], wishes[i]) ? back : failed);
    }
    if (back > 0) TellBroughtBack(back);
    if (failed > 0)
        ErrorMessage(Text(L"%d texts could not be brought back. They stay in the list of recovered files."), failed);
}

}  // namespace

void RecoveryOffer() {
    if (g_selftestTabsMode) return;
    const std::wstring report = CrashReportTake();
    const std::vector<Leftover> leftovers = LeftoversFind();
    if (!leftovers.empty())  // the list tells of the crash as well: one window is enough
        CarryOut(leftovers, RecoveryDialogShow(leftovers, report.empty() ? report : CrashNoticeShort(report)));
    else if (!report.empty())
        g_events.noticeWanted(CrashNotice(report).c_str());
}

void RecoveryShow() {
    const std::vector<Leftover> leftovers = LeftoversFind();
    if (leftovers.empty()) return g_events.statusText(Text(L"There are no recovered files"));
    CarryOut(leftovers, RecoveryDialogShow(leftovers, {}));
}

void RecoveryEnd() {
    SnapshotsEnd();
    LeftoversEnd();
}
