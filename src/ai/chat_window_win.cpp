#include "ai/chat_window.h"

#include "ai/ai_pane.h"
#include "ai/ai_state.h"
#include "ai/chat_view.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "ui/accessible.h"
#include "ui/late_size.h"
#include "ui/menu.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <richedit.h>

namespace {

enum ChatMenuCommand : UINT { kCopyText = 1, kSelectAllText };

CHARRANGE ChatSelection(HWND chat) {
    CHARRANGE selection = {};
    SendMessageW(chat, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
    return selection;
}

// The commands for code mean the block that was clicked. A selection stays when the click is on it.
void PutChatCaretAt(HWND chat, POINT screen) {
    ScreenToClient(chat, &screen);
    POINTL at = {screen.x, screen.y};
    const LRESULT character = SendMessageW(chat, EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&at));
    const CHARRANGE selection = ChatSelection(chat);
    if (character < selection.cpMin || character > selection.cpMax || selection.cpMin == selection.cpMax)
        SendMessageW(chat, EM_SETSEL, static_cast<WPARAM>(character), character);
}

POINT ChatCaretOnScreen(HWND chat) {
    POINTL at = {};
    SendMessageW(chat, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&at), ChatSelection(chat).cpMin);
    RECT area = {};
    GetClientRect(chat, &area);
    POINT screen = {at.x, at.y};
    if (!PtInRect(&area, screen)) screen = {0, 0};
    ClientToScreen(chat, &screen);
    return screen;
}

void ShowChatMenu(HWND chat, POINT at) {
    SetFocus(chat);
    if (at.x == -1 && at.y == -1)
        at = ChatCaretOnScreen(chat);
    else
        PutChatCaretAt(chat, at);
    const CHARRANGE selection = ChatSelection(chat);
    const bool code = ChatViewHasCode();
    const MenuItem items[] = {
        {.id = kCopyText, .text = Text(L"C&opy\tCtrl+C"), .enabled = selection.cpMin != selection.cpMax},
        {.id = kSelectAllText, .text = Text(L"Select &All\tCtrl+A")},
        {},
        {.id = IDM_AI_COPY_CODE, .text = Text(L"&Copy Code\tCtrl+Shift+C"), .enabled = code},
        {.id = IDM_AI_INSERT_CODE,
         .text = Text(L"&Insert Code at Caret\tCtrl+Shift+I"),
         .enabled = code && ActiveDocumentId() != 0},
        {},
        {.id = IDM_AI_NEW_CHAT, .text = Text(L"&New Chat")}};
    switch (const UINT command = ShowPopupMenu(chat, items, at)) {
        case 0: break;
        case kCopyText: SendMessageW(chat, WM_COPY, 0, 0); break;
        case kSelectAllText: SendMessageW(chat, EM_SETSEL, 0, -1); break;
        default: PostMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0); break;
    }
}

// The chat can be read with the keys; what is typed there is meant for the line below it.
LRESULT CALLBACK ChatWindowProc(HWND chat, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (wParam == VK_ESCAPE) FocusEditorFromPane();
            if (wParam == VK_TAB) SetFocus(GetKeyState(VK_SHIFT) < 0 ? g_ai.hAiSend : g_ai.hAiInput);
            break;
        case WM_CHAR:
            if (wParam <= L' ') break;
            AiPaneFocusInput();
            return SendMessageW(g_ai.hAiInput, message, wParam, lParam);
        case WM_CONTEXTMENU:
            ShowChatMenu(chat, {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
            return 0;
        default: break;
    }
    return SubclassNext(chat, message, wParam, lParam);
}

}  // namespace

void ChatWindowInit(HWND chat) {
    if (chat == nullptr) return;
    SizeLateKeepsEnd(chat);
    SubclassAdd(chat, ChatWindowProc);
    AccessibleNameSet(chat, Text(L"AI Chat"));  // again after the pane was replaced
    SendMessageW(chat, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    SendMessageW(chat, EM_SETUNDOLIMIT, 0, 0);
}

void ChatWindowFocus() {
    const HWND chat = g_ai.hAiChat;
    POINTL at = {};
    SendMessageW(chat, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&at), ChatSelection(chat).cpMin);
    RECT area = {};
    GetClientRect(chat, &area);
    if (at.y < area.top || at.y >= area.bottom) {
        const LRESULT top = SendMessageW(chat, EM_GETFIRSTVISIBLELINE, 0, 0);
        const LRESULT place =
            RichIsAtEnd(chat) ? RichLength(chat) : SendMessageW(chat, EM_LINEINDEX, static_cast<WPARAM>(top), 0);
        SendMessageW(chat, EM_SETSEL, static_cast<WPARAM>(place), place);
    }
    SetFocus(chat);
}
