#include "app/pane_titles.h"

#include "app/app_state.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <string>

namespace {

struct PaneTitle {
    HWND label = nullptr;  // null: never shown
    HWND close = nullptr;
    int needs = 0;  // the width at which its text is not cut, as it was last drawn
};

struct PaneTitles {
    std::array<PaneTitle, kPaneCount> of;  // by PaneId
    const PaneSpec* focused = nullptr;     // the pane that has the keyboard, as its title shows it
    HWND hovered = nullptr;                // the close button below the mouse
    HWND tooltip = nullptr;                // null until the mouse is over a button
    HWND before = nullptr;                 // had the keyboard before a click gave it to a close button
};
PaneTitles g_titles;

const PaneSpec* PaneOfTitle(HWND window) {
    for (const PaneSpec& pane : Panes()) {
        const PaneTitle& title = g_titles.of[PaneIndex(pane.id)];
        if (window != nullptr && (window == title.label || window == title.close)) return &pane;
    }
    return nullptr;
}

// The mouse is over a close button, which also has its tooltip from now on.
void Hover(HWND button) {
    if (g_titles.hovered == button) return;
    g_titles.hovered = button;
    TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, button, 0};
    TrackMouseEvent(&track);
    InvalidateRect(button, nullptr, FALSE);
    if (g_titles.tooltip == nullptr)
        g_titles.tooltip =
            CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0,
                            0, g_app.hMainWnd, nullptr, g_app.hInstance, nullptr);
    TooltipApplyTheme(g_titles.tooltip);
    std::wstring text = WindowText(button) + L" (Shift+Esc)";
    TTTOOLINFOW tool = {};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = g_app.hMainWnd;
    tool.uId = reinterpret_cast<UINT_PTR>(button);
    tool.lpszText = text.data();
    SendMessageW(g_titles.tooltip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));  // a second time it fails
}

LRESULT CALLBACK CloseButtonProc(HWND button, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_MOUSEMOVE: Hover(button); break;
        case WM_MOUSELEAVE:
            g_titles.hovered = nullptr;
            InvalidateRect(button, nullptr, FALSE);
            break;
        case WM_SETFOCUS: g_titles.before = reinterpret_cast<HWND>(wParam); break;
        case WM_ERASEBKGND: return 1;
        default: break;
    }
    return SubclassNext(button, message, wParam, lParam);
}

HWND CreateTitlePart(const wchar_t* className, const std::wstring& text, DWORD style, int id) {
    return CreateWindowExW(0, className, text.c_str(), WS_CHILD | WS_CLIPSIBLINGS | style, 0, 0, 0, 0, g_app.hMainWnd,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_app.hInstance, nullptr);
}

// The label stands right before the pane among its siblings, by which screen readers take its text as the pane's name.
void CreateTitle(const PaneSpec& pane) {
    PaneTitle& title = g_titles.of[PaneIndex(pane.id)];
    const std::wstring name = Text(pane.title);
    title.label = CreateTitlePart(WC_STATICW, name, SS_OWNERDRAW | SS_NOTIFY, IDC_PANE_TITLE);
    title.close = CreateTitlePart(WC_BUTTONW, TextWith(L"Close {1}", {name}), BS_OWNERDRAW,
                                  IDC_PANE_CLOSE_FIRST + static_cast<int>(PaneIndex(pane.id)));
    if (title.close != nullptr) SubclassAdd(title.close, CloseButtonProc);
    const auto placeBefore = [](HWND window, HWND next) {
        const HWND before = GetWindow(next, GW_HWNDPREV);
        SetWindowPos(window, before != nullptr ? before : HWND_TOP, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    };
    placeBefore(title.label, *pane.window);
    placeBefore(title.close, title.label);
}

void DrawTitle(const DRAWITEMSTRUCT& item, PaneId pane, bool focused) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(item.hDC, item.rcItem, chrome.tabBack);
    if (focused) {
        RECT mark = item.rcItem;
        mark.right = mark.left + UiScaled(3);
        FillArea(item.hDC, mark, chrome.accent);
    }
    RECT area = item.rcItem;
    area.left += UiScaled(8);
    const HGDIOBJ oldFont = SelectObject(item.hDC, UiFont());
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, focused ? chrome.tabActiveText : chrome.tabText);
    const std::wstring text = WindowText(item.hwndItem);
    DrawTextW(item.hDC, text.c_str(), -1, &area, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    SIZE size = {};
    GetTextExtentPoint32W(item.hDC, text.c_str(), static_cast<int>(text.size()), &size);
    g_titles.of[PaneIndex(pane)].needs = static_cast<int>(area.left + size.cx);
    SelectObject(item.hDC, oldFont);
}

