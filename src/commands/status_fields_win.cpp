// Clicks, keys, menus and tips of the status bar. UI thread.
#include "commands/status_fields.h"
#include "base/texts.h"
#include "commands/command_state.h"
#include "commands/commands_state.h"
#include "commands/menu_commands.h"
#include "commands/status_bar.h"
#include "commands/status_fields_window.h"
#include "commands/toolbar.h"
#include "debugui/debug_commands.h"
#include "documents/document_row.h"
#include "documents/save_rules.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/control_theme.h"
#include "ui/menu.h"
#include "ui/progress.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <windowsx.h>

#include <string>
#include <vector>

namespace {

struct StatusInput {
    int keyboard = -1;            // StatusFieldWithKeyboard
    StatusPart last = kPosition;  // where the keyboard was the last time
    HWND tip = nullptr;           // made when the mouse first comes
    int tipPart = -1;
    std::wstring message;  // that the tip shows whole
};
StatusInput g_input;

StatusPart PartAt(LPARAM point) { return StatusPartAt(StatusBarEnds(), GET_X_LPARAM(point)); }

// The upper left corner of a part, on the screen.
POINT CornerOf(HWND bar, StatusPart part) {
    const StatusWidths ends = StatusBarEnds();
    POINT corner = {part == kMessage ? 0 : ends[static_cast<std::size_t>(part) - 1], 0};
    ClientToScreen(bar, &corner);
    return corner;
}

void ShowCommands(HWND bar, StatusPart part) {
    std::vector<std::wstring> texts;
    const HMENU menu = GetMenu(g_ui.hMainWnd);
    for (const int command : StatusFieldOf(part).commands) texts.push_back(CommandMenuText(menu, command));
    std::vector<MenuItem> items;
    for (const int command : StatusFieldOf(part).commands)
        items.push_back({.id = static_cast<UINT>(command), .text = texts[items.size()].c_str()});
    // The main window sets the marks and states when the menu opens.
    const UINT chosen = ShowPopupMenu(g_ui.hMainWnd, items, CornerOf(bar, part), TPM_LEFTALIGN | TPM_BOTTOMALIGN);
    if (chosen != 0) PostMessageW(g_ui.hMainWnd, WM_COMMAND, chosen, 0);
}

ProgressStop StopNow() { return StatusProgressStop(ProgressRuns(ProgressOf::Build), ProgressRuns(ProgressOf::Search)); }

void OpenField(HWND bar, StatusPart part) {
    if (!StatusFieldReacts(part) || DebugIsWaiting()) return;  // a menu runs a message loop
    const std::span<const int> commands = StatusFieldOf(part).commands;
    if (commands[0] == IDM_COMPILER_MENU) return ToolbarShowCompilersAt(CornerOf(bar, part));
    if (part != kProgress && commands.size() > 1) return ShowCommands(bar, part);
    const int command = part == kProgress ? StopNow().command : commands[0];
    if (command != 0) PostMessageW(g_ui.hMainWnd, WM_COMMAND, static_cast<WPARAM>(command), 0);
}

// Which fields are shown, and the bar itself.
void ShowFieldsMenu(HWND bar, POINT screen) {
    if (DebugIsWaiting()) return;
    constexpr UINT kFirst = 1;  // below all commands
    std::vector<MenuItem> items;
    for (int i = kMessage + 1; i < kStatusPartCount; ++i) {
        const auto part = static_cast<StatusPart>(i);
        items.push_back({.id = kFirst + static_cast<UINT>(i),
                         .text = Text(StatusFieldOf(part).name),
                         .checked = !StatusFieldIsHidden(g_settings.statusHidden, part)});
    }
    items.push_back({});
    items.push_back({.id = IDM_VIEW_STATUS_BAR, .text = Text(L"&Status Bar"), .checked = true});
    const UINT chosen = ShowPopupMenu(bar, items, screen, TPM_LEFTALIGN | TPM_BOTTOMALIGN);
    if (chosen == 0) return;
    if (chosen == IDM_VIEW_STATUS_BAR) {
        PostMessageW(g_ui.hMainWnd, WM_COMMAND, chosen, 0);
        return;
    }
    const auto part = static_cast<StatusPart>(chosen - kFirst);
    SettingsChange(
        [part](Settings& settings) { settings.statusHidden = StatusFieldToggled(settings.statusHidden, part); });
    SettingsSave(nullptr);
}

void MoveKeyboard(HWND bar, StatusPart part) {
    g_input.keyboard = g_input.last = part;
    InvalidateRect(bar, nullptr, FALSE);
    NotifyWinEvent(EVENT_OBJECT_FOCUS, bar, OBJID_CLIENT, part + 1);
}

bool OnStatusKey(HWND bar, WPARAM key) {
    const StatusWidths ends = StatusBarEnds();
    const auto at = static_cast<StatusPart>(g_input.keyboard);
    switch (key) {
        case VK_LEFT: MoveKeyboard(bar, StatusPartBeside(ends, at, false)); return true;
        case VK_RIGHT: MoveKeyboard(bar, StatusPartBeside(ends, at, true)); return true;
        case VK_HOME: MoveKeyboard(bar, StatusPartBeside(ends, kMessage, true)); return true;
        case VK_END: {
            StatusPart last = at;
            for (StatusPart next = StatusPartBeside(ends, last, true); next != last;
                 next = StatusPartBeside(ends, last, true))
                last = next;
            MoveKeyboard(bar, last);
            return true;
        }
        case VK_UP:
        case VK_DOWN: OpenField(bar, at); return true;
        case VK_ESCAPE: FocusEditorFromPane(); return true;
        default: return false;
    }
}

void CreateTip(HWND bar) {
    g_input.tip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0,
                                  0, 0, 0, bar, nullptr, g_ui.hInstance, nullptr);
    if (g_input.tip == nullptr) return;
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
    tool.hwnd = bar;
    tool.uId = reinterpret_cast<UINT_PTR>(bar);
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(g_input.tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    TooltipApplyTheme(g_input.tip);
}

void OnStatusMouse(HWND bar, LPARAM point) {
    if (g_input.tip == nullptr) CreateTip(bar);
    const int part = PartAt(point);
    if (part == g_input.tipPart) return;
    g_input.tipPart = part;
    if (g_input.tip != nullptr) SendMessageW(g_input.tip, TTM_POP, 0, 0);
}

bool FillStatusTip(NMHDR& header) {
    if (g_input.tip == nullptr || header.hwndFrom != g_input.tip || header.code != TTN_GETDISPINFOW) return false;
    const wchar_t* tip = nullptr;
    if (g_input.tipPart == kMessage) {
        g_input.message = StatusBarCutMessage();
        reinterpret_cast<NMTTDISPINFOW&>(header).lpszText = g_input.message.data();
        return true;
    }
    if (g_input.tipPart == kProgress)
        tip = StopNow().tip;
    else if (g_input.tipPart == kLineEnding && IsTabIndex(g_documents.activeTab) &&
             SaveUnifiesBreaks(TabAt(g_documents.activeTab)))
        tip = English(L"The line breaks are of several kinds, of which a save makes one. Choose it here.");
    else if (g_input.tipPart >= 0)
        tip = StatusFieldOf(static_cast<StatusPart>(g_input.tipPart)).tip;
    reinterpret_cast<NMTTDISPINFOW&>(header).lpszText = const_cast<wchar_t*>(tip != nullptr ? Text(tip) : L"");
    return true;
}

void OnStatusMenu(HWND bar, LPARAM point) {
    POINT screen = {GET_X_LPARAM(point), GET_Y_LPARAM(point)};
    if (point == -1) screen = CornerOf(bar, static_cast<StatusPart>(std::max(g_input.keyboard, 0)));
    ShowFieldsMenu(bar, screen);
}

}  // namespace

