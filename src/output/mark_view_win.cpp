// Marks of the diagnostics: which document shows which, their places in its text, and what is told of them.
#include "output/mark_view.h"

#include "base/clock.h"
#include "base/path.h"
#include "documents/document_place.h"
#include "documents/document_row.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "output/error_path.h"
#include "output/error_places.h"
#include "output/line_colours.h"
#include "output/mark_draw.h"
#include "output/output_pane.h"
#include "output/output_state.h"
#include "resources/ids.h"
#include "settings/file_type_table.h"
#include "settings/settings_state.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <limits>
#include <set>

namespace {

constexpr UINT kIntervalMs = 30;
constexpr double kSliceMs = 6.0;
constexpr LRESULT kLineWindow = 2048;       // bytes of a line that are looked at, before and behind a column
constexpr LRESULT kLongestUnderline = 400;  // bytes

struct MarkViewState {
    bool timerRuns = false;
    std::set<DocumentId> worn;     // their looks must be renewed before the next paint
    std::set<DocumentId> margins;  // they show the margin of the signs
    bool linesMoved = false;       // since the error list showed them
    DocumentId caretIn = 0;        // where the caret was when it was last looked at
    LRESULT caretLine = -1;        // the same
    DocumentId told = 0;           // the status bar tells of a line of this one
    std::wstring text;             // what it tells
};
MarkViewState g_view;

std::vector<MarkedFile>& Files() { return g_output.errors.marks.files; }

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LPARAM lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

// --- Files and documents

void FindPlaces(MarkedFile& file) {
    if (std::exchange(file.placesKnown, true)) return;
    CompilerError error = {};
    SafeCopyW(error.file, file.name);
    error.build = file.build;
    file.places = PlacesOfDiagnostic(g_output.errors, error, ErrorPathWhole);
}

// By the same rule by which the user is led to a diagnostic: the first place that is open or there.
bool IsMarkedFile(MarkedFile& file, const wchar_t* path) {
    FindPlaces(file);
    const auto found = std::ranges::find_if(
        file.places, [path](const std::wstring& place) { return PathEqualsIgnoreCase(place, path); });
    return found != file.places.end() && std::none_of(file.places.begin(), found, [](const std::wstring& place) {
               return TabBarFindPath(place.c_str()) >= 0 || (PathAnswers(place.c_str()) && FileExists(place.c_str()));
           });
}

const DocumentTab* DocumentOf(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    return tab >= 0 && TabAt(tab).editor != nullptr ? &TabAt(tab) : nullptr;
}

bool HasMarks(DocumentId document) {
    return std::ranges::any_of(
        Files(), [document](const MarkedFile& file) { return file.document == document; });
}

// The margin of such a text is there from the beginning, so that the first diagnostic does not push the text aside.
bool MayGetMarks(const DocumentTab& tab) {
    const FileType* const type = tab.hasFile ? FileTypeOfPath(tab.path) : nullptr;
    return !tab.hasFile || (type != nullptr && type->language != Language::None);
}

void ReserveMargin(const DocumentTab& tab) {
    if (!MayGetMarks(tab)) return;
    g_view.margins.insert(tab.id);
    MarkDrawMargin(tab.editor, true);
}

// --- Places

// A span in the line of `column` (bytes of the text from the start of the line; negative: none).
MarkSpan SpanInLine(HWND editor, LRESULT start, LRESULT end, LRESULT column) {
    const LRESULT from = std::max(start, start + std::max<LRESULT>(column, 0) - kLineWindow);
    const LRESULT to = std::min(end, start + std::max<LRESULT>(column, 0) + kLineWindow);
    MarkSpan span =
        SpanOfDiagnostic(EditorPaneTextBetween(editor, from, to), column < 0 ? -1 : column - (from - start));
    span.end = std::min<LRESULT>(span.end, span.start + kLongestUnderline);
    return {from + span.start, from + span.end};
}

void PlaceMark(const DocumentTab& document, SourceMark& mark) {
    const HWND editor = document.editor;
    const LRESULT line = std::clamp<LRESULT>(mark.fileLine, 0, std::max<LRESULT>(Ask(editor, SCI_GETLINECOUNT) - 1, 0));
    const LRESULT start = Ask(editor, SCI_POSITIONFROMLINE, line);
    const LRESULT end = Ask(editor, SCI_GETLINEENDPOSITION, line);
    mark.place = {};
    if (mark.fileStart >= 0) {
        mark.place.start = CaretPositionAt(editor, std::min(start + mark.fileStart, end));
        mark.place.end = CaretPositionAt(editor, std::min(mark.place.start + mark.fileLength, end));
        return;
    }
    const LRESULT caret = CaretPositionOfFileColumn(document, line, mark.column - 1);
    const MarkSpan span = SpanInLine(editor, start, end, mark.column >= 1 ? caret - start : -1);
    mark.place.start = CaretPositionAt(editor, span.start);
    mark.place.end = CaretPositionAt(editor, span.end);
    mark.place.caret = caret - mark.place.start;
}

LRESULT LineOfMark(HWND editor, const SourceMark& mark) { return Ask(editor, SCI_LINEFROMPOSITION, mark.place.start); }

// Remembers where the marks are in the file as it is saved now.
void KeepFileLines(const DocumentTab& document, MarkedFile& file) {
    for (std::size_t i = 0; i < file.placed; ++i) {
        SourceMark& mark = file.marks[i];
        mark.fileLine = LineOfMark(document.editor, mark);
        mark.fileStart = mark.place.start - Ask(document.editor, SCI_POSITIONFROMLINE, mark.fileLine);
        mark.fileLength = mark.place.end - mark.place.start;
    }
}

// --- The work of the timer

void StartTimer() {
    if (!g_view.timerRuns) g_view.timerRuns = SetTimer(g_ui.hMainWnd, TIMER_SOURCE_MARKS, kIntervalMs, nullptr) != 0;
}

// The document that shows the marks of a file, if one is open: the active one first, because it is seen.
void Attach(MarkedFile& file) {
    if (IsTabIndex(g_documents.activeTab)) {
        const DocumentTab& active = TabAt(g_documents.activeTab);
        if (active.hasFile && active.editor != nullptr && IsMarkedFile(file, active.path)) {
            file.document = active.id;
            return;
        }
    }
    for (const DocumentTab& tab : g_documents.tabs) {
        if (!tab.hasFile || tab.editor == nullptr || !IsMarkedFile(file, tab.path)) continue;
        file.document = tab.id;
        return;
    }
}

// The texts behind the lines of a document.
void ShowTexts(const DocumentTab& document) {
    std::vector<std::pair<LRESULT, const SourceMark*>> marks;
    for (const MarkedFile& file : Files()) {
        if (file.document != document.id || g_settings.showErrorTexts == 0) continue;
        for (std::size_t i = 0; i < file.placed; ++i)
            marks.emplace_back(LineOfMark(document.editor, file.marks[i]), &file.marks[i]);
    }
    MarkDrawTexts(document.editor, marks);
}

// Marks what has no mark yet. False when the time is up.
bool MarkFile(const DocumentTab& document, MarkedFile& file, double until) {
    if (file.placed == file.marks.size()) return true;
    MarkDrawPrepare(document.editor);
    g_view.margins.insert(document.id);
    for (; file.placed < file.marks.size(); ++file.placed) {
        if (ClockMs() > until) return false;
        SourceMark& mark = file.marks[file.placed];
        PlaceMark(document, mark);
        MarkDraw(document.editor, mark, LineOfMark(document.editor, mark));
    }
    ShowTexts(document);
    return true;
}

bool MarkAll(double until) {
    for (MarkedFile& file : Files()) {
        const DocumentTab* document = DocumentOf(file.document);
        if (document != nullptr && !MarkFile(*document, file, until)) return false;
    }
    return true;
}

// --- What is told

// The marks on the line of a position, or at the position itself.
std::vector<const SourceMark*> MarksAt(const DocumentTab& document, LRESULT position, bool ofLine) {
    std::vector<const SourceMark*> found;
    const LRESULT line = Ask(document.editor, SCI_LINEFROMPOSITION, position);
    const LRESULT start = Ask(document.editor, SCI_POSITIONFROMLINE, line);
    const LRESULT end = Ask(document.editor, SCI_GETLINEENDPOSITION, line);
    for (const MarkedFile& file : Files()) {
        if (file.document != document.id) continue;
        for (std::size_t i = 0; i < file.placed; ++i) {
            const MarkPlace& place = file.marks[i].place;
            if (MarkIsGone(place) || place.start < start || place.start > end) continue;
            if (ofLine || (position >= place.start && position < place.end)) found.push_back(&file.marks[i]);
        }
    }
    return found;
}

void TellInStatus(DocumentId document, const std::wstring& text) {
    if (g_view.told == document && g_view.text == text) return;
    if (text.empty() && g_view.told != document) return;
    g_view.told = text.empty() ? 0 : document;
    g_view.text = text;
    g_events.documentStatus(document, text.c_str());
}

void RenewLooks(DocumentId document) {
    g_view.worn.erase(document);
    const DocumentTab* tab = DocumentOf(document);
    if (tab == nullptr) return;
    MarkDrawClear(tab->editor);
    for (const MarkedFile& file : Files()) {
        if (file.document != document) continue;
        for (std::size_t i = 0; i < file.placed; ++i)
            MarkDraw(tab->editor, file.marks[i], LineOfMark(tab->editor, file.marks[i]));
    }
    ShowTexts(*tab);
}

}  // namespace

