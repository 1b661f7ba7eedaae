// The search over files of the window: how it starts, what its results belong to, and how one of them is shown. UI
// thread only.
#include "search/files_internal.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/caret_place.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "project/project.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <utility>

FilesSearchState g_files;

namespace {

constexpr std::size_t kCopiedAtOnce = 16 << 20;  // bytes of documents, between two looks at the window's messages
constexpr int kPatience = 3;                     // a document that is edited meanwhile is then copied at once
constexpr std::size_t kMostEdits = 100'000;      // of a document; beyond that its hits are found again
constexpr std::ptrdiff_t kLargestRenewed = 64 << 20;

// The documents that are being copied for a search that will start then.
struct TextsCourse {
    FilesJob job;
    std::size_t next = 0;  // of job.texts
    int restarts = 0;
    bool waiting = false;
};
TextsCourse g_texts;

HWND EditorOfDocument(DocumentId document) {
    const int tab = document != 0 ? TabBarFindDocument(document) : -1;
    return tab >= 0 ? TabAt(tab).editor : nullptr;
}

std::string EditorPart(HWND editor, std::ptrdiff_t start, std::ptrdiff_t end) {
    std::string text(static_cast<std::size_t>(std::max<std::ptrdiff_t>(end - start, 0)), '\0');
    // The pointer of a range moves the editor's gap only when the range has it inside.
    const auto* bytes =
        reinterpret_cast<const char*>(SciSend(editor, SCI_GETRANGEPOINTER, static_cast<WPARAM>(start), end - start));
    if (bytes != nullptr && !text.empty()) std::memcpy(text.data(), bytes, text.size());
    return text;
}

// --- Starting

// Finds the folder of the search, without a backslash at its end. Returns a sentence when there is none.
std::wstring RootOf(const FilesOptions& options, std::wstring* root) {
    const std::wstring wanted = FilesFolderWanted(options);
    if (wanted.empty() && options.scope == FilesScope::Project)
        return Text(L"There is no project folder (Project > Choose Project Folder)");
    wchar_t full[kPathCapacity] = {};
    if (!PathNormalizeInput(wanted.c_str(), full, kPathCapacity)) return Text(L"Name a folder to search in");
    if (!PathAnswers(full)) return TextWith(L"The share does not answer: {1}", {full});
    if (!DirectoryExists(full)) return TextWith(L"There is no folder {1}", {full});
    *root = full;
    while (root->size() > 3 && root->ends_with(L'\\')) root->pop_back();
    return {};
}

// Which documents are searched in the state of their editor.
void CollectTexts(const FilesOptions& options, FilesJob* job) {
    const bool all = options.scope == FilesScope::OpenDocuments;
    for (const DocumentTab& tab : g_documents.tabs) {
        const bool fromFile = tab.hasFile && !tab.modified;
        if (all && fromFile) job->files.emplace_back(tab.path);
        const bool left = job->walk && IsInExcludedFolder(job->walk->excluded, tab.path, false);
        const bool below = tab.hasFile && !left && PathBelow(tab.path, g_files.root) != tab.path;
        if (!fromFile && (all || below))
            job->texts.push_back({tab.id, tab.hasFile ? std::wstring{tab.path} : std::wstring{}, {}});
    }
}

void StartJob() {
    std::wstring fault;
    g_files.search =
        FilesSearchStart(std::move(g_texts.job), FilesPaneWindow(), MSG_FILES_ENDED, g_files.number, &fault);
    g_texts = {};
    if (g_files.search == nullptr) {
        g_files.running = false;
        g_files.note = fault;
        FilesPaneUpdate();
    }
}

// Copies a piece of a document. Returns the bytes copied.
std::size_t CopyMore(OpenText& text, bool whole) {
    const HWND editor = EditorOfDocument(text.document);
    const auto length = static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH));
    const std::size_t from = text.utf8.size();
    const std::size_t piece = whole ? length - from : std::min(kCopiedAtOnce / 2, length - std::min(from, length));
    if (from == 0) text.utf8.reserve(length);
    text.utf8 += EditorPart(editor, static_cast<std::ptrdiff_t>(from), static_cast<std::ptrdiff_t>(from + piece));
    if (text.utf8.size() < length) return piece;
    ++g_texts.next;
    g_texts.restarts = 0;
    g_files.edits[text.document].clear();  // from here on they are what has changed
    return piece;
}

// --- Results

