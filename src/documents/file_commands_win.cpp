// New, open, reload and close of documents, and the recent-file list. Knows the tab bar and the files, not the menu that
// calls it; saving is in file_save_win.cpp. UI thread.
#include "documents/file_commands.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "documents/editor_pane.h"
#include "documents/file_dialogs.h"
#include "documents/open_directory.h"
#include "documents/recent_files.h"
#include "files/file_io.h"
#include "scintilla/sci.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <string>

namespace {

// The path as the rest of the program uses it: absolute, backslashes. False, after telling the user if that is wanted,
// when it does not fit.
bool ResolveInputPath(const wchar_t* input, wchar_t* out, std::size_t capacity, bool quiet) {
    if (PathNormalizeInput(input, out, capacity)) return true;
    AppLogMsg(L"FAIL: FileOpen path does not fit: %s", input);
    if (quiet) return false;
    ErrorMessage(L"Failed to open file: %s\n\nThe path is not valid or longer than %d characters.", input,
                 static_cast<int>(capacity - 1));
    return false;
}

// The compiler that the file's name asks for becomes the active one.
void SelectCompilerFor(const wchar_t* path) {
    const auto compiler = static_cast<std::int32_t>(CompilerDefaultForFile(path));
    SettingsChange([compiler](Settings& settings) { settings.activeCompiler = compiler; });
}

// Caret and scroll position of an editor, to be put back after its text was replaced.
struct ViewPosition {
    LRESULT caret;
    LRESULT firstLine;
};

ViewPosition CaptureView(HWND editor) {
    return {SciSend(editor, SCI_GETCURRENTPOS), SciSend(editor, SCI_GETFIRSTVISIBLELINE)};
}

void RestoreView(HWND editor, const ViewPosition& view) {
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    SciSend(editor, SCI_GOTOPOS, static_cast<WPARAM>(std::min(view.caret, length)));
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(view.firstLine));
}

// A self-test run keeps nothing.
Answer AskSaveChanges(int tab) {
    wchar_t question[512];
    FormatBufferW(question, L"Save changes to %s?", TabAt(tab).label);
    return AskUser({.caption = L"Unsaved Changes",
                    .text = question,
                    .buttons = AskButtons::YesNoCancel,
                    .icon = AskIcon::Question,
                    .inSelftest = Answer::No});
}

// Reloading cannot be undone, so edits are not given up without a word.
bool MayDiscardChanges(const DocumentTab& document) {
    if (!document.modified) return true;
    wchar_t question[512];
    FormatBufferW(question, L"Reload %s and lose the changes made here?", document.label);
    return AskUser({.caption = L"Unsaved Changes",
                    .text = question,
                    .buttons = AskButtons::YesNo,
                    .icon = AskIcon::Question,
                    .inSelftest = Answer::Yes}) == Answer::Yes;
}

// The editor found no memory for the whole text. What it holds is no longer the file's, so that no save, least of all
// the timer's, cuts the file as well.
void KeepFileFromCutText(int tab) {
    DocumentTab& document = TabAt(tab);
    const std::wstring path{document.path};
    document.path[0] = L'\0';
    document.hasFile = false;
    document.modified = true;
    TabBarUpdateTitle(tab);
    ErrorMessage(L"Failed to reload file: %s", path.c_str());
}

enum class Opened { Failed, WasOpen, New };

// Shows the document of an absolute path, which is opened when it is not.
Opened ShowDocument(const wchar_t* file, bool quiet) {
    const int existing = TabBarFindPath(file);
    if (existing >= 0) {
        TabBarSelect(existing);
        return Opened::WasOpen;
    }
    wchar_t label[kLabelCapacity];
    PathGetFile(file, label, kLabelCapacity);
    const int tab = TabBarAdd(file, label);
    if (tab < 0) {
        if (!quiet) ErrorMessage(L"Failed to open file: %s", file);
        return Opened::Failed;
    }
    TabBarSelect(tab);
    return Opened::New;
}

}  // namespace

