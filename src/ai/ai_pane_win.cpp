#include "ai/ai_pane.h"

#include "ai/ai_pane_layout.h"
#include "ai/ai_requests.h"
#include "ai/ai_state.h"
#include "ai/chat_view.h"
#include "ai/chat_window.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "ui/accessible.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <cwchar>
#include <iterator>

namespace {

constexpr WPARAM kInputLimit = 4095;  // characters; longer messages are not read

HWND CreateAiControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD exStyle, DWORD style, int id) {
    return CreateWindowExW(exStyle, className, text, WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP | style, 0, 0, 0, 0,
                           parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_ui.hInstance, nullptr);
}

LRESULT CALLBACK AiInputProc(HWND input, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_SETFOCUS) FocusRetryEnd();  // which would give the keyboard back to the editor
    if (message == WM_KEYDOWN && wParam == VK_RETURN) {
        // An empty line sends nothing, and cancels nothing either: Esc does that.
        if (GetWindowTextLengthW(input) > 0) PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDC_AI_SEND, 0);
        return 0;
    }
    if (message == WM_KEYDOWN && wParam == VK_ESCAPE) {
        if (AiRequestsRun())
            AiRequestsCancel();
        else
            FocusEditorFromPane();
        return 0;
    }
    if (message == WM_KEYDOWN && wParam == VK_TAB) {
        if (GetKeyState(VK_SHIFT) < 0)
            ChatWindowFocus();
        else
            SetFocus(g_ai.hAiSend);
        return 0;
    }
    // An edit field would beep.
    if (message == WM_CHAR && (wParam == L'\r' || wParam == L'\t' || wParam == 0x1B)) return 0;
    return SubclassNext(input, message, wParam, lParam);
}

LRESULT CALLBACK AiSendProc(HWND send, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const bool back = wParam == VK_ESCAPE || (wParam == VK_TAB && GetKeyState(VK_SHIFT) < 0);
    if (message == WM_KEYDOWN && back)
        AiPaneFocusInput();
    else if (message == WM_KEYDOWN && wParam == VK_TAB)
        ChatWindowFocus();
    else if (message == WM_KEYDOWN && wParam == VK_RETURN)
        PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDC_AI_SEND, 0);
    else
        return SubclassNext(send, message, wParam, lParam);
    return 0;
}

}  // namespace

HWND AiPaneCreate(HWND parent, int controlId) {
    const HWND chat = RichPaneCreate(parent, controlId, Text(kChatGreeting), true);
    ChatWindowInit(chat);
    g_ai.hAiInput = CreateAiControl(parent, WC_EDITW, nullptr, WS_EX_CLIENTEDGE, ES_AUTOHSCROLL, IDC_AI_INPUT);
    SendMessageW(g_ai.hAiInput, EM_LIMITTEXT, kInputLimit, 0);
    SubclassAdd(g_ai.hAiInput, AiInputProc);
    AccessibleNameSet(g_ai.hAiInput, Text(L"Message to the assistant"));
    g_ai.hAiSend = CreateAiControl(parent, WC_BUTTONW, Text(L"Send"), 0, BS_PUSHBUTTON, IDC_AI_SEND);
    SubclassAdd(g_ai.hAiSend, AiSendProc);
    return chat;
}

void AiPaneApplyTheme() {
    ChatViewApplyLook();
    for (HWND child : {g_ai.hAiInput, g_ai.hAiSend}) {
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), TRUE);
        ControlApplyTheme(child);
    }
}

std::vector<PanePart> AiPaneParts(const PaneRect& area) {
    const AiPaneLayout layout = LayOutAiPane(area, g_ui.dpi);
    return {{g_ai.hAiChat, layout.chat}, {g_ai.hAiInput, layout.input}, {g_ai.hAiSend, layout.send}};
}

bool AiChatAppend(const std::wstring& text) { return ChatViewLine(text); }

std::wstring AiInputText() {
    std::wstring text(kInputLimit + 1, L'\0');
    const int length = GetWindowTextW(g_ai.hAiInput, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

void AiPaneFocusInput() { SetFocus(g_ai.hAiInput); }

bool AiSendCancels() { return AiRequestsRun() && GetWindowTextLengthW(g_ai.hAiInput) == 0; }

void AiPaneUpdateSend() {
    const wchar_t* wanted = AiSendCancels() ? Text(L"Cancel") : Text(L"Send");
    wchar_t shown[16] = {};
    GetWindowTextW(g_ai.hAiSend, shown, static_cast<int>(std::size(shown)));
    if (std::wcscmp(shown, wanted) != 0) SetWindowTextW(g_ai.hAiSend, wanted);
}