// The places of the hits in the document, which has been edited since they were found.
MovedPlaces PlacesAfter(const std::vector<FileHit>& hits, const std::vector<FollowedEdit>& edits) {
    std::vector<std::ptrdiff_t> places;
    for (const FileHit& hit : hits) {
        places.push_back(hit.start);
        places.push_back(static_cast<std::ptrdiff_t>(hit.start) + hit.length);
    }
    MovedPlaces moved(std::move(places));
    for (const FollowedEdit& edit : edits) {
        if (edit.removed > 0) moved.Removed(edit.position, edit.removed);
        if (edit.inserted > 0) moved.Inserted(edit.position, edit.inserted);
    }
    return moved;
}

void LinkFile(ResultFile& file, DocumentId document) {
    file.document = document;
    file.cut = {};
    const auto edits = g_files.edits.find(document);
    file.places = PlacesAfter(file.hits, edits != g_files.edits.end() ? edits->second : std::vector<FollowedEdit>{});
    g_files.linked[document] = file.key;
}

void UnlinkFile(ResultFile& file) {
    g_files.linked.erase(file.document);
    file.document = 0;
    file.places = {};
}

ResultFile* LinkedFile(DocumentId document) {
    const auto linked = g_files.linked.find(document);
    if (linked == g_files.linked.end()) return nullptr;
    const std::size_t index = g_files.results.FindFile(linked->second);
    return index < g_files.results.files.size() ? &g_files.results.files[index] : nullptr;
}

// Whether each hit is still in the document where it was found.
bool HitsAreTrue(const ResultFile& file, HWND editor) {
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    for (std::size_t i = 0; i < file.hits.size(); ++i) {
        const FileHit& hit = file.hits[i];
        const std::ptrdiff_t start = file.places.At(2 * i);
        if (start + hit.markLength > length) return false;
        std::string text = EditorPart(editor, start, start + hit.markLength);
        std::ranges::replace_if(
            text, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, ' ');
        if (text != hit.shown.substr(hit.markStart, hit.markLength)) return false;
    }
    return true;
}

// Finds the hits of a document again. It was changed by another program, or too much to be followed.
void RenewHits(ResultFile& file, HWND editor) {
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    auto matcher = TextMatcher::Of(QueryOf(g_files.options), nullptr);
    if (!matcher || length > kLargestRenewed) return;
    FileHits found = HitsInText(EditorPart(editor, 0, length), *matcher, kMaxHits, nullptr);
    if (found.hits.empty()) return;  // the rows stay, and say that their text is gone
    file.hits = std::move(found.hits);
    file.ticked.assign(file.hits.size(), true);
    file.places = PlacesAfter(file.hits, {});
    file.cut = {};
    g_files.results.Recount();
}

ResultFile ResultOf(FoundFile found) {
    ResultFile file;
    const int tab = found.document != 0 ? TabBarFindDocument(found.document) : TabBarFindPath(found.path.c_str());
    file.label = found.path.empty() ? (tab >= 0 ? std::wstring{TabAt(tab).label} : Text(L"(closed)"))
                                    : PathBelow(found.path, g_files.root);
    file.path = std::move(found.path);
    file.key = file.path.empty() ? L"\x1" + std::to_wstring(found.document) : PathKey(file.path);
    file.hits = std::move(found.hits);
    file.ticked.assign(file.hits.size(), true);
    if (tab < 0) return file;
    LinkFile(file, TabAt(tab).id);
    if (g_files.edits.contains(file.document) && g_files.edits[file.document].size() >= kMostEdits)
        RenewHits(file, TabAt(tab).editor);
    return file;
}

// What was found before goes.
void BeginResults(const FilesOptions& options, const std::wstring& root) {
    FilesSearchEnd();
    ++g_files.number;
    g_files.options = options;
    g_files.root = root;
    g_files.results.Clear();
    g_files.tally = {};
    g_files.current.reset();
    g_files.note.clear();
    g_files.edits.clear();
    g_files.linked.clear();
    g_files.stopped = false;
}

}  // namespace

std::wstring FilesFolderWanted(const FilesOptions& options) {
    if (options.scope == FilesScope::OpenDocuments) return {};
    if (options.scope == FilesScope::Folder) return options.folder;
    if (g_settings.projectRoot[0] != L'\0') return g_settings.projectRoot;
    const bool hasFile = IsTabIndex(g_documents.activeTab) && TabAt(g_documents.activeTab).hasFile;
    return hasFile ? FolderOf(TabAt(g_documents.activeTab).path) : std::wstring{};
}

std::wstring FilesSearchBegin(const FilesOptions& options) {
    std::wstring fault, root;
    if (!TextMatcher::Of(QueryOf(options), &fault)) return fault;
    if (options.scope != FilesScope::OpenDocuments) fault = RootOf(options, &root);
    if (!fault.empty()) return fault;
    BeginResults(options, root);
    g_files.byUser = true;
    PaneShow(PaneId::FilesResults, true);
    if (FilesPaneWindow() == nullptr) return Text(L"The pane of results could not be made");
    g_files.running = true;
    g_texts = {.job = {.query = QueryOf(options)}};
    if (!root.empty()) g_texts.job.walk = WalkRulesOf(options, root);
    if (g_texts.job.walk && options.scope == FilesScope::Project) g_texts.job.walk->excluded = ProjectExcludedFolders();
    CollectTexts(options, &g_texts.job);
    FilesPaneStarted();
    FilesTextsGoOn();
    return {};
}

