// Reads the file of a document again. Only the lines that differ are changed, so that bookmarks, breakpoints, folds and the
// undo history stay. UI thread.
#include "documents/reload.h"

#include "base/events.h"
#include "base/log.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_load.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/outside.h"
#include "documents/save_rules.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "editor/margins.h"
#include "editor/text_change.h"
#include "scintilla/sci.h"
#include "ui/message.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// Caret and first visible line of an editor, kept while its text is replaced. The caret's place is a line and a column
// on the screen, because a byte position means another place once the text above it has changed.
struct ViewPosition {
    LRESULT line;
    LRESULT column;
    LRESULT firstLine;
};

ViewPosition CaptureView(HWND editor) {
    const auto caret = static_cast<WPARAM>(SciSend(editor, SCI_GETCURRENTPOS));
    return {SciSend(editor, SCI_LINEFROMPOSITION, caret), SciSend(editor, SCI_GETCOLUMN, caret),
            SciSend(editor, SCI_GETFIRSTVISIBLELINE)};
}

void RestoreView(HWND editor, const ViewPosition& view) {
    const auto line = static_cast<WPARAM>(std::min(view.line, SciSend(editor, SCI_GETLINECOUNT) - 1));
    CaretGoTo(editor, SciSend(editor, SCI_FINDCOLUMN, line, view.column));
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(view.firstLine));
}

// Asks before unsaved changes go. Undo brings them back when the lines of the file take the place of those in the editor.
bool MayDiscardChanges(const DocumentTab& document) {
    if (!document.modified) return true;
    const bool undone = !EditorPaneIsPlain(document.editor) && SciSend(document.editor, SCI_GETREADONLY) == 0;
    return AskUser({.caption = Text(L"Unsaved Changes"),
                    .text = ReloadQuestion(document.label, undone).c_str(),
                    .buttons = AskButtons::OkCancel,
                    .icon = undone ? AskIcon::Question : AskIcon::Warning,
                    .inSelftest = Answer::Yes,
                    .enterIsNo = true,
                    .yes = Text(L"&Reload"),
                    .loses = Answer::Yes}) == Answer::Yes;
}

// For an editor that had no memory for the whole text. Removes the document's file name, so that no later save (the
// auto-save timer's, for example) cuts the file too.
void UnbindCutDocument(int tab) {
    DocumentTab& document = TabAt(tab);
    document.path[0] = L'\0';
    document.hasFile = false;
    document.modified = true;
    document.mustSave = true;
    TabBarUpdateTitle(tab);
}

// Whether the lines of the file can take the place of those in the editor, which has UTF-8 whatever the file has.
bool MayChangeLines(const DocumentTab& document, const LoadedFile& file) {
    return file.bytes != nullptr && !file.plain && !EditorPaneIsPlain(document.editor) &&
           SciSend(document.editor, SCI_GETREADONLY) == 0;
}

// Changes the lines that differ, as one step of undo. The view stays on the lines that it shows, and the caret in its
// column. False when the editor does not hold the text.
bool ReloadLines(int tab, const LoadedFile& file) {
    const HWND editor = TabAt(tab).editor;
    const std::string_view text{file.bytes.get(), file.length};
    const ViewPosition view = CaptureView(editor);
    const auto top = static_cast<WPARAM>(SciSend(editor, SCI_DOCLINEFROMVISIBLE, static_cast<WPARAM>(view.firstLine)));
    const LRESULT rowsAbove = view.firstLine - SciSend(editor, SCI_VISIBLEFROMDOCLINE, top);
    // A marker that is never drawn goes with its line.
    const LRESULT topMark = SciSend(editor, SCI_MARKERADD, top, kMarkPlace);
    const LRESULT caretMark = SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(view.line), kMarkPlace);
    const bool hasSelection = SciSend(editor, SCI_GETSELECTIONEMPTY) == 0;
    EditorChangeLines(editor, text);
    const LRESULT topNow = SciSend(editor, SCI_MARKERLINEFROMHANDLE, static_cast<WPARAM>(topMark));
    const LRESULT caretNow = SciSend(editor, SCI_MARKERLINEFROMHANDLE, static_cast<WPARAM>(caretMark));
    SciClearMarker(editor, kMarkPlace);
    if (SciSend(editor, SCI_GETLENGTH) != static_cast<LRESULT>(text.size())) return false;
    if (!hasSelection && caretNow >= 0)
        CaretGoTo(editor, SciSend(editor, SCI_FINDCOLUMN, static_cast<WPARAM>(caretNow), view.column));
    if (topNow >= 0)
        SciSend(editor, SCI_SETFIRSTVISIBLELINE,
                static_cast<WPARAM>(SciSend(editor, SCI_VISIBLEFROMDOCLINE, static_cast<WPARAM>(topNow)) + rowsAbove));
    DocumentNoteRead(TabAt(tab), file);
    TabBarUpdateLineEnding(tab);
    SciSend(editor, SCI_SETSAVEPOINT);
    EditorPaneClearChangeMarks(editor);
    return true;
}

