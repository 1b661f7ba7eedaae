// The status bar. UI thread only.
#include "commands/status_bar.h"

#include "base/wide_format.h"
#include "commands/command_state.h"
#include "commands/commands_state.h"
#include "documents/document_row.h"
#include "scintilla/sci.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/fonts.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace {

enum Part : int { kMessage, kProgress, kPosition, kSelection, kEncoding, kLineEnding, kCompiler, kPartCount };

// Widths at 96 dpi; the message takes what is left. A part that finds no room goes, least needed first.
constexpr std::array<int, kPartCount> kWidths = {0, 96, 130, 110, 64, 52, 168};
constexpr int kMinimumMessage = 140;
constexpr Part kGiveUpOrder[] = {kSelection, kProgress, kLineEnding, kEncoding};

// What the control shows. Kept here as well, because every key compares and every paint draws them: a message to a
// subclassed window is not for free.
std::array<std::wstring, kPartCount> g_texts;

int Scaled(int length) { return MulDiv(length, g_ui.dpi, 96); }

void SetPart(int part, const std::wstring& text) {
    std::wstring& shown = g_texts[static_cast<std::size_t>(part)];
    if (g_commands.hStatusBar == nullptr || text == shown) return;
    shown = text;
    SendMessageW(g_commands.hStatusBar, SB_SETTEXTW, static_cast<WPARAM>(part | SBT_NOBORDERS),
                 reinterpret_cast<LPARAM>(text.c_str()));
}

void PaintPart(HDC dc, int part, const RECT& area, const ThemeChrome& chrome) {
    if (area.right <= area.left) return;
    const std::wstring& text = g_texts[static_cast<std::size_t>(part)];
    RECT inner = area;
    inner.left += Scaled(8);
    inner.right -= Scaled(4);
    SetTextColor(dc, part == kProgress ? chrome.accent : chrome.statusText);
    DrawTextW(dc, text.c_str(), -1, &inner, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    if (part != kMessage && part != kProgress) {
        RECT line = {area.left, area.top + Scaled(5), area.left + 1, area.bottom - Scaled(5)};
        FillArea(dc, line, chrome.line);
    }
}

void Paint(HWND window, HDC target) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    RECT client = {};
    GetClientRect(window, &client);
    HDC dc = CreateCompatibleDC(target);
    HBITMAP bitmap = CreateCompatibleBitmap(target, std::max<int>(1, client.right), std::max<int>(1, client.bottom));
    HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
    FillArea(dc, client, chrome.statusBack);
    RECT edge = {0, 0, client.right, 1};
    FillArea(dc, edge, chrome.line);
    SetBkMode(dc, TRANSPARENT);
    HGDIOBJ oldFont = SelectObject(dc, UiFont());
    int ends[kPartCount] = {};
    SendMessageW(window, SB_GETPARTS, kPartCount, reinterpret_cast<LPARAM>(ends));
    int left = 0;
    for (int part = 0; part < kPartCount; ++part) {
        const int right = ends[part] < 0 ? static_cast<int>(client.right) : ends[part];
        PaintPart(dc, part, {left, 1, right, client.bottom}, chrome);
        left = right;
    }
    BitBlt(target, 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    SelectObject(dc, oldFont);
    SelectObject(dc, oldBitmap);
    DeleteObject(bitmap);
    DeleteDC(dc);
}

LRESULT CALLBACK StatusBarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: {
            PAINTSTRUCT paint = {};
            HDC dc = BeginPaint(window, &paint);
            Paint(window, dc);
            EndPaint(window, &paint);
            return 0;
        }
        case WM_NCDESTROY: RemoveWindowSubclass(window, StatusBarProc, 1); break;
        default: break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

std::wstring SelectionText(HWND editor) {
    const LRESULT selections = SciSend(editor, SCI_GETSELECTIONS);
    if (selections > 1) return FormatW(L"%d selections", static_cast<int>(selections));
    const LRESULT start = SciSend(editor, SCI_GETSELECTIONSTART);
    const LRESULT end = SciSend(editor, SCI_GETSELECTIONEND);
    if (start == end) return L"";
    const LRESULT first = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(start));
    const LRESULT last = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(end));
    if (first != last) return FormatW(L"%d lines selected", static_cast<int>(last - first + 1));
    return FormatW(L"%d selected",
                   static_cast<int>(SciSend(editor, SCI_COUNTCHARACTERS, static_cast<WPARAM>(start), end)));
}

}  // namespace

