// The dialog for a breakpoint's condition. Modal, UI thread only.
#include "debugui/condition_dialog.h"

#include "base/handles.h"
#include "base/log.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_rules.h"
#include "files/file_io.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/dialog_theme.h"
#include "ui/ui_state.h"

namespace {

constexpr int kLongestCondition = 128;  // characters; the bytes are counted afterwards

struct ConditionQuestion {
    const wchar_t* place;
    std::string* condition;
    std::span<const NamedPlace> names;
};

const ConditionQuestion& QuestionOfDialog(HWND dialog) {
    return *reinterpret_cast<const ConditionQuestion*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

std::string ReadCondition(HWND dialog) {
    wchar_t text[kLongestCondition + 1] = {};
    GetDlgItemTextW(dialog, IDC_CONDITION_TEXT, text, static_cast<int>(std::size(text)));
    const HeapBlock<char> utf8(WideToUtf8(text));
    return utf8 ? utf8.get() : "";
}

void FillConditionDialog(HWND dialog, const ConditionQuestion& question) {
    SetDlgItemTextW(dialog, IDC_CONDITION_PLACE, question.place);
    const HWND line = GetDlgItem(dialog, IDC_CONDITION_TEXT);
    SendMessageW(line, EM_SETLIMITTEXT, kLongestCondition, 0);
    const HeapBlock<wchar_t> text(Utf8ToWide(question.condition->c_str()));
    SetWindowTextW(line, text ? text.get() : L"");
    SendMessageW(line, EM_SETSEL, 0, -1);
    SetFocus(line);
}

// Shows what is wrong with the condition, or a warning about it. Also called while the user types, so that the problem
// shows before OK is refused. True: there is a problem.
bool ShowProblem(HWND dialog) {
    const std::string condition = ReadCondition(dialog);
    const std::wstring problem = ConditionProblem(condition);
    SetDlgItemTextW(
        dialog, IDC_CONDITION_PROBLEM,
        problem.empty() ? ConditionNotice(condition, QuestionOfDialog(dialog).names).c_str() : problem.c_str());
    return !problem.empty();
}

void OnConditionCommand(HWND dialog, int control, int notification) {
    if (control == IDC_CONDITION_TEXT && notification == EN_CHANGE) {
        ShowProblem(dialog);
    } else if (control == IDOK && !ShowProblem(dialog)) {
        *QuestionOfDialog(dialog).condition = ReadCondition(dialog);
        EndDialog(dialog, IDOK);
    } else if (control == IDCANCEL) {
        EndDialog(dialog, IDCANCEL);
    }
}

INT_PTR CALLBACK CondBpDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            FillConditionDialog(dialog, *reinterpret_cast<const ConditionQuestion*>(lParam));
            DialogApplyTheme(dialog);
            return FALSE;  // the focus is set already
        case WM_CTLCOLORSTATIC:
            return DialogColourOfProblem(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam),
                                         IDC_CONDITION_PROBLEM);
        case WM_COMMAND: OnConditionCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        default: return FALSE;
    }
}

}  // namespace

bool AskCondition(HWND owner, const wchar_t* place, std::span<const NamedPlace> names, std::string* condition) {
    ConditionQuestion question{.place = place, .condition = condition, .names = names};
    const INT_PTR answer = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_CONDITION), owner, CondBpDlgProc,
                                           reinterpret_cast<LPARAM>(&question));
    if (answer == -1) AppLogMsg(L"FAIL: AskCondition error=%lu", GetLastError());
    return answer == IDOK;
}
