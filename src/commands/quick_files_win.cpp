// The files for the file finder: the open documents and the recent files first, then those of the project. UI thread
// only.
#include "commands/quick_source.h"

#include "base/path.h"
#include "base/texts.h"
#include "documents/document_place.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/caret_place.h"
#include "resources/ids.h"
#include "search/project_files.h"
#include "settings/settings_state.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr int kMostBoost = 12;

// An open document or a recent file.
struct KnownFile {
    DocumentId document = 0;
    std::wstring path;  // empty: a document without a file
};

struct FinderState {
    std::vector<KnownFile> known;
    std::set<std::wstring> knownKeys;  // PathKey of their paths
    std::shared_ptr<const FuzzyIndex> knownTexts;
    FuzzyIndices texts;
    std::wstring root;
    unsigned typedPaths = 0;  // whole paths that were typed, each a text of its own
};
FinderState g_finder;

// The path below the project folder, or the whole one.
std::wstring ShownPath(const std::wstring& path) {
    const std::wstring& root = g_finder.root;
    const bool below = path.size() > root.size() && !root.empty() &&
                       PathEqualsIgnoreCase(std::wstring_view(path).substr(0, root.size()), root);
    return below ? path.substr(root.size()) : path;
}

void AddKnown(FuzzyIndex& index, const KnownFile& file, const wchar_t* label) {
    if (!file.path.empty() && !g_finder.knownKeys.insert(PathKey(file.path)).second) return;
    const std::wstring text = file.path.empty() ? label : ShownPath(file.path);
    const int later = std::max(kMostBoost - static_cast<int>(g_finder.known.size()), 1);
    const int boost = file.document != 0 && file.document == ActiveDocumentId() ? 0 : later;
    if (!FuzzyAdd(&index, text, file.path.empty() ? 0 : text.rfind(L'\\') + 1, boost)) return;
    g_finder.known.push_back(file);
}

// The document that was shown last comes first, and the active one last, because nobody wants to go where he is.
void GatherKnown() {
    g_finder.known.clear();
    g_finder.knownKeys.clear();
    std::vector<const DocumentTab*> open;
    for (const DocumentTab& tab : g_documents.tabs) open.push_back(&tab);
    const DocumentId active = ActiveDocumentId();
    std::ranges::sort(open, {}, [active](const DocumentTab* tab) {
        return std::pair(tab->id == active, -static_cast<long long>(tab->lastShown));
    });
    auto index = std::make_shared<FuzzyIndex>();
    for (const DocumentTab* tab : open)
        AddKnown(*index, {tab->id, tab->hasFile ? std::wstring(tab->path) : L""}, tab->label);
    const int recent = std::clamp<int>(g_settings.mruCount, 0, kMruCapacity);
    for (int i = 0; i < recent; ++i) AddKnown(*index, {0, g_settings.mruFiles[i]}, L"");
    g_finder.knownTexts = index;
}

void GatherFiles(HWND window) {
    g_finder.root = g_settings.projectRoot;
    if (!g_finder.root.empty() && !g_finder.root.ends_with(L'\\')) g_finder.root += L'\\';
    GatherKnown();
    ProjectFilesWant(window, MSG_QUICK_FILES, g_finder.root);
}

// A whole path that is typed or pasted stands behind all others, and matches itself.
void AddTypedPath(const std::wstring& pattern) {
    if (!PathIsAbsolute(pattern)) return;
    ++g_finder.typedPaths;
    std::wstring path = pattern;
    std::ranges::replace(path, L'/', L'\\');
    auto index = std::make_shared<FuzzyIndex>();
    FuzzyAdd(index.get(), path, path.rfind(L'\\') + 1);
    g_finder.texts.push_back(std::move(index));
}

const FuzzyIndices& FileTexts(const QuickQuery& query) {
    g_finder.texts = {g_finder.knownTexts};
    const FuzzyIndices& project = ProjectFilesNow().files;
    g_finder.texts.insert(g_finder.texts.end(), project.begin(), project.end());
    AddTypedPath(query.pattern);
    return g_finder.texts;
}