void FilesShowFound(const std::wstring& note, const std::string& text, std::vector<FoundFile> found) {
    FilesOptions options;
    options.what = Utf8ToWideText(text);
    options.wholeWord = true;
    std::wstring root = g_settings.projectRoot;
    while (root.size() > 3 && root.ends_with(L'\\')) root.pop_back();
    BeginResults(options, root);
    g_files.byUser = false;
    PaneShow(PaneId::FilesResults, true);
    if (FilesPaneWindow() == nullptr) return;
    std::vector<ResultFile> files;
    for (FoundFile& each : found) files.push_back(ResultOf(std::move(each)));
    FilesPaneAdd(std::move(files));
    g_files.note = note;
    FilesPaneUpdate();
    FilesPaneFocus();
}

void FilesTextsGoOn() {
    if (!g_files.running || g_files.search != nullptr) return;
    std::vector<OpenText>& texts = g_texts.job.texts;
    for (std::size_t copied = 0; g_texts.next < texts.size() && copied < kCopiedAtOnce;)
        if (EditorOfDocument(texts[g_texts.next].document) == nullptr)  // closed meanwhile
            texts.erase(texts.begin() + static_cast<std::ptrdiff_t>(g_texts.next));
        else
            copied += CopyMore(texts[g_texts.next], g_texts.restarts > kPatience);
    if (g_texts.next == texts.size())
        StartJob();
    else
        PostMessageW(FilesPaneWindow(), MSG_FILES_TEXTS, 0, 0);
}

void FilesSearchEnd() {
    if (!g_files.running) return;
    FilesSearchStop(g_files.search);
    FilesSearchTakeMore();
    g_files.running = false;
    g_files.stopped = true;
    g_files.search = nullptr;
    g_texts = {};
    g_files.edits.clear();
    FilesPaneUpdate();
}

void FilesSearchTakeMore() {
    if (g_files.search == nullptr) return;
    std::deque<FoundFile> found;
    const bool more = FilesSearchTake(g_files.search, &found, &g_files.tally);
    std::vector<ResultFile> files;
    for (FoundFile& each : found) files.push_back(ResultOf(std::move(each)));
    std::optional<std::wstring> current;
    if (g_files.current) current = g_files.results.files[g_files.current->file].key;
    if (!files.empty()) FilesPaneAdd(std::move(files));
    if (current) g_files.current->file = g_files.results.FindFile(*current);
    // After its last hit the threads end with the files at hand, for which nobody needs to wait.
    if (!more || (g_files.tally.limited && found.empty())) {
        g_files.running = false;
        g_files.search = nullptr;
        g_files.edits.clear();
    }
    FilesPaneUpdate();
}

void FilesSearchOnEnded(WPARAM number) {
    if (number == g_files.number) FilesSearchTakeMore();
}

// --- Following the documents

void FilesSearchOnEdit(DocumentId document, std::ptrdiff_t position, std::string_view text, bool insertion) {
    if (!g_files.running && g_files.linked.empty()) return;
    if (g_files.running) {
        std::vector<OpenText>& texts = g_texts.job.texts;
        if (g_texts.next < texts.size() && texts[g_texts.next].document == document) {
            texts[g_texts.next].utf8.clear();
            ++g_texts.restarts;
        }
        std::vector<FollowedEdit>& edits = g_files.edits[document];
        const auto length = static_cast<std::ptrdiff_t>(text.size());
        if (edits.size() < kMostEdits) edits.push_back({position, insertion ? length : 0, insertion ? 0 : length});
    }
    ResultFile* file = LinkedFile(document);
    if (file == nullptr) return;
    const std::vector<std::size_t> now = MoveHits(*file, position, text, insertion);
    if (!now.empty() && g_files.current && g_files.current->hit &&
        &g_files.results.files[g_files.current->file] == file)
        g_files.current->hit = now[*g_files.current->hit];
    FilesPaneRepaintSoon();
}

void FilesSearchOnTextArrived(DocumentId document) {
    if (!g_files.running && g_files.results.files.empty()) return;
    g_files.edits.erase(document);
    const int tab = TabBarFindDocument(document);
    if (tab < 0 || !TabAt(tab).hasFile) return;
    const std::size_t index = g_files.results.FindFile(PathKey(TabAt(tab).path));
    if (index >= g_files.results.files.size()) return;
    ResultFile& file = g_files.results.files[index];
    LinkFile(file, document);
    if (!HitsAreTrue(file, TabAt(tab).editor)) RenewHits(file, TabAt(tab).editor);
    FilesPaneUpdate();
}

