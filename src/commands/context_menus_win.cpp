// Shows the context menus of the editor, its margin, the output pane, the error list and the ASM pane. UI thread only.
#include "commands/context_menus.h"

#include "ai/ai_rules.h"
#include "base/texts.h"
#include "commands/context_menu.h"
#include "commands/menu_commands.h"
#include "completion/completion.h"
#include "completion/tips.h"
#include "disasm/disasm_state.h"
#include "documents/document_row.h"
#include "editor/margins.h"
#include "output/output_pane.h"
#include "output/output_state.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/menu.h"
#include "ui/menu_text.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <richedit.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace {

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LPARAM lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

bool IsOverMargin(HWND editor, POINT screen) {
    ScreenToClient(editor, &screen);
    LRESULT right = 0;
    for (int margin = 0; margin < kMarginCount; ++margin) right += Ask(editor, SCI_GETMARGINWIDTHN, margin);
    return screen.x >= 0 && screen.x < right;
}

// The commands of the margin mean the line that was clicked, also within a selection.
void MoveCaretToLineAt(HWND editor, POINT screen) {
    ScreenToClient(editor, &screen);
    const LRESULT line = Ask(editor, SCI_LINEFROMPOSITION, Ask(editor, SCI_POSITIONFROMPOINT, screen.x, screen.y));
    if (line != Ask(editor, SCI_LINEFROMPOSITION, Ask(editor, SCI_GETCURRENTPOS))) Ask(editor, SCI_GOTOLINE, line);
}

POINT WithinClient(HWND window, POINT at) {
    RECT client = {};
    GetClientRect(window, &client);
    at.x = std::clamp<LONG>(at.x, 0, std::max<LONG>(client.right - 1, 0));
    at.y = std::clamp<LONG>(at.y, 0, std::max<LONG>(client.bottom - 1, 0));
    ClientToScreen(window, &at);
    return at;
}

// Below the caret, which is brought into sight.
POINT PlaceAtEditorCaret(HWND editor) {
    Ask(editor, SCI_SCROLLCARET);
    const LRESULT caret = Ask(editor, SCI_GETCURRENTPOS);
    return WithinClient(
        editor, {static_cast<LONG>(Ask(editor, SCI_POINTXFROMPOSITION, 0, caret)),
                 static_cast<LONG>(Ask(editor, SCI_POINTYFROMPOSITION, 0, caret) + Ask(editor, SCI_TEXTHEIGHT))});
}

POINT PlaceAtPaneCaret(HWND pane) {
    CHARRANGE selection = {};
    SendMessageW(pane, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
    POINTL at = {};
    SendMessageW(pane, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&at), selection.cpMin);
    return WithinClient(pane, {at.x, at.y});
}

// The key as the main menu shows it, or the first one of a command without a place there.
std::wstring KeyOf(int command) {
    wchar_t text[256] = {};
    GetMenuStringW(GetMenu(g_ui.hMainWnd), static_cast<UINT>(command), text, static_cast<int>(std::size(text)),
                   MF_BYCOMMAND);
    std::wstring key = SplitMenuText(text).key;
    if (key.empty()) key = CommandKeys(command);
    return key.substr(0, key.find(L','));
}

int AskCommand() {
    AiService service = SendService(g_settings);
    if (service == AiService::None) service = g_settings.primaryAi == 0 ? AiService::OpenAi : AiService::LmStudio;
    return service == AiService::OpenAi ? IDM_AI_OPENAI : IDM_AI_LMSTUDIO;
}

// The main window is the owner, because it sets the states of the commands when the menu opens.
void ShowContextMenu(ContextPlace place, POINT at) {
    const std::vector<ContextItem> chosen = ContextItemsNow(place, CompilerIsOnDiagnostic(), AskCommand());
    std::vector<std::wstring> texts;
    for (const ContextItem& item : chosen) {
        texts.emplace_back(item.text != nullptr ? Text(item.text) : L"");
        if (const std::wstring key = item.command != 0 ? KeyOf(item.command) : L""; !key.empty())
            texts.back() += L"\t" + key;
    }
    std::vector<MenuItem> items;
    for (std::size_t i = 0; i < chosen.size(); ++i)
        items.push_back({.id = static_cast<UINT>(chosen[i].command), .text = texts[i].c_str()});
    const UINT command = ShowPopupMenu(g_ui.hMainWnd, items, at);
    if (command != 0) SendMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0);
}

std::optional<ContextPlace> PlaceOf(HWND window) {
    if (window == nullptr) return {};
    if (window == g_documents.hEditor) return ContextPlace::Text;
    if (window == g_output.hOutput) return ContextPlace::Output;
    if (window == g_output.hErrorList) return ContextPlace::Errors;
    if (window == g_disasm.hAsmPane) return ContextPlace::Listing;
    return {};
}

}  // namespace

bool ContextMenuShow(HWND window, POINT screen) {
    const std::optional<ContextPlace> place = PlaceOf(window);
    if (!place) return false;
    const bool byKeyboard = screen.x == -1 && screen.y == -1;
    if (place != ContextPlace::Text) {
        ShowContextMenu(*place, byKeyboard ? PlaceAtPaneCaret(window) : screen);
        return true;
    }
    CompletionClose();
    HoverEnd(window);
    const bool margin = !byKeyboard && IsOverMargin(window, screen);
    if (margin) MoveCaretToLineAt(window, screen);
    ShowContextMenu(margin ? ContextPlace::Margin : ContextPlace::Text,
                    byKeyboard ? PlaceAtEditorCaret(window) : screen);
    return true;
}
