// The dialog of exceptions: a list of those that are known and of those that the user has added. Modal, UI thread only.
#include "debugui/exceptions_dialog.h"

#include "base/bounded_text.h"
#include "base/hex_text.h"
#include "base/log.h"
#include "debugger/exception_rules.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/dialog_theme.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Rules = std::vector<ExceptionRule>;  // a row each; the first is that for all others

constexpr int kCodeDigits = 8;

Rules RowsOf(const std::wstring& setting) {
    const Rules chosen = ParseExceptionRules(setting);
    Rules rows = {{.code = kOtherExceptions, .action = ActionOfException(chosen, kOtherExceptions)}};
    for (const KnownException& known : KnownExceptions())
        rows.push_back({.code = known.code, .action = ActionOfException(chosen, known.code)});
    for (const ExceptionRule& rule : chosen)
        if (std::ranges::find(rows, rule.code, &ExceptionRule::code) == rows.end()) rows.push_back(rule);
    return rows;
}

// The rules that differ from the one for all others, and that one.
std::wstring SettingOf(const Rules& rows) {
    Rules chosen = {rows.front()};
    for (const ExceptionRule& row : rows)
        if (row.code != kOtherExceptions && row.action != rows.front().action) chosen.push_back(row);
    return ExceptionRulesText(chosen);
}

std::wstring RowText(const ExceptionRule& row) {
    std::wstring text = row.code == kOtherExceptions ? L"All others" : L"0x" + HexText(row.code, kCodeDigits);
    text += row.code == kOtherExceptions ? L"\t" : std::wstring(L"\t") + ExceptionName(row.code);
    text += row.action.pass ? L"\tpassed" : L"\t";
    return text + (row.action.stop ? L"\tstops" : L"\t");
}

HWND ListOf(HWND dialog) { return GetDlgItem(dialog, IDC_EXCEPTIONS_LIST); }

Rules& RulesOf(HWND dialog) { return *reinterpret_cast<Rules*>(GetWindowLongPtrW(dialog, DWLP_USER)); }

ExceptionRule* ChosenRule(HWND dialog) {
    const LRESULT chosen = SendMessageW(ListOf(dialog), LB_GETCURSEL, 0, 0);
    Rules& rules = RulesOf(dialog);
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
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(RowText(rule).c_str()));
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
    std::wstring digits = text;
    if (digits.starts_with(L"0x") || digits.starts_with(L"0X")) digits.erase(0, 2);
    const Rules read = ParseExceptionRules(digits + L":");
    if (read.empty() || read.front().code == kOtherExceptions) {
        MessageBeep(MB_ICONWARNING);
        SendDlgItemMessageW(dialog, IDC_EXCEPTIONS_CODE, EM_SETSEL, 0, -1);
        SetFocus(GetDlgItem(dialog, IDC_EXCEPTIONS_CODE));
        return;
    }
    Rules& rules = RulesOf(dialog);
    auto row = std::ranges::find(rules, read.front().code, &ExceptionRule::code);
    if (row == rules.end()) row = rules.insert(row, {.code = read.front().code, .action = rules.front().action});
    FillList(dialog, static_cast<std::size_t>(row - rules.begin()));
    SetDlgItemTextW(dialog, IDC_EXCEPTIONS_CODE, L"");
    SetFocus(ListOf(dialog));
}

void Accept(HWND dialog) {
    SettingsChange([&](Settings& settings) {
        SafeCopyW(settings.exceptionRules, std::size(settings.exceptionRules), SettingOf(RulesOf(dialog)));
    });
    SettingsSave(nullptr);
    EndDialog(dialog, IDOK);
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
            RulesOf(dialog) = RowsOf(L"");
            FillList(dialog, 0);
            break;
        case IDOK:  // Enter in the field of the code adds it
            GetFocus() == GetDlgItem(dialog, IDC_EXCEPTIONS_CODE) ? AddCode(dialog) : Accept(dialog);
            break;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); break;
        default: break;
    }
}

void FillDialog(HWND dialog) {
    const UINT tabs[] = {50, 210, 245};  // dialog units
    SendMessageW(ListOf(dialog), LB_SETTABSTOPS, std::size(tabs), reinterpret_cast<LPARAM>(tabs));
    SendDlgItemMessageW(dialog, IDC_EXCEPTIONS_CODE, EM_SETLIMITTEXT, kCodeDigits + 2, 0);
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

void AskExceptionRules(HWND owner) {
    Rules rules = RowsOf(g_settings.exceptionRules);
    if (DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_EXCEPTIONS), owner, ExceptionsDlgProc,
                        reinterpret_cast<LPARAM>(&rules)) == -1)
        AppLogMsg(L"FAIL: AskExceptionRules error=%lu", GetLastError());
}
