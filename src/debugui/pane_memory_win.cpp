// The window of the memory view: rows of bytes over the whole address space, which can be typed over. WM_GETTEXT
// returns what it shows, for other programs. UI thread only.
#include "debugui/pane_memory_view.h"

#include "base/events.h"
#include "base/texts.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/debugui_state.h"
#include "debugui/pane_internal.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/clipboard.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/window_class.h"

#include <windowsx.h>

#include <algorithm>
#include <array>

namespace {

constexpr wchar_t kClass[] = L"KVXEDebugMemory";
constexpr int kPadding = 6;  // left of the rows, at 96 dpi
constexpr int kTopPadding = 3;
constexpr int kRowBlank = 2;  // added to the height of the text of a row
// The scroll bar covers a part of the address space around what is shown, and returns to the middle after each move.
constexpr int kScrollSteps = 2000, kScrollMiddle = kScrollSteps / 2;

enum MenuCommand : UINT { kCopy = 1, kFollow, kBack };

std::uint64_t g_dragTop = 0;  // first row when the thumb was taken
bool g_dragging = false;

int CharacterWidth() { return UiSizes().fixedWidth; }
bool IsStale() { return !PaneProgramNow().stopped; }
void RepaintMemory() { InvalidateRect(g_memory.window, nullptr, FALSE); }

void CopyCaretRow() { ClipboardPutText(g_ui.hMainWnd, MemoryCaretRowText()); }

void CentreThumb() {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = kScrollSteps;
    info.nPage = kScrollSteps / 20;
    info.nPos = kScrollMiddle;
    SetScrollInfo(g_memory.window, SB_VERT, &info, TRUE);
}

// --- Drawing

void DrawCharacters(HDC dc, int x, int y, const std::wstring& row, int column, int count, COLORREF colour) {
    SetTextColor(dc, colour);
    ExtTextOutW(dc, x + column * CharacterWidth(), y, 0, nullptr, row.c_str() + column, static_cast<UINT>(count),
                nullptr);
}

void DrawMemoryCaret(HDC dc, int x, int y) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const MemoryCaret& caret = g_memory.caret;
    const bool focused = GetFocus() == g_memory.window;
    const int hex = MemoryHexColumn(g_memory.shape, caret.index);
    const int text = MemoryTextColumn(g_memory.shape, caret.index);
    const auto box = [&](int column, int count) {
        return RECT{x + column * CharacterWidth(), y, x + (column + count) * CharacterWidth(),
                    y + PaneMemoryLineHeight()};
    };
    FillArea(dc, box(hex, 2), chrome.hover);
    FillArea(dc, box(text, 1), chrome.hover);
    if (!focused) return;
    const RECT active = caret.text ? box(text, 1) : box(hex + (caret.low ? 1 : 0), 1);
    FillArea(dc, active, chrome.selected);
    FrameArea(dc, active, chrome.accent);
}

void DrawMemoryRow(HDC dc, int index, int x, int y) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const std::span<const MemoryByte> bytes = MemoryRowBytes(g_memory, static_cast<std::size_t>(index));
    if (bytes.empty()) return;
    const std::uint64_t address = g_memory.top + static_cast<std::uint64_t>(index) * bytes.size();
    const std::wstring row = MemoryRowText(address, g_memory.shape, bytes);
    if (address == g_memory.caretRow) DrawMemoryCaret(dc, x, y);
    const COLORREF plain = IsStale() ? ThemeQuietText() : chrome.paneText;
    DrawCharacters(dc, x, y, row, 0, g_memory.shape.digits, IsStale() ? ThemeQuietText() : chrome.tabText);
    for (int i = 0; i < g_memory.shape.bytes; ++i) {
        const MemoryByte& byte = bytes[static_cast<std::size_t>(i)];
        const bool changed = !IsStale() && MemoryHasChanged(g_memory, address + static_cast<std::uint64_t>(i), byte);
        const COLORREF colour = changed ? chrome.error : byte ? plain : ThemeQuietText();
        DrawCharacters(dc, x, y, row, MemoryHexColumn(g_memory.shape, i), 2, colour);
        DrawCharacters(dc, x, y, row, MemoryTextColumn(g_memory.shape, i), 1, colour);
    }
}

