// Watches the open documents, and gives their text to the worker that scans it. UI thread, but for the worker.
#include "symbols/document_symbols.h"

#include "base/worker.h"
#include "documents/document_row.h"
#include "editor/editor_pane.h"
#include "language/lexer_table.h"
#include "language/symbol_pieces.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr ULONGLONG kPause = 250;  // ms without an edit before a scan begins
constexpr UINT kTimerMs = 100;
constexpr LRESULT kSliceBytes = 1 << 20;  // copied at once, which takes less than a millisecond
constexpr std::size_t kMostShifts = 64;   // what comes after them is only nearly right until the next scan

struct LineShift {
    std::uint32_t line = 0;  // those below it have moved
    std::int64_t added = 0;  // lines; removed: less than 0
};

struct Watched {
    DocumentId document = 0;
    std::uint32_t compilerId = 0;
    bool basic = false;
    SymbolPieces pieces;
    SymbolTablePtr table = std::make_shared<SymbolTable>();
    std::uint64_t edits = 0;      // of the text
    std::uint64_t known = ~0ull;  // `edits` when the text of the table was taken
    ULONGLONG editedAt = 0;       // tick count
    LRESULT slice = kSliceBytes;
    bool scanning = false;          // a worker has its text
    std::vector<LineShift> shifts;  // of the text since the table's
};

struct Wish {
    DocumentId document = 0;
    std::function<void()> ready;
};

struct WatchState {
    std::vector<std::unique_ptr<Watched>> watched;
    Wish wish;
    bool timerRuns = false;
    std::vector<void (*)(DocumentId)> listeners;
};
WatchState g_symbols;

struct ScanRequest {
    HWND window = nullptr;
    DocumentId document = 0;
    std::uint64_t edits = 0;
    std::uint32_t compilerId = 0;
    SymbolPieces pieces;
    LinesToScan wanted;
    std::string text;
    bool whole = false;     // `text` has all wanted lines
    bool textEnds = false;  // and the last line of the document
    std::uint32_t linesOfText = 0;
};
struct ScanResult {
    DocumentId document = 0;
    std::uint64_t edits = 0;
    bool progress = false;
    SymbolPieces pieces;
    SymbolTablePtr table;  // null: more is to be scanned
};

void ScanWork(ScanRequest& request, const WorkerCancel&) {
    auto result = std::make_unique<ScanResult>();
    result->document = request.document;
    result->edits = request.edits;
    const auto scanned =
        ScanPieces(request.text, request.wanted.before, DialectOf(request.compilerId), request.textEnds);
    result->progress = !scanned.empty() || request.whole;
    if (result->progress) PiecesLearn(request.pieces, request.wanted, scanned, request.whole);
    if (PiecesNext(request.pieces, request.linesOfText).done)
        result->table = std::make_shared<SymbolTable>(JoinSymbols(PiecesToJoin(request.pieces)));
    result->pieces = std::move(request.pieces);
    WorkerPost(request.window, MSG_SYMBOLS_SCANNED, std::move(result));
}

Watched* FindWatched(DocumentId document) {
    for (const auto& watched : g_symbols.watched)
        if (watched->document == document) return watched.get();
    return nullptr;
}

void StartTimer() {
    if (!g_symbols.timerRuns) g_symbols.timerRuns = SetTimer(g_ui.hMainWnd, TIMER_SYMBOLS, kTimerMs, nullptr) != 0;
}

bool IsCurrent(const Watched& watched) { return watched.known == watched.edits; }

void TakeTable(Watched& watched, SymbolTablePtr table) {
    watched.table = std::move(table);
    watched.known = watched.edits;
    watched.shifts.clear();
    const DocumentId document = watched.document;
    SymbolsTellChanged(document);
    if (g_symbols.wish.document != document || !g_symbols.wish.ready) return;
    const Wish wish = std::exchange(g_symbols.wish, {});
    wish.ready();
}

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam));
}

// The lines that begin before the end of the text.
LRESULT LinesOfText(HWND editor) {
    const LRESULT lines = Ask(editor, SCI_GETLINECOUNT);
    const bool lastIsEmpty = Ask(editor, SCI_POSITIONFROMLINE, lines - 1) == Ask(editor, SCI_GETLENGTH);
    return lastIsEmpty ? lines - 1 : lines;
}

