// The find and replace dialog. Searching itself is in find_actions. UI thread.
#include "search/find.h"

#include "base/events.h"
#include "base/log.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/find_internal.h"
#include "search/search_state.h"
#include "settings/settings_state.h"
#include "ui/dialog_panes.h"
#include "ui/dialog_theme.h"
#include "ui/dpi.h"
#include "ui/guarded_button.h"
#include "ui/monitor.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

namespace {

constexpr int kReplaceRowHeight = 18;  // dialog units of the controls for replacing

bool IsFindOptionTicked(int control) { return IsDlgButtonChecked(g_search.hFindDialog, control) == BST_CHECKED; }

std::wstring FindFieldText(int control) {
    wchar_t text[kFindFieldLimit + 1] = {};
    GetDlgItemTextW(g_search.hFindDialog, control, text, static_cast<int>(std::size(text)));
    return text;
}

// Fills the list of a field. The field keeps its text, which CB_RESETCONTENT would empty.
void FillFindHistory(int control, const wchar_t (&history)[kSearchHistoryCapacity][256], int count) {
    const HWND combo = GetDlgItem(g_search.hFindDialog, control);
    const std::wstring text = FindFieldText(control);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (int i = 0; i < std::min(count, kSearchHistoryCapacity); ++i)
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(history[i]));
    SetWindowTextW(combo, text.c_str());
    if (control == IDC_FIND_WHAT) SendMessageW(combo, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
}

// Shows or hides the controls for replacing. The controls below them move, and the dialog's height changes by as much.
void SetReplacing(HWND dialog, bool replacing) {
    SetWindowTextW(dialog, replacing ? Text(L"Find and Replace") : Text(L"Find"));
    for (const int control :
         {IDC_FIND_WITH_LABEL, IDC_FIND_WITH, IDC_FIND_REPLACE, IDC_FIND_REPLACE_ALL, IDC_FIND_KEEP_CASE})
        ShowWindow(GetDlgItem(dialog, control), replacing ? SW_SHOW : SW_HIDE);
    if (replacing == g_find.replacing) return;
    g_find.replacing = replacing;
    const int row = DialogUnits(dialog, kReplaceRowHeight);
    const int shift = replacing ? row : -row;
    for (const int control : {IDC_FIND_CASE, IDC_FIND_WORD, IDC_FIND_REGEX, IDC_FIND_SELECTION, IDC_FIND_WRAP,
                              IDC_FIND_KEEP_CASE, IDC_FIND_STATUS, IDCANCEL})
        DialogMoveControl(dialog, control, shift);
    RECT frame = {};
    GetWindowRect(dialog, &frame);
    SetWindowPos(dialog, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top + shift,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Fills the fields each time the dialog is opened or activated.
void FillFindFields(HWND dialog) {
    const std::wstring selected = FindSelectedText();
    if (!selected.empty()) SetDlgItemTextW(dialog, IDC_FIND_WHAT, selected.c_str());
    const bool spansLines = FindSelectionSpansLines();
    CheckDlgButton(dialog, IDC_FIND_SELECTION, spansLines ? BST_CHECKED : BST_UNCHECKED);
    if (spansLines) FindTakeScope();
    SetDlgItemTextW(dialog, IDC_FIND_STATUS, L"");
    const HWND what = GetDlgItem(dialog, IDC_FIND_WHAT);
    SendMessageW(what, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
    SetFocus(what);
}

void OnFindInit(HWND dialog) {
    g_search.hFindDialog = dialog;
    g_find.replacing = true;  // the template shows the controls for replacing
    for (const int control : {IDC_FIND_WHAT, IDC_FIND_WITH})
        SendDlgItemMessageW(dialog, control, CB_LIMITTEXT, kFindFieldLimit, 0);
    FillFindHistories();
    const Settings& settings = g_settings;
    const std::wstring last =
        !g_find.what.empty() || settings.searchHistoryCount < 1 ? g_find.what : settings.searchHistory[0];
    SetDlgItemTextW(dialog, IDC_FIND_WHAT, last.c_str());
    SetDlgItemTextW(dialog, IDC_FIND_WITH, g_find.with.c_str());
    CheckDlgButton(dialog, IDC_FIND_CASE, g_find.options.matchCase ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, IDC_FIND_WORD, g_find.options.wholeWord ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, IDC_FIND_REGEX, g_find.options.regex ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, IDC_FIND_WRAP, g_find.wrap ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, IDC_FIND_KEEP_CASE, g_find.preserveCase ? BST_CHECKED : BST_UNCHECKED);
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
    const RECT work = WorkAreaOf(owner);  // a part of the owner may be outside of it
    left = std::max(work.left, std::min(left, work.right - width));
    top = std::max(work.top, std::min(top, work.bottom - height));
    SetWindowPos(dialog, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void OnFindCommand(HWND dialog, int command) {
    switch (command) {
        case IDC_FIND_NEXT:
        case IDOK: FindNext(true); break;
        case IDC_FIND_PREVIOUS: FindNext(false); break;
        case IDC_FIND_REPLACE: FindReplaceNext(); break;
        case IDC_FIND_REPLACE_ALL: FindReplaceAll(); break;
        case IDC_FIND_COUNT: FindCount(); break;
        case IDC_FIND_MARK_ALL: FindMarkAll(); break;
        case IDC_FIND_SELECTION:
            if (IsFindOptionTicked(IDC_FIND_SELECTION)) FindTakeScope();
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
            for (const int button : {IDC_FIND_REPLACE, IDC_FIND_REPLACE_ALL}) ButtonNeedsAlt(dialog, button);
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

void ReadFindDialog() {
    if (g_search.hFindDialog == nullptr) return;
    g_find.what = FindFieldText(IDC_FIND_WHAT);
    g_find.with = FindFieldText(IDC_FIND_WITH);
    g_find.options = {.matchCase = IsFindOptionTicked(IDC_FIND_CASE),
                      .wholeWord = IsFindOptionTicked(IDC_FIND_WORD),
                      .regex = IsFindOptionTicked(IDC_FIND_REGEX)};
    g_find.wrap = IsFindOptionTicked(IDC_FIND_WRAP);
    g_find.preserveCase = IsFindOptionTicked(IDC_FIND_KEEP_CASE);
}

bool FindInSelection() { return g_search.hFindDialog != nullptr && IsFindOptionTicked(IDC_FIND_SELECTION); }

void FindLeaveSelection() { CheckDlgButton(g_search.hFindDialog, IDC_FIND_SELECTION, BST_UNCHECKED); }

void ShowFindStatus(const wchar_t* text) {
    if (g_search.hFindDialog != nullptr)
        SetDlgItemTextW(g_search.hFindDialog, IDC_FIND_STATUS, text);
    else
        g_events.documentStatus(ActiveDocumentId(), text);
}

void ShowFindFault(int control, const std::wstring& field, const RegexFault& fault) {
    ShowFindStatus(fault.text.c_str());
    MessageBeep(MB_ICONWARNING);
    if (g_search.hFindDialog == nullptr) return;
    const std::string before = ToUtf8(field).substr(0, static_cast<std::size_t>(fault.position));
    const auto at = static_cast<int>(Utf8ToWideText(before).size());
    const HWND combo = GetDlgItem(g_search.hFindDialog, control);
    SetFocus(combo);
    SendMessageW(combo, CB_SETEDITSEL, 0, MAKELPARAM(at, at + 1));
}

void FillFindHistories() {
    if (g_search.hFindDialog == nullptr) return;
    FillFindHistory(IDC_FIND_WHAT, g_settings.searchHistory, g_settings.searchHistoryCount);
    FillFindHistory(IDC_FIND_WITH, g_settings.replaceHistory, g_settings.replaceHistoryCount);
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
    const RECT work = WorkAreaOf(g_search.hFindDialog);
    const int top = DialogTopBesideMatch(text.top, text.bottom, dialog.bottom - dialog.top, work.top, work.bottom);
    SetWindowPos(g_search.hFindDialog, nullptr, dialog.left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

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
