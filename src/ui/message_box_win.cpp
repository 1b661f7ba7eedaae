// The system's message box in the program's colours and with the program's words on its buttons. UI thread.
#include "ui/box_buttons.h"
#include "ui/dialog_theme.h"
#include "ui/guarded_button.h"
#include "ui/scale.h"
#include "ui/subclass.h"
#include "ui/window_kind.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace {

struct BoxShown {
    HHOOK hook = nullptr;
    BoxNames names;
};
BoxShown g_box;

constexpr int kBesideText = 10;  // at 96 dpi, on each side of a button's text

RECT PlaceIn(HWND box, HWND control) {
    RECT place = {};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, box, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

bool IsButtonOfBox(HWND control) {
    return IsOfClass(control, WC_BUTTONW) && (GetWindowLongW(control, GWL_STYLE) & WS_VISIBLE) != 0;
}

// The buttons that are shown, from left to right.
std::vector<HWND> ButtonsOfBox(HWND box) {
    std::vector<HWND> buttons;
    for (HWND each = GetWindow(box, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT))
        if (IsButtonOfBox(each)) buttons.push_back(each);
    std::ranges::sort(buttons, {}, [box](HWND button) { return PlaceIn(box, button).left; });
    return buttons;
}

int WidthOfText(HWND button) {
    std::wstring text = WindowText(button);
    std::erase(text, L'&');
    const HDC dc = GetDC(button);
    const HGDIOBJ font = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(button, WM_GETFONT, 0, 0)));
    SIZE size = {};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, font);
    ReleaseDC(button, dc);
    return static_cast<int>(size.cx) + 2 * ScaledTo(kBesideText, static_cast<int>(GetDpiForWindow(button)));
}

// Makes the box wider by `more`; its middle stays.
void WidenBox(HWND box, int more) {
    RECT place = {};
    GetWindowRect(box, &place);
    SetWindowPos(box, nullptr, place.left - more / 2, place.top, place.right - place.left + more,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

void FitButtons(HWND box) {
    const std::vector<HWND> windows = ButtonsOfBox(box);
    RECT client = {};
    GetClientRect(box, &client);
    BoxButtons row = {.client = static_cast<int>(client.right), .buttons = {}};
    std::vector<int> wanted;
    for (const HWND button : windows) {
        const RECT place = PlaceIn(box, button);
        row.buttons.push_back({static_cast<int>(place.left), static_cast<int>(place.right - place.left)});
        wanted.push_back(WidthOfText(button));
    }
    const BoxButtons wider = WiderBoxButtons(row, wanted);
    if (wider.client > row.client) WidenBox(box, wider.client - row.client);
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const RECT place = PlaceIn(box, windows[i]);
        SetWindowPos(windows[i], nullptr, wider.buttons[i].left, place.top, wider.buttons[i].width,
                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

// A box may become active before its buttons have their places (Wine), or after it is shown (Windows). Doing it twice
// changes nothing.
LRESULT CALLBACK NamedBoxProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const bool shown = (GetWindowLongW(box, GWL_STYLE) & WS_VISIBLE) != 0;
    if ((message == WM_SHOWWINDOW && wParam != FALSE) || (message == WM_ACTIVATE && shown)) FitButtons(box);
    return SubclassNext(box, message, wParam, lParam);
}

void NameButtons(HWND box, const BoxNames& names) {
    if (names.yes == nullptr && names.no == nullptr) return;
    for (const int id : {IDOK, IDYES})
        if (names.yes != nullptr && GetDlgItem(box, id) != nullptr) SetDlgItemTextW(box, id, names.yes);
    if (names.no != nullptr && GetDlgItem(box, IDNO) != nullptr) SetDlgItemTextW(box, IDNO, names.no);
    SubclassAdd(box, NamedBoxProc);
}

void GuardButtons(HWND box, const BoxNames& names) {
    for (const int id : {IDOK, IDYES})
        if (names.guardsYes && GetDlgItem(box, id) != nullptr) ButtonNeedsAlt(box, id);
    if (names.guardsNo) ButtonNeedsAlt(box, IDNO);
}

// The box has its controls when it becomes active, and is not yet painted.
LRESULT CALLBACK BoxHook(int code, WPARAM wParam, LPARAM lParam) {
    const HHOOK hook = g_box.hook;
    const auto window = reinterpret_cast<HWND>(wParam);
    wchar_t name[16] = {};
    if (code == HCBT_ACTIVATE) GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (lstrcmpiW(name, L"#32770") == 0) {
        NameButtons(window, g_box.names);
        GuardButtons(window, g_box.names);
        MessageBoxApplyTheme(window);
        UnhookWindowsHookEx(hook);
        g_box.hook = nullptr;
    }
    return CallNextHookEx(hook, code, wParam, lParam);
}

}  // namespace

int ThemedMessageBox(HWND owner, const wchar_t* text, const wchar_t* caption, UINT flags, const BoxNames& names) {
    g_box.names = names;
    if (g_box.hook == nullptr) g_box.hook = SetWindowsHookExW(WH_CBT, BoxHook, nullptr, GetCurrentThreadId());
    const int answer = MessageBoxW(owner, text, caption, flags);
    if (g_box.hook != nullptr) UnhookWindowsHookEx(g_box.hook);  // no box could be shown
    g_box.hook = nullptr;
    return answer;
}
