// Finds references: gathers what is to be read, and reads it in a worker. UI thread, but for the worker.
#include "symbols/references.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "editor/editor_pane.h"
#include "files/file_io.h"
#include "language/lexer_table.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "symbols/file_scan.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <set>
#include <utility>

namespace {

constexpr std::size_t kMostPlaces = 20000;

struct ReferenceText {
    std::wstring path;
    DocumentId document = 0;
    std::uint32_t compilerId = 0;
    HeapBlock<char> utf8;  // of a document that is not as its file; else null, and the file is read
    std::size_t length = 0;
};
struct ReferencesRequest {
    HWND window = nullptr;
    std::uint64_t number = 0;
    References references;
    std::vector<ReferenceText> texts;
};
struct ReferencesResult {
    std::uint64_t number = 0;
    References references;
};

struct ReferencesState {
    std::uint64_t number = 0;  // of the last question
    Worker worker;
    std::function<void(References)> ready;
};
ReferencesState g_references;

// --- The worker

std::vector<std::size_t> LineStarts(std::string_view text) {
    std::vector<std::size_t> starts{0};
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n')))
            starts.push_back(i + 1);
    return starts;
}

void SearchText(References& references, const ReferenceText& text, std::string_view utf8) {
    const Dialect& dialect = DialectOf(text.compilerId);
    const std::vector<NamePlace> named =
        PlacesOfName(utf8, references.name, dialect, kMostPlaces - references.places + 1);
    if (named.empty()) return;
    const std::vector<NamePlace> places =
        PlacesOfTarget(references.target, references.name, named, SymbolsOfText(utf8, dialect));
    if (places.empty()) return;
    const std::vector<std::size_t> starts = LineStarts(utf8);
    FoundFile file{text.path, text.document, {}};
    for (const NamePlace& place : places) {
        FileHit hit;
        hit.start = static_cast<std::uint32_t>(starts[place.line] + place.column);
        hit.length = static_cast<std::uint32_t>(references.name.size());
        hit.line = place.line;
        ShowLineOfHit(utf8, hit);
        file.hits.push_back(std::move(hit));
    }
    references.places += file.hits.size();
    references.limited = references.places > kMostPlaces;
    references.found.push_back(std::move(file));
}

void SearchTextOrFile(References& references, ReferenceText& text) {
    if (text.utf8) return SearchText(references, text, {text.utf8.get(), text.length});
    std::size_t length = 0;
    const HeapBlock<char> read(ReadSourceFileForEditor(text.path.c_str(), &length, nullptr, nullptr));
    if (read)
        SearchText(references, text, {read.get(), length});
    else
        references.unreadable.push_back(text.path);
}

void ReferencesWork(ReferencesRequest& request, const WorkerCancel& cancel) {
    for (ReferenceText& text : request.texts) {
        if (cancel.Asked()) return;
        if (!request.references.limited) SearchTextOrFile(request.references, text);
        text.utf8.reset();
    }
    auto result = std::make_unique<ReferencesResult>();
    result->number = request.number;
    result->references = std::move(request.references);
    WorkerPost(request.window, MSG_SYMBOLS_PLACES, std::move(result));
}

// --- What is to be read

// Whether the places in the file are those in the editor. A save may have written other line breaks than the editor has.
bool TextIsAsFile(const DocumentTab& tab) {
    if (!tab.hasFile || tab.modified) return false;
    const auto length = static_cast<std::uint64_t>(SciSend(tab.editor, SCI_GETLENGTH));
    constexpr std::uint64_t kMark = 3;  // bytes of a byte-order mark
    return tab.editor == nullptr || length == tab.onDisk.size || length + kMark == tab.onDisk.size;
}

ReferenceText TextOfDocument(const DocumentTab& tab) {
    ReferenceText text{tab.hasFile ? tab.path : L"", tab.id, tab.compilerId, nullptr, 0};
    if (!TextIsAsFile(tab)) text.utf8.reset(EditorPaneGetText(tab.editor, &text.length));
    return text;
}

// The document, what it includes, the other open sources, and the project; each file once.
std::vector<ReferenceText> TextsToSearch(const References& references) {
    const DocumentTab& own = TabAt(TabBarFindDocument(references.word.document));
    std::vector<ReferenceText> texts;
    texts.push_back(TextOfDocument(own));
    if (references.target.scope == ReferenceScope::Procedure) return texts;
    std::set<std::wstring> seen{PathKey(own.path)};
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.id != own.id && LexerFromExtension(tab.path) == Language::Basic) {
            texts.push_back(TextOfDocument(tab));
            seen.insert(PathKey(tab.path));
        }
    for (const std::vector<ReachedText>& reached : {SymbolsInReach(own.id), SymbolsInProject()})
        for (const ReachedText& text : reached)
            if (!text.path.empty() && text.document == 0 && seen.insert(PathKey(text.path)).second)
                texts.push_back({text.path, 0, own.compilerId, nullptr, 0});
    return texts;
}

// Fills what the declaration of the word says about its places.
void TakeDefinition(References& references) {
    references.name = references.word.word.name;
    for (const std::vector<ReachedText>& texts : {SymbolsInReach(references.word.document), SymbolsInProject()}) {
        std::vector<SymbolTablePtr> tables;
        for (const ReachedText& text : texts) tables.push_back(text.table);
        const bool ownFirst = !texts.empty() && texts.front().document == references.word.document;
        const std::uint32_t line = ownFirst ? references.word.line : 0xFFFFFFFF;
        const std::vector<SymbolPlace> found = DefinitionsOf(references.word.word, line, tables);
        if (found.empty()) continue;
        const ReachedText& text = texts[found.front().text];
        const Symbol& symbol = text.table->symbols[found.front().symbol];
        references.name = SymbolName(*text.table, symbol);
        references.definition = SpotOf(text, found.front().symbol);
        references.kind = symbol.kind;
        references.target = TargetOf(*text.table, found.front().symbol);
        return;
    }
    if (references.word.word.isMember) references.target.scope = ReferenceScope::Member;
}

void StartReferences(References references) {
    if (TabBarFindDocument(references.word.document) < 0) return;
    TakeDefinition(references);
    ReferencesRequest request{g_ui.hMainWnd, g_references.number, {}, TextsToSearch(references)};
    request.references = std::move(references);
    g_references.worker = WorkerStart<ReferencesWork>(std::move(request));
    if (!g_references.worker) TellSymbolStatus(Text(L"The references could not be looked for"));
}

}  // namespace

void FindReferences(const WordInDocument& word, std::function<void(References)> ready) {
    WorkerAskToEnd(g_references.worker);
    ++g_references.number;
    g_references.ready = std::move(ready);
    TellSymbolStatus(FormatW(Text(L"Looking for %s..."), Utf8ToWideText(word.word.name).c_str()));
    SymbolsWhenReached(word.document, [word] {
        // A name of its own procedure needs no project.
        References references{.word = word};
        TakeDefinition(references);
        if (references.target.scope == ReferenceScope::Procedure) return StartReferences({.word = word});
        SymbolsWhenProjectKnown([word] { StartReferences({.word = word}); });
    });
}

void ReferencesOnFound(WPARAM wParam) {
    const auto result = WorkerTake<std::unique_ptr<ReferencesResult>>(wParam);
    if (result->number != g_references.number) return;
    if (const auto ready = std::exchange(g_references.ready, {}); ready) ready(std::move(result->references));
}

void ReferencesDrop() {
    WorkerAskToEnd(g_references.worker);
    WorkerDropPosts<std::unique_ptr<ReferencesResult>>(g_ui.hMainWnd, MSG_SYMBOLS_PLACES);
}