int FileNew() {
    const int tab = TabBarAdd(L"", L"Untitled");
    if (tab < 0) return 0;
    TabBarSelect(tab);
    return 1;
}

int FileOpen(const wchar_t* path) {
    wchar_t chosen[kPathCapacity] = {};
    if (path == nullptr) {
        wchar_t directory[kPathCapacity] = {};
        FileOpenResolveInitialDirectory(directory, kPathCapacity);
        if (!AskOpenPath(chosen, kPathCapacity, directory)) return 0;
        path = chosen;
    }
    wchar_t file[kPathCapacity] = {};
    if (!ResolveInputPath(path, file, kPathCapacity, false)) return 0;
    const Opened opened = ShowDocument(file, false);
    if (opened == Opened::New) {
        SelectCompilerFor(file);
        MruAddFile(file);
        PathGetDir(file, g_documents.lastDirectory, kPathCapacity);
        g_events.folderChosen(g_documents.lastDirectory);
    }
    return opened == Opened::Failed ? 0 : 1;
}

int FileShow(const wchar_t* path, bool quiet) {
    wchar_t file[kPathCapacity] = {};
    return ResolveInputPath(path, file, kPathCapacity, quiet) && ShowDocument(file, quiet) != Opened::Failed ? 1 : 0;
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

int FileReload(int tab) {
    if (!IsTabIndex(tab) || !TabAt(tab).hasFile) return 0;
    const HWND editor = TabAt(tab).editor;
    const bool mayDiscard = MayDiscardChanges(TabAt(tab));
    tab = TabBarFindEditor(editor);  // the box may have let other work run
    if (!mayDiscard || tab < 0) return 0;
    DocumentTab& document = TabAt(tab);
    std::size_t length = 0;
    TextEncoding encoding = document.encoding;
    LineEnding lineEnding = document.lineEnding;
    const HeapBlock<char> text{ReadSourceFileForEditor(document.path, &length, &encoding, &lineEnding)};
    if (!text) {
        ErrorMessage(L"Failed to reload file: %s", document.path);
        return 0;
    }
    document.encoding = encoding;
    document.lineEnding = lineEnding;
    TabBarUpdateLineEnding(tab);
    const ViewPosition view = CaptureView(document.editor);
    g_events.textLeaving(document.id);
    EditorPaneSetBytes(document.editor, {text.get(), length});
    g_events.textArrived(document.id);
    if (static_cast<std::size_t>(SciSend(document.editor, SCI_GETLENGTH)) != length) {
        KeepFileFromCutText(tab);
        return 0;
    }
    RestoreView(document.editor, view);
    document.modified = false;
    TabBarUpdateTitle(tab);
    return 1;
}

int FileConfirmClose(int tab) {
    if (!IsTabIndex(tab)) return 0;
    if (!TabAt(tab).modified) return 1;
    // Timers and posted messages run while the box is up, so the tab is found again by its editor.
    const HWND editor = TabAt(tab).editor;
    const Answer answer = AskSaveChanges(tab);
    AppLogMsg(L"DBG FileClose: prompt answered tab=%d result=%d count=%d", tab, static_cast<int>(answer), TabCount());
    tab = TabBarFindEditor(editor);
    if (tab < 0 || answer == Answer::Cancel) return 0;
    return answer == Answer::Yes ? FileSave(tab) : 1;
}

int FileClose(int tab) {
    if (!IsTabIndex(tab)) return 0;
    const HWND editor = TabAt(tab).editor;
    if (FileConfirmClose(tab) == 0 || TabBarRemove(TabBarFindEditor(editor)) == 0) {
        g_documents.returnTo = 0;  // the user would rather keep it: it was not selected only to go back from it
        return 0;
    }
    return 1;
}

int FileCloseAll() {
    while (TabCount() > 0) {
        const int tab = TabCount() - 1;
        if (TabAt(tab).modified) TabBarSelect(tab);  // the user sees what the question is about
        if (FileClose(tab) == 0) return 0;
    }
    return 1;
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
