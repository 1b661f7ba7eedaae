// Notifications of the child controls, sorted to their areas. UI thread only.
#include "ai/ai_replace.h"
#include "app/app_state.h"
#include "app/main_window.h"
#include "app/notify_rules.h"
#include "app/panes.h"
#include "base/bounded_text.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "completion/completion.h"
#include "completion/tips.h"
#include "debugui/breakpoint_list.h"
#include "debugui/debug_commands.h"
#include "debugui/debug_pane.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/nav_history.h"
#include "documents/sticky_label.h"
#include "editor/editor_pane.h"
#include "editor/margins.h"
#include "files/file_io.h"
#include "output/mark_view.h"
#include "recovery/snapshots.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/files_search.h"
#include "search/find.h"
#include "search/find_bar.h"
#include "settings/settings_state.h"
#include "symbols/document_symbols.h"
#include "tabs/tab_bar.h"

#include <shellapi.h>

#include <string>
#include <vector>

namespace {

void OnSavePoint(int tab, bool modified) {
    TabAt(tab).modified = modified || TabAt(tab).mustSave;
    if (modified && TabAt(tab).buildMark == BuildMark::Ok) TabAt(tab).buildMark = BuildMark::None;  // of another text
    if (!TabAt(tab).modified) SourceMarksOnSaved(TabAt(tab).id);  // the text is that of the file again
    TabBarUpdateTitle(tab);
    MainWindow_RequestStateRefresh();
}

void OnZoom(HWND editor) {
    const auto zoom = static_cast<int>(SciSend(editor, SCI_GETZOOM));
    if (zoom != g_app.settings.editorZoom) SettingsChange([zoom](Settings& settings) { settings.editorZoom = zoom; });
}

// The status bar follows with the pending refresh: shown here, it would be painted ahead of the typed character.
void OnCaretOrSelection() {
    UpdateStickyHeader(g_app.hEditor, g_app.hStickyHeader);
    EditorPaneUpdateBraces(g_app.hEditor);
    NavHistoryMaybeAdd();
    SourceMarksOnCaret(ActiveDocumentId());
    MainWindow_RequestStateRefresh();
}

// Line of a notification that says where the mouse is, from 1.
int LineOf(HWND editor, Sci_Position position) {
    return static_cast<int>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position))) + 1;
}

void OnLinesMoved(HWND editor, DocumentId document, const SCNotification& change) {
    if (change.linesAdded == 0) return;
    const int line = LineOf(editor, change.position);
    const bool atLineStart = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(line - 1)) == change.position;
    BreakpointsOnLinesMoved(document, LineBeforeMoved(line, change.linesAdded, atLineStart),
                            static_cast<int>(change.linesAdded));
}

void TellSearch(DocumentId document, const SCNotification& change) {
    const bool insertion = (change.modificationType & SC_MOD_INSERTTEXT) != 0;
    if (!insertion && (change.modificationType & SC_MOD_DELETETEXT) == 0) return;
    const Sci_Position inserted = insertion ? change.length : 0, removed = insertion ? 0 : change.length;
    FindOnEdit(document, change.position, inserted, removed);
    const std::string_view text =
        change.text != nullptr ? std::string_view(change.text, static_cast<std::size_t>(change.length)) : "";
    FilesSearchOnEdit(document, change.position, text, insertion);
}

void OnMarginClick(HWND editor, DocumentId document, const SCNotification& click) {
    if (click.margin != kMarginSymbols || DebugIsWaiting()) return;
    BreakpointToggle(document, LineOf(editor, click.position));
    MainWindow_RequestStateRefresh();
}

// The word under the mouse, when it is one that could name a register.
std::wstring ShortWordAt(HWND editor, Sci_Position position) {
    const LRESULT start = SciSend(editor, SCI_WORDSTARTPOSITION, static_cast<WPARAM>(position), TRUE);
    const LRESULT end = SciSend(editor, SCI_WORDENDPOSITION, static_cast<WPARAM>(position), TRUE);
    std::wstring word;
    if (!CouldNameRegister(end - start)) return word;
    for (LRESULT at = start; at < end; ++at)
        word += static_cast<wchar_t>(SciSend(editor, SCI_GETCHARAT, static_cast<WPARAM>(at)) & 0xFF);
    return word;
}

// The margin under the mouse; -1: none.
int MarginAt(HWND editor, int x) {
    int left = 0;
    for (int margin = 0; margin < kMarginCount; ++margin) {
        const auto width = static_cast<int>(SciSend(editor, SCI_GETMARGINWIDTHN, static_cast<WPARAM>(margin)));
        if (IsWithinMargin(x, left, width)) return margin;
        left += width;
    }
    return -1;
}

// Of a name that the user has given, with the declaration below it, or of a register.
std::wstring ValueTip(HWND editor, DocumentId document, Sci_Position position) {
    if (std::wstring tip = DebugNameTip(document, position); !tip.empty()) {
        LRESULT start = position;
        const std::string declared = HoverTextAt(document, position, &start);
        return declared.empty() ? tip : tip + L"\n" + Utf8ToWideText(declared);
    }

    wchar_t text[128] = {};
    const std::wstring word = ShortWordAt(editor, position);
    const bool known = !word.empty() && DebugRegisterTip(word.c_str(), text, static_cast<int>(std::size(text)));
    return known ? text : L"";
}

