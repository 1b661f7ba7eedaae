// The "go to line" dialog. Modal, UI thread.
#include "documents/file_commands.h"

#include "base/log.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_place.h"
#include "documents/document_row.h"
#include "documents/goto_line.h"
#include "documents/sticky_label.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/dialog_theme.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <algorithm>

namespace {

struct GotoTarget {
    DocumentId document = 0;   // the active one when the dialog was opened
    LRESULT shownColumn = 0;   // what the column field was filled with
    int line = 0;              // counts from 1
    int column = 0;            // counts from 0
    bool columnNamed = false;  // by the line field ("5:4")
};

constexpr int kNumberCapacity = 32;  // characters read from a field
constexpr std::size_t kProcedureCapacity = 257;

void SetGotoNumber(HWND dialog, int control, LRESULT number) {
    wchar_t text[kNumberCapacity];
    FormatBufferW(text, L"%ld", static_cast<long>(number));
    SetDlgItemTextW(dialog, control, text);
}

int ReadGotoNumber(HWND dialog, int control) {
    wchar_t text[kNumberCapacity] = {};
    GetDlgItemTextW(dialog, control, text, kNumberCapacity);
    return GotoNumber(text);
}

// The column field counts from 0, the status bar from 1: says beside the field what its number means there.
void TellGotoColumn(HWND dialog) {
    const long shown = std::max(ReadGotoNumber(dialog, IDC_GOTO_COLUMN), 0) + 1L;
    SetDlgItemTextW(dialog, IDC_GOTO_SHOWN, FormatW(Text(L"from 0 (shown as Col %ld)"), shown).c_str());
}

// A column in the line field goes to the column field; when it is deleted again, the caret's comes back.
void TakeColumnOfLineField(HWND dialog, GotoTarget& target) {
    wchar_t text[kNumberCapacity] = {};
    GetDlgItemTextW(dialog, IDC_GOTO_LINE, text, kNumberCapacity);
    const int column = GotoPlaceOf(text).column;
    if (column == 0 && !target.columnNamed) return;
    target.columnNamed = column > 0;
    SetGotoNumber(dialog, IDC_GOTO_COLUMN, column > 0 ? column - 1 : target.shownColumn);
}

// Fills the fields with the caret's place. The line counts from 1 and the column from 0.
void FillGotoDialog(HWND dialog, GotoTarget& target) {
    const LRESULT caret = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS);
    SetGotoNumber(dialog, IDC_GOTO_LINE,
                  SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret)) + 1);
    SetGotoNumber(dialog, IDC_GOTO_LINE_COUNT, SciSend(g_documents.hEditor, SCI_GETLINECOUNT));
    target.shownColumn = SciSend(g_documents.hEditor, SCI_GETCOLUMN, static_cast<WPARAM>(caret));
    SetGotoNumber(dialog, IDC_GOTO_COLUMN, target.shownColumn);
    wchar_t procedure[kProcedureCapacity];
    EditorPaneProcedureLine(g_documents.hEditor, procedure, kProcedureCapacity);
    SetDlgItemTextW(dialog, IDC_GOTO_PROCEDURE, procedure[0] != L'\0' ? procedure : Text(L"no procedure"));
    const HWND line = GetDlgItem(dialog, IDC_GOTO_LINE);
    SendMessageW(line, EM_SETSEL, 0, -1);
    SetFocus(line);
}

// The field shows the caret's column on the screen, where a tab is several columns wide. Left as it was filled, it means
// that column of the line. A number that was typed counts the bytes of the line in its file, as compilers do.
LRESULT PositionOfTarget(const GotoTarget& target, const DocumentTab& document, LRESULT line) {
    if (target.column == target.shownColumn && !target.columnNamed)
        return SciSend(document.editor, SCI_FINDCOLUMN, static_cast<WPARAM>(line), target.column);
    return CaretPositionOfFileColumn(document, line, target.column);
}

void GoToTarget(const GotoTarget& target) {
    const int tab = TabBarFindDocument(target.document);  // messages were handled while the dialog was open
    if (tab < 0) return;
    const DocumentTab& document = TabAt(tab);
    const std::ptrdiff_t line = GotoLineIndex(target.line, SciSend(document.editor, SCI_GETLINECOUNT));
    if (line < 0) return;
    CaretGoTo(document.editor, PositionOfTarget(target, document, line));
    CaretShowInMiddle(document.editor);
    FocusCurrentEditor();
}

// Reads the fields into the dialog's GotoTarget. The caret moves only after the dialog is closed, because the main
// window is disabled until then and the editor cannot take the focus.
void AcceptGoto(HWND dialog) {
    auto* target = reinterpret_cast<GotoTarget*>(GetWindowLongPtrW(dialog, DWLP_USER));
    target->line = ReadGotoNumber(dialog, IDC_GOTO_LINE);
    target->column = ReadGotoNumber(dialog, IDC_GOTO_COLUMN);
    EndDialog(dialog, IDOK);
}

void OnGotoCommand(HWND dialog, int control, int notice) {
    auto* target = reinterpret_cast<GotoTarget*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (control == IDC_GOTO_LINE && notice == EN_CHANGE) TakeColumnOfLineField(dialog, *target);
    if (control == IDC_GOTO_COLUMN && notice == EN_CHANGE) TellGotoColumn(dialog);
    if (control == IDOK) AcceptGoto(dialog);
    if (control == IDCANCEL) EndDialog(dialog, IDCANCEL);
}

INT_PTR CALLBACK GotoLineDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            FillGotoDialog(dialog, *reinterpret_cast<GotoTarget*>(lParam));
            DialogApplyTheme(dialog);
            return FALSE;  // the focus is set already
        case WM_COMMAND: OnGotoCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void GotoLineDialogShow(HWND owner) {
    GotoTarget target{.document = ActiveDocumentId()};
    const INT_PTR answer = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_GOTO_LINE), owner, GotoLineDlgProc,
                                           reinterpret_cast<LPARAM>(&target));
    if (answer == -1)
        AppLogMsg(L"FAIL: GotoLineDialogShow error=%lu", GetLastError());
    else if (answer == IDOK)
        GoToTarget(target);
}