void SourceMarksWanted() {
    for (MarkedFile& file : Files())
        if (file.document == 0 && !file.placesKnown) Attach(file);
    StartTimer();
}

void SourceMarksForget() {
    std::set<DocumentId> shown;
    for (const MarkedFile& file : Files()) shown.insert(file.document);
    for (const DocumentId id : shown)
        if (const DocumentTab* document = DocumentOf(id); document != nullptr) MarkDrawClear(document->editor);
    g_view.worn.clear();
    TellInStatus(g_view.told, L"");
}

void SourceMarksOnTimer() {
    if (!MarkAll(ClockMs() + kSliceMs)) return;
    KillTimer(g_ui.hMainWnd, TIMER_SOURCE_MARKS);
    g_view.timerRuns = false;
}

void SourceMarksOnBuildEnd() {
    for (const MarkedFile& file : Files())
        if (file.total > file.marks.size())
            OutputPaneAppend(MarksLeftOutText(FileNameOf(file.name), file.marks.size(), file.total).c_str(), kLineTeal);
    for (auto document = g_view.margins.begin(); document != g_view.margins.end();) {
        const DocumentTab* tab = DocumentOf(*document);
        const bool keeps = tab != nullptr && (MayGetMarks(*tab) || HasMarks(*document));
        if (tab != nullptr && !keeps) MarkDrawMargin(tab->editor, false);
        document = keeps ? std::next(document) : g_view.margins.erase(document);
    }
}

