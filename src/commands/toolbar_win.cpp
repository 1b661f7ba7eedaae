// The toolbar: buttons from kToolbarButtons, pictures drawn for the current theme and DPI. UI thread.
#include "commands/toolbar.h"

#include "base/texts.h"
#include "commands/command_state.h"
#include "commands/commands_state.h"
#include "commands/focus_frame.h"
#include "commands/toolbar_fit.h"
#include "commands/toolbar_internal.h"
#include "commands/toolbar_keys.h"
#include "commands/toolbar_table.h"
#include "debugui/debug_commands.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kIconSize = 16;  // this and the next ones: pixels at 96 dpi
constexpr int kButtonSize = 28;
constexpr int kBarPadding = 3;
constexpr int kGap = 9;
constexpr int kMoreSize = 20;    // width of the button that shows the buttons without room
constexpr int kTextInset = 8;    // of the compiler button
constexpr int kArrowWidth = 30;  // room for its arrow
constexpr int kFirstGap = 1;     // id of the first gap; the ids of commands are above the gaps'

HIMAGELIST g_images = nullptr;
HIMAGELIST g_disabledImages = nullptr;
HWND g_tooltip = nullptr;                 // null until the toolbar has made it
std::optional<CommandView> g_applied;     // the state that the buttons show; no value: not known
std::uint32_t g_conditions = kNoSession;  // the conditions by which buttons are shown
std::vector<HiddenButton> g_hidden;       // the buttons without room
int g_compilerWidth = 0;                  // of the longest text that the compiler button may have, in pixels
int g_pressed = 0;                        // the command of the button that went down last

HIMAGELIST RenderImages(bool enabled) {
    const int size = UiScaled(kIconSize);
    HIMAGELIST images = ImageList_Create(size, size, ILC_COLOR32, static_cast<int>(std::size(kToolbarButtons)), 0);
    const IconInks inks = ToolbarInksNow(enabled);
    for (const ButtonRow& row : kToolbarButtons) {
        if (row.command == 0 || row.command == IDM_COMPILER_MENU) continue;
        HBITMAP bitmap = ToolbarPicture(row.icon, size, inks, PictureUse::ImageList);
        ImageList_Add(images, bitmap, nullptr);
        DeleteObject(bitmap);
    }
    return images;
}

// Of the menu, whose text and key are the button's.
int ButtonCommand(const ButtonRow& row) { return row.twin != 0 ? row.twin : row.command; }

int ButtonId(const ButtonRow& row) {
    return row.command != 0 ? row.command : kFirstGap + static_cast<int>(&row - kToolbarButtons);
}

std::wstring ButtonMenuText(const ButtonRow& row) {
    if (row.tip != nullptr) return Text(row.tip);
    wchar_t text[128] = {};
    GetMenuStringW(GetMenu(g_ui.hMainWnd), static_cast<UINT>(ButtonCommand(row)), text,
                   static_cast<int>(std::size(text)), MF_BYCOMMAND);
    return text;
}

// "Build & Run (F5)".
std::wstring ButtonTip(const ButtonRow& row) {
    return CommandTip(ButtonMenuText(row), FirstExtraKeyOf(ButtonCommand(row)));
}

std::wstring ButtonItem(const ButtonRow& row) {
    return CommandItem(ButtonMenuText(row), FirstExtraKeyOf(ButtonCommand(row)));
}

// What screen readers say. Only the compiler button shows its text; the control shows that of the others as their tips.
std::wstring ButtonName(const ButtonRow& row) {
    return row.command == IDM_COMPILER_MENU ? ToolbarCompilerText() : ButtonTip(row);
}

