#include "ai/ai_pane.h"

#include "ai/ai_pane_layout.h"
#include "ai/ai_state.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/rich_lines.h"

#include <commctrl.h>

namespace {

constexpr wchar_t kGreeting[] =
    L"AI Chat\r\n========\r\nType a message below and click Send, or use Tools > OpenAI / LM-Studio.\r\n";

HWND CreateAiControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD exStyle, DWORD style, int id) {
    return CreateWindowExW(exStyle, className, text, WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP | style, 0, 0, 0, 0,
                           parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_ui.hInstance, nullptr);
}

}  // namespace

HWND AiPaneCreate(HWND parent, int controlId) {
    const HWND chat = RichPaneCreate(parent, controlId, kGreeting, true);
    g_ai.hAiInput = CreateAiControl(parent, WC_EDITW, nullptr, WS_EX_CLIENTEDGE, ES_AUTOHSCROLL, IDC_AI_INPUT);
    g_ai.hAiSend = CreateAiControl(parent, WC_BUTTONW, L"Send", 0, BS_PUSHBUTTON | WS_DISABLED, IDC_AI_SEND);
    return chat;
}

void AiPaneApplyTheme() {
    PaneApplyFontAndTheme(g_ai.hAiChat);
    RichScrollToLeft(g_ai.hAiChat);
    for (HWND child : {g_ai.hAiInput, g_ai.hAiSend}) {
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), TRUE);
        ControlApplyTheme(child);
    }
}

std::vector<PanePart> AiPaneParts(const PaneRect& area) {
    const AiPaneLayout layout = LayOutAiPane(area, g_ui.dpi);
    return {{g_ai.hAiChat, layout.chat}, {g_ai.hAiInput, layout.input}, {g_ai.hAiSend, layout.send}};
}