void SourceMarksOnTextArrived(DocumentId document) {
    const DocumentTab* tab = DocumentOf(document);
    if (tab == nullptr) return;
    ReserveMargin(*tab);
    if (!tab->hasFile) return;
    for (MarkedFile& file : Files()) {
        if (file.document != 0 || !IsMarkedFile(file, tab->path)) continue;
        file.document = document;
        StartTimer();
    }
}

void SourceMarksOnTextLeaving(DocumentId document) {
    const DocumentTab* tab = DocumentOf(document);
    for (MarkedFile& file : Files()) {
        if (file.document != document || tab == nullptr) continue;
        // Of a modified text the file has another state, that of the last save.
        if (!tab->modified) KeepFileLines(*tab, file);
        if (tab->hasFile) file.places = {tab->path};  // the document may have got another file
        // Marks in lines that the file no longer has cannot be found again.
        if (!tab->modified) {
            const auto gone = [](const SourceMark& mark) { return MarkIsGone(mark.place); };
            file.marks.erase(
                std::remove_if(file.marks.begin(), file.marks.begin() + static_cast<std::ptrdiff_t>(file.placed), gone),
                file.marks.begin() + static_cast<std::ptrdiff_t>(file.placed));
        }
        file.document = 0;
        file.placed = 0;
        g_view.linesMoved = true;
    }
    g_view.worn.erase(document);
    g_view.margins.erase(document);
    TellInStatus(document, L"");
}

void SourceMarksOnSaved(DocumentId document) {
    const DocumentTab* tab = DocumentOf(document);
    if (tab != nullptr) ReserveMargin(*tab);  // it may have got a name
    for (MarkedFile& file : Files())
        if (tab != nullptr && file.document == document) KeepFileLines(*tab, file);
}

void SourceMarksOnEdit(DocumentId document, const SCNotification& change) {
    if (Files().empty()) return;
    MarkEdit edit = {.inserted = (change.modificationType & SC_MOD_INSERTTEXT) != 0,
                     .undone = (change.modificationType & (SC_PERFORMED_UNDO | SC_PERFORMED_REDO)) != 0,
                     .position = change.position};
    if ((!edit.inserted && (change.modificationType & SC_MOD_DELETETEXT) == 0) || change.text == nullptr) return;
    if (!HasMarks(document)) return;
    edit.text = {change.text, static_cast<std::size_t>(change.length)};
    edit = WholeEdit(edit);
    for (MarkedFile& file : Files()) {
        if (file.document != document) continue;
        edit.number = ++file.edits;
        // Scintilla leaves a marker on a line that is split or joined, also where the diagnostic has gone to another one.
        bool worn = change.linesAdded != 0 && file.placed > 0;
        for (std::size_t i = 0; i < file.placed; ++i) worn = MoveMark(file.marks[i].place, edit) || worn;
        if (worn) g_view.worn.insert(document);
        if (change.linesAdded != 0) g_view.linesMoved = true;
    }
}

void SourceMarksOnView(DocumentId document) {
    if (g_view.worn.contains(document)) RenewLooks(document);
    if (std::exchange(g_view.linesMoved, false)) ErrorListShowLines();
}

