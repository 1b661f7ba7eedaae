// Changes the row of documents and their editors, and announces each change by an event. UI thread.
#include "documents/document_row.h"

#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "documents/document_load.h"
#include "documents/nav_history.h"
#include "documents/row_rules.h"
#include "documents/save_rules.h"
#include "documents/sticky_label.h"
#include "editor/editor_pane.h"
#include "files/share_probe.h"
#include "language/lexer_table.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "scintilla/scintilla_library.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace {

int g_nextEditorId = IDC_EDITOR_FIRST;
DocumentId g_nextDocument = 1;

constexpr int ScintillaEol(LineEnding ending) {
    switch (ending) {
        case LineEnding::Lf: return SC_EOL_LF;
        case LineEnding::Cr: return SC_EOL_CR;
        case LineEnding::CrLf: break;
    }
    return SC_EOL_CRLF;
}

// A document with a new name may have another language: MSG_REINIT_EDITOR asks the main window to set its editor up
// again. The message carries the id and the index, because the row may change before it arrives.
void CheckLanguage(int index) {
    const DocumentTab& tab = TabAt(index);
    if (!tab.hasFile || tab.editor == nullptr || g_scintilla.createLexer == nullptr) return;
    const bool plain = EditorPaneIsPlain(tab.editor);
    const LanguageLexer& wanted = LexerOf(plain ? Language::None : LexerFromExtension(tab.path));
    char current[64] = "";
    if (SciSend(tab.editor, SCI_GETLEXER) != 0 && SciSend(tab.editor, SCI_GETLEXERLANGUAGE) < 64)
        SciSend(tab.editor, SCI_GETLEXERLANGUAGE, 0, reinterpret_cast<LPARAM>(current));
    if (std::strcmp(current, wanted.name != nullptr ? wanted.name : "") == 0) return;
    PostMessageW(g_ui.hMainWnd, MSG_REINIT_EDITOR, static_cast<WPARAM>(index), tab.id);
}

template <typename Matches>
int FindTab(Matches matches) {
    const auto found = std::ranges::find_if(g_documents.tabs, matches);
    return found == g_documents.tabs.end() ? -1 : static_cast<int>(found - g_documents.tabs.begin());
}

// Gives an editor that is not shown the place of the one that is, because the first visible line and wrapping depend on
// the size. The layout places only the active editor.
void PlaceLikeActive(HWND editor) {
    RECT place = {};
    if (g_documents.hEditor == nullptr || GetWindowRect(g_documents.hEditor, &place) == FALSE) return;
    MapWindowPoints(nullptr, g_ui.hMainWnd, reinterpret_cast<POINT*>(&place), 2);
    SetWindowPos(editor, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void HideOtherEditors() {
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.editor != nullptr && tab.editor != g_documents.hEditor &&
            (GetWindowLongPtrW(tab.editor, GWL_STYLE) & WS_VISIBLE) != 0)
            ShowWindow(tab.editor, SW_HIDE);
}

}  // namespace

int TabBarFindDocument(DocumentId document) {
    if (document == 0) return -1;
    return FindTab([document](const DocumentTab& tab) { return tab.id == document; });
}

int TabBarFindEditor(HWND editor) {
    if (editor == nullptr) return -1;
    return FindTab([editor](const DocumentTab& tab) { return tab.editor == editor; });
}

int TabBarFindPath(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return -1;
    return FindTab([path](const DocumentTab& tab) { return tab.hasFile && PathEqualsIgnoreCase(tab.path, path); });
}

int TabBarFindFile(const wchar_t* path) {
    const int named = TabBarFindPath(path);
    if (named >= 0 || path == nullptr || path[0] == L'\0') return named;
    if (!PathAnswers(path)) return -1;  // a file without a share has no second name that matters
    const FileIdentity identity = FileIdentityOf(path);
    if (!identity.IsKnown()) return -1;
    // The document's own file is asked again, because it may have been replaced since it was read.
    return FindTab([&identity](const DocumentTab& tab) {
        return tab.hasFile && tab.onDisk.identity == identity && FileIdentityOf(tab.path) == identity;
    });
}

DocumentId DocumentOfEditor(HWND editor) {
    const int index = TabBarFindEditor(editor);
    return index < 0 ? 0 : TabAt(index).id;
}

std::vector<RowEntry> DocumentRowEntries() {
    std::vector<RowEntry> row;
    for (const DocumentTab& tab : g_documents.tabs)
        row.push_back({.id = tab.id, .modified = tab.modified, .hasFile = tab.hasFile, .pinned = tab.pinned});
    return row;
}

DocumentId ActiveDocumentId() { return IsTabIndex(g_documents.activeTab) ? TabAt(g_documents.activeTab).id : 0; }

