// The dialog of exceptions: a list of those that are known and of those that the user has added. Modal, UI thread only.
#include "debugui/exceptions_dialog.h"

#include "base/bounded_text.h"
#include "base/log.h"
#include "debugui/exception_rows.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/dialog_scale.h"
#include "ui/dialog_theme.h"
#include "ui/ui_state.h"

#include <iterator>

namespace {

HWND ListOf(HWND dialog) { return GetDlgItem(dialog, IDC_EXCEPTIONS_LIST); }

ExceptionRows& RulesOf(HWND dialog) { return *reinterpret_cast<ExceptionRows*>(GetWindowLongPtrW(dialog, DWLP_USER)); }

ExceptionRule* ChosenRule(HWND dialog) {
    const LRESULT chosen = SendMessageW(ListOf(dialog), LB_GETCURSEL, 0, 0);
    ExceptionRows& rules = RulesOf(dialog);
    return chosen >= 0 && chosen < static_cast<LRESULT>(rules.size()) ? &rules[static_cast<std::size_t>(chosen)]
                                                                      : nullptr;
}

void ShowChosen(HWND dialog) {
    const ExceptionRule* const rule = ChosenRule(dialog);
    CheckDlgButton(dialog, IDC_EXCEPTIONS_PASS, rule != nullptr && rule->action.pass ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, IDC_EXCEPTIONS_STOP, rule != nullptr && rule->action.stop ? BST_CHECKED : BST_UNCHECKED);
}

void FillList(HWND dialog, std::size_t chosen) {
    const HWND list = ListOf(dialog);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    const LRESULT top = SendMessageW(list, LB_GETTOPINDEX, 0, 0);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    for (const ExceptionRule& rule : RulesOf(dialog))
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ExceptionRowText(rule).c_str()));
    SendMessageW(list, LB_SETTOPINDEX, static_cast<WPARAM>(top), 0);
    SendMessageW(list, LB_SETCURSEL, chosen, 0);
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
    ShowChosen(dialog);
}

void TakeMarks(HWND dialog) {
    ExceptionRule* const rule = ChosenRule(dialog);
    if (rule == nullptr) return;
    rule->action = {.pass = IsDlgButtonChecked(dialog, IDC_EXCEPTIONS_PASS) == BST_CHECKED,
                    .stop = IsDlgButtonChecked(dialog, IDC_EXCEPTIONS_STOP) == BST_CHECKED};
    FillList(dialog, static_cast<std::size_t>(rule - RulesOf(dialog).data()));
}

// Adds the code in the field, or chooses its row. A text that is no code is selected, so that it can be corrected.
void AddCode(HWND dialog) {
    wchar_t text[32] = {};
    GetDlgItemTextW(dialog, IDC_EXCEPTIONS_CODE, text, static_cast<int>(std::size(text)));
    const auto code = ExceptionCodeTyped(text);
    if (!code) {
        MessageBeep(MB_ICONWARNING);
        SendDlgItemMessageW(dialog, IDC_EXCEPTIONS_CODE, EM_SETSEL, 0, -1);
        SetFocus(GetDlgItem(dialog, IDC_EXCEPTIONS_CODE));
        return;
    }
    FillList(dialog, ExceptionRowFor(&RulesOf(dialog), *code));
    SetDlgItemTextW(dialog, IDC_EXCEPTIONS_CODE, L"");
    SetFocus(ListOf(dialog));
}

void OnExceptionsCommand(HWND dialog, int control, int notification) {
    switch (control) {
        case IDC_EXCEPTIONS_LIST:
            if (notification == LBN_SELCHANGE) ShowChosen(dialog);
            break;
        case IDC_EXCEPTIONS_PASS:
        case IDC_EXCEPTIONS_STOP: TakeMarks(dialog); break;
        case IDC_EXCEPTIONS_ADD: AddCode(dialog); break;
        case IDC_EXCEPTIONS_DEFAULTS:
            RulesOf(dialog) = ExceptionRowsOf(L"");
            FillList(dialog, 0);
            break;
        case IDOK:  // Enter in the field of the code adds it
            GetFocus() == GetDlgItem(dialog, IDC_EXCEPTIONS_CODE) ? AddCode(dialog)
                                                                  : static_cast<void>(EndDialog(dialog, IDOK));
            break;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); break;
        default: break;
    }
}

void FillDialog(HWND dialog) {
    const UINT tabs[] = {50, 210, 245};  // dialog units
    DialogListTabs(dialog, IDC_EXCEPTIONS_LIST, tabs);
    SendDlgItemMessageW(dialog, IDC_EXCEPTIONS_CODE, EM_SETLIMITTEXT, kExceptionCodeDigits + 2, 0);
    FillList(dialog, 0);
    SetFocus(ListOf(dialog));
}

INT_PTR CALLBACK ExceptionsDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            FillDialog(dialog);
            DialogApplyTheme(dialog);
            return FALSE;  // the focus is set already
        case WM_COMMAND: OnExceptionsCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        default: return FALSE;
    }
}

}  // namespace

bool EditExceptionRules(HWND owner, std::wstring& setting) {
    ExceptionRows rules = ExceptionRowsOf(setting);
    const INT_PTR answer = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_EXCEPTIONS), owner, ExceptionsDlgProc,
                                           reinterpret_cast<LPARAM>(&rules));
    if (answer == -1) AppLogMsg(L"FAIL: EditExceptionRules error=%lu", GetLastError());
    if (answer != IDOK) return false;
    setting = ExceptionSettingOf(rules);
    return true;
}

void AskExceptionRules(HWND owner) {
    std::wstring rules = g_settings.exceptionRules;
    if (!EditExceptionRules(owner, rules)) return;
    SettingsChange([&](Settings& settings) { SafeCopyW(settings.exceptionRules, rules); });
    SettingsSave(nullptr);
}