void PaintMemory(HWND window) {
    const BufferedPaint paint(window);
    const HGDIOBJ oldFont = SelectObject(paint.Dc(), UiFixedFont());
    FillArea(paint.Dc(), paint.Client(), ThemeCurrentChrome().paneBack);
    SetBkMode(paint.Dc(), TRANSPARENT);
    for (int row = 0; row < g_memory.rows; ++row)
        DrawMemoryRow(paint.Dc(), row, UiScaled(kPadding), UiScaled(kTopPadding) + row * PaneMemoryLineHeight());
    SelectObject(paint.Dc(), oldFont);
}

// --- Input

void OnMemorySize(int width, int height) {
    const int rows =
        std::max(1, (height - UiScaled(kTopPadding) + PaneMemoryLineHeight() - 1) / PaneMemoryLineHeight());
    const int characters = (width - UiScaled(kPadding)) / std::max(CharacterWidth(), 1);
    if (rows == g_memory.rows && characters == g_memory.characters) return;
    g_memory.rows = rows;
    g_memory.characters = characters;
    if (g_memory.filled && PaneProgramNow().stopped) MemoryRead();
    RepaintMemory();
}

void OnMemoryScroll(WPARAM wParam) {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_TRACKPOS;
    switch (LOWORD(wParam)) {
        case SB_LINEUP: MemoryScroll(-1); break;
        case SB_LINEDOWN: MemoryScroll(1); break;
        case SB_PAGEUP: MemoryScroll(1 - g_memory.rows); break;
        case SB_PAGEDOWN: MemoryScroll(g_memory.rows - 1); break;
        case SB_THUMBTRACK:
            if (!g_dragging) g_dragTop = g_memory.top;
            g_dragging = true;
            GetScrollInfo(g_memory.window, SB_VERT, &info);
            g_memory.top = g_dragTop;
            MemoryScroll(info.nTrackPos - kScrollMiddle);
            break;
        case SB_ENDSCROLL:
            g_dragging = false;
            CentreThumb();
            break;
        default: return;
    }
    RepaintMemory();
}

void OnMemoryClick(POINT at) {
    SetFocus(g_memory.window);
    const int row = std::max<int>(0, (at.y - UiScaled(kTopPadding)) / PaneMemoryLineHeight());
    if (!g_memory.filled || row >= g_memory.rows) return;
    g_memory.caretRow = g_memory.top + static_cast<std::uint64_t>(row * g_memory.shape.bytes);
    g_memory.caret = MemoryCaretAt(g_memory.shape, (at.x - UiScaled(kPadding)) / std::max(CharacterWidth(), 1));
    RepaintMemory();
}

void OnMemoryWheel(int delta) {
    const int rows = WheelNotches(g_memory.wheel, 3 * delta);
    if (rows == 0) return;
    MemoryScroll(-rows);
    RepaintMemory();
}

void ShowBase() {
    g_memory.top = g_memory.caretRow = g_memory.base;
    g_memory.caret = {};
    MemoryScroll(0);
}

bool OnMemoryKey(WPARAM key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const int length = g_memory.shape.bytes;
    const int page = length * std::max(g_memory.rows - 1, 1);
    switch (key) {
        case VK_LEFT:
        case VK_RIGHT:
            if (control)
                g_memory.caret = {g_memory.caret.index, key == VK_RIGHT, false};
            else
                MemoryStepCaret(key == VK_RIGHT ? 1 : -1);
            break;
        case VK_UP: MemoryMoveCaret(-length); break;
        case VK_DOWN: MemoryMoveCaret(length); break;
        case VK_PRIOR: MemoryMoveCaret(-page); break;
        case VK_NEXT: MemoryMoveCaret(page); break;
        case VK_HOME:
            if (control)
                ShowBase();
            else
                g_memory.caret = {0, g_memory.caret.text, false};
            break;
        case VK_END: g_memory.caret = {length - 1, g_memory.caret.text, false}; break;
        case 'C':
            if (!control) return false;
            CopyCaretRow();
            break;
        default: return false;
    }
    RepaintMemory();
    return true;
}

void OnMemoryCharacter(wchar_t typed) {
    if (typed < L' ' || !g_memory.filled) return;
    if (MemoryWrite(typed)) {
        MemoryStepCaret(1);
    } else {
        g_events.statusText(IsStale() ? Text(L"The program is not stopped") : Text(L"This byte cannot be written"));
        MessageBeep(MB_ICONWARNING);
    }
    RepaintMemory();
}

