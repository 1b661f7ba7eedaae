// Draws the completion list. UI thread.
#include "completion/completion_list.h"

#include "base/log.h"
#include "base/texts.h"
#include "completion/completion_images.h"
#include "scintilla/sci.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/paint.h"
#include "ui/wheel.h"
#include "ui/window_class.h"

#include <windowsx.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr wchar_t kClass[] = L"KVXEWordList";
constexpr int kMostRows = 12;                                                               // in sight
constexpr int kMeasuredRows = 60;                                                           // decide the width
constexpr int kLeastWidth = 160, kMostWidth = 560, kPadding = 4, kGap = 16, kBarWidth = 4;  // at 96 dpi

struct ListFont {
    UniqueFont font;
    std::wstring name;
    int height = 0;
};

struct WordList {
    HWND window = nullptr;
    WordListContent content;
    std::size_t selected = 0, top = 0;
    ListFont font;
    int rowHeight = 1;
    int width = 0;  // the list only grows while one word is typed
    LRESULT position = -1;
    HWND editor = nullptr;
    WheelRest wheel;
};
WordList g_wordList;

std::size_t RowsInSight() { return std::min<std::size_t>(g_wordList.content.count, kMostRows); }

// The font of the editor's text, with its zoom.
void UpdateFont(HWND editor) {
    char face[LF_FACESIZE * 4] = {};
    SciSend(editor, SCI_STYLEGETFONT, STYLE_DEFAULT, reinterpret_cast<LPARAM>(face));
    const std::wstring name(face, face + std::min<std::size_t>(std::char_traits<char>::length(face), LF_FACESIZE - 1));
    const auto size = static_cast<int>(SciSend(editor, SCI_STYLEGETSIZE, STYLE_DEFAULT) + SciSend(editor, SCI_GETZOOM));
    const int height = -MulDiv(std::max(size, 2), g_ui.dpi, 72);
    g_wordList.rowHeight = std::max(static_cast<int>(SciSend(editor, SCI_TEXTHEIGHT)), 8) + UiScaled(2);
    if (g_wordList.font.font && g_wordList.font.name == name && g_wordList.font.height == height) return;
    g_wordList.font = {UniqueFont(CreateFontW(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0,
                                              DEFAULT_QUALITY, 0, name.c_str())),
                       name, height};
}

int TextWidth(HDC dc, const std::wstring& text) {
    SIZE size = {};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    return static_cast<int>(size.cx);
}

int WantedWidth() {
    const HDC dc = GetDC(g_wordList.window);
    const HGDIOBJ before = SelectObject(dc, g_wordList.font.font.Get());
    int widest = 0;
    const std::size_t measured = std::min<std::size_t>(g_wordList.content.count, kMeasuredRows);
    for (std::size_t row = 0; row < measured; ++row) {
        const std::wstring detail = g_wordList.content.detail(row);
        const int gap = detail.empty() ? 0 : UiScaled(kGap);
        widest = std::max(widest, TextWidth(dc, g_wordList.content.text(row)) + gap + TextWidth(dc, detail));
    }
    SelectObject(dc, before);
    ReleaseDC(g_wordList.window, dc);
    return std::clamp(widest + g_wordList.rowHeight + UiScaled(3 * kPadding + kBarWidth), UiScaled(kLeastWidth),
                      UiScaled(kMostWidth));
}

void DrawRow(HDC dc, std::size_t row, RECT area) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool selected = row == g_wordList.selected;
    const COLORREF back = selected ? ThemeSelectedBack(true) : chrome.paneBack;
    FillArea(dc, area, back);
    CompletionImageDraw(dc, {area.left + UiScaled(2), area.top + UiScaled(1)}, g_wordList.rowHeight - UiScaled(2),
                        g_wordList.content.kind(row), back);
    area.left += g_wordList.rowHeight + UiScaled(kPadding);
    area.right -= UiScaled(kPadding + kBarWidth);
    const std::wstring text = g_wordList.content.text(row), detail = g_wordList.content.detail(row);
    SetTextColor(dc, ThemeInkOn(back, chrome.paneText));
    DrawTextW(dc, text.c_str(), -1, &area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    area.left += TextWidth(dc, text) + UiScaled(kGap);
    if (detail.empty() || area.left >= area.right) return;
    SetTextColor(dc, ThemeInkOn(back, ThemeQuietText()));
    DrawTextW(dc, detail.c_str(), -1, &area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | DT_RIGHT);
}

