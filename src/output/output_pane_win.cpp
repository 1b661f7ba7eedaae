// The output pane's window: font and colours, keys, context menu. The feed (output_feed.h) supplies its text.
#include "output/output_pane.h"

#include "documents/document_row.h"
#include "output/output_feed.h"
#include "output/output_state.h"
#include "output/show_timer.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/menu.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <richedit.h>

#include <iterator>

namespace {

constexpr int kMargin = 6;  // left and right of a pane's text, at 96 dpi

enum MenuCommand : UINT { kCopy = 1, kSelectAll, kClear, kNextError, kPreviousError };

// The commands for a diagnostic mean the line that was clicked.
void PutCaretAt(HWND pane, POINT screen) {
    ScreenToClient(pane, &screen);
    POINTL at = {screen.x, screen.y};
    const LRESULT character = SendMessageW(pane, EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&at));
    SendMessageW(pane, EM_SETSEL, static_cast<WPARAM>(character), character);
    SetFocus(pane);
}

void ShowContextMenu(HWND pane, POINT at) {
    const bool byMouse = at.x != -1 || at.y != -1;
    if (!byMouse) {
        at = {0, 0};
        ClientToScreen(pane, &at);
    }
    CHARRANGE selection = {};
    SendMessageW(pane, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
    if (byMouse && selection.cpMin == selection.cpMax) PutCaretAt(pane, at);
    const bool errors = ErrorCount(g_output.errors) > 0;
    const MenuItem items[] = {{.id = kCopy, .text = L"&Copy\tCtrl+C", .enabled = selection.cpMin != selection.cpMax},
                              {.id = kSelectAll, .text = L"Select &All\tCtrl+A"},
                              {},
                              {.id = kNextError, .text = L"&Next Error", .enabled = errors},
                              {.id = kPreviousError, .text = L"&Previous Error", .enabled = errors},
                              {.id = IDM_AI_EXPLAIN, .text = L"E&xplain This Error", .enabled = errors},
                              {.id = IDM_AI_FIX, .text = L"&Fix This Error", .enabled = errors},
                              {},
                              {.id = kClear, .text = L"C&lear"}};
    const UINT command = ShowPopupMenu(pane, items, at);
    switch (command) {
        case kCopy: SendMessageW(pane, WM_COPY, 0, 0); break;
        case kSelectAll: SendMessageW(pane, EM_SETSEL, 0, -1); break;
        case kNextError: CompilerVisitNextError(); break;
        case kPreviousError: CompilerPrevError(); break;
        case IDM_AI_EXPLAIN:
        case IDM_AI_FIX: PostMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0); break;
        case kClear: OutputPaneClear(); break;
        default: break;
    }
}

LRESULT CALLBACK OutputPaneProc(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_LBUTTONDBLCLK: {
            const LRESULT result = SubclassNext(pane, message, wParam, lParam);  // puts the caret on the line
            OutputPaneNavigateError();
            return result;
        }
        case WM_KEYDOWN:
            if (wParam == VK_RETURN) {
                OutputPaneNavigateError();
                return 0;
            }
            if (wParam == VK_ESCAPE) FocusCurrentEditor();
            break;
        case WM_CONTEXTMENU:
            ShowContextMenu(pane, {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
            return 0;
        default: break;
    }
    return SubclassNext(pane, message, wParam, lParam);
}

void SetFormat(HWND pane, WPARAM scope) {
    CHARFORMAT2W format = {};
    format.cbSize = sizeof(format);
    // CFM_BOLD is set because a Rich Edit starts with the system font, which is bold. The pitch and family choose the
    // substitute for a missing font, because columns need a fixed pitch.
    format.dwMask = CFM_FACE | CFM_CHARSET | CFM_SIZE | CFM_BOLD | CFM_COLOR;
    format.yHeight = g_settings.outputFontSize * 20;  // twips
    format.crTextColor = ThemeCurrentChrome().paneText;
    format.bPitchAndFamily = FIXED_PITCH | FF_MODERN;
    format.bCharSet = DEFAULT_CHARSET;
    lstrcpynW(format.szFaceName, g_settings.outputFont, static_cast<int>(std::size(format.szFaceName)));
    SendMessageW(pane, EM_SETCHARFORMAT, scope, reinterpret_cast<LPARAM>(&format));
}

void FormatPane(HWND pane) {
    const int margin = UiScaled(kMargin);
    SendMessageW(pane, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(margin, margin));
    SendMessageW(pane, EM_SETBKGNDCOLOR, 0, static_cast<LPARAM>(ThemeCurrentChrome().paneBack));
    SetFormat(pane, SCF_DEFAULT);
    ScrollBarsApplyTheme(pane);
}

// Empties the pane. A pane with a long text is replaced, so `g_output.hOutput` may be another window afterwards.
void EmptyPane() {
    HWND pane = RichPaneEmptied(g_output.hOutput, OutputFeedLinesShown());
    if (pane == g_output.hOutput) return;
    ShowTimerStart();
    g_output.hOutput = pane;
    OutputPaneInit(pane);
    FormatPane(pane);
}

}  // namespace

void OutputPaneInit(HWND pane) {
    if (pane == nullptr) return;
    SendMessageW(pane, EM_SETUNDOLIMIT, 0, 0);
    SendMessageW(pane, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    SendMessageW(pane, EM_SETTARGETDEVICE, 0, 1);  // no wrapping: a line of output is a line of the pane
    SubclassAdd(pane, OutputPaneProc);
}

void OutputPaneAppend(const wchar_t* text, COLORREF colour) {
    if (text == nullptr) return;
    const bool nothingWaits = OutputFeedIsEmpty();
    OutputFeedMessage(text, colour);
    // When other text waits, the timer shows it and then this text.
    if (!nothingWaits) return;
    while (!OutputFeedIsEmpty()) OutputFeedShowNext();
    OutputFeedReveal();
}

void OutputPaneClear() {
    EmptyPane();
    OutputFeedForget();
}

void OutputPaneTrim() {
    if (!OutputFeedTrim()) return;
    EmptyPane();
    OutputFeedShowAgain();
}

void OutputPaneScrollToEnd() {
    if (g_output.hOutput == nullptr) return;
    RichScrollToEnd(g_output.hOutput);
}

void OutputPaneApplyFont() { PaneApplyFontAndTheme(g_output.hOutput); }

void PaneApplyFontAndTheme(HWND richEdit) {
    if (richEdit == nullptr) return;
    if (richEdit != g_output.hOutput) {
        FormatPane(richEdit);
        SetFormat(richEdit, SCF_ALL);
        return;
    }
    // The lines are shown again, because one format for all of them would remove their own colours and take long.
    EmptyPane();
    FormatPane(g_output.hOutput);
    OutputFeedShowAgain();
}