// A label that gets another width keeps its picture, in which the dots of a cut text are at the wrong place.
void RenewCutText(const PaneTitle& title, int width) {
    RECT now = {};
    GetClientRect(title.label, &now);
    if (now.right != width && std::min(static_cast<int>(now.right), width) < title.needs)
        InvalidateRect(title.label, nullptr, FALSE);
}

void DrawClose(const DRAWITEMSTRUCT& item) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool down = (item.itemState & ODS_SELECTED) != 0, hover = item.hwndItem == g_titles.hovered;
    FillArea(item.hDC, item.rcItem, chrome.tabBack);
    if (down || hover) {
        RECT ground = item.rcItem;
        InflateRect(&ground, -UiScaled(2), -UiScaled(2));
        FillArea(item.hDC, ground, down ? chrome.line : chrome.hover);
    }
    const LONG x = (item.rcItem.left + item.rcItem.right) / 2, y = (item.rcItem.top + item.rcItem.bottom) / 2;
    const LONG arm = UiScaled(4);
    const POINT strokes[][2] = {{{x - arm, y - arm}, {x + arm + 1, y + arm + 1}},
                                {{x + arm, y - arm}, {x - arm - 1, y + arm + 1}}};
    DrawStrokes(item.hDC, strokes, chrome.tabActiveText, UiScaled(1));
}

// The keyboard goes back to where it was before the click, unless that was in the pane.
void ClosePane(const PaneSpec& pane, HWND button) {
    const HWND before = GetFocus() == button ? g_titles.before : nullptr;
    const bool inPane = before == nullptr || PaneOfWindow(before) == &pane;
    PaneShow(pane.id, false);
    if (!inPane && IsWindowVisible(before) != FALSE)
        SetFocus(before);
    else if (PaneOfWindow(GetFocus()) == nullptr)
        FocusCurrentEditor();
}

}  // namespace

int PaneTitleHeight() { return UiSizes().textHeight + UiScaled(5); }

std::vector<PanePart> PaneTitleParts(const PaneLayout& layout) {
    std::vector<PanePart> parts;
    for (const PaneSpec& pane : Panes()) {
        const PaneRect& area = layout.titles[PaneIndex(pane.id)];
        if (*pane.window != nullptr && !area.empty() && g_titles.of[PaneIndex(pane.id)].label == nullptr)
            CreateTitle(pane);
        const PaneTitle& title = g_titles.of[PaneIndex(pane.id)];
        if (title.label == nullptr) continue;
        PaneRect label = area, close = area;
        if (!area.empty()) close.left = label.right = std::max(area.left, area.right - area.height() - UiScaled(2));
        RenewCutText(title, label.width());
        parts.push_back({title.label, label});
        parts.push_back({title.close, close});
    }
    return parts;
}

bool PaneTitleDraw(const DRAWITEMSTRUCT& item) {
    const PaneSpec* pane = PaneOfTitle(item.hwndItem);
    if (pane == nullptr) return false;
    if (item.CtlID == IDC_PANE_TITLE)
        DrawTitle(item, pane->id, pane == g_titles.focused);
    else
        DrawClose(item);
    return true;
}

bool PaneTitleOnCommand(HWND control, int notification) {
    const PaneSpec* pane = PaneOfTitle(control);
    if (pane == nullptr) return false;
    if (control == g_titles.of[PaneIndex(pane->id)].label)
        SetFocus(*pane->window);
    else if (notification == BN_CLICKED)
        ClosePane(*pane, control);
    PaneTitlesShowFocus();
    return true;
}

void PaneTitlesShowFocus() {
    const HWND focus = GetFocus();
    const PaneSpec* now = focus == g_app.hEditor ? nullptr : PaneOfWindow(focus);
    if (now == g_titles.focused) return;
    for (const PaneSpec* pane : {g_titles.focused, now})
        if (pane != nullptr) InvalidateRect(g_titles.of[PaneIndex(pane->id)].label, nullptr, FALSE);
    g_titles.focused = now;
}