// Where the rows in sight are among all.
void DrawBar(HDC dc, const RECT& client) {
    if (g_wordList.content.count <= kMostRows) return;
    const auto height = static_cast<int>(client.bottom), count = static_cast<int>(g_wordList.content.count);
    const int length = std::max(height * kMostRows / count, UiScaled(12));
    const auto top = static_cast<int>(g_wordList.top) * (height - length) / (count - kMostRows);
    FillArea(dc, {client.right - UiScaled(kBarWidth) - 1, top, client.right - 1, top + length},
             MixColours(ThemeCurrentChrome().paneBack, ThemeCurrentChrome().paneText, 35));
}

void PaintWordList(HWND window) {
    const BufferedPaint paint(window);
    const HDC dc = paint.Dc();
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const RECT& client = paint.Client();
    FillArea(dc, client, chrome.paneBack);
    const HGDIOBJ before = SelectObject(dc, g_wordList.font.font.Get());
    SetBkMode(dc, TRANSPARENT);
    for (std::size_t i = 0; i < RowsInSight() && g_wordList.top + i < g_wordList.content.count; ++i) {
        const int y = 1 + static_cast<int>(i) * g_wordList.rowHeight;
        DrawRow(dc, g_wordList.top + i, {1, y, client.right - 1, y + g_wordList.rowHeight});
    }
    SelectObject(dc, before);
    DrawBar(dc, client);
    FrameArea(dc, client, MixColours(chrome.line, chrome.paneText, 25));
}

void Scroll(int rows) {
    const auto last = static_cast<int>(g_wordList.content.count - RowsInSight());
    g_wordList.top = static_cast<std::size_t>(std::clamp(static_cast<int>(g_wordList.top) + rows, 0, last));
    InvalidateRect(g_wordList.window, nullptr, FALSE);
}

// A click takes a row and hides the list. The second press of who double-clicks would go to whatever is below, so it is
// dropped.
struct ListClick {
    HHOOK hook = nullptr;
    DWORD time = 0;
    POINT place = {};
};
ListClick g_listClick;

bool IsSecondPress(const POINT& place) {
    return GetTickCount() - g_listClick.time <= GetDoubleClickTime() &&
           std::abs(place.x - g_listClick.place.x) <= UiMetric(SM_CXDOUBLECLK) &&
           std::abs(place.y - g_listClick.place.y) <= UiMetric(SM_CYDOUBLECLK);
}

LRESULT CALLBACK SecondPressHook(int code, WPARAM message, LPARAM info) {
    if (code != HC_ACTION || (message != WM_LBUTTONDOWN && message != WM_NCLBUTTONDOWN))
        return CallNextHookEx(nullptr, code, message, info);
    UnhookWindowsHookEx(std::exchange(g_listClick.hook, nullptr));
    return IsSecondPress(reinterpret_cast<const MOUSEHOOKSTRUCT*>(info)->pt) ? 1 : 0;
}

void OnListClick(int y) {
    const std::size_t row = g_wordList.top + static_cast<std::size_t>(std::max(y - 1, 0) / g_wordList.rowHeight);
    if (row >= g_wordList.content.count) return;
    g_listClick.time = GetTickCount();
    GetCursorPos(&g_listClick.place);
    if (g_listClick.hook == nullptr)
        g_listClick.hook = SetWindowsHookExW(WH_MOUSE, SecondPressHook, nullptr, GetCurrentThreadId());
    g_wordList.content.chosen(row);
}

// What a screen reader hears of a row.
std::wstring NameOfRow(int row) {
    const auto at = static_cast<std::size_t>(row);
    if (at >= g_wordList.content.count) return {};
    const std::wstring detail = g_wordList.content.detail(at);
    return g_wordList.content.text(at) + (detail.empty() ? L"" : L", " + detail);
}

// The list never has the keyboard, so that no change of focus tells which row is selected.
void TellSelected() {
    const auto child = static_cast<LONG>(g_wordList.selected) + 1;
    NotifyWinEvent(EVENT_OBJECT_SELECTION, g_wordList.window, static_cast<LONG>(OBJID_CLIENT), child);
}

LRESULT OnListGetObject(HWND window, WPARAM wParam, LPARAM lParam) {
    return AccessibleAnswer(window, wParam, lParam, Text(L"Completion"),
                            DefWindowProcW(window, WM_GETOBJECT, wParam, lParam),
                            {static_cast<int>(g_wordList.content.count), NameOfRow});
}