KnownFile FileOf(const QuickItem& item) {
    if (item.number < g_finder.known.size()) return g_finder.known[item.number];
    const std::wstring text(item.text.text);
    return {0, PathIsAbsolute(text) ? text : g_finder.root + text};
}

// The texts that are no files beside others: the known files that stand among those of the project, too, and the typed
// path. Each block of the project is in the order of the paths.
std::size_t CountedTwice() {
    const bool typed = g_finder.texts.size() > 1 + ProjectFilesNow().files.size();
    std::size_t count = typed ? 1 : 0;
    for (const KnownFile& file : g_finder.known) {
        const std::wstring path = ShownPath(file.path);
        for (const auto& block : ProjectFilesNow().files) {
            const auto textOf = [&block](const FuzzyIndex::Entry& entry) {
                return std::wstring_view(block->characters).substr(entry.start, entry.length);
            };
            const auto found = std::ranges::lower_bound(block->entries, std::wstring_view(path), {}, textOf);
            if (found != block->entries.end() && textOf(*found) == path) ++count;
        }
    }
    return count;
}

bool StandsAmongKnown(const QuickItem& item) {
    return item.number >= g_finder.known.size() && g_finder.knownKeys.contains(PathKey(FileOf(item).path));
}

QuickExtra ExtraOfFile(const QuickItem& item) {
    return {.keys = {}, .mark = FileOf(item).document != 0 ? QuickMark::Dot : QuickMark::None};
}

std::wstring FilesStatus(bool none) {
    const ProjectFiles& project = ProjectFilesNow();
    if (g_finder.root.empty()) return Text(L"there is no project folder");
    if (project.reading && project.files.empty()) return Text(L"reading the project folder...");
    if (project.reading) return Text(L"reading...");
    if (project.files.empty() && project.unreadable > 0) return Text(L"the project folder cannot be read");
    if (project.cut) return Text(L"the project has more, which are left out");
    if (project.unreadable > 0) return TextWith(L"{1} folders cannot be read", {std::to_wstring(project.unreadable)});
    return none ? Text(L"no file matches") : L"";
}

// The compiler stays what it is: a file that is looked up is no choice of another one.
bool OpenHere(const std::wstring& path) {
    if (FileIsProject(path.c_str())) return FileOpen(path.c_str()) != 0;
    if (FileShow(path.c_str(), false) == 0) return false;
    MruAddFile(TabAt(g_documents.activeTab).path);
    return true;
}

void OpenFound(const QuickItem& item, const QuickQuery& query) {
    const KnownFile file = FileOf(item);
    const int index = TabBarFindDocument(file.document);
    const bool asText = query.line > 0 && FileIsProject(file.path.c_str());
    const auto open = [&] { return asText ? FileShow(file.path.c_str(), false) != 0 : OpenHere(file.path); };
    const bool shown = index >= 0 ? TabBarActivate(index) != 0 : !file.path.empty() && open();
    if (shown && query.line > 0) {
        const DocumentTab& document = TabAt(g_documents.activeTab);
        CaretGoTo(document.editor, CaretPositionOfFileColumn(document, query.line - 1, std::max(query.column - 1, 0)));
        CaretShowInMiddle(document.editor);
    }
    QueueFocusCurrentEditor();
}

QuickPreview PreviewOfFile(const QuickItem& item, const QuickQuery& query) {
    const KnownFile file = FileOf(item);
    // The document may have been closed, or a recent file opened, since the list was made.
    const int open = file.document != 0 ? TabBarFindDocument(file.document) : TabBarFindPath(file.path.c_str());
    // A server's name that is being typed is not asked for.
    const bool typed = open < 0 && item.text.text.starts_with(L"\\\\") && item.number >= g_finder.known.size();
    return {.document = open >= 0 ? TabAt(open).id : 0, .path = typed ? L"" : file.path, .line = query.line};
}

}  // namespace

const QuickSource kQuickFiles = {
    .title = English(L"files"),
    .begin = GatherFiles,
    .texts = FileTexts,
    .generation = [] { return ProjectFilesNow().generation + g_finder.typedPaths; },
    .hides = StandsAmongKnown,
    .hidden = CountedTwice,
    .extra = ExtraOfFile,
    .status = FilesStatus,
    .preview = PreviewOfFile,
    .accept = OpenFound,
};