// All at once, because the control lays out all its buttons at each message.
void AddButtons(HWND bar) {
    int image = 0;
    std::vector<std::wstring> names;  // alive until the control has copied them
    for (const ButtonRow& row : kToolbarButtons) names.push_back(row.command != 0 ? ButtonName(row) : L"");
    std::vector<TBBUTTON> buttons;
    for (const ButtonRow& row : kToolbarButtons) {
        TBBUTTON& button = buttons.emplace_back();
        button.fsState = TBSTATE_ENABLED;
        button.idCommand = ButtonId(row);
        if (row.command != 0) button.iString = reinterpret_cast<INT_PTR>(names[buttons.size() - 1].c_str());
        if (row.command == 0) {
            button.fsStyle = BTNS_SEP;
            button.iBitmap = kGap;
        } else if (row.command == IDM_COMPILER_MENU) {
            button.fsStyle = BTNS_SHOWTEXT | BTNS_DROPDOWN;
            button.iBitmap = I_IMAGENONE;
        } else {
            const bool opens = row.command == IDM_TOOLBAR_MORE;  // opens a menu when the button goes down
            button.fsStyle = opens ? BTNS_DROPDOWN : row.showsState ? BTNS_CHECK : BTNS_BUTTON;
            button.iBitmap = image++;
        }
    }
    SendMessageW(bar, TB_ADDBUTTONSW, buttons.size(), reinterpret_cast<LPARAM>(buttons.data()));
}

// As wide as the longest text that can come, so that no button moves when another compiler is chosen.
void MeasureCompilerButton() {
    std::vector<std::wstring> texts;
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) texts.push_back(CompilerLabel(id, false));
    g_compilerWidth = std::ranges::max(UiTextWidths(texts));
}

int ButtonWidth(const ButtonRow& row) {
    switch (row.command) {
        case 0: return UiScaled(kGap);
        case IDM_COMPILER_MENU: return g_compilerWidth + UiScaled(kTextInset + kArrowWidth);
        case IDM_TOOLBAR_MORE: return UiScaled(kMoreSize);
        default: return UiScaled(kButtonSize);
    }
}

// Sets the width of each button, because the control makes all buttons as wide as the one with text. A width that is
// right already is left alone: setting one repaints the whole bar.
void SizeButtons() {
    for (const ButtonRow& row : kToolbarButtons) {
        const auto id = static_cast<WPARAM>(ButtonId(row));
        TBBUTTONINFOW info = {};
        info.cbSize = sizeof(info);
        info.dwMask = TBIF_SIZE;
        SendMessageW(g_commands.hToolbar, TB_GETBUTTONINFOW, id, reinterpret_cast<LPARAM>(&info));
        const auto wanted = static_cast<WORD>(ButtonWidth(row));
        if (std::exchange(info.cx, wanted) != wanted)
            SendMessageW(g_commands.hToolbar, TB_SETBUTTONINFOW, id, reinterpret_cast<LPARAM>(&info));
    }
}

void ShowButton(const ButtonRow& row, bool shown) {
    const auto id = static_cast<WPARAM>(ButtonId(row));
    const bool now = SendMessageW(g_commands.hToolbar, TB_ISBUTTONHIDDEN, id, 0) == 0;
    if (shown != now) SendMessageW(g_commands.hToolbar, TB_HIDEBUTTON, id, MAKELPARAM(shown ? FALSE : TRUE, 0));
}

// Shows the wanted buttons for which there is room, and keeps the others in g_hidden.
void FitButtons() {
    RECT client = {};
    GetClientRect(g_commands.hToolbar, &client);
    if (client.right <= 0) return;  // not placed yet
    ToolbarShare share =
        ShareToolbar(kToolbarButtons, g_conditions, client.right - 2 * UiScaled(kBarPadding), ButtonWidth, ButtonItem);
    for (std::size_t i = 0; i < share.shown.size(); ++i) ShowButton(kToolbarButtons[i], share.shown[i]);
    ShowButton(std::end(kToolbarButtons)[-1], share.more);
    g_hidden = std::move(share.hidden);
}