LRESULT CALLBACK WordListProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_GETOBJECT: return OnListGetObject(window, wParam, lParam);
        case WM_PAINT: PaintWordList(window); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_MOUSEACTIVATE: return MA_NOACTIVATE;
        case WM_LBUTTONDOWN: OnListClick(GET_Y_LPARAM(lParam)); return 0;
        case WM_MOUSEWHEEL: Scroll(-3 * WheelNotches(g_wordList.wheel, GET_WHEEL_DELTA_WPARAM(wParam))); return 0;
        case WM_NCDESTROY: g_wordList.window = nullptr; break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

bool EnsureWindow(HWND editor) {
    if (g_wordList.window != nullptr) return true;
    WindowClassRegister({.name = kClass, .procedure = WordListProc, .style = CS_SAVEBITS});
    g_wordList.window = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kClass, L"", WS_POPUP, 0, 0, 0, 0,
                                        GetAncestor(editor, GA_ROOT), nullptr, g_ui.hInstance, nullptr);
    if (g_wordList.window == nullptr) AppLogMsg(L"FAIL: WordListShow error=%lu", GetLastError());
    return g_wordList.window != nullptr;
}

// Below the line, with the texts under the word, or above it where there is no room.
RECT PlaceOf(HWND editor, LRESULT position, int width, int height) {
    const int line = static_cast<int>(SciSend(editor, SCI_TEXTHEIGHT));
    POINT at = {static_cast<LONG>(SciSend(editor, SCI_POINTXFROMPOSITION, 0, position)),
                static_cast<LONG>(SciSend(editor, SCI_POINTYFROMPOSITION, 0, position))};
    ClientToScreen(editor, &at);
    at.x -= g_wordList.rowHeight + UiScaled(kPadding) + 1;
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromPoint(at, MONITOR_DEFAULTTONEAREST), &monitor);
    const RECT& room = monitor.rcWork;
    const LONG left = std::max(std::min(at.x, room.right - width), room.left);
    const bool below = at.y + line + height <= room.bottom || at.y - height < room.top;
    const LONG top = below ? at.y + line : at.y - height;
    return {left, top, left + width, top + height};
}

}  // namespace

bool WordListShow(HWND editor, LRESULT position, WordListContent content) {
    if (!EnsureWindow(editor)) return false;
    const bool same =
        g_wordList.editor == editor && g_wordList.position == position && IsWindowVisible(g_wordList.window);
    g_wordList.content = std::move(content);
    g_wordList.selected = g_wordList.top = 0;
    g_wordList.editor = editor;
    g_wordList.position = position;
    UpdateFont(editor);
    g_wordList.width = same ? std::max(g_wordList.width, WantedWidth()) : WantedWidth();
    const int height = static_cast<int>(RowsInSight()) * g_wordList.rowHeight + 2;
    const RECT wanted = PlaceOf(editor, position, g_wordList.width, height);
    RECT now = {};
    GetWindowRect(g_wordList.window, &now);
    if (!same || !EqualRect(&now, &wanted))
        SetWindowPos(g_wordList.window, HWND_TOP, wanted.left, wanted.top, wanted.right - wanted.left,
                     wanted.bottom - wanted.top, SWP_NOACTIVATE | SWP_SHOWWINDOW | SWP_NOOWNERZORDER);
    InvalidateRect(g_wordList.window, nullptr, FALSE);
    TellSelected();
    return true;
}

void WordListHide() {
    if (g_wordList.window != nullptr && g_wordList.position >= 0) ShowWindow(g_wordList.window, SW_HIDE);
    g_wordList.content = {};
    g_wordList.position = -1;
}

std::size_t WordListSelected() { return g_wordList.selected; }

void WordListMove(int rows) {
    if (g_wordList.content.count == 0) return;
    const auto last = static_cast<int>(g_wordList.content.count) - 1;
    const int selected = std::clamp(static_cast<int>(g_wordList.selected) + rows, 0, last);
    g_wordList.selected = static_cast<std::size_t>(selected);
    const auto top = static_cast<int>(g_wordList.top), sight = static_cast<int>(RowsInSight());
    Scroll(selected < top ? selected - top : selected >= top + sight ? selected - top - sight + 1 : 0);
    TellSelected();
}

int WordListPage() { return kMostRows - 1; }
