// Saving of documents: under their own name, under a new one, all of them. UI thread.
#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "documents/editor_pane.h"
#include "documents/file_commands.h"
#include "documents/file_dialogs.h"
#include "documents/theme.h"
#include "files/file_io.h"
#include "files/recovery.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <string>
#include <string_view>

namespace {

bool g_saving = false;

// One save at a time. A save may put up a box, whose message loop runs the auto-save timer: without this guard each
// tick would stack another box on top.
class SaveGuard {
public:
    SaveGuard() : entered_(!g_saving) { g_saving = true; }
    ~SaveGuard() {
        if (entered_) g_saving = false;
    }
    SaveGuard(const SaveGuard&) = delete;
    SaveGuard& operator=(const SaveGuard&) = delete;
    bool Entered() const { return entered_; }

private:
    bool entered_;
};

void BackUp(const wchar_t* path) {
    // After a failed save the file may be cut short; the backup made before that save is the good one.
    if (g_settings.backupOnSave == 0 || !FileExists(path) || RecoveryHasKept(path)) return;
    const std::wstring backup = std::wstring{path} + L".bak";
    if (CopyFileW(PathExtended(path).c_str(), PathExtended(backup).c_str(), FALSE) == FALSE) {
        // The save goes on: the user's text matters more than the copy of the old one.
        AppLogMsg(L"FAIL: FileSave backup error=%lu path=%s", GetLastError(), backup.c_str());
    }
}

// Text that the code page cannot hold is never turned into question marks behind the user's back. Returns the encoding
// to save with, or -1 when the user would rather not save.
int ChooseEncoding(const DocumentTab& document, std::string_view text) {
    const int asIs = static_cast<int>(document.encoding);
    if (document.encoding != TextEncoding::Ansi || AnsiCanHold(text)) return asIs;
    const std::wstring question = FormatW(
        L"%s contains characters that the system's code page (ANSI) does not have. Saved as ANSI, each of them would "
        L"be "
        L"replaced.\n\nSave as UTF-8 instead?\n\nYes: save as UTF-8, nothing is lost\nNo: save as ANSI, these "
        L"characters are replaced\nCancel: do not save",
        document.label);
    switch (AskUser({.caption = kProgramCaption,
                     .text = question.c_str(),
                     .buttons = AskButtons::YesNoCancel,
                     .icon = AskIcon::Warning,
                     .inSelftest = Answer::Yes})) {
        case Answer::Yes: return static_cast<int>(TextEncoding::Utf8);
        case Answer::No: return asIs;
        case Answer::Cancel: break;
    }
    return -1;
}

// Writes the document to its own path.
int SaveTab(int tab) {
    const HWND editor = TabAt(tab).editor;
    BackUp(TabAt(tab).path);

    std::size_t length = 0;
    const HeapBlock<char> text{EditorPaneGetText(editor, &length)};
    if (!text) {
        AppLogMsg(L"FAIL: FileSave no memory for the text");
        return 0;
    }
    const int encoding = ChooseEncoding(TabAt(tab), {text.get(), length});
    tab = TabBarFindEditor(editor);  // the box may have let other work run
    if (encoding < 0 || tab < 0) return 0;
    DocumentTab& document = TabAt(tab);
    if (!WriteSourceFileFromEditor(document.path, text.get(), length, static_cast<TextEncoding>(encoding),
                                   document.lineEnding)) {
        const std::wstring copy = RecoveryLastPath();
        if (!copy.empty()) {
            AppLogMsg(L"FAIL: FileSave, the new text is kept in %s", copy.c_str());
            g_events.statusText(FormatW(L"Not saved. The text is kept in %s", copy.c_str()).c_str());
        }
        ErrorMessage(L"Failed to save file: %s", document.path);
        return 0;
    }
    document.encoding = static_cast<TextEncoding>(encoding);
    document.modified = false;
    SciSend(editor, SCI_SETSAVEPOINT);
    EditorPaneClearChangeMarks(editor);
    TabBarUpdateTitle(tab);
    g_events.documentSaved(document.id);
    return 1;
}

// Asks for the new name. False when the user cancelled or the file is open in another tab.
bool AskNewPath(int tab, wchar_t* out, std::size_t capacity) {
    wchar_t chosen[kPathCapacity];
    SafeCopyW(chosen, TabAt(tab).path);
    wchar_t directory[kPathCapacity] = {};
    FileOpenResolveInitialDirectory(directory, kPathCapacity);
    if (!AskSavePath(chosen, kPathCapacity, directory) || !PathNormalizeInput(chosen, out, capacity)) return false;
    const int other = TabBarFindPath(out);
    if (other >= 0 && other != tab) {
        ErrorMessage(L"%s is open in another tab. Close it there first, or choose another name.", out);
        return false;
    }
    return true;
}

// A file saved under a new name is ANSI with CRLF, whatever the document was before.
void BindToPath(DocumentTab& document, const wchar_t* path) {
    SafeCopyW(document.path, path);
    document.hasFile = true;
    document.encoding = TextEncoding::Ansi;
    document.lineEnding = LineEnding::CrLf;
    PathGetDir(path, g_documents.lastDirectory, kPathCapacity);
    PathGetFile(path, document.label, kLabelCapacity);
}

int SaveTabAs(int tab) {
    const HWND editor = TabAt(tab).editor;
    wchar_t path[kPathCapacity] = {};
    const bool chosen = AskNewPath(tab, path, kPathCapacity);
    tab = TabBarFindEditor(editor);
    if (!chosen || tab < 0) return 0;
    const DocumentTab before = TabAt(tab);
    BindToPath(TabAt(tab), path);
    const int saved = SaveTab(tab);
    tab = TabBarFindEditor(editor);
    if (tab < 0) return saved;
    DocumentTab& document = TabAt(tab);
    if (saved == 0) {
        // Nothing was written under the new name, so the document does not go by it: the next save must not take the
        // unfinished file for its own, nor the old file be forgotten.
        SafeCopyW(document.path, before.path);
        SafeCopyW(document.label, before.label);
        document.hasFile = before.hasFile;
        document.encoding = before.encoding;
        document.lineEnding = before.lineEnding;
        TabBarUpdateTitle(tab);
    } else {
        TabBarUpdateLineEnding(tab);
        SyntaxThemeApply(editor, document.compilerId, document.path);  // the extension may mean another language
    }
    g_events.documentChanged(document.id);
    return saved;
}

// Saves the modified documents that have a file, or those that have none. False at the first that was not saved.
bool SaveModified(bool withFile) {
    bool allSaved = true;
    for (int tab = 0; tab < TabCount() && (allSaved || withFile); ++tab) {
        const DocumentTab& document = TabAt(tab);
        if (!document.modified || document.hasFile != withFile) continue;
        if (!withFile) TabBarSelect(tab);  // the user sees which document wants a name
        allSaved = FileSave(tab) != 0 && allSaved;
    }
    return allSaved;
}

}  // namespace

int FileSave(int tab) {
    const SaveGuard guard;
    if (!guard.Entered() || !IsTabIndex(tab)) return 0;
    const DocumentTab& document = TabAt(tab);
    return document.hasFile && document.path[0] != L'\0' ? SaveTab(tab) : SaveTabAs(tab);
}

int FileSaveAs(int tab) {
    const SaveGuard guard;
    return guard.Entered() && IsTabIndex(tab) ? SaveTabAs(tab) : 0;
}

int FileSaveAll() {
    // Every file is tried; the dialogs for untitled documents end at the first one that is not answered with a name.
    const bool files = SaveModified(true);
    const bool untitled = SaveModified(false);
    return files && untitled ? 1 : 0;
}
