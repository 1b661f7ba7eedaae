#include "commands/toolbar_keys.h"

#include "commands/toolbar.h"
#include "documents/document_row.h"
#include "ui/ui_state.h"

#include <commctrl.h>

namespace {

// The button with the keyboard, by its command. The control itself knows only a hot button, which the mouse moves.
int g_button = 0;

bool IsStop(const TBBUTTON& button) {
    return (button.fsStyle & BTNS_SEP) == 0 && (button.fsState & TBSTATE_HIDDEN) == 0 &&
           (button.fsState & TBSTATE_ENABLED) != 0;
}

TBBUTTON ButtonOf(HWND bar, LRESULT index) {
    TBBUTTON button = {};
    SendMessageW(bar, TB_GETBUTTON, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&button));
    return button;
}

// The next button that can be pressed from `index` on, with the first after the last; -1: there is none.
LRESULT FindStop(HWND bar, LRESULT index, int step) {
    const LRESULT count = SendMessageW(bar, TB_BUTTONCOUNT, 0, 0);
    for (LRESULT looked = 0; looked < count; ++looked, index += step) {
        index = (index + count) % count;
        if (IsStop(ButtonOf(bar, index))) return index;
    }
    return -1;
}

void GoToButton(HWND bar, LRESULT index) {
    if (index < 0) return;
    g_button = ButtonOf(bar, index).idCommand;
    SendMessageW(bar, TB_SETHOTITEM, static_cast<WPARAM>(index), 0);
    NotifyWinEvent(EVENT_OBJECT_FOCUS, bar, OBJID_CLIENT, static_cast<LONG>(index) + 1);
}

LRESULT IndexNow(HWND bar) { return SendMessageW(bar, TB_COMMANDTOINDEX, static_cast<WPARAM>(g_button), 0); }

void PressButton(HWND bar) {
    const LRESULT index = IndexNow(bar);
    if (index < 0 || !IsStop(ButtonOf(bar, index))) return;
    if (ToolbarShowMenuOf(g_button)) return;
    FocusCurrentEditor();
    PostMessageW(g_ui.hMainWnd, WM_COMMAND, static_cast<WPARAM>(g_button), 0);
}

bool OnBarKey(HWND bar, WPARAM key) {
    switch (key) {
        case VK_LEFT: GoToButton(bar, FindStop(bar, IndexNow(bar) - 1, -1)); return true;
        case VK_RIGHT: GoToButton(bar, FindStop(bar, IndexNow(bar) + 1, 1)); return true;
        case VK_HOME: GoToButton(bar, FindStop(bar, 0, 1)); return true;
        case VK_END: GoToButton(bar, FindStop(bar, SendMessageW(bar, TB_BUTTONCOUNT, 0, 0) - 1, -1)); return true;
        case VK_RETURN:
        case VK_SPACE: return true;  // WM_CHAR presses the button; the control would press it once more
        case VK_DOWN: PressButton(bar); return true;
        case VK_ESCAPE: FocusEditorFromPane(); return true;
        default: return false;
    }
}

}  // namespace

bool ToolbarKeysTake(HWND bar, UINT message, WPARAM key) {
    switch (message) {
        case WM_SETFOCUS: {
            const LRESULT before = g_button != 0 ? IndexNow(bar) : -1;
            GoToButton(bar, FindStop(bar, before < 0 ? 0 : before, 1));
            return true;
        }
        case WM_KILLFOCUS: SendMessageW(bar, TB_SETHOTITEM, static_cast<WPARAM>(-1), 0); return true;
        case WM_MOUSELEAVE:  // the button with the keyboard stays marked
            if (GetFocus() == bar) PostMessageW(bar, TB_SETHOTITEM, static_cast<WPARAM>(IndexNow(bar)), 0);
            return false;
        case WM_KEYDOWN: return OnBarKey(bar, key);
        case WM_CHAR:  // not WM_KEYDOWN, because the character of that key would then close the menu again
            if (key == L'\r' || key == L' ') PressButton(bar);
            return true;
        default: return false;
    }
}
