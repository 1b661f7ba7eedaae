// The find and replace dialog, and "find next" without it. The search itself is in find_editor. UI thread.
#include "search/find.h"

#include "base/events.h"
#include "base/log.h"
#include "base/utf8.h"
#include "documents/caret_place.h"
#include "documents/document_row.h"
#include "documents/recent_files.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/find_editor.h"
#include "search/search_state.h"
#include "settings/settings_state.h"
#include "ui/dialog_theme.h"
#include "ui/dpi.h"
#include "ui/long_work.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

namespace {

constexpr int kReplaceRowHeight = 18;  // dialog units of the controls for replacing
constexpr int kFieldLimit = 255;       // characters, as many as the history holds

// The last search. It is kept while the dialog is closed.
struct FindState {
    std::wstring what;
    std::wstring with;
    FindOptions options;
    bool replacing = false;        // the dialog shows the controls for replacing
    DocumentId scopeDocument = 0;  // document of `scope`, 0: none
    FindSpan scope;                // the selection when "in selection" was ticked
};
FindState g_find;

bool IsFindOptionTicked(int control) { return IsDlgButtonChecked(g_search.hFindDialog, control) == BST_CHECKED; }

void ShowFindStatus(const wchar_t* text) {
    if (g_search.hFindDialog != nullptr)
        SetDlgItemTextW(g_search.hFindDialog, IDC_FIND_STATUS, text);
    else
        g_events.documentStatus(ActiveDocumentId(), text);
}

std::wstring FindFieldText(int control) {
    wchar_t text[kFieldLimit + 1] = {};
    GetDlgItemTextW(g_search.hFindDialog, control, text, static_cast<int>(std::size(text)));
    return text;
}

// Reads the dialog's fields into g_find. Does nothing while the dialog is closed.
void ReadFindDialog() {
    if (g_search.hFindDialog == nullptr) return;
    g_find.what = FindFieldText(IDC_FIND_WHAT);
    g_find.with = FindFieldText(IDC_FIND_WITH);
    g_find.options = {.matchCase = IsFindOptionTicked(IDC_FIND_CASE),
                      .wholeWord = IsFindOptionTicked(IDC_FIND_WORD),
                      .regex = IsFindOptionTicked(IDC_FIND_REGEX)};
}

void FillFindHistory() {
    const HWND combo = GetDlgItem(g_search.hFindDialog, IDC_FIND_WHAT);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    const Settings& settings = g_settings;
    for (int i = 0; i < std::min<int>(settings.searchHistoryCount, kSearchHistoryCapacity); ++i)
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(settings.searchHistory[i]));
}