HWND StatusBarCreate(HWND parent, int controlId) {
    HWND bar = CreateWindowExW(
        0, STATUSCLASSNAMEW, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | CCS_NORESIZE | CCS_NOPARENTALIGN, 0, 0,
        0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (bar == nullptr) return nullptr;
    SetWindowSubclass(bar, StatusBarProc, 1, 0);
    // The parts exist before anyone writes into them; the layout gives them their real widths.
    int ends[kPartCount] = {};
    SendMessageW(bar, SB_SETPARTS, kPartCount, reinterpret_cast<LPARAM>(ends));
    return bar;
}

int StatusBarHeight() { return Scaled(24); }

void StatusBarLayout(int width) {
    if (g_commands.hStatusBar == nullptr) return;
    std::array<int, kPartCount> widths = {};
    int fixed = 0;
    for (int part = kProgress; part < kPartCount; ++part) {
        widths[static_cast<std::size_t>(part)] = Scaled(kWidths[static_cast<std::size_t>(part)]);
        fixed += widths[static_cast<std::size_t>(part)];
    }
    for (const Part part : kGiveUpOrder) {
        if (width - fixed >= Scaled(kMinimumMessage)) break;
        fixed -= widths[part];
        widths[part] = 0;
    }
    int ends[kPartCount] = {};
    int right = std::max(0, width - fixed);
    ends[kMessage] = right;
    for (int part = kProgress; part < kPartCount; ++part) {
        right += widths[static_cast<std::size_t>(part)];
        ends[part] = right;
    }
    ends[kPartCount - 1] = -1;
    SendMessageW(g_commands.hStatusBar, SB_SETPARTS, kPartCount, reinterpret_cast<LPARAM>(ends));
    InvalidateRect(g_commands.hStatusBar, nullptr, FALSE);
}

void StatusBarApplyTheme() {
    SendMessageW(g_commands.hStatusBar, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    InvalidateRect(g_commands.hStatusBar, nullptr, FALSE);
}

void StatusBarSetText(const wchar_t* text) { SetPart(kMessage, text != nullptr ? text : L""); }

void StatusBarSetProgress(const wchar_t* text) { SetPart(kProgress, text != nullptr ? text : L""); }

void StatusBarUpdateCompiler() {
    const auto id = static_cast<std::uint32_t>(g_settings.activeCompiler);
    SetPart(kCompiler, FormatW(CompilerExists(id) ? L"%s" : L"%s (not found)", CompilerName(id)));
}

void StatusBarUpdatePosition() {
    if (!IsTabIndex(g_documents.activeTab)) {
        for (const Part part : {kPosition, kSelection, kEncoding, kLineEnding}) SetPart(part, L"");
        return;
    }
    const DocumentTab& tab = TabAt(g_documents.activeTab);
    const LRESULT position = SciSend(tab.editor, SCI_GETCURRENTPOS);
    const LRESULT line = SciSend(tab.editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position));
    const LRESULT column = SciSend(tab.editor, SCI_GETCOLUMN, static_cast<WPARAM>(position));
    constexpr const wchar_t* kLineEndings[] = {L"CRLF", L"LF", L"CR"};
    SetPart(kPosition, FormatW(L"Ln %d, Col %d", static_cast<int>(line + 1), static_cast<int>(column + 1)));
    SetPart(kSelection, SelectionText(tab.editor));
    SetPart(kEncoding, tab.encoding == TextEncoding::Ansi ? L"ANSI" : L"UTF-8");
    SetPart(kLineEnding, kLineEndings[static_cast<std::size_t>(tab.lineEnding) % std::size(kLineEndings)]);
}