// Makes the editor of a document, with the text of its file when it has one.
static LoadEnd MakeEditor(DocumentTab& tab) {
    tab.editor = EditorPaneCreate(g_ui.hInstance, g_ui.hMainWnd, g_nextEditorId);
    if (tab.editor == nullptr) return LoadEnd::NoMemory;
    ++g_nextEditorId;
    PlaceLikeActive(tab.editor);
    if (!tab.hasFile) return LoadEnd::Done;
    LoadedFile file;
    LoadEnd end = DocumentRead(tab.path, tab.label, &file);
    if (end == LoadEnd::Done && !DocumentShow(tab, std::move(file))) end = LoadEnd::NoMemory;
    if (end != LoadEnd::Done) DestroyWindow(std::exchange(tab.editor, nullptr));
    return end;
}

static DocumentTab NewDocument(const wchar_t* path, const wchar_t* label) {
    DocumentTab tab;
    tab.hasFile = path != nullptr && path[0] != L'\0';
    if (tab.hasFile) SafeCopyW(tab.path, path);
    SafeCopyW(tab.label, label != nullptr ? label : L"");
    tab.compilerId =
        tab.hasFile ? CompilerDefaultForFile(tab.path) : static_cast<std::uint32_t>(g_settings.activeCompiler);
    return tab;
}

// The document is in the row and has its text.
static void SetUpEditor(int index) {
    const DocumentTab& tab = TabAt(index);
    TabBarUpdateLineEnding(index);
    EditorPaneSetFile(tab.editor, tab.id, tab.path);
    EditorPaneInit(tab.editor, tab.compilerId);
    EditorPaneApplySettings(tab.editor);
}

int TabBarAdd(const wchar_t* path, const wchar_t* label, LoadEnd* why) {
    DocumentTab tab = NewDocument(path, label);
    const LoadEnd end = MakeEditor(tab);
    if (why != nullptr) *why = end;
    if (end != LoadEnd::Done) return -1;
    tab.id = g_nextDocument++;

    g_documents.tabs.push_back(tab);
    const int index = TabCount() - 1;
    SetUpEditor(index);
    g_events.documentOpened(tab.id);
    g_events.textArrived(tab.id);
    TellDocumentForm(index);
    return index;
}

std::wstring LabelWithoutFile(const std::wstring& wanted) {
    std::vector<std::wstring> labels;
    for (const DocumentTab& tab : g_documents.tabs)
        if (!tab.hasFile) labels.emplace_back(tab.label);
    return FreeLabel(wanted, labels);
}

int TabBarAddUnread(const wchar_t* path, const wchar_t* label) {
    DocumentTab tab = NewDocument(path, label);
    tab.id = g_nextDocument++;
    g_documents.tabs.push_back(tab);
    g_events.documentOpened(tab.id);
    return TabCount() - 1;
}

bool TabBarRead(int index) {
    if (!IsTabIndex(index)) return false;
    if (TabAt(index).editor != nullptr) return true;
    DocumentTab tab = TabAt(index);  // a copy: reading a large file handles messages
    const LoadEnd end = MakeEditor(tab);
    index = TabBarFindDocument(tab.id);
    if (end != LoadEnd::Done || index < 0) {
        if (tab.editor != nullptr) DestroyWindow(tab.editor);
        if (end != LoadEnd::Cancelled && index >= 0)
            ErrorMessage(Text(L"Failed to open file: %s%s"), tab.path, LoadFailureText(end).c_str());
        return false;
    }
    TabAt(index) = tab;
    SetUpEditor(index);
    g_events.textArrived(tab.id);
    g_events.documentChanged(tab.id);
    TellDocumentForm(index);
    return true;
}

void TellDocumentForm(int index) {
    if (!IsTabIndex(index)) return;
    const std::wstring notice = FormNotice(TabAt(index));
    if (!notice.empty()) g_events.documentNotice(TabAt(index).id, notice.c_str());
    if (EditorPaneIsPlain(TabAt(index).editor)) TellDocumentPlain(index);
}

void TellDocumentPlain(int index) {
    const DocumentTab& tab = TabAt(index);
    g_events.documentNotice(tab.id, PlainNotice(tab.label, EditorPaneLongLine(tab.editor)).c_str());
}