// Draws the text and the arrow of the compiler button, because the control draws the arrow black on any background.
void DrawCompilerButton(const NMTBCUSTOMDRAW& draw, COLORREF colour) {
    const HDC dc = draw.nmcd.hdc;
    RECT area = draw.nmcd.rc;
    area.left += UiScaled(kTextInset);
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
    DrawTextW(dc, ToolbarCompilerText().c_str(), -1, &area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    SelectObject(dc, oldFont);
    DrawDropArrow(dc, area, UiScaled(kArrowWidth), colour);
}

LRESULT DrawButton(NMTBCUSTOMDRAW& draw) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    draw.clrText = chrome.statusText;
    draw.clrTextHighlight = chrome.statusText;
    draw.clrHighlightHotTrack = chrome.hover;
    if ((draw.nmcd.uItemState & (CDIS_CHECKED | CDIS_HOT | CDIS_SELECTED)) != 0)
        FillArea(draw.nmcd.hdc, draw.nmcd.rc, chrome.hover);
    if (draw.nmcd.hdr.hwndFrom == GetFocus() && (draw.nmcd.uItemState & CDIS_HOT) != 0)
        DrawFocusFrame(draw.nmcd.hdc, draw.nmcd.rc);
    if (draw.nmcd.dwItemSpec != IDM_COMPILER_MENU)
        return TBCDRF_NOBACKGROUND | TBCDRF_NOEDGES | TBCDRF_NOOFFSET | TBCDRF_USECDCOLORS;
    DrawCompilerButton(draw, chrome.statusText);
    return CDRF_SKIPDEFAULT;
}

LRESULT DrawBar(const NMTBCUSTOMDRAW& draw) {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT: return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT:
            return DrawButton(const_cast<NMTBCUSTOMDRAW&>(draw));  // the control reads the colours from it
        default: return CDRF_DODEFAULT;
    }
}

// The command of the button at the point; 0: there is none.
int CommandAt(HWND bar, LPARAM lParam) {
    POINT at = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    const LRESULT index = SendMessageW(bar, TB_HITTEST, 0, reinterpret_cast<LPARAM>(&at));
    TBBUTTON button = {};
    if (index < 0 ||
        SendMessageW(bar, TB_GETBUTTON, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&button)) == 0)
        return 0;
    return button.idCommand;
}

// True for the second click of two when the first one has put another button in this place: it was meant for the first.
bool IsClickOnNewButton(HWND bar, LPARAM lParam) { return CommandAt(bar, lParam) != g_pressed; }

// A screen reader says the text of a button, which is not shown. The buttons get theirs when the first one asks.
void NameButtons(HWND bar) {
    static bool named = false;
    if (std::exchange(named, true)) return;
    for (const ButtonRow& row : kToolbarButtons) {
        if (row.command == 0 || row.command == IDM_COMPILER_MENU) continue;
        std::wstring text = ButtonTip(row);
        TBBUTTONINFOW info = {};
        info.cbSize = sizeof(info);
        info.dwMask = TBIF_TEXT;
        info.pszText = text.data();
        SendMessageW(bar, TB_SETBUTTONINFOW, static_cast<WPARAM>(row.command), reinterpret_cast<LPARAM>(&info));
    }
    SizeButtons();
}

std::wstring NameOfButton(int index) {
    const ButtonRow& row = kToolbarButtons[index];
    return row.command != 0 ? ButtonName(row) : L"";
}

LRESULT AnswerForButtons(HWND bar, WPARAM wParam, LPARAM lParam) {
    constexpr AccessibleParts kButtons = {static_cast<int>(std::size(kToolbarButtons)), NameOfButton};
    NameButtons(bar);
    return AccessibleAnswer(bar, wParam, lParam, Text(L"Toolbar"), SubclassNext(bar, WM_GETOBJECT, wParam, lParam),
                            kButtons);
}

// Fills the background, because the control has no setting for its colour.
LRESULT EraseBar(HWND bar, HDC dc) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    RECT area = {};
    GetClientRect(bar, &area);
    FillArea(dc, area, chrome.statusBack);
    area.top = area.bottom - 1;
    FillArea(dc, area, chrome.line);
    return 1;
}

LRESULT CALLBACK ToolbarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_ERASEBKGND: return EraseBar(window, reinterpret_cast<HDC>(wParam));
        case WM_LBUTTONDBLCLK:
            if (IsClickOnNewButton(window, lParam)) return 0;
            break;
        case WM_LBUTTONDOWN: g_pressed = CommandAt(window, lParam); break;
        case WM_LBUTTONUP: g_applied.reset(); break;  // because a click changes a check button's state
        case WM_GETOBJECT: return AnswerForButtons(window, wParam, lParam);
        case WM_SIZE: FitButtons(); break;
        default:
            if (ToolbarKeysTake(window, message, wParam)) return 0;
            break;
    }
    return SubclassNext(window, message, wParam, lParam);
}

}  // namespace