void SourceMarksOnCaret(DocumentId document) {
    const DocumentTab* tab = DocumentOf(document);
    if (tab == nullptr) return;
    const LRESULT caret = Ask(tab->editor, SCI_GETCURRENTPOS);
    const LRESULT line = Ask(tab->editor, SCI_LINEFROMPOSITION, caret);
    // What else the status bar tells, as the result of a build, stays until the caret comes to another line. The line is
    // noted while there are no marks, too: else the first notice after a build would look like a move to its line.
    const bool moved = g_view.caretIn != document || g_view.caretLine != line;
    if (g_view.caretIn != document) {  // the status bar forgets what is about another document
        g_view.told = 0;
        g_view.text.clear();
    }
    g_view.caretIn = document;
    g_view.caretLine = line;
    if (!Files().empty() && (moved || g_view.told == document))
        TellInStatus(document, MarkTexts(MarksAt(*tab, caret, true), L"  |  "));
}

void SourceMarksOnJump() {
    g_view.caretIn = 0;
    g_view.text.clear();
    SourceMarksOnCaret(ActiveDocumentId());
}

void SourceMarksFollowRename(const std::wstring& from, const std::wstring& to) {
    for (MarkedFile& file : Files()) {
        FindPlaces(file);
        for (std::wstring& place : file.places) place = PathAfterMove(place, from, to);
    }
}

void SourceMarksRenew() {
    std::set<DocumentId> shown;
    for (const MarkedFile& file : Files())
        if (file.placed > 0) shown.insert(file.document);
    for (const DocumentId document : shown) {
        if (const DocumentTab* tab = DocumentOf(document); tab != nullptr) MarkDrawPrepare(tab->editor);
        RenewLooks(document);
    }
    for (const DocumentId document : g_view.margins)
        if (const DocumentTab* tab = DocumentOf(document); tab != nullptr) MarkDrawMargin(tab->editor, true);
}

bool SourceMarksAreTold(DocumentId document) { return document != 0 && g_view.told == document; }

std::wstring SourceMarksTip(DocumentId document, LRESULT position, bool ofLine) {
    const DocumentTab* tab = Files().empty() ? nullptr : DocumentOf(document);
    return tab == nullptr ? L"" : MarkTexts(MarksAt(*tab, position, ofLine), L"\n");
}

bool SourceMarkAtCaret(CompilerError* error) {
    const DocumentTab* tab = Files().empty() ? nullptr : DocumentOf(ActiveDocumentId());
    if (tab == nullptr) return false;
    const LRESULT caret = Ask(tab->editor, SCI_GETCURRENTPOS);
    std::vector<const SourceMark*> marks = MarksAt(*tab, caret, false);
    if (marks.empty()) marks = MarksAt(*tab, caret, true);
    if (marks.empty()) return false;
    const SourceMark& mark = **std::ranges::min_element(marks, {}, &SourceMark::severity);
    *error = {};
    SafeCopyW(error->file, tab->path);
    SafeCopyW(error->message, mark.message);
    error->line = static_cast<std::int32_t>(LineOfMark(tab->editor, mark)) + 1;
    error->column = mark.column;
    error->compilerId = mark.compilerId;
    error->severity = mark.severity;
    return true;
}

// The mark of a recorded diagnostic; null: it has none.
static const SourceMark* MarkOf(const MarkedFile& file, const CompilerError& error) {
    if (file.build != error.build || file.name != error.file) return nullptr;
    const auto found = std::ranges::find_if(file.marks, [&error](const SourceMark& mark) {
        return mark.line == error.line && mark.column == error.column && mark.severity == error.severity &&
               mark.message == error.message;
    });
    return found != file.marks.end() ? &*found : nullptr;
}

LRESULT SourceMarkPositionOf(DocumentId document, const CompilerError& error) {
    const DocumentTab* tab = DocumentOf(document);
    for (MarkedFile& file : Files()) {
        const SourceMark* const mark = tab != nullptr && file.document == document ? MarkOf(file, error) : nullptr;
        if (mark == nullptr) continue;
        MarkFile(*tab, file, std::numeric_limits<double>::infinity());  // the document may have been opened just now
        return mark->place.start + mark->place.caret;
    }
    return -1;
}

std::int32_t SourceMarkLineOf(const CompilerError& error) {
    const auto& index = g_output.errors.marks.index;
    const auto found = index.find({error.build, error.file});
    const MarkedFile* const file = found != index.end() ? &Files()[found->second] : nullptr;
    const SourceMark* const mark = file != nullptr ? MarkOf(*file, error) : nullptr;
    if (mark == nullptr) return error.line;
    const DocumentTab* const tab = DocumentOf(file->document);
    const bool placed = tab != nullptr && static_cast<std::size_t>(mark - file->marks.data()) < file->placed;
    if (placed && !MarkIsGone(mark->place)) return static_cast<std::int32_t>(LineOfMark(tab->editor, *mark)) + 1;
    return mark->fileStart >= 0 && !placed ? static_cast<std::int32_t>(mark->fileLine) + 1 : error.line;
}
