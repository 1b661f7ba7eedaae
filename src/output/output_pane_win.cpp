// The output pane's window: font and colours, keys, context menu. The feed (output_feed.h) supplies its text.
#include "output/output_pane.h"

#include "base/texts.h"
#include "documents/document_row.h"
#include "output/output_feed.h"
#include "output/output_state.h"
#include "output/show_timer.h"
#include "settings/settings_state.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/late_size.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <richedit.h>
#include <windowsx.h>

#include <iterator>

namespace {

constexpr int kMargin = 6;  // left and right of a pane's text, at 96 dpi

LONG CharacterAt(HWND pane, POINT screen) {
    ScreenToClient(pane, &screen);
    POINTL at = {screen.x, screen.y};
    return static_cast<LONG>(SendMessageW(pane, EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&at)));
}

// The commands for a diagnostic mean the line that was clicked.
void PutCaretAt(HWND pane, POINT screen) {
    const LONG character = CharacterAt(pane, screen);
    SendMessageW(pane, EM_SETSEL, static_cast<WPARAM>(character), character);
    SetFocus(pane);
}

// The main window shows the menu. A click outside the selection chooses its line first.
LRESULT PassContextMenu(HWND pane, LPARAM where) {
    const POINT at = {GET_X_LPARAM(where), GET_Y_LPARAM(where)};
    if (at.x != -1 || at.y != -1) {
        CHARRANGE selection = {};
        SendMessageW(pane, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
        const LONG character = CharacterAt(pane, at);
        if (character < selection.cpMin || character >= selection.cpMax) PutCaretAt(pane, at);
    }
    return SendMessageW(g_ui.hMainWnd, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(pane), where);
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
            if (wParam == VK_ESCAPE) FocusEditorFromPane();
            break;
        case WM_CONTEXTMENU: return PassContextMenu(pane, lParam);
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
    SizeLateKeepsEnd(pane);
    SubclassAdd(pane, OutputPaneProc);
    AccessibleNameSet(pane, Text(L"Output"));  // again after the pane was replaced
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

void OutputPaneShowRecord(int index) {
    if (g_output.hOutput == nullptr) return;
    if (const std::int32_t line = OutputFeedLineOfRecord(index); line >= 0) RichSelectLine(g_output.hOutput, line);
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
