// Keeps the symbols of files, and asks the worker for those that are missing or old. UI thread.
#include "symbols/symbol_index.h"

#include "base/path.h"
#include "compile/build_source.h"
#include "compile/include_paths.h"
#include "documents/document_row.h"
#include "language/lexer_table.h"
#include "project/project.h"
#include "resources/ids.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "symbols/file_scan.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <utility>

namespace {

// The files on the disk are looked at again when they are asked for after this time, in ms.
constexpr ULONGLONG kFreshMs = 2000;
constexpr int kIncludersKept = 16;  // documents whose includes are kept

// The files that a document includes, or those of the project.
struct FileGroup {
    DocumentId document = 0;  // 0: the project
    std::vector<FileSymbolsPtr> files;
    SymbolTablePtr table;      // of the document when they were found
    std::wstring root;         // of the project
    ULONGLONG foundAt = 0;     // tick count; 0: never
    std::uint64_t number = 0;  // of the scan that runs; 0: none
    SymbolTablePtr asked;      // the document's table for that scan
    Worker worker;
    bool limited = false;
    std::function<void()> ready;  // waits for the scan
};

struct IndexState {
    FileGroup project;
    std::vector<FileGroup> groups;  // of documents, the one asked for last at the end
    std::shared_ptr<const FileSymbolsMap> known = std::make_shared<FileSymbolsMap>();
    std::uint64_t lastNumber = 0;
};
IndexState g_index;

FileGroup* FindGroup(DocumentId document) {
    if (document == 0) return &g_index.project;
    const auto found = std::ranges::find(g_index.groups, document, &FileGroup::document);
    return found != g_index.groups.end() ? &*found : nullptr;
}

// Makes the document's group the last one, and drops those of documents that were not asked for lately.
FileGroup& GroupOf(DocumentId document) {
    if (document == 0) return g_index.project;
    std::erase_if(g_index.groups, [](const FileGroup& group) { return TabBarFindDocument(group.document) < 0; });
    auto found = std::ranges::find(g_index.groups, document, &FileGroup::document);
    if (found == g_index.groups.end()) {
        if (g_index.groups.size() >= kIncludersKept) {
            WorkerAskToEnd(g_index.groups.front().worker);
            g_index.groups.erase(g_index.groups.begin());
        }
        g_index.groups.emplace_back().document = document;
    } else {
        std::rotate(found, found + 1, g_index.groups.end());
    }
    return g_index.groups.back();
}

std::map<std::wstring, SymbolTablePtr> OpenTables() {
    std::map<std::wstring, SymbolTablePtr> open;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.hasFile && SymbolsAreCurrent(tab.id)) open[PathKey(tab.path)] = SymbolsOfDocument(tab.id);
    return open;
}

void StartScan(FileGroup& group) {
    FileScanRequest request{.window = g_ui.hMainWnd,
                            .document = group.document,
                            .number = ++g_index.lastNumber,
                            .compilerId = CompilerNow(),
                            .known = g_index.known,
                            .open = OpenTables()};
    if (group.document != 0) {
        const DocumentTab& document = TabAt(TabBarFindDocument(group.document));
        request.compilerId = document.compilerId;
        request.table = SymbolsOfDocument(group.document);
        if (document.hasFile) request.folder = FolderOf(document.path);
        request.includeFolders = IncludeFolders(CompilerIncludePath(document.compilerId));
        const std::vector<std::wstring> all = IncludeFolders(g_settings.includePath);
        request.includeFolders.insert(request.includeFolders.end(), all.begin(), all.end());
        ProjectAddIncludeFolders(document.path, &request.includeFolders);
    } else {
        request.root = group.root = g_settings.projectRoot;
        request.excluded = ProjectExcludedFolders();
    }
    WorkerAskToEnd(group.worker);
    group.asked = request.table;
    const std::uint64_t number = request.number;
    group.worker = FileScanStart(std::move(request));
    group.number = group.worker ? number : 0;
}

std::vector<std::string_view> IncludesOf(const SymbolTable& table) {
    std::vector<std::string_view> names;
    for (const Symbol& symbol : table.symbols)
        if (symbol.kind == SymbolKind::Include) names.push_back(SymbolName(table, symbol));
    return names;
}

// Whether what is known is what the text includes. The files themselves may have changed since.
bool IncludesAreKnown(const FileGroup& group) {
    const SymbolTablePtr now = SymbolsOfDocument(group.document);
    return group.foundAt != 0 && (group.table == now || IncludesOf(*group.table) == IncludesOf(*now));
}

bool IsFresh(const FileGroup& group) {
    const bool right = group.document != 0 ? IncludesAreKnown(group) : group.root == g_settings.projectRoot;
    return group.foundAt != 0 && right && GetTickCount64() - group.foundAt < kFreshMs;
}

