// The "go to line" dialog. Modal, UI thread.
#include "base/log.h"
#include "base/wide_format.h"
#include "documents/documents_state.h"
#include "documents/editor_pane.h"
#include "documents/file_commands.h"
#include "documents/open_directory.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>

namespace {

struct GotoTarget {
    int line = 0;    // counts from 1
    int column = 0;  // counts from 0
};

constexpr int kNumberCapacity = 32;  // characters read from a field
constexpr std::size_t kProcedureCapacity = 257;

void SetNumber(HWND dialog, int control, LRESULT number) {
    wchar_t text[kNumberCapacity];
    FormatBufferW(text, L"%ld", static_cast<long>(number));
    SetDlgItemTextW(dialog, control, text);
}

int GetNumber(HWND dialog, int control) {
    wchar_t text[kNumberCapacity] = {};
    GetDlgItemTextW(dialog, control, text, kNumberCapacity);
    return _wtoi(text);
}

// The line counts from 1 and the column from 0, as the fields are read back.
void Fill(HWND dialog) {
    const LRESULT caret = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS);
    SetNumber(dialog, IDC_GOTO_LINE,
              SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret)) + 1);
    SetNumber(dialog, IDC_GOTO_LINE_COUNT, SciSend(g_documents.hEditor, SCI_GETLINECOUNT));
    SetNumber(dialog, IDC_GOTO_COLUMN, SciSend(g_documents.hEditor, SCI_GETCOLUMN, static_cast<WPARAM>(caret)));
    wchar_t procedure[kProcedureCapacity];
    EditorPaneProcedureLine(g_documents.hEditor, procedure, kProcedureCapacity);
    SetDlgItemTextW(dialog, IDC_GOTO_PROCEDURE, procedure);
    const HWND line = GetDlgItem(dialog, IDC_GOTO_LINE);
    SendMessageW(line, EM_SETSEL, 0, -1);
    SetFocus(line);
}

void GoTo(const GotoTarget& target) {
    const HWND editor = g_documents.hEditor;
    if (target.line < 1 || editor == nullptr) return;
    const LRESULT lines = SciSend(editor, SCI_GETLINECOUNT);
    const auto index = static_cast<WPARAM>(std::min<LRESULT>(target.line, lines) - 1);
    const LRESULT start = SciSend(editor, SCI_POSITIONFROMLINE, index);
    const LRESULT end = SciSend(editor, SCI_GETLINEENDPOSITION, index);
    SciSend(editor, SCI_GOTOPOS, static_cast<WPARAM>(GotoLinePosition(start, end, target.column)));
    SetFocus(editor);
}

// Reads the fields into the dialog's GotoTarget: the caret moves once the dialog is gone, because a window whose owner
// is disabled cannot take the focus.
void Accept(HWND dialog) {
    auto* target = reinterpret_cast<GotoTarget*>(GetWindowLongPtrW(dialog, DWLP_USER));
    target->line = GetNumber(dialog, IDC_GOTO_LINE);
    target->column = GetNumber(dialog, IDC_GOTO_COLUMN);
    EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK GotoLineDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            Fill(dialog);
            return FALSE;  // the focus is set already
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK)
                Accept(dialog);
            else if (LOWORD(wParam) == IDCANCEL)
                EndDialog(dialog, IDCANCEL);
            return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void GotoLineDialogShow(HWND owner) {
    GotoTarget target;
    const INT_PTR answer = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_GOTO_LINE), owner, GotoLineDlgProc,
                                           reinterpret_cast<LPARAM>(&target));
    if (answer == -1)
        AppLogMsg(L"FAIL: GotoLineDialogShow error=%lu", GetLastError());
    else if (answer == IDOK)
        GoTo(target);
}
