#include "ui/text_inset.h"

#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <iterator>

namespace {

enum InsetKind : DWORD_PTR { kCentred, kPane };

constexpr int kLineBlank = 2;  // pixels that the field itself needs beside a line
constexpr int kPaneLeft = 6;   // at 96 dpi, like the next one
constexpr int kPaneTop = 3;

void InsetClient(HWND window, InsetKind kind, RECT& client) {
    if (kind == kPane) {
        const DpiScope scope(window);
        client.left += UiScaled(kPaneLeft);
        client.top += UiScaled(kPaneTop);
        return;
    }
    const auto font = reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
    const int spare = static_cast<int>(client.bottom - client.top) - UiTextHeightOf(font) - kLineBlank;
    if (spare <= 0) return;
    client.top += spare / 2;
    client.bottom -= spare - spare / 2;
}

int FrameOf(HWND window) {
    const DpiScope scope(window);
    if ((GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0) return UiMetric(SM_CXEDGE);
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_BORDER) != 0 ? UiMetric(SM_CXBORDER) : 0;
}

HBRUSH BrushOfField(HWND field, HDC dc) {
    const bool typed = IsWindowEnabled(field) && (GetWindowLongPtrW(field, GWL_STYLE) & ES_READONLY) == 0;
    const LRESULT brush = SendMessageW(GetParent(field), typed ? WM_CTLCOLOREDIT : WM_CTLCOLORSTATIC,
                                       reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(field));
    return brush != 0 ? reinterpret_cast<HBRUSH>(brush) : GetSysColorBrush(COLOR_WINDOW);
}

// The control paints only its client area.
void PaintInset(HWND window, InsetKind kind) {
    const HDC dc = GetWindowDC(window);
    if (dc == nullptr) return;
    RECT place = {}, client = {};
    GetWindowRect(window, &place);
    GetClientRect(window, &client);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
    OffsetRect(&client, -place.left, -place.top);
    OffsetRect(&place, -place.left, -place.top);
    const int frame = FrameOf(window);
    InflateRect(&place, -frame, -frame);
    const RECT above = {place.left, place.top, client.right, client.top};
    if (kind == kPane) {
        const COLORREF back = ThemeCurrentChrome().paneBack;
        FillArea(dc, above, back);
        FillArea(dc, {place.left, client.top, client.left, place.bottom}, back);  // also beside a scroll bar below
    } else {
        const HBRUSH brush = BrushOfField(window, dc);
        const RECT below = {place.left, client.bottom, client.right, place.bottom};
        FillRect(dc, &above, brush);
        FillRect(dc, &below, brush);
    }
    ReleaseDC(window, dc);
}

// The hint of an empty field. The system draws it in COLOR_GRAYTEXT, which is hard to read on a dark ground, and under
// Wine on a light one.
void PaintCue(HWND field) {
    wchar_t cue[128] = {};
    if (GetWindowTextLengthW(field) > 0 || GetFocus() == field ||
        SendMessageW(field, EM_GETCUEBANNER, reinterpret_cast<WPARAM>(cue), std::size(cue)) == FALSE || cue[0] == L'\0')
        return;
    RECT area = {};
    GetClientRect(field, &area);
    const HDC dc = GetDC(field);
    if (dc == nullptr) return;
    const auto font = reinterpret_cast<HFONT>(SendMessageW(field, WM_GETFONT, 0, 0));
    const HGDIOBJ oldFont = SelectObject(dc, font != nullptr ? font : UiFont());
    FillRect(dc, &area, BrushOfField(field, dc));
    RECT text = {};
    SendMessageW(field, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
    area.left = text.left;
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, SystemHighContrast() ? GetSysColor(COLOR_GRAYTEXT) : ThemeQuietText());
    DrawTextW(dc, cue, -1, &area, DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(dc, oldFont);
    ReleaseDC(field, dc);
}

LRESULT CALLBACK InsetProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data) {
    const auto kind = static_cast<InsetKind>(data);
    const LRESULT result = SubclassNext(window, message, wParam, lParam);
    switch (message) {
        // Both forms of the parameter begin with the rectangle that becomes the client area.
        case WM_NCCALCSIZE: InsetClient(window, kind, *reinterpret_cast<RECT*>(lParam)); break;
        case WM_NCPAINT: PaintInset(window, kind); break;
        case WM_PAINT:
            if (kind == kCentred) PaintCue(window);
            break;
        case WM_NCHITTEST: return result == HTNOWHERE || result == HTBORDER ? HTCLIENT : result;
        case WM_ENABLE: RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME); break;
        case WM_SETFONT:
            SetWindowPos(window, nullptr, 0, 0, 0, 0,
                         SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            break;
        default: break;
    }
    return result;
}

}  // namespace

void TextInsetCentre(HWND field) {
    if (!SubclassAdd(field, InsetProc, kCentred)) return;
    SetWindowPos(field, nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void TextInsetPane(HWND pane) { SubclassAdd(pane, InsetProc, kPane); }