HWND ToolbarCreate(HWND parent, int controlId) {
    HWND bar = CreateWindowExW(
        0, TOOLBARCLASSNAMEW, Text(L"Toolbar"),
        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | TBSTYLE_TRANSPARENT |
            CCS_NORESIZE | CCS_NODIVIDER | CCS_NOPARENTALIGN,
        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (bar == nullptr) return nullptr;
    SendMessageW(bar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(bar, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS | TBSTYLE_EX_DOUBLEBUFFER);
    SubclassAdd(bar, ToolbarProc);
    AddButtons(bar);
    return bar;
}

void ToolbarApplyTheme() {
    if (g_commands.hToolbar == nullptr) return;
    HIMAGELIST oldImages = g_images;
    HIMAGELIST oldDisabled = g_disabledImages;
    g_images = RenderImages(true);
    g_disabledImages = RenderImages(false);
    SendMessageW(g_commands.hToolbar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(g_images));
    SendMessageW(g_commands.hToolbar, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(g_disabledImages));
    SendMessageW(g_commands.hToolbar, TB_SETINDENT, static_cast<WPARAM>(UiScaled(kBarPadding)), 0);
    SendMessageW(g_commands.hToolbar, TB_SETBUTTONSIZE, 0, MAKELPARAM(UiScaled(kButtonSize), UiScaled(kButtonSize)));
    SendMessageW(g_commands.hToolbar, TB_SETBUTTONWIDTH, 0, MAKELPARAM(UiScaled(kButtonSize), UiScaled(kButtonSize)));
    SendMessageW(g_commands.hToolbar, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    TooltipApplyTheme(g_tooltip);
    MeasureCompilerButton();
    ToolbarUpdateCompiler();
    SizeButtons();
    FitButtons();
    if (oldImages != nullptr) ImageList_Destroy(oldImages);
    if (oldDisabled != nullptr) ImageList_Destroy(oldDisabled);
    InvalidateRect(g_commands.hToolbar, nullptr, TRUE);
}

void ToolbarDestroyImages() {
    if (g_images != nullptr) ImageList_Destroy(g_images);
    if (g_disabledImages != nullptr) ImageList_Destroy(g_disabledImages);
    g_images = g_disabledImages = nullptr;
}

void ToolbarUpdateCompiler() {
    if (g_images == nullptr) return;  // not complete: ToolbarApplyTheme comes later
    const std::wstring text = ToolbarCompilerText();
    wchar_t shown[128] = {};
    TBBUTTONINFOW info = {};
    info.cbSize = sizeof(info);
    info.dwMask = TBIF_TEXT;
    info.pszText = shown;
    info.cchText = static_cast<int>(std::size(shown));
    SendMessageW(g_commands.hToolbar, TB_GETBUTTONINFOW, IDM_COMPILER_MENU, reinterpret_cast<LPARAM>(&info));
    if (text == shown) return;
    info.pszText = const_cast<wchar_t*>(text.c_str());
    SendMessageW(g_commands.hToolbar, TB_SETBUTTONINFOW, IDM_COMPILER_MENU, reinterpret_cast<LPARAM>(&info));
    SizeButtons();  // the control has given the button the width of its text
    InvalidateRect(g_commands.hToolbar, nullptr, TRUE);
}

bool ToolbarShowMenuOf(int command) {
    if (command != IDM_COMPILER_MENU && command != IDM_TOOLBAR_MORE) return false;
    // A menu runs a message loop, and while a program is started for debugging only Stop may run.
    if (DebugIsWaiting()) return true;
    RECT button = {};
    SendMessageW(g_commands.hToolbar, TB_GETRECT, static_cast<WPARAM>(command), reinterpret_cast<LPARAM>(&button));
    if (command == IDM_COMPILER_MENU) ToolbarShowCompilerMenu(g_commands.hToolbar, button);
    // A copy, because g_hidden may change while the menu is open.
    const std::vector<HiddenButton> hidden = g_hidden;
    if (command == IDM_TOOLBAR_MORE && !hidden.empty()) ToolbarShowHiddenMenu(g_commands.hToolbar, button, hidden);
    return true;
}

void ToolbarShowMore() {
    if (!g_hidden.empty() && IsWindowVisible(g_commands.hToolbar) != FALSE) ToolbarShowMenuOf(IDM_TOOLBAR_MORE);
}

void ToolbarUpdateAi() {
    SendMessageW(g_commands.hToolbar, TB_CHECKBUTTON, IDM_VIEW_AI, MAKELPARAM(g_settings.showAiSidebar, 0));
}

void ToolbarUpdateAiDo() { ToolbarApplyState(CurrentCommandView()); }

void ToolbarApplyState(const CommandView& view) {
    // This is called at every key, and TB_GETSTATE for each button takes longer than the key itself.
    if (g_applied == view) return;
    g_applied = view;
    const std::uint32_t conditions = view.conditions & kShowingConditions;
    if (std::exchange(g_conditions, conditions) != conditions) FitButtons();
    for (const ButtonRow& row : kToolbarButtons) {
        if (row.command == 0) continue;
        const CommandState state = CommandStateOf(row.command, view);
        const LRESULT now = SendMessageW(g_commands.hToolbar, TB_GETSTATE, static_cast<WPARAM>(row.command), 0);
        const LRESULT kept = now & ~static_cast<LRESULT>(TBSTATE_ENABLED | TBSTATE_CHECKED);
        const LRESULT wanted =
            kept | (state.enabled ? TBSTATE_ENABLED : 0) | (row.showsState && state.checked ? TBSTATE_CHECKED : 0);
        if (wanted != now)
            SendMessageW(g_commands.hToolbar, TB_SETSTATE, static_cast<WPARAM>(row.command), MAKELPARAM(wanted, 0));
    }
}

int ToolbarInset() {
    const int buttons = HIWORD(SendMessageW(g_commands.hToolbar, TB_GETBUTTONSIZE, 0, 0));
    return std::max(0, (ToolbarHeight() - 1 - buttons) / 2);
}

int ToolbarHeight() { return UiScaled(kButtonSize + 2 * kBarPadding); }

static bool FillToolbarTip(NMTTDISPINFOW& tip) {
    if ((tip.uFlags & TTF_IDISHWND) != 0 || tip.hdr.idFrom < IDM_FILE_NEW) return false;
    const auto* row = std::ranges::find(kToolbarButtons, static_cast<int>(tip.hdr.idFrom), &ButtonRow::command);
    if (row == std::end(kToolbarButtons)) return false;
    lstrcpynW(tip.szText, ButtonTip(*row).c_str(), static_cast<int>(std::size(tip.szText)));
    tip.lpszText = tip.szText;
    return true;
}

bool ToolbarHandleNotify(const NMHDR& header, LRESULT* result) {
    // The answer goes into the notification's own record.
    if (header.code == TTN_GETDISPINFOW)
        return FillToolbarTip(*reinterpret_cast<NMTTDISPINFOW*>(const_cast<NMHDR*>(&header)));
    if (header.code == NM_TOOLTIPSCREATED && header.idFrom == IDC_TOOLBAR) {
        g_tooltip = reinterpret_cast<const NMTOOLTIPSCREATED&>(header).hwndToolTips;
        // Otherwise "Build & Run" would lose its ampersand.
        SetWindowLongPtrW(g_tooltip, GWL_STYLE, GetWindowLongPtrW(g_tooltip, GWL_STYLE) | TTS_NOPREFIX);
        TooltipApplyTheme(g_tooltip);
        return true;
    }
    if (header.hwndFrom != g_commands.hToolbar || g_commands.hToolbar == nullptr) return false;
    if (header.code == NM_CUSTOMDRAW) {
        *result = DrawBar(reinterpret_cast<const NMTBCUSTOMDRAW&>(header));
        return true;
    }
    if (header.code == TBN_DROPDOWN) {
        ToolbarShowMenuOf(reinterpret_cast<const NMTOOLBARW&>(header).iItem);
        *result = TBDDRET_DEFAULT;
        return true;
    }
    return false;
}
