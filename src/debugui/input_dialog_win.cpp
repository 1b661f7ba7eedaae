// One line of text from the user. Modal, UI thread.
#include "debugui/input_dialog.h"

#include "app/app_state.h"
#include "app/log.h"
#include "resources/ids.h"

namespace {

constexpr int kLongestText = 255;

struct Input {
    const wchar_t* caption;
    const wchar_t* label;
    std::wstring* text;
    const InputKinds* kinds;
};

void Fill(HWND dialog, const Input& input) {
    SetWindowTextW(dialog, input.caption);
    SetDlgItemTextW(dialog, IDC_INPUT_LABEL, input.label);
    const HWND line = GetDlgItem(dialog, IDC_INPUT_TEXT);
    SendMessageW(line, EM_SETLIMITTEXT, kLongestText, 0);
    SetWindowTextW(line, input.text->c_str());
    SendMessageW(line, EM_SETSEL, 0, -1);
    const HWND kind = GetDlgItem(dialog, IDC_INPUT_KIND);
    if (input.kinds == nullptr) {
        ShowWindow(kind, SW_HIDE);
        ShowWindow(GetDlgItem(dialog, IDC_INPUT_KIND_LABEL), SW_HIDE);
    } else {
        for (const wchar_t* name : input.kinds->names)
            SendMessageW(kind, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
        SendMessageW(kind, CB_SETCURSEL, static_cast<WPARAM>(*input.kinds->chosen), 0);
    }
    SetFocus(line);
}

void Accept(HWND dialog, const Input& input) {
    wchar_t text[kLongestText + 1] = {};
    GetDlgItemTextW(dialog, IDC_INPUT_TEXT, text, static_cast<int>(std::size(text)));
    *input.text = text;
    if (input.kinds != nullptr) {
        const LRESULT chosen = SendDlgItemMessageW(dialog, IDC_INPUT_KIND, CB_GETCURSEL, 0, 0);
        if (chosen >= 0) *input.kinds->chosen = static_cast<int>(chosen);
    }
    EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK InputDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            Fill(dialog, *reinterpret_cast<const Input*>(lParam));
            return FALSE;  // the focus is set already
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK)
                Accept(dialog, *reinterpret_cast<const Input*>(GetWindowLongPtrW(dialog, DWLP_USER)));
            else if (LOWORD(wParam) == IDCANCEL)
                EndDialog(dialog, IDCANCEL);
            return TRUE;
        default: return FALSE;
    }
}

}  // namespace

bool AskText(HWND owner, const wchar_t* caption, const wchar_t* label, std::wstring* text, const InputKinds* kinds) {
    Input input{.caption = caption, .label = label, .text = text, .kinds = kinds};
    const INT_PTR answer = DialogBoxParamW(g_app.hInstance, MAKEINTRESOURCEW(IDD_INPUT), owner, InputDlgProc,
                                           reinterpret_cast<LPARAM>(&input));
    if (answer == -1) AppLogMsg(L"FAIL: AskText error=%lu", GetLastError());
    return answer == IDOK;
}
