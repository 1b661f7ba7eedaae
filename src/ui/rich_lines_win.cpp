#include "ui/rich_lines.h"

#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/fonts.h"
#include "ui/late_size.h"
#include "ui/redraw.h"
#include "ui/text_inset.h"
#include "ui/ui_state.h"

#include <richedit.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr std::size_t kLinesDeleted = 800;  // up to so many a pane is emptied by deleting its text

HWND g_replaced = nullptr;  // hidden, to be destroyed

DWORD CALLBACK ReadFromView(DWORD_PTR cookie, LPBYTE buffer, LONG size, LONG* count) {
    auto* rest = reinterpret_cast<std::string_view*>(cookie);
    const std::size_t taken = std::min(rest->size(), static_cast<std::size_t>(size));
    std::memcpy(buffer, rest->data(), taken);
    rest->remove_prefix(taken);
    *count = static_cast<LONG>(taken);
    return 0;
}

CHARRANGE RichSelection(HWND pane) {
    CHARRANGE range = {};
    SendMessageW(pane, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    return range;
}

void SelectInRich(HWND pane, LONG from, LONG to) {
    CHARRANGE range = {from, to};
    SendMessageW(pane, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

void StreamRtfIn(HWND pane, std::string_view rtf) {
    EDITSTREAM stream = {.dwCookie = reinterpret_cast<DWORD_PTR>(&rtf), .pfnCallback = ReadFromView};
    SendMessageW(pane, EM_STREAMIN, SF_RTF | SFF_SELECTION, reinterpret_cast<LPARAM>(&stream));
}

// Some versions of the control swallow the last line break of a block.
void PutSwallowedBreak(HWND pane) {
    const LRESULT lineStart = SendMessageW(pane, EM_LINEINDEX, static_cast<WPARAM>(-1), 0);
    if (RichSelection(pane).cpMax != lineStart)
        SendMessageW(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"\r\n"));
}

// Where a place in the text is after the characters from `from` to `to` have become `length` characters.
LONG MovedPlace(LONG place, LONG from, LONG to, LONG length) {
    if (place <= from) return place;
    return place >= to ? place + length - (to - from) : std::min(place, from + length);
}

void PrepareRichPane(HWND pane) {
    if (pane == nullptr) return;
    TextInsetPane(pane);
    SizeLate(pane, SizeWaits::Always);
}

}  // namespace

HWND RichPaneCreate(HWND parent, int controlId, const wchar_t* text, bool wrap) {
    const DWORD sideways = wrap ? 0U : static_cast<DWORD>(WS_HSCROLL | ES_AUTOHSCROLL);
    const HWND pane = CreateWindowExW(
        0, MSFTEDIT_CLASS, text,
        WS_CHILD | WS_CLIPSIBLINGS | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_NOHIDESEL | ES_AUTOVSCROLL | sideways,
        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    PrepareRichPane(pane);
    return pane;
}

LONG RichLinesAppend(HWND pane, std::span<const PaneLine> lines, LONG from) {
    if (pane == nullptr || (lines.empty() && from < 0)) return 0;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const std::string rtf =
        RtfBlock(lines, {.face = g_settings.outputFont,
                         .points = g_settings.outputFontSize,
                         .textColour = chrome.paneText,
                         .readableOn = OutputIsReadable() ? std::optional(chrome.paneBack) : std::nullopt});
    const CHARRANGE before = RichSelection(pane);
    const RedrawPause pause(pane);
    SelectInRich(pane, LONG_MAX, LONG_MAX);
    const LONG end = RichSelection(pane).cpMax;
    const LONG start = from < 0 ? end : std::min(from, end);
    if (start < end) {
        SelectInRich(pane, start, end);
        SendMessageW(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
    }
    if (!lines.empty()) StreamRtfIn(pane, rtf);
    if (!lines.empty() && lines.back().lineBreak) PutSwallowedBreak(pane);
    if (before.cpMin != before.cpMax) SelectInRich(pane, before.cpMin, before.cpMax);
    return start;
}

LONG RichRtfReplace(HWND pane, LONG from, LONG to, std::string_view rtf, bool lineBreak) {
    const CHARRANGE before = RichSelection(pane);
    const RedrawPause pause(pane);
    const LONG lengthBefore = RichLength(pane);
    SelectInRich(pane, from, to);
    if (from < to) SendMessageW(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
    StreamRtfIn(pane, rtf);
    if (lineBreak) PutSwallowedBreak(pane);
    const LONG length = RichLength(pane) - lengthBefore + to - from;
    SelectInRich(pane, MovedPlace(before.cpMin, from, to, length), MovedPlace(before.cpMax, from, to, length));
    return length;
}

LONG RichLength(HWND pane) {
    GETTEXTLENGTHEX wanted = {.flags = GTL_NUMCHARS | GTL_PRECISE, .codepage = 1200};  // UTF-16; a line break is one
    return static_cast<LONG>(SendMessageW(pane, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&wanted), 0));
}

bool RichIsAtEnd(HWND pane) {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    if (GetScrollInfo(pane, SB_VERT, &info) == FALSE || info.nPage == 0) return true;  // all of it is shown
    const int line = UiSizes().fixedHeight;
    return info.nPos + static_cast<int>(info.nPage) + 2 * line >= info.nMax;
}

void RichScrollToEnd(HWND pane) {
    // Inserting after a long line scrolls to its end, and so does SB_BOTTOM under Wine; lines are read from their start.
    SendMessageW(pane, WM_VSCROLL, SB_BOTTOM, 0);
    RichScrollToLeft(pane);
}

// EM_SETSCROLLPOS would set the vertical place too, and Windows documents its values as 16-bit.
void RichScrollToLeft(HWND pane) { SendMessageW(pane, WM_HSCROLL, MAKEWPARAM(SB_THUMBPOSITION, 0), 0); }

void RichSelectLine(HWND pane, LONG line) {
    const auto start = static_cast<LONG>(SendMessageW(pane, EM_LINEINDEX, static_cast<WPARAM>(line), 0));
    if (start < 0) return;
    const auto length = static_cast<LONG>(SendMessageW(pane, EM_LINELENGTH, static_cast<WPARAM>(start), 0));
    RECT client = {};
    GetClientRect(pane, &client);
    {
        const RedrawPause pause(pane);
        SelectInRich(pane, start, start + length);
        const auto first = static_cast<LONG>(SendMessageW(pane, EM_GETFIRSTVISIBLELINE, 0, 0));
        const LONG rows = std::max<LONG>(client.bottom / std::max(UiSizes().fixedHeight, 1), 1);
        if (line < first || line + 1 >= first + rows) SendMessageW(pane, EM_LINESCROLL, 0, line - rows / 2 - first);
        RichScrollToLeft(pane);
    }
    RedrawWindow(pane, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
}

void RichLinesReveal(HWND pane) {
    if (pane == nullptr) return;
    {
        const RedrawPause pause(pane);  // on its way to the end the pane may scroll sideways
        RichScrollToEnd(pane);
    }
    // With its frame: a scroll bar that came while the pane was not drawn is not there to be seen.
    RedrawWindow(pane, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
}

HWND RichPaneEmptied(HWND pane, std::size_t lines) {
    if (pane == nullptr) return nullptr;
    HWND parent = GetParent(pane);
    RECT place = {};
    GetWindowRect(pane, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    HWND next = nullptr;
    if (lines > kLinesDeleted)
        next = CreateWindowExW(static_cast<DWORD>(GetWindowLongPtrW(pane, GWL_EXSTYLE)), MSFTEDIT_CLASS, L"",
                               static_cast<DWORD>(GetWindowLongPtrW(pane, GWL_STYLE)), 0, 0, 0, 0, parent,
                               reinterpret_cast<HMENU>(GetWindowLongPtrW(pane, GWLP_ID)), g_ui.hInstance, nullptr);
    if (next == nullptr) {
        SetWindowTextW(pane, L"");
        return pane;
    }
    PrepareRichPane(next);
    SetWindowPos(next, pane, place.left, place.top, place.right - place.left, place.bottom - place.top, SWP_NOACTIVATE);
    if (GetFocus() == pane) SetFocus(next);
    ShowWindow(pane, SW_HIDE);
    SetWindowLongPtrW(pane, GWLP_ID, 0);  // the new one alone is found by it
    RichPaneDestroyReplaced();            // an earlier one: they hold hundreds of megabytes and must not add up
    g_replaced = pane;
    return next;
}

bool RichPaneIsReplaced() { return g_replaced != nullptr; }

void RichPaneDestroyReplaced() {
    if (HWND pane = std::exchange(g_replaced, nullptr)) DestroyWindow(pane);
}