// A tip would be shown over the menu.
bool MenuIsOpen() {
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    return GetGUIThreadInfo(GetCurrentThreadId(), &info) != FALSE && (info.flags & GUI_INMENUMODE) != 0;
}

void OnDwell(HWND editor, DocumentId document, const SCNotification& dwell) {
    if (DebugIsWaiting() || g_app.wordListOpen || MenuIsOpen()) return;  // a tip would cover the list
    const LRESULT place = SciSend(editor, SCI_POSITIONFROMPOINT, static_cast<WPARAM>(dwell.x), dwell.y);
    std::wstring tip;
    switch (DwellPlaceOf(MarginAt(editor, dwell.x), dwell.position)) {
        case DwellPlace::SymbolMargin: tip = BreakpointTip(document, LineOf(editor, place)); break;
        case DwellPlace::ProblemMargin: tip = SourceMarksTip(document, place, true); break;
        case DwellPlace::Text:
            tip = SourceMarksTip(document, dwell.position, false);
            if (tip.empty()) tip = ValueTip(editor, document, dwell.position);
            break;
        case DwellPlace::Nothing: break;
    }
    if (tip.empty() && dwell.position >= 0) return HoverAtMouse(editor, document, dwell.position);
    if (!tip.empty()) HoverShowLines(editor, place, ToUtf8(tip.c_str()));
}

void OnViewOrText(HWND editor, int updated) {
    SourceMarksOnView(DocumentOfEditor(editor));
    FindBarOnView(editor, updated);
    if (editor == g_app.hEditor && (updated & (SC_UPDATE_CONTENT | SC_UPDATE_SELECTION)) != 0) OnCaretOrSelection();
    if (editor == g_app.hEditor && (updated & SC_UPDATE_V_SCROLL) != 0) StickyHeaderOnScroll(editor);
    HoverOnView(editor, (updated & SC_UPDATE_CONTENT) != 0);
    CallTipOnView(editor);
}

void OnTextModified(HWND editor, int tab, const SCNotification& notification) {
    const bool wasPlain = EditorPaneIsPlain(editor);
    EditorPaneOnModified(editor, notification);
    if (!wasPlain && EditorPaneIsPlain(editor)) TellDocumentPlain(tab);
}

void OnEditorNotification(const SCNotification& notification) {
    HWND editor = static_cast<HWND>(notification.nmhdr.hwndFrom);
    const int tab = TabBarFindEditor(editor);
    if (tab < 0) return;
    const DocumentId document = TabAt(tab).id;
    switch (notification.nmhdr.code) {
        case SCN_MODIFIED:
            OnTextModified(editor, tab, notification);
            OnLinesMoved(editor, document, notification);
            TellSearch(document, notification);
            SourceMarksOnEdit(document, notification);
            AiOnTextEdited(document, notification);
            FindBarOnModified(editor, notification.modificationType);
            SymbolsOnModified(document, notification);
            SnapshotsOnModified(document, notification);
            if ((notification.modificationType & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT)) != 0)
                BuildOnTextEdited(document);
            break;
        case SCN_PAINTED: BreakpointsOnPainted(document); break;
        case SCN_SAVEPOINTLEFT: OnSavePoint(tab, true); break;
        case SCN_SAVEPOINTREACHED: OnSavePoint(tab, false); break;
        case SCN_UPDATEUI: OnViewOrText(editor, notification.updated); break;
        case SCN_CHARADDED: CallTipOnCharacter(editor, notification.ch); break;
        case SCN_CALLTIPCLICK: CallTipOnClick(editor, static_cast<int>(notification.position)); break;
        case SCN_ZOOM: OnZoom(editor); break;
        case SCN_MARGINCLICK: OnMarginClick(editor, document, notification); break;
        case SCN_DWELLSTART: OnDwell(editor, document, notification); break;
        case SCN_DWELLEND: HoverMouseMoved(editor); break;
        default: break;
    }
    CompletionOnNotify(editor, notification);
}

bool IsEditor(int controlId) { return controlId >= IDC_EDITOR_FIRST; }

}  // namespace

LRESULT MainWnd_OnNotify(const NMHDR& header) {
    if (IsEditor(static_cast<int>(header.idFrom))) {
        OnEditorNotification(reinterpret_cast<const SCNotification&>(header));
        return 0;
    }
    LRESULT result = 0;
    if (TabBarHandleNotify(header) || ToolbarHandleNotify(header, &result) || NotifyPanes(header, &result))
        return result;
    return 0;
}

void MainWnd_OnDropFiles(HDROP drop) {
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    std::vector<std::wstring> paths;
    for (UINT i = 0; i < count; ++i) {
        std::wstring path(DragQueryFileW(drop, i, nullptr, 0), L'\0');
        DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size() + 1));
        paths.push_back(path);
    }
    DragFinish(drop);  // before opening: the source program waits for it, and a message box may come up
    for (const std::wstring& path : paths) FileOpen(path.c_str());
    SetForegroundWindow(g_app.hMainWnd);
}
