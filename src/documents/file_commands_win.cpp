// Creates, opens, reloads and closes documents, and adds to the recent-file list. Saving is in file_save_win.cpp. UI
// thread.
#include "documents/file_commands.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/close_question.h"
#include "documents/document_load.h"
#include "documents/document_row.h"
#include "documents/file_dialogs.h"
#include "documents/open_directory.h"
#include "documents/outside.h"
#include "documents/recent_files.h"
#include "documents/save_rules.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "scintilla/sci.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

// Makes the path absolute, with backslashes. False when it does not fit; then a message box says so unless `quiet`.
bool ResolveInputPath(const wchar_t* input, wchar_t* out, std::size_t capacity, bool quiet) {
    if (PathNormalizeInput(input, out, capacity)) return true;
    AppLogMsg(L"FAIL: FileOpen path does not fit: %s", input);
    if (quiet) return false;
    ErrorMessage(Text(L"Failed to open file: %s\n\nThe path is not valid or longer than %d characters."), input,
                 static_cast<int>(capacity - 1));
    return false;
}

// Makes the compiler for the file's extension the active one, unless something else says how the file is built.
void SelectCompilerFor(const wchar_t* path) {
    bool stays = false;
    g_events.compilerChoiceAsked(path, &stays);
    if (stays) return;
    const auto compiler = static_cast<std::int32_t>(CompilerDefaultForFile(path));
    SettingsChange([compiler](Settings& settings) { settings.activeCompiler = compiler; });
}

// A self-test run saves nothing.
Answer AskSaveChanges(const wchar_t* label) {
    return AskUser({.caption = Text(L"Unsaved Changes"),
                    .text = SaveQuestion(label).c_str(),
                    .buttons = AskButtons::YesNoCancel,
                    .icon = AskIcon::Question,
                    .inSelftest = Answer::No,
                    .loses = Answer::No});
}

enum class Opened { Failed, WasOpen, New };