void RememberSearch() {
    if (g_settings.searchHistoryCount > 0 && g_find.what == g_settings.searchHistory[0]) return;
    SettingsChange([](Settings& settings) {
        settings.searchHistoryCount =
            RecentListAdd(settings.searchHistory, settings.searchHistoryCount, g_find.what, RecentMatch::Exact);
    });
    if (g_search.hFindDialog != nullptr) {
        FillFindHistory();  // CB_RESETCONTENT empties the field too
        SetDlgItemTextW(g_search.hFindDialog, IDC_FIND_WHAT, g_find.what.c_str());
        SendDlgItemMessageW(g_search.hFindDialog, IDC_FIND_WHAT, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
    }
}

// Makes the query. False when it cannot be searched for; then the status says why. Also false without a document.
bool PrepareFind(FindQuery& query) {
    ReadFindDialog();
    const wchar_t* fault = PrepareQuery(ToUtf8(g_find.what), g_find.options, query);
    if (fault != nullptr) {
        ShowFindStatus(fault);
        return false;
    }
    RememberSearch();
    return g_documents.hEditor != nullptr;
}

FindSpan WholeDocument() { return {0, SciSend(g_documents.hEditor, SCI_GETLENGTH)}; }

// The range to search: the scope when "in selection" is ticked for this document, else the whole document.
FindSpan CurrentScope() {
    const bool inSelection = g_search.hFindDialog != nullptr && IsFindOptionTicked(IDC_FIND_SELECTION) &&
                             g_find.scopeDocument == ActiveDocumentId();
    return ScopeWithin(inSelection ? std::optional{g_find.scope} : std::nullopt, WholeDocument().end);
}

// Makes the selection the scope. When nothing is selected, unticks "in selection" and says so.
void TakeScope() {
    g_find.scopeDocument = ActiveDocumentId();
    g_find.scope = {SciSend(g_documents.hEditor, SCI_GETSELECTIONSTART),
                    SciSend(g_documents.hEditor, SCI_GETSELECTIONEND)};
    if (g_find.scope.start == g_find.scope.end) {
        g_find.scopeDocument = 0;
        CheckDlgButton(g_search.hFindDialog, IDC_FIND_SELECTION, BST_UNCHECKED);
        ShowFindStatus(L"Select the text to search in first");
    }
}

// Moves the dialog when it covers the match.
void UncoverMatch(FindSpan match) {
    if (g_search.hFindDialog == nullptr) return;
    const auto coordinate = [](UINT message, std::ptrdiff_t position) {
        return static_cast<LONG>(SciSend(g_documents.hEditor, message, 0, position));
    };
    RECT text = {coordinate(SCI_POINTXFROMPOSITION, match.start), coordinate(SCI_POINTYFROMPOSITION, match.start),
                 coordinate(SCI_POINTXFROMPOSITION, match.end), coordinate(SCI_POINTYFROMPOSITION, match.end)};
    text.bottom += static_cast<LONG>(SciSend(g_documents.hEditor, SCI_TEXTHEIGHT));
    text.right = std::max(text.right, text.left + 1);
    MapWindowPoints(g_documents.hEditor, nullptr, reinterpret_cast<POINT*>(&text), 2);
    RECT dialog = {};
    RECT overlap = {};
    GetWindowRect(g_search.hFindDialog, &dialog);
    if (IntersectRect(&overlap, &dialog, &text) == FALSE) return;
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(g_search.hFindDialog, MONITOR_DEFAULTTONEAREST), &monitor);
    const int top = DialogTopBesideMatch(text.top, text.bottom, dialog.bottom - dialog.top, monitor.rcWork.top,
                                         monitor.rcWork.bottom);
    SetWindowPos(g_search.hFindDialog, nullptr, dialog.left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void ShowMatch(FindSpan match) {
    CaretSelect(g_documents.hEditor, match.start, match.end);
    SciSend(g_documents.hEditor, SCI_CHOOSECARETX);
    UncoverMatch(match);
}

void FindAndShow(const FindQuery& query, bool forward) {
    const FindResult result = FindInScope(FindTextOf(g_documents.hEditor), query, CurrentScope(), forward);
    if (result.match)
        ShowMatch(*result.match);
    else
        MessageBeep(MB_OK);
    ShowFindStatus(SearchStatus(result.match.has_value(), result.wrapped, forward));
}

// PrepareFind, and false for a read-only document; then the status says so.
bool PrepareReplacing(FindQuery& query) {
    if (!PrepareFind(query)) return false;
    if (SciSend(g_documents.hEditor, SCI_GETREADONLY) == 0) return true;
    ShowFindStatus(L"The document is read-only");
    return false;
}

void ReplaceAndFindNext() {
    FindQuery query;
    if (!PrepareReplacing(query)) return;
    const std::ptrdiff_t before = WholeDocument().end;
    ReplaceSelection(g_documents.hEditor, query, ToUtf8(g_find.with), CurrentScope());
    g_find.scope.end += WholeDocument().end - before;
    FindAndShow(query, true);
}

void ReplaceAllMatches() {
    FindQuery query;
    if (!PrepareReplacing(query)) return;
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)));  // IDC_WAIT
    LongWork work(L"Replacing", ShowFindStatus);
    const ReplaceAllResult result = ReplaceAllInScope(g_documents.hEditor, query, ToUtf8(g_find.with), CurrentScope(),
                                                      [&work](double share) { return work.GoesOn(share); });
    SetCursor(before);
    g_find.scope.end += result.grown;
    ShowFindStatus(result.stopped ? L"Stopped: nothing was replaced" : ReplacementCountText(result.count).c_str());
}