// Copies the next lines to scan, about a slice of them.
ScanRequest NextRequest(const Watched& watched, HWND editor) {
    const LRESULT lines = LinesOfText(editor);
    ScanRequest request{.window = g_ui.hMainWnd,
                        .document = watched.document,
                        .edits = watched.edits,
                        .compilerId = watched.compilerId,
                        .pieces = watched.pieces,
                        .wanted = PiecesNext(watched.pieces, static_cast<std::uint32_t>(lines)),
                        .linesOfText = static_cast<std::uint32_t>(lines)};
    const LRESULT first = std::min<LRESULT>(request.wanted.first, lines);
    const LRESULT last = request.wanted.lines == 0 ? lines : std::min(lines, first + request.wanted.lines);
    const LRESULT start = Ask(editor, SCI_POSITIONFROMLINE, first);
    LRESULT end = last == lines ? Ask(editor, SCI_GETLENGTH) : Ask(editor, SCI_POSITIONFROMLINE, last);
    if (end - start > watched.slice) {
        const LRESULT cut = Ask(editor, SCI_LINEFROMPOSITION, start + watched.slice);
        end = Ask(editor, SCI_POSITIONFROMLINE, std::max(cut, first + 1));
    }
    request.whole = last == lines ? end == Ask(editor, SCI_GETLENGTH) : end == Ask(editor, SCI_POSITIONFROMLINE, last);
    request.textEnds = end == Ask(editor, SCI_GETLENGTH);
    if (end > start) {
        const auto length = static_cast<std::size_t>(end - start);
        request.text.resize(length + 1);  // Scintilla adds a NUL
        Sci_TextRangeFull range = {{start, end}, request.text.data()};
        SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
        request.text.pop_back();
    }
    return request;
}

// Takes the next step of a scan, when one is to be done.
void GoOn(Watched& watched) {
    const int tab = TabBarFindDocument(watched.document);
    if (tab < 0 || watched.scanning || IsCurrent(watched)) return;
    if (!watched.basic) return TakeTable(watched, std::make_shared<SymbolTable>());
    const Worker worker = WorkerStart<ScanWork>(NextRequest(watched, TabAt(tab).editor));
    if (g_symbols.wish.document != watched.document) WorkerLowerPriority(worker);
    watched.scanning = static_cast<bool>(worker);
    if (!worker) StartTimer();  // tries again
}

bool HasSymbols(const DocumentTab& document) {
    return LexerFromExtension(document.path) == Language::Basic && !EditorPaneIsPlain(document.editor);
}

// A document begins anew when it is first asked for, when its text was loaded, and when its language has changed.
void Reset(Watched& watched, const DocumentTab& document) {
    watched.compilerId = document.compilerId;
    watched.basic = HasSymbols(document);
    watched.pieces = {};
    watched.shifts.clear();
    ++watched.edits;
}

// Typed lines come one below the other, so that most shifts go into the last one.
void NoteShift(Watched& watched, std::uint32_t line, std::int64_t added) {
    if (added == 0) return;
    LineShift* last = watched.shifts.empty() ? nullptr : &watched.shifts.back();
    if (last != nullptr && added > 0 && last->added > 0 && line >= last->line && line <= last->line + last->added)
        last->added += added;
    else if (watched.shifts.size() < kMostShifts)
        watched.shifts.push_back({line, added});
}

// Null for a document that is closed.
Watched* Watch(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0 || TabAt(tab).editor == nullptr) return nullptr;
    Watched* watched = FindWatched(document);
    if (watched == nullptr) {
        g_symbols.watched.push_back(std::make_unique<Watched>());
        watched = g_symbols.watched.back().get();
        watched->document = document;
        Reset(*watched, TabAt(tab));
    } else if (watched->basic != HasSymbols(TabAt(tab)) || watched->compilerId != TabAt(tab).compilerId) {
        Reset(*watched, TabAt(tab));
    }
    if (!IsCurrent(*watched)) StartTimer();
    return watched;
}

}  // namespace

SymbolTablePtr SymbolsOfDocument(DocumentId document) {
    static const SymbolTablePtr kNone = std::make_shared<SymbolTable>();
    const Watched* watched = Watch(document);
    return watched != nullptr ? watched->table : kNone;
}

bool SymbolsAreCurrent(DocumentId document) {
    const Watched* watched = FindWatched(document);
    return watched != nullptr && IsCurrent(*watched);
}