void Refresh(FileGroup& group) {
    if (group.number != 0 || IsFresh(group)) return;
    // A text that includes nothing needs no worker.
    if (group.document != 0 && IncludesOf(*SymbolsOfDocument(group.document)).empty()) {
        group.files.clear();
        group.table = SymbolsOfDocument(group.document);
        group.foundAt = GetTickCount64();
    } else if (group.document != 0 || g_settings.projectRoot[0] != L'\0') {
        StartScan(group);
    } else {
        group.files.clear();
    }
}

// The files that no group holds any more are forgotten.
void KeepKnown() {
    auto known = std::make_shared<FileSymbolsMap>();
    const auto keep = [&known](const FileGroup& group) {
        for (const FileSymbolsPtr& file : group.files) (*known)[PathKey(file->path)] = file;
    };
    keep(g_index.project);
    for (const FileGroup& group : g_index.groups) keep(group);
    g_index.known = std::move(known);
}

ReachedText Reached(const FileSymbols& file) {
    const int tab = TabBarFindPath(file.path.c_str());
    if (tab < 0) return {file.path, 0, file.table};
    const DocumentId document = TabAt(tab).id;
    // Until the document was scanned itself, the table of its file is better than none.
    const SymbolTablePtr table = SymbolsOfDocument(document);
    return {file.path, document, SymbolsAreCurrent(document) || !table->symbols.empty() ? table : file.table};
}

ReachedText Reached(const DocumentTab& document) {
    return {document.hasFile ? document.path : L"", document.id, SymbolsOfDocument(document.id)};
}

void CallWhenFresh(FileGroup& group, std::function<void()> ready) {
    g_index.project.ready = {};
    for (FileGroup& other : g_index.groups) other.ready = {};
    const bool outdated = group.document != 0 && group.asked != SymbolsOfDocument(group.document);
    if (group.number != 0 && outdated) group.number = 0;  // what the scan gives comes too late
    Refresh(group);
    if (group.number == 0) return ready();
    group.ready = std::move(ready);
}

}  // namespace

std::vector<ReachedText> SymbolsInReach(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0) return {};
    FileGroup& group = GroupOf(document);
    if (SymbolsAreCurrent(document)) Refresh(group);
    std::vector<ReachedText> texts{Reached(TabAt(tab))};
    for (const FileSymbolsPtr& file : group.files)
        if (ReachedText text = Reached(*file); text.document != document)  // what it includes may include it again
            texts.push_back(std::move(text));
    return texts;
}

bool SymbolsReachIsKnown(DocumentId document) {
    const FileGroup* group = FindGroup(document);
    return document != 0 && group != nullptr && SymbolsAreCurrent(document) && IncludesAreKnown(*group);
}

void SymbolsWhenReached(DocumentId document, std::function<void()> ready) {
    SymbolsWhenCurrent(
        document,
        [document, ready = std::move(ready)] {
            if (TabBarFindDocument(document) >= 0) CallWhenFresh(GroupOf(document), ready);
        });
}

std::vector<ReachedText> SymbolsInProject() {
    Refresh(g_index.project);
    std::vector<ReachedText> texts;
    for (const DocumentTab& tab : g_documents.tabs) texts.push_back(Reached(tab));
    for (const FileSymbolsPtr& file : g_index.project.files) {
        const int tab = TabBarFindPath(file->path.c_str());
        if (tab < 0)
            texts.push_back({file->path, 0, file->table});
        else  // until the document was scanned itself
            texts[static_cast<std::size_t>(tab)] = Reached(*file);
    }
    return texts;
}

void SymbolsWhenProjectKnown(std::function<void()> ready) {
    const auto unscanned = std::ranges::find_if(g_documents.tabs, [](const DocumentTab& tab) {
        return tab.editor != nullptr && LexerFromExtension(tab.path) == Language::Basic && !SymbolsWereScanned(tab.id);
    });
    if (unscanned == g_documents.tabs.end()) return CallWhenFresh(g_index.project, std::move(ready));
    SymbolsWhenCurrent(unscanned->id, [ready = std::move(ready)] { SymbolsWhenProjectKnown(ready); });
}

bool SymbolsProjectLimited() { return g_index.project.limited; }

void SymbolsOnFilesScanned(WPARAM wParam) {
    const auto result = WorkerTake<std::unique_ptr<FileScanResult>>(wParam);
    FileGroup* group = FindGroup(result->document);
    if (group == nullptr || group->number != result->number) return;
    group->number = 0;
    group->files = std::move(result->files);
    group->table = result->table;
    group->limited = result->limited;
    group->foundAt = GetTickCount64();
    KeepKnown();
    const std::function<void()> ready = std::exchange(group->ready, {});
    if (result->document != 0) SymbolsTellChanged(result->document);
    if (ready) ready();
}

void SymbolsDropFiles() {
    WorkerAskToEnd(g_index.project.worker);
    for (const FileGroup& group : g_index.groups) WorkerAskToEnd(group.worker);
    WorkerDropPosts<std::unique_ptr<FileScanResult>>(g_ui.hMainWnd, MSG_SYMBOLS_FILES);
}