// Shows the memory at the address that stands at the caret.
void FollowPointer() {
    std::uint64_t address = 0;
    const std::uint64_t at = g_memory.caretRow + static_cast<std::uint64_t>(g_memory.caret.index);
    const std::size_t size = g_memory.x64 ? 8 : 4;
    if (!DebugReadMem(&g_debugger, at, &address, size)) return;
    SetWindowTextW(GetDlgItem(g_debugUi.hDebugPane, IDC_DEBUG_ADDRESS), (L"0x" + HexText(address, 1)).c_str());
    DebugPaneInvalidate();
}

void ShowMemoryMenu(POINT at) {
    if (!g_memory.filled) return;
    if (at.x == -1 && at.y == -1) {  // from the keyboard
        const auto row =
            static_cast<int>((g_memory.caretRow - g_memory.top) / static_cast<std::uint64_t>(g_memory.shape.bytes)) + 1;
        at = {UiScaled(kPadding) + MemoryHexColumn(g_memory.shape, g_memory.caret.index) * CharacterWidth(),
              std::clamp(row, 0, g_memory.rows) * PaneMemoryLineHeight()};
        ClientToScreen(g_memory.window, &at);
    }
    const bool stopped = PaneProgramNow().stopped;
    const std::array<MenuItem, 3> items = {{{kCopy, Text(L"&Copy Row\tCtrl+C")},
                                            {kFollow, Text(L"&Follow Address at Caret"), stopped},
                                            {kBack, Text(L"&Back to Start\tCtrl+Home"), stopped}}};
    switch (PaneShowMenu(items, at)) {
        case kCopy: CopyCaretRow(); break;
        case kFollow: FollowPointer(); break;
        case kBack: ShowBase(); break;
        default: break;
    }
    RepaintMemory();
}

LRESULT CopyMemoryText(int capacity, wchar_t* out) {
    if (capacity < 1) return 0;
    lstrcpynW(out, MemoryVisibleText(g_memory).c_str(), capacity);
    return lstrlenW(out);
}

LRESULT CALLBACK MemoryProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_PAINT: PaintMemory(window); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_SIZE: OnMemorySize(LOWORD(lParam), HIWORD(lParam)); return 0;
        case WM_VSCROLL: OnMemoryScroll(wParam); return 0;
        case WM_MOUSEWHEEL: OnMemoryWheel(GET_WHEEL_DELTA_WPARAM(wParam)); return 0;
        case WM_LBUTTONDOWN: OnMemoryClick({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_RBUTTONDOWN: OnMemoryClick({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); break;
        case WM_CONTEXTMENU: ShowMemoryMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_COPY: CopyCaretRow(); return 0;
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
            if (PaneHandleFocusKey(window, wParam) || OnMemoryKey(wParam)) return 0;
            break;
        case WM_CHAR: OnMemoryCharacter(static_cast<wchar_t>(wParam)); return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: RepaintMemory(); break;
        case WM_GETTEXTLENGTH: return static_cast<LRESULT>(MemoryVisibleText(g_memory).size());
        case WM_GETTEXT: return CopyMemoryText(static_cast<int>(wParam), reinterpret_cast<wchar_t*>(lParam));
        case WM_NCDESTROY: g_memory = {}; break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

HWND PaneMemoryCreate(HWND parent) {
    if (!WindowClassRegister({.name = kClass, .procedure = MemoryProc, .cursor = IDC_IBEAM})) return nullptr;
    g_memory.window =
        CreateWindowExW(0, kClass, nullptr, WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP | WS_VSCROLL, 0, 0, 0, 0, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_TEXT)), g_ui.hInstance, nullptr);
    if (g_memory.window != nullptr) CentreThumb();
    return g_memory.window;
}

int PaneMemoryLineHeight() { return UiSizes().fixedHeight + UiScaled(kRowBlank); }

void PaneMemoryApplyTheme() {
    ScrollBarsApplyTheme(g_memory.window);
    RECT client = {};
    GetClientRect(g_memory.window, &client);
    OnMemorySize(client.right, client.bottom);
    RepaintMemory();
}