void TabBarSyncActiveEditor() {
    if (IsTabIndex(g_documents.activeTab)) TabBarRead(g_documents.activeTab);
    const HWND previous = g_documents.hEditor;
    const HWND focus = GetFocus();
    g_documents.hEditor = IsTabIndex(g_documents.activeTab) ? TabAt(g_documents.activeTab).editor : nullptr;
    // The new editor is shown above the old one before the old one is hidden, so that nothing else is visible in
    // between.
    if (g_documents.hEditor != nullptr) {
        TabAt(g_documents.activeTab).lastShown = ++g_documents.timesShown;
        SetWindowPos(g_documents.hEditor, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        g_events.layoutWanted();
        ShowWindow(g_documents.hEditor, SW_SHOWNA);
    }
    // Without a document the frame keeps the focus for the next one.
    const bool hadFocus = focus != nullptr && previous != g_documents.hEditor &&
                          focus == (previous != nullptr ? previous : g_ui.hMainWnd);
    if (hadFocus) SetFocus(g_documents.hEditor != nullptr ? g_documents.hEditor : g_ui.hMainWnd);
    HideOtherEditors();
    if (g_documents.hEditor != nullptr) {
        UpdateStickyHeader(g_documents.hEditor, g_documents.hStickyHeader);
        NavHistoryMaybeAdd();
    } else if (g_documents.hStickyHeader != nullptr) {
        SetWindowTextW(g_documents.hStickyHeader, L"");
    }
    g_events.documentActivated(ActiveDocumentId());
}

int TabBarSelect(int index) {
    if (!IsTabIndex(index)) return 0;
    g_documents.activeTab = index;
    TabBarSyncActiveEditor();
    return 1;
}

int TabBarActivate(int index) {
    if (TabBarSelect(index) == 0) return 0;
    FocusCurrentEditor();
    return 1;
}

int TabBarSelectToClose(int index) {
    if (!IsTabIndex(index)) return 0;
    g_documents.returnTo = index == g_documents.activeTab ? 0 : ActiveDocumentId();
    return index == g_documents.activeTab ? 1 : TabBarSelect(index);
}

int TabBarRemove(int index) {
    if (!IsTabIndex(index)) return 0;
    const bool wasActive = index == g_documents.activeTab;
    const DocumentId document = TabAt(index).id;
    const HWND editor = TabAt(index).editor;
    const int wanted = TabBarFindDocument(std::exchange(g_documents.returnTo, 0));
    const bool hadFocus = GetFocus() == editor;
    g_events.documentClosing(document);
    g_events.textLeaving(document);
    g_documents.activeTab = TabToShowAfterRemoval(g_documents.activeTab, index, TabCount(), wanted);
    g_documents.tabs.erase(g_documents.tabs.begin() + index);
    if (wasActive) g_documents.hEditor = nullptr;  // is about to be destroyed, so nothing may be sent to it
    NavTabRemoved(g_documents.navigation, index);
    g_events.documentClosed(document, index);
    TabBarSyncActiveEditor();
    if (hadFocus) SetFocus(g_documents.hEditor != nullptr ? g_documents.hEditor : g_ui.hMainWnd);
    if (editor != nullptr) DestroyWindow(editor);
    return 1;
}

void TabBarRemoveAll() {
    for (int tab = TabCount() - 1; tab >= 0; --tab)
        if (tab != g_documents.activeTab) TabBarRemove(tab);
    while (TabCount() > 0) TabBarRemove(0);
}

int TabBarMove(int from, int to) {
    if (!IsTabIndex(from) || !IsTabIndex(to)) return 0;
    to = TabPlaceAllowed(DocumentRowEntries(), from, to);
    if (from == to) return 1;
    const auto first = g_documents.tabs.begin();
    if (from < to)
        std::rotate(first + from, first + from + 1, first + to + 1);
    else
        std::rotate(first + to, first + from, first + from + 1);
    g_documents.activeTab = TabIndexAfterMove(g_documents.activeTab, from, to);
    NavTabMoved(g_documents.navigation, from, to);
    g_events.documentMoved(from, to);
    return 1;
}

void TabBarPin(int index, bool pinned) {
    if (!IsTabIndex(index) || TabAt(index).pinned == pinned) return;
    const DocumentId document = TabAt(index).id;
    TabAt(index).pinned = pinned;
    TabBarMove(index, pinned ? TabCount() - 1 : 0);  // as far as it may
    g_events.documentChanged(document);
}

void TabBarSortPinned() {
    int next = 0;
    for (int i = 0; i < TabCount(); ++i)
        if (TabAt(i).pinned) TabBarMove(i, next++);
}

void TabBarUpdateLineEnding(int index) {
    if (!IsTabIndex(index)) return;
    const DocumentTab& tab = TabAt(index);
    SciSend(tab.editor, SCI_SETEOLMODE, static_cast<WPARAM>(ScintillaEol(tab.lineEnding)));
}

void TabBarUpdateTitle(int index) {
    if (!IsTabIndex(index)) return;
    CheckLanguage(index);
    g_events.documentChanged(TabAt(index).id);
}