void FilesSearchOnTextLeaving(DocumentId document) {
    ResultFile* file = LinkedFile(document);
    if (file == nullptr) return;
    const int tab = TabBarFindDocument(document);
    if (file->path.empty()) {
        g_files.linked.erase(document);
        g_files.current.reset();
        g_files.results.Remove({g_files.results.FindFile(file->key), std::nullopt});
    } else {
        // What was saved is in the file. Otherwise the file has what was found in it.
        for (std::size_t i = 0; tab >= 0 && !TabAt(tab).modified && i < file->hits.size(); ++i) {
            bool gone = false;
            file->hits[i] = FilesHitNow(*file, i, &gone);
        }
        UnlinkFile(*file);
    }
    FilesPaneUpdate();
}

HWND FilesEditorOf(const ResultFile& file) { return EditorOfDocument(file.document); }

FileHit FilesHitNow(const ResultFile& file, std::size_t hit, bool* gone) {
    *gone = false;
    FileHit now = file.hits[hit];
    const HWND editor = FilesEditorOf(file);
    if (editor == nullptr || file.places.Count() <= 2 * hit + 1) return now;
    const std::ptrdiff_t start = file.places.At(2 * hit), end = file.places.At(2 * hit + 1);
    constexpr auto kAround = static_cast<std::ptrdiff_t>(2 * kShownBytes);
    const std::ptrdiff_t from = std::max<std::ptrdiff_t>(start - kAround, 0);
    const std::ptrdiff_t to = std::min<std::ptrdiff_t>(SciSend(editor, SCI_GETLENGTH), start + kAround);
    now.start = static_cast<std::uint32_t>(start - from);
    now.length = static_cast<std::uint32_t>(end - start);
    ShowLineOfHit(EditorPart(editor, from, to), now);
    now.start = static_cast<std::uint32_t>(start);
    now.line = static_cast<std::uint32_t>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(start)));
    const FileHit& then = file.hits[hit];
    const std::size_t seen = std::min(now.markLength, then.markLength);  // a long match is cut where its line is
    *gone =
        now.length != then.length || now.shown.substr(now.markStart, seen) != then.shown.substr(then.markStart, seen);
    return now;
}

// --- Going to a hit

bool FilesGoTo(ResultRow row) {
    if (row.file >= g_files.results.files.size()) return false;
    const std::wstring key = g_files.results.files[row.file].key;
    if (const int open = TabBarFindDocument(g_files.results.files[row.file].document); open >= 0)
        TabBarSelect(open);
    else if (FileShow(std::wstring{g_files.results.files[row.file].path}.c_str(), false) == 0)
        return false;
    // The file was linked when its text arrived, and may have other hits by now.
    row.file = g_files.results.FindFile(key);
    if (row.file >= g_files.results.files.size()) return false;
    const ResultFile& file = g_files.results.files[row.file];
    const HWND editor = FilesEditorOf(file);
    if (editor == nullptr) return false;
    row.hit = std::min(row.hit.value_or(0), file.hits.size() - 1);
    g_files.current = row;
    FilesPaneSelect(row);
    const LRESULT start = CaretPositionAt(editor, file.places.At(2 * *row.hit));
    CaretSelect(editor, start, CaretPositionAt(editor, file.places.At(2 * *row.hit + 1)));
    SciSend(editor, SCI_CHOOSECARETX);
    FocusCurrentEditor();
    return true;
}

void FilesGoBeside(bool forward) {
    const std::optional<ResultRow> next = g_files.results.Beside(g_files.current, forward);
    if (next)
        FilesGoTo(*next);
    else
        g_events.statusText(g_files.results.HitCount() == 0 ? Text(L"There are no search results")
                            : forward                       ? Text(L"This is the last search result")
                                                            : Text(L"This is the first search result"));
}

std::span<const CommandHandler> FilesSearchCommandHandlers() {
    static constexpr CommandHandler kHandlers[] = {
        {IDM_FILES_FIND, [](int) { FilesDialogShow(g_ui.hMainWnd, false); }},
        {IDM_FILES_REPLACE, [](int) { FilesDialogShow(g_ui.hMainWnd, true); }},
        {IDM_FILES_NEXT, [](int) { FilesGoBeside(true); }},
        {IDM_FILES_PREVIOUS, [](int) { FilesGoBeside(false); }},
        {IDM_FILES_STOP, [](int) { FilesSearchEnd(); }},
    };
    return kHandlers;
}