// Shows or hides the controls for replacing. The controls below them move, and the dialog's height changes by as much.
void SetReplacing(HWND dialog, bool replacing) {
    SetWindowTextW(dialog, replacing ? L"Find and Replace" : L"Find");
    for (const int control : {IDC_FIND_WITH_LABEL, IDC_FIND_WITH, IDC_FIND_REPLACE, IDC_FIND_REPLACE_ALL})
        ShowWindow(GetDlgItem(dialog, control), replacing ? SW_SHOW : SW_HIDE);
    if (replacing == g_find.replacing) return;
    g_find.replacing = replacing;
    RECT row = {0, 0, 0, kReplaceRowHeight};
    MapDialogRect(dialog, &row);
    const int shift = replacing ? row.bottom : -row.bottom;
    for (const int control :
         {IDC_FIND_CASE, IDC_FIND_WORD, IDC_FIND_REGEX, IDC_FIND_SELECTION, IDC_FIND_STATUS, IDCANCEL}) {
        RECT place = {};
        GetWindowRect(GetDlgItem(dialog, control), &place);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        SetWindowPos(GetDlgItem(dialog, control), nullptr, place.left, place.top + shift, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    RECT frame = {};
    GetWindowRect(dialog, &frame);
    SetWindowPos(dialog, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top + shift,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// The selection of the active editor when it can be a search text, else empty.
std::wstring SelectedSearchText() {
    const LRESULT start = SciSend(g_documents.hEditor, SCI_GETSELECTIONSTART);
    const LRESULT end = SciSend(g_documents.hEditor, SCI_GETSELECTIONEND);
    if (end - start < 1 || end - start > kFieldLimit) return {};
    std::string text(static_cast<std::size_t>(end - start), '\0');
    SciSend(g_documents.hEditor, SCI_SETTARGETRANGE, static_cast<WPARAM>(start), end);
    SciSend(g_documents.hEditor, SCI_GETTARGETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
    return Utf8ToWideText(SearchTextFromSelection(text));
}

bool SelectionSpansLines() {
    const auto line = [](UINT message) {
        return SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION,
                       static_cast<WPARAM>(SciSend(g_documents.hEditor, message)));
    };
    return line(SCI_GETSELECTIONSTART) != line(SCI_GETSELECTIONEND);
}

// Fills the fields each time the dialog is opened or activated.
void FillFindFields(HWND dialog) {
    const std::wstring selected = SelectedSearchText();
    if (!selected.empty()) SetDlgItemTextW(dialog, IDC_FIND_WHAT, selected.c_str());
    const bool spansLines = SelectionSpansLines();
    CheckDlgButton(dialog, IDC_FIND_SELECTION, spansLines ? BST_CHECKED : BST_UNCHECKED);
    if (spansLines) TakeScope();
    SetDlgItemTextW(dialog, IDC_FIND_STATUS, L"");
    const HWND what = GetDlgItem(dialog, IDC_FIND_WHAT);
    SendMessageW(what, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
    SetFocus(what);
}

void OnFindInit(HWND dialog) {
    g_search.hFindDialog = dialog;
    g_find.replacing = true;  // the template shows the controls for replacing
    for (const int control : {IDC_FIND_WHAT, IDC_FIND_WITH})
        SendDlgItemMessageW(dialog, control, CB_LIMITTEXT, kFieldLimit, 0);
    FillFindHistory();
    const Settings& settings = g_settings;
    const std::wstring last =
        !g_find.what.empty() || settings.searchHistoryCount < 1 ? g_find.what : settings.searchHistory[0];
    SetDlgItemTextW(dialog, IDC_FIND_WHAT, last.c_str());
    SetDlgItemTextW(dialog, IDC_FIND_WITH, g_find.with.c_str());
    CheckDlgButton(dialog, IDC_FIND_CASE, g_find.options.matchCase ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, IDC_FIND_WORD, g_find.options.wholeWord ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, IDC_FIND_REGEX, g_find.options.regex ? BST_CHECKED : BST_UNCHECKED);
    EnableWindow(GetDlgItem(dialog, IDC_FIND_WORD), !g_find.options.regex);
}

void PlaceFindDialog(HWND dialog, HWND owner) {
    RECT frame = {};
    RECT size = {};
    GetWindowRect(owner, &frame);
    GetWindowRect(dialog, &size);
    const int margin = UiScaled(24);
    const LONG width = size.right - size.left, height = size.bottom - size.top;
    LONG left = std::max(frame.left, frame.right - width - margin);
    LONG top = frame.top + 4 * margin;
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    if (GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &monitor)) {
        const RECT& work = monitor.rcWork;  // a part of the owner may be outside of it
        left = std::max(work.left, std::min(left, work.right - width));
        top = std::max(work.top, std::min(top, work.bottom - height));
    }
    SetWindowPos(dialog, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void OnFindCommand(HWND dialog, int command) {
    switch (command) {
        case IDC_FIND_NEXT:
        case IDOK: FindNext(true); break;
        case IDC_FIND_PREVIOUS: FindNext(false); break;
        case IDC_FIND_REPLACE: ReplaceAndFindNext(); break;
        case IDC_FIND_REPLACE_ALL: ReplaceAllMatches(); break;
        case IDC_FIND_REGEX:
            EnableWindow(GetDlgItem(dialog, IDC_FIND_WORD), !IsFindOptionTicked(IDC_FIND_REGEX));
            break;
        case IDC_FIND_SELECTION:
            if (IsFindOptionTicked(IDC_FIND_SELECTION)) TakeScope();
            break;
        case IDCANCEL: DestroyWindow(dialog); break;
        default: break;
    }
}

INT_PTR CALLBACK FindDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG:
            OnFindInit(dialog);
            DialogApplyTheme(dialog);
            return FALSE;  // FindDialogShow sets the focus
        case WM_COMMAND: OnFindCommand(dialog, LOWORD(wParam)); return TRUE;
        case WM_DESTROY:
            ReadFindDialog();
            g_search.hFindDialog = nullptr;
            FocusCurrentEditor();
            return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void FindDialogShow(HWND owner, bool replace) {
    if (g_search.hFindDialog == nullptr) {
        const HWND dialog = CreateDialogParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_FIND), owner, FindDlgProc, 0);
        if (dialog == nullptr) {
            AppLogMsg(L"FAIL: FindDialogShow error=%lu", GetLastError());
            return;
        }
        PlaceFindDialog(dialog, owner);
    }
    SetReplacing(g_search.hFindDialog, replace);
    ShowWindow(g_search.hFindDialog, SW_SHOW);
    SetActiveWindow(g_search.hFindDialog);
    FillFindFields(g_search.hFindDialog);
}

bool FindDialogIsMessage(MSG* message) {
    const HWND dialog = g_search.hFindDialog;
    if (dialog == nullptr || (message->hwnd != dialog && IsChild(dialog, message->hwnd) == FALSE)) return false;
    if (message->message == WM_KEYDOWN) {
        const bool shift = GetKeyState(VK_SHIFT) < 0;
        if (message->wParam == VK_F3 || (message->wParam == VK_RETURN && shift)) {
            FindNext(!shift);
            return true;
        }
    }
    return IsDialogMessageW(dialog, message) != FALSE;
}

void FindNext(bool forward) {
    if (g_search.hFindDialog == nullptr && g_find.what.empty()) {
        const std::wstring newest = g_settings.searchHistoryCount > 0 ? g_settings.searchHistory[0] : L"";
        g_find.what = TextToFindNext(g_find.what, SelectedSearchText(), newest);
        if (g_find.what.empty()) {
            FindDialogShow(g_ui.hMainWnd, false);
            return;
        }
    }
    FindQuery query;
    if (PrepareFind(query)) FindAndShow(query, forward);
}