std::vector<LRESULT> BookmarksOf(HWND editor) {
    std::vector<LRESULT> lines;
    constexpr LPARAM kMask = 1 << kMarkBookmark;
    for (LRESULT line = -1; (line = SciSend(editor, SCI_MARKERNEXT, static_cast<WPARAM>(line + 1), kMask)) >= 0;)
        lines.push_back(line);
    return lines;
}

void RestoreBookmarks(HWND editor, const std::vector<LRESULT>& lines) {
    SciClearMarker(editor, kMarkBookmark);  // replacing the text has left all of them on the first line
    for (const LRESULT line : lines)
        if (line < SciSend(editor, SCI_GETLINECOUNT))
            SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line), kMarkBookmark);
}

// Puts what was read from its file into a document of the row. False when the editor does not hold all of it.
bool ShowReloaded(int tab, LoadedFile file) {
    DocumentTab& document = TabAt(tab);
    if (MayChangeLines(document, file)) return ReloadLines(tab, file);
    const bool newDocument = file.bytes == nullptr || file.plain != EditorPaneIsPlain(document.editor);
    const ViewPosition view = CaptureView(document.editor);
    const std::vector<LRESULT> bookmarks = BookmarksOf(document.editor);
    g_events.textLeaving(document.id);
    const bool whole = DocumentShow(document, std::move(file));
    TabBarUpdateLineEnding(tab);
    if (newDocument) {
        EditorPaneInit(document.editor, document.compilerId);
        EditorPaneApplySettings(document.editor);
    }
    g_events.textArrived(document.id);
    RestoreBookmarks(document.editor, bookmarks);
    if (whole) RestoreView(document.editor, view);
    return whole;
}

}  // namespace

int FileReload(int tab) {
    if (!IsTabIndex(tab) || !TabAt(tab).hasFile) return 0;
    const DocumentId id = TabAt(tab).id;
    if (TabAt(tab).editor == nullptr) {  // it could not be read before
        TabBarSelect(tab);
        tab = TabBarFindDocument(id);
        return tab >= 0 && TabAt(tab).editor != nullptr ? 1 : 0;
    }
    return MayDiscardChanges(TabAt(tab)) ? ReloadFromDisk(id, ReloadFailure::Box) : 0;
}

int ReloadFromDisk(DocumentId id, ReloadFailure failure) {
    int tab = TabBarFindDocument(id);  // messages may have been handled while a box was open
    if (tab < 0 || !TabAt(tab).hasFile || TabAt(tab).editor == nullptr) return 0;
    const std::wstring path{TabAt(tab).path};
    LoadedFile file;
    LoadEnd end = DocumentRead(path.c_str(), std::wstring{TabAt(tab).label}.c_str(), &file, TabAt(tab).readAs);
    tab = TabBarFindDocument(id);
    if (tab < 0) return 0;
    if (end == LoadEnd::Cancelled) {
        g_events.documentStatus(id, FormatW(Text(L"Reloading %s was cancelled"), TabAt(tab).label).c_str());
        return 0;
    }
    if (end == LoadEnd::Done && !ShowReloaded(tab, std::move(file))) {
        end = LoadEnd::NoMemory;
        UnbindCutDocument(tab);
    }
    if (end != LoadEnd::Done && failure == ReloadFailure::Status) {
        g_events.documentStatus(id, FormatW(Text(L"Failed to reload file: %s"), path.c_str()).c_str());
        return 0;
    }
    if (end != LoadEnd::Done) {
        ErrorMessage(Text(L"Failed to reload file: %s%s"), path.c_str(), LoadFailureText(end).c_str());
        return 0;
    }
    TabAt(tab).modified = false;
    TabAt(tab).mustSave = false;
    if (TabAt(tab).buildMark == BuildMark::Ok) TabAt(tab).buildMark = BuildMark::None;  // of another text
    TabBarUpdateTitle(tab);
    OutsideOnDocuments();
    TellDocumentForm(tab);
    return 1;
}
