// Moves the keyboard focus to the active editor. UI thread.
#include "documents/document_row.h"

#include "editor/caret_place.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <iterator>

namespace {

constexpr UINT kRetryInterval = 80;  // ms
constexpr int kRetries = 24;

int g_focusTicks = 0;

}  // namespace

void FocusCurrentEditor() {
    const HWND editor = g_documents.hEditor;
    if (editor != nullptr && IsWindowVisible(editor) && GetFocus() != editor) SetFocus(editor);
}

void FocusEditorFromPane() {
    FocusCurrentEditor();
    const HWND editor = g_documents.hEditor;
    if (editor == nullptr || GetFocus() != editor || SciSend(editor, SCI_GETSELECTIONEMPTY) != 0) return;
    const LRESULT anchor = SciSend(editor, SCI_GETANCHOR), caret = SciSend(editor, SCI_GETCURRENTPOS);
    for (const LRESULT end : {anchor, caret})
        CaretUncoverLine(editor, SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(end)));
    SciSend(editor, SCI_SCROLLRANGE, static_cast<WPARAM>(anchor), caret);
}

void QueueFocusCurrentEditor() {
    g_focusTicks = 0;
    PostMessageW(g_ui.hMainWnd, MSG_FOCUS_EDITOR, 0, 0);
    SetTimer(g_ui.hMainWnd, TIMER_FOCUS, kRetryInterval, nullptr);
}

void FocusOnTimer() {
    // A field that was opened since has the keyboard because the user wants it.
    wchar_t name[16] = {};
    GetClassNameW(GetFocus(), name, static_cast<int>(std::size(name)));
    if (lstrcmpiW(name, WC_EDITW) == 0) return FocusRetryEnd();
    FocusCurrentEditor();
    if (++g_focusTicks >= kRetries || GetFocus() == g_documents.hEditor) KillTimer(g_ui.hMainWnd, TIMER_FOCUS);
}

void FocusRetryEnd() { KillTimer(g_ui.hMainWnd, TIMER_FOCUS); }