// Why a file cannot be read, as far as another try tells; follows the message about it.
std::wstring UnreadableText(const wchar_t* file) {
    if (!PathAnswers(file)) return Text(L"\n\nIts drive or its computer does not answer.");
    if (DirectoryExists(file)) return Text(L"\n\nIt is a folder.");
    const UniqueHandle again{CreateFileW(PathForSystem(file).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    const std::wstring reason = again ? std::wstring() : SystemErrorText(GetLastError());
    return reason.empty() ? reason : L"\n\n" + reason;
}

// Shows the document of the file at an absolute path, and opens it when it is not open. `problem`: as of FileOpen.
Opened ShowDocument(const wchar_t* file, bool quiet, std::wstring* problem = nullptr) {
    const int existing = TabBarFindFile(file);
    if (existing >= 0) {
        TabBarSelect(existing);
        return Opened::WasOpen;
    }
    wchar_t label[kLabelCapacity];
    PathGetFile(file, label, kLabelCapacity);
    LoadEnd why = LoadEnd::Unreadable;
    const int tab = TabBarAdd(file, label, &why);
    if (tab < 0) {
        if (why == LoadEnd::Cancelled) {
            g_events.documentStatus(ActiveDocumentId(), FormatW(Text(L"Opening %s was cancelled"), label).c_str());
        } else if (!quiet) {
            const std::wstring reason = why == LoadEnd::Unreadable ? UnreadableText(file) : LoadFailureText(why);
            const std::wstring told = FormatW(Text(L"Failed to open file: %s%s"), file, reason.c_str());
            if (problem != nullptr)
                *problem = told;
            else
                ErrorMessage(L"%s", told.c_str());
        }
        return Opened::Failed;
    }
    TabBarSelect(tab);
    return Opened::New;
}

}  // namespace

int FileNew() {
    const int tab = TabBarAdd(L"", LabelWithoutFile(L"Untitled").c_str());
    if (tab < 0) return 0;
    TabBarSelect(tab);
    return 1;
}

int FileOpen(const wchar_t* path, std::wstring* problem) {
    std::wstring chosen;
    if (path == nullptr) {
        wchar_t directory[kPathCapacity] = {};
        FileOpenResolveInitialDirectory(directory, kPathCapacity);
        if (!AskOpenPath(chosen, directory)) return 0;
        path = chosen.c_str();
    }
    wchar_t file[kPathCapacity] = {};
    if (!ResolveInputPath(path, file, kPathCapacity, false)) return 0;
    if (FileIsProject(file)) {
        bool open = false;
        g_events.projectChosen(file, &open);
        return open ? 1 : 0;
    }
    const Opened opened = ShowDocument(file, false, problem);
    if (opened == Opened::New) {
        SelectCompilerFor(file);
        MruAddFile(file);
        PathGetDir(file, g_documents.lastDirectory, kPathCapacity);
        g_events.folderChosen(g_documents.lastDirectory);
    }
    return opened == Opened::Failed ? 0 : 1;
}

bool FileIsProject(const wchar_t* path) { return PathEqualsIgnoreCase(FileExtension(path), L".kvxproj"); }

void FileReadAhead(const wchar_t* path) {
    wchar_t file[kPathCapacity] = {};
    if (ResolveInputPath(path, file, kPathCapacity, true) && !FileIsProject(file)) DocumentReadAhead(file);
}

int FileShow(const wchar_t* path, bool quiet) {
    wchar_t file[kPathCapacity] = {};
    return ResolveInputPath(path, file, kPathCapacity, quiet) && ShowDocument(file, quiet) != Opened::Failed ? 1 : 0;
}

// Adds the document of a file with `add`, unless it is open. -1: the path is none, or its share does not answer.
template <typename Add>
static int AddFile(const wchar_t* path, Add add) {
    wchar_t file[kPathCapacity] = {};
    if (!ResolveInputPath(path, file, kPathCapacity, true)) return -1;
    const int existing = TabBarFindPath(file);
    if (existing >= 0) return existing;
    // One share that went away would keep the user waiting for each of its files.
    if (!PathAnswers(file)) return -1;
    wchar_t label[kLabelCapacity];
    PathGetFile(file, label, kLabelCapacity);
    return add(file, label);
}

int FileAdd(const wchar_t* path) {
    const int tab = AddFile(path, [](auto file, auto label) { return TabBarAdd(file, label); });
    return tab >= 0 && TabBarRead(tab) ? tab : -1;
}

int FileAddUnread(const wchar_t* path) {
    return AddFile(
        path, [](auto file, auto label) { return FileExists(file) ? TabBarAddUnread(file, label) : -1; });
}

int FileOpenResolveInitialDirectory(wchar_t* out, std::size_t capacity) {
    wchar_t exeDirectory[kPathCapacity] = {};
    AppExeDirectory(exeDirectory, kPathCapacity);
    const wchar_t* activeFile = L"";
    if (IsTabIndex(g_documents.activeTab)) {
        const DocumentTab& tab = TabAt(g_documents.activeTab);
        activeFile = tab.hasFile ? tab.path : L"";
    }
    const OpenDirectoryInputs inputs{
        .activeFile = activeFile, .lastDirectory = g_documents.lastDirectory, .exeDirectory = exeDirectory};
    return ResolveOpenDirectory(inputs, DirectoryExists, out, capacity) ? 1 : 0;
}

int FileConfirmClose(int tab) {
    if (!IsTabIndex(tab)) return 0;
    if (!TabAt(tab).modified) return 1;
    const DocumentId document = TabAt(tab).id;
    const Answer answer = AskSaveChanges(TabAt(tab).label);
    AppLogMsg(L"DBG FileClose: prompt answered tab=%d result=%d count=%d", tab, static_cast<int>(answer), TabCount());
    tab = TabBarFindDocument(document);  // timers and posted messages ran while the box was open
    if (tab < 0 || answer == Answer::Cancel) return 0;
    return answer == Answer::Yes ? FileSave(tab) : 1;
}

int FileClose(int tab) {
    if (!IsTabIndex(tab)) return 0;
    const DocumentId document = TabAt(tab).id;
    if (FileConfirmClose(tab) == 0 || TabBarRemove(TabBarFindDocument(document)) == 0) {
        g_documents.returnTo = 0;  // it stays open, so nothing is to be shown in its place
        return 0;
    }
    return 1;
}

// Saves the ticked rows one after the other; each is shown, because a question may come. Returns those that stay open:
// the first that could not be saved, and the ones after it.
static std::vector<DocumentId> SaveTicked(const std::vector<CloseRow>& rows) {
    std::vector<DocumentId> stay;
    for (const CloseRow& row : rows) {
        if (!row.ticked) continue;
        if (stay.empty()) TabBarSelect(TabBarFindDocument(row.document));
        const int tab = TabBarFindDocument(row.document);
        if (tab < 0 || !TabAt(tab).modified) continue;  // closed or saved meanwhile
        if (!stay.empty() || FileSave(tab) == 0) stay.push_back(row.document);
    }
    return stay;
}

static std::vector<DocumentId> AskAboutAll(const std::vector<DocumentId>& documents) {
    std::vector<CloseRow> rows;
    if (documents.size() == 1) TabBarSelect(TabBarFindDocument(documents.front()));  // what the question is about
    for (const DocumentId document : documents) {
        const DocumentTab& tab = TabAt(TabBarFindDocument(document));
        rows.push_back({.document = document, .label = tab.label, .folder = tab.hasFile ? FolderOf(tab.path) : L""});
    }
    const CloseAnswer answer = CloseQuestionAsk(rows);
    AppLogMsg(L"DBG FileClose: prompt answered documents=%d result=%d count=%d", static_cast<int>(documents.size()),
              static_cast<int>(answer), TabCount());
    switch (answer) {
        case CloseAnswer::Save: return SaveTicked(rows);
        case CloseAnswer::Discard: return {};
        case CloseAnswer::Cancel: break;
    }
    return documents;
}

int FileConfirmCloseAll(const std::vector<DocumentId>& documents, std::vector<DocumentId>* refused) {
    return ConfirmClosing(documents, {DocumentRowEntries, AskAboutAll}, refused) ? 1 : 0;
}

// The document that is shown while others are closed, so that no neighbour is shown, or read, after each: `kept`, or the
// one that was shown last. -1: all are closed.
static int TabToStandOn(const std::vector<DocumentId>& closing, DocumentId kept) {
    int best = -1;
    for (int i = 0; i < TabCount(); ++i) {
        if (std::ranges::find(closing, TabAt(i).id) != closing.end()) continue;
        if (TabAt(i).id == kept) return i;
        if (best < 0 || TabAt(i).lastShown > TabAt(best).lastShown) best = i;
    }
    return best;
}

int FileCloseDocuments(CloseRange range, DocumentId kept) {
    const std::vector<DocumentId> documents = DocumentsToClose(DocumentRowEntries(), range, kept);
    if (!documents.empty() && FileConfirmCloseAll(documents) == 0) return 0;
    const int stand = TabToStandOn(documents, kept);
    if (range == CloseRange::All || stand < 0) {
        TabBarRemoveAll();
        return 1;
    }
    TabBarActivate(stand);
    for (const DocumentId document : documents) TabBarRemove(TabBarFindDocument(document));
    return 1;
}

int FileCloseAll() { return FileCloseDocuments(CloseRange::All, 0); }

void FilesFollowRename(const std::wstring& from, const std::wstring& to) {
    for (int i = 0; i < TabCount(); ++i) {
        DocumentTab& tab = TabAt(i);
        if (!tab.hasFile || !PathIsWithin(from, tab.path)) continue;
        const std::wstring path = PathAfterMove(tab.path, from, to);
        if (path.size() >= kPathCapacity) continue;
        SafeCopyW(tab.path, path);
        PathGetFile(tab.path, tab.label, kLabelCapacity);
        TabBarUpdateTitle(i);
        OutsideOnDocuments();
    }
    g_events.fileRenamed(from.c_str(), to.c_str(), false);
    const auto isRecent = [&](const wchar_t(&file)[kPathCapacity]) { return PathIsWithin(from, file); };
    if (std::none_of(g_settings.mruFiles, g_settings.mruFiles + g_settings.mruCount, isRecent)) return;
    SettingsChange([&](Settings& settings) {
        for (int i = 0; i < settings.mruCount; ++i)
            if (const std::wstring path = PathAfterMove(settings.mruFiles[i], from, to); path.size() < kPathCapacity)
                SafeCopyW(settings.mruFiles[i], path);
    });
    SettingsSave(nullptr);
}

void MruAddFile(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return;
    SettingsChange([path](Settings& settings) {
        settings.mruCount = RecentListAdd(settings.mruFiles, settings.mruCount, path, RecentMatch::IgnoreCase);
    });
    SettingsSave(nullptr);
}

bool DirectoryExists(const wchar_t* path) {
    const DWORD attributes = path != nullptr ? GetFileAttributesW(PathExtended(path).c_str()) : INVALID_FILE_ATTRIBUTES;
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}