bool StatusFieldsTake(HWND bar, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEMOVE: OnStatusMouse(bar, lParam); return false;
        case WM_LBUTTONUP: OpenField(bar, PartAt(lParam)); return true;
        case WM_CONTEXTMENU: OnStatusMenu(bar, lParam); return true;
        case WM_NOTIFY: return FillStatusTip(*reinterpret_cast<NMHDR*>(lParam));
        case WM_KEYDOWN: return OnStatusKey(bar, wParam);
        case WM_CHAR:  // not WM_KEYDOWN, because the character of that key would then close the menu again
            if (wParam == L'\r' || wParam == L' ') OpenField(bar, static_cast<StatusPart>(g_input.keyboard));
            return true;
        case WM_SETFOCUS:
            // The field may have gone, so the place is looked for beside it.
            MoveKeyboard(bar, StatusPartBeside(StatusBarEnds(), static_cast<StatusPart>(g_input.last - 1), true));
            return false;
        case WM_KILLFOCUS:
            g_input.keyboard = -1;
            InvalidateRect(bar, nullptr, FALSE);
            return false;
        case WM_DESTROY: g_input.tip = nullptr; return false;
        default: return false;
    }
}

int StatusFieldWithKeyboard() { return g_input.keyboard; }

void StatusFieldsApplyTheme() { TooltipApplyTheme(g_input.tip); }
