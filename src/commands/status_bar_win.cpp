// The status bar: its texts and its painting. UI thread.
#include "commands/status_bar.h"

#include "base/wide_format.h"
#include "commands/command_state.h"
#include "commands/commands_state.h"
#include "commands/status_bar_fit.h"
#include "documents/document_row.h"
#include "scintilla/sci.h"
#include "settings/compiler_presence.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"

#include <commctrl.h>

#include <array>
#include <iterator>
#include <string>

namespace {

// The texts of the control. They are kept here too, because each key compares them, each paint draws them, and a
// message to the control takes longer.
std::array<std::wstring, kStatusPartCount> g_texts;

// True while the control takes a text. It then asks for a paint at once, which would delay the keys that wait: the part
// stays invalid and is painted when the message queue is empty.
bool g_takesText = false;

void SetStatusPart(int part, const std::wstring& text) {
    std::wstring& shown = g_texts[static_cast<std::size_t>(part)];
    if (g_commands.hStatusBar == nullptr || text == shown) return;
    shown = text;
    g_takesText = true;
    SendMessageW(g_commands.hStatusBar, SB_SETTEXTW, static_cast<WPARAM>(part | SBT_NOBORDERS),
                 reinterpret_cast<LPARAM>(text.c_str()));
    g_takesText = false;
}

void PaintStatusPart(HDC dc, int part, const RECT& area, const ThemeChrome& chrome) {
    if (area.right <= area.left) return;
    const std::wstring& text = g_texts[static_cast<std::size_t>(part)];
    RECT inner = area;
    inner.left += UiScaled(8);
    inner.right -= UiScaled(4);
    SetTextColor(dc, part == kProgress ? chrome.accent : chrome.statusText);
    DrawTextW(dc, text.c_str(), -1, &inner, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    if (part != kMessage && part != kProgress) {
        RECT line = {area.left, area.top + UiScaled(5), area.left + 1, area.bottom - UiScaled(5)};
        FillArea(dc, line, chrome.line);
    }
}

void PaintStatusBar(HWND window) {
    const BufferedPaint paint(window);
    const HDC dc = paint.Dc();
    const RECT& client = paint.Client();
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, client, chrome.statusBack);
    FillArea(dc, {0, 0, client.right, 1}, chrome.line);
    SetBkMode(dc, TRANSPARENT);
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    int ends[kStatusPartCount] = {};
    SendMessageW(window, SB_GETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(ends));
    int left = 0;
    for (int part = 0; part < kStatusPartCount; ++part) {
        const int right = ends[part] < 0 ? static_cast<int>(client.right) : ends[part];
        if (left < paint.Area().right && right > paint.Area().left)
            PaintStatusPart(dc, part, {left, 1, right, client.bottom}, chrome);
        left = right;
    }
    SelectObject(dc, oldFont);
}

LRESULT CALLBACK StatusBarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT:
            if (!g_takesText) PaintStatusBar(window);
            return 0;
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
    // The parts must exist before a text is set. StatusBarLayout sets their widths.
    int ends[kStatusPartCount] = {};
    SendMessageW(bar, SB_SETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(ends));
    return bar;
}

int StatusBarHeight() { return UiScaled(24); }

void StatusBarLayout(int width) {
    if (g_commands.hStatusBar == nullptr) return;
    std::array<int, kStatusPartCount> ends = FitStatusParts(width, g_ui.dpi);
    ends.back() = -1;  // SB_SETPARTS: to the right edge
    SendMessageW(g_commands.hStatusBar, SB_SETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(ends.data()));
    InvalidateRect(g_commands.hStatusBar, nullptr, FALSE);
}

void StatusBarApplyTheme() {
    SendMessageW(g_commands.hStatusBar, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    InvalidateRect(g_commands.hStatusBar, nullptr, FALSE);
}

void StatusBarSetText(const wchar_t* text) { SetStatusPart(kMessage, text != nullptr ? text : L""); }

void StatusBarSetProgress(const wchar_t* text) { SetStatusPart(kProgress, text != nullptr ? text : L""); }

void StatusBarUpdateCompiler() {
    const auto id = static_cast<std::uint32_t>(g_settings.activeCompiler);
    SetStatusPart(kCompiler, CompilerLabel(id, CompilerSeemsInstalled(id)));
}

void StatusBarUpdatePosition() {
    if (!IsTabIndex(g_documents.activeTab)) {
        for (const StatusPart part : {kPosition, kSelection, kEncoding, kLineEnding}) SetStatusPart(part, L"");
        return;
    }
    const DocumentTab& tab = TabAt(g_documents.activeTab);
    const LRESULT position = SciSend(tab.editor, SCI_GETCURRENTPOS);
    const LRESULT line = SciSend(tab.editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position));
    const LRESULT column = SciSend(tab.editor, SCI_GETCOLUMN, static_cast<WPARAM>(position));
    constexpr const wchar_t* kLineEndings[] = {L"CRLF", L"LF", L"CR"};
    SetStatusPart(kPosition, FormatW(L"Ln %d, Col %d", static_cast<int>(line + 1), static_cast<int>(column + 1)));
    SetStatusPart(kSelection, SelectionText(tab.editor));
    SetStatusPart(kEncoding, EncodingName(tab.encoding, tab.form));
    SetStatusPart(kLineEnding, kLineEndings[static_cast<std::size_t>(tab.lineEnding) % std::size(kLineEndings)]);
}
