// The dialog about the changes of documents that are to be closed. UI thread.
#include "documents/close_question.h"

#include "base/log.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "resources/ids.h"
#include "ui/accessible.h"
#include "ui/dialog_panes.h"
#include "ui/dialog_theme.h"
#include "ui/guarded_button.h"
#include "ui/list_view.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::array<ListColumn, 2> kColumns = {
    {{English(L"Save"), 30, 14, false}, {English(L"Folder"), 50, 10, false}}};

struct CloseDialog {
    std::vector<CloseRow>* rows = nullptr;
    HWND dialog = nullptr;
    ListView list;
    ListContent content;
};
CloseDialog* g_dialog = nullptr;  // the one that is open

void ShowCloseRows(CloseDialog& close) {
    close.content.rows.clear();
    for (const CloseRow& row : *close.rows)
        close.content.rows.push_back({.cells = {row.label, row.folder.empty() ? Text(L"not saved yet") : row.folder},
                                      .mark = row.ticked ? ListMark::Checked : ListMark::Unchecked});
    ListViewUpdate(close.list, close.content);
    const bool any = std::ranges::any_of(*close.rows, &CloseRow::ticked);
    const HWND save = GetDlgItem(close.dialog, IDC_CLOSE_SAVE);
    if (!any && GetFocus() == save) SetFocus(close.list.window);
    EnableWindow(save, any);
    // Enter must not give up what nobody has looked at.
    SendMessageW(close.dialog, DM_SETDEFID, static_cast<WPARAM>(any ? IDC_CLOSE_SAVE : IDCANCEL), 0);
}

void TickCloseRow(int index) {
    CloseRow& row = (*g_dialog->rows)[static_cast<std::size_t>(index)];
    row.ticked = !row.ticked;
    ShowCloseRows(*g_dialog);
}

constexpr ListKind kCloseList = {.columns = kColumns, .hasMarks = true, .check = TickCloseRow};

// Makes the dialog lower when its list has few rows.
void FitHeight(HWND dialog, std::size_t rows) {
    constexpr int kRows = 9, kRowUnits = 11;  // of the list in the template
    const int less = DialogUnits(dialog, kRowUnits * std::max(0, kRows - std::max(static_cast<int>(rows), 2)));
    if (less == 0) return;
    const HWND list = GetDlgItem(dialog, IDC_CLOSE_LIST);
    RECT area = {}, place = {};
    GetWindowRect(list, &area);
    GetWindowRect(dialog, &place);
    SetWindowPos(list, nullptr, 0, 0, area.right - area.left, area.bottom - area.top - less,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    for (const int button : {IDC_CLOSE_SAVE, IDC_CLOSE_DISCARD, IDCANCEL}) DialogMoveControl(dialog, button, -less);
    SetWindowPos(dialog, nullptr, place.left, place.top + less / 2, place.right - place.left,
                 place.bottom - place.top - less, SWP_NOZORDER | SWP_NOACTIVATE);
}

void FillCloseDialog(HWND dialog, CloseDialog& close) {
    close.dialog = dialog;
    const std::wstring text =
        close.rows->size() == 1
            ? TextWith(L"{1} has unsaved changes.", {close.rows->front().label})
            : FormatW(Text(L"%d documents have unsaved changes. The ticked ones are saved; the changes of the others "
                           L"are lost."),
                      static_cast<int>(close.rows->size()));
    SetDlgItemTextW(dialog, IDC_CLOSE_WHAT, text.c_str());
    if (close.rows->size() == 1) {
        SetDlgItemTextW(dialog, IDC_CLOSE_SAVE, Text(L"&Save"));
        SetDlgItemTextW(dialog, IDC_CLOSE_DISCARD, Text(L"&Discard"));
    }
    FitHeight(dialog, close.rows->size());
    ButtonNeedsAlt(dialog, IDC_CLOSE_DISCARD);
    close.list.inDialog = true;
    if (!ListViewCreate(close.list, dialog, IDC_CLOSE_LIST)) return;
    DialogPutInPlace(dialog, IDC_CLOSE_LIST, close.list.window);
    AccessibleNameSet(close.list.window, Text(L"Files"));
    ListViewApplyTheme(close.list);
    ListViewShow(close.list, kCloseList);
    ShowCloseRows(close);
    ListViewSelect(close.list, 0);
    SetFocus(GetDlgItem(dialog, IDC_CLOSE_SAVE));
}

INT_PTR CALLBACK CloseDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            DialogApplyTheme(dialog);
            FillCloseDialog(dialog, *g_dialog);
            return FALSE;  // the focus is set already
        case WM_COMMAND:
            switch (LOWORD(wParam)) {
                case IDC_CLOSE_SAVE:
                case IDC_CLOSE_DISCARD:
                case IDCANCEL: EndDialog(dialog, LOWORD(wParam)); return TRUE;
                default: return FALSE;
            }
        case WM_NOTIFY:
            return ListViewHandleDialogNotify(dialog, g_dialog->list, *reinterpret_cast<const NMHDR*>(lParam));
        default: return FALSE;
    }
}

// A test, or a self-test run, answers in the user's place: Yes saves all.
CloseAnswer AnsweredInstead() {
    const Answer answer = AskUser({.caption = Text(L"Unsaved Changes"),
                                   .text = Text(L"Documents have unsaved changes."),
                                   .buttons = AskButtons::YesNoCancel,
                                   .icon = AskIcon::Question,
                                   .inSelftest = Answer::No});
    return answer == Answer::Yes  ? CloseAnswer::Save
           : answer == Answer::No ? CloseAnswer::Discard
                                  : CloseAnswer::Cancel;
}

}  // namespace

CloseAnswer CloseQuestionAsk(std::vector<CloseRow>& rows) {
    if (g_answerInstead != nullptr || g_selftestTabsMode) return AnsweredInstead();
    if (g_dialog != nullptr) return CloseAnswer::Cancel;  // it is asked already
    CloseDialog close;
    close.rows = &rows;
    g_dialog = &close;
    const INT_PTR end =
        DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_CLOSE_MANY), g_ui.hMainWnd, CloseDlgProc, 0);
    g_dialog = nullptr;
    if (end == -1) AppLogMsg(L"FAIL: CloseQuestionAsk error=%lu", GetLastError());
    return end == IDC_CLOSE_SAVE      ? CloseAnswer::Save
           : end == IDC_CLOSE_DISCARD ? CloseAnswer::Discard
                                      : CloseAnswer::Cancel;
}