bool SymbolsWereScanned(DocumentId document) {
    const Watched* watched = FindWatched(document);
    return watched != nullptr && watched->known != ~0ull;
}

void SymbolsWhenCurrent(DocumentId document, std::function<void()> ready) {
    Watched* watched = Watch(document);
    if (watched == nullptr) return;
    if (IsCurrent(*watched)) return ready();
    g_symbols.wish = {document, std::move(ready)};
    GoOn(*watched);
}

std::uint32_t SymbolsTableLine(DocumentId document, std::uint32_t line) {
    const Watched* watched = FindWatched(document);
    if (watched == nullptr) return line;
    std::int64_t at = line;
    for (auto shift = watched->shifts.rbegin(); shift != watched->shifts.rend(); ++shift)
        if (at > shift->line) at = std::max<std::int64_t>(at - shift->added, shift->line);
    return static_cast<std::uint32_t>(at);
}

void SymbolsOnVariableAsked(DocumentId document, int line, std::string_view name, bool* isVariable) {
    const Watched* watched = FindWatched(document);
    if (watched == nullptr) return;
    const SymbolTable& table = *watched->table;
    const std::uint32_t tableLine = SymbolsTableLine(document, static_cast<std::uint32_t>(line));
    for (const std::uint32_t index : SymbolsMeantAt(table, tableLine, name))
        if (IsVariable(table.symbols[index].kind) || IsProcedure(table.symbols[index].kind)) *isVariable = true;
}

void SymbolsListen(void (*changed)(DocumentId document)) {
    if (std::ranges::find(g_symbols.listeners, changed) == g_symbols.listeners.end())
        g_symbols.listeners.push_back(changed);
}

void SymbolsTellChanged(DocumentId document) {
    for (std::size_t i = 0; i < g_symbols.listeners.size(); ++i) g_symbols.listeners[i](document);
}

void SymbolsOnModified(DocumentId document, const SCNotification& change) {
    if ((change.modificationType & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT)) == 0 || g_symbols.watched.empty()) return;
    Watched* watched = FindWatched(document);
    if (watched == nullptr) return;
    ++watched->edits;
    watched->editedAt = GetTickCount64();
    const auto line =
        SciSend(static_cast<HWND>(change.nmhdr.hwndFrom), SCI_LINEFROMPOSITION, static_cast<WPARAM>(change.position));
    PiecesForget(watched->pieces, static_cast<std::uint32_t>(line), change.linesAdded);
    NoteShift(*watched, static_cast<std::uint32_t>(line), change.linesAdded);
    StartTimer();
}

void SymbolsOnTextArrived(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    Watched* watched = FindWatched(document);
    if (watched == nullptr || tab < 0) return;
    Reset(*watched, TabAt(tab));
    StartTimer();
}

void SymbolsOnClosed(DocumentId document) {
    std::erase_if(g_symbols.watched, [document](const auto& watched) { return watched->document == document; });
    if (g_symbols.wish.document == document) g_symbols.wish = {};
}

void SymbolsOnTimer() {
    bool more = false;
    const ULONGLONG now = GetTickCount64();
    for (std::size_t i = 0; i < g_symbols.watched.size(); ++i) {
        Watched& watched = *g_symbols.watched[i];
        if (IsCurrent(watched) || watched.scanning) continue;
        if (now - watched.editedAt < kPause)
            more = true;
        else
            GoOn(watched);
    }
    if (more) return;
    KillTimer(g_ui.hMainWnd, TIMER_SYMBOLS);
    g_symbols.timerRuns = false;
}

void SymbolsOnScanned(WPARAM wParam) {
    const auto result = WorkerTake<std::unique_ptr<ScanResult>>(wParam);
    Watched* watched = FindWatched(result->document);
    if (watched == nullptr) return;
    watched->scanning = false;
    if (result->edits != watched->edits) {  // the text has changed meanwhile
        if (g_symbols.wish.document == watched->document)
            GoOn(*watched);
        else
            StartTimer();
        return;
    }
    watched->slice = result->progress ? kSliceBytes : watched->slice * 2;
    watched->pieces = std::move(result->pieces);
    if (result->table != nullptr)
        TakeTable(*watched, result->table);
    else
        GoOn(*watched);
}

void SymbolsDropScans() { WorkerDropPosts<std::unique_ptr<ScanResult>>(g_ui.hMainWnd, MSG_SYMBOLS_SCANNED); }
