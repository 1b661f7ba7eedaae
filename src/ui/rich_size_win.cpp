#include "ui/rich_size.h"

#include "ui/chrome.h"
#include "ui/paint.h"
#include "ui/redraw.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"

#include <unordered_map>

namespace {

constexpr UINT_PTR kSizeTimer = 0x4B53;  // of the pane; the control has timers of its own with small numbers
constexpr UINT kStillMs = 150;           // after the last new size
constexpr UINT kSameClientSize = 0x800;  // SWP_NOCLIENTSIZE, which the headers leave out

struct PaneSize {
    SIZE told = {};  // of the window, when the control was last told
    SIZE toldClient = {};
    bool keepsEnd = false;
};
std::unordered_map<HWND, PaneSize> g_sizes;

SIZE SizeOf(HWND pane) {
    RECT place = {};
    GetWindowRect(pane, &place);
    return {place.right - place.left, place.bottom - place.top};
}

void NoteTold(HWND pane) {
    RECT client = {};
    GetClientRect(pane, &client);
    g_sizes[pane].told = SizeOf(pane);
    g_sizes[pane].toldClient = {client.right, client.bottom};
}

// A size that the control can wait for: the pane is in view, and only its size has changed.
bool CanWait(const PaneSize& size, const WINDOWPOS& place) {
    constexpr UINT kOther = SWP_NOSIZE | SWP_SHOWWINDOW | SWP_HIDEWINDOW | SWP_FRAMECHANGED;
    return (place.flags & kOther) == 0 && size.toldClient.cx > 0 && size.toldClient.cy > 0;
}

LRESULT PassPlace(HWND pane, const WINDOWPOS& place) {
    const bool atEnd = g_sizes[pane].keepsEnd && (place.flags & SWP_NOSIZE) == 0 && RichIsAtEnd(pane);
    const LRESULT result = SubclassNext(pane, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&place));
    if ((place.flags & SWP_NOSIZE) == 0) NoteTold(pane);
    // The control keeps its first line when it gets another height, so its last lines would leave the view.
    if (atEnd) RichScrollToEnd(pane);
    return result;
}

void TellSize(HWND pane) {
    KillTimer(pane, kSizeTimer);
    if ((GetWindowLongPtrW(pane, GWL_STYLE) & WS_VISIBLE) == 0) return;  // it is told when it is shown
    const SIZE now = SizeOf(pane);
    const WINDOWPOS place = {.hwnd = pane,
                             .hwndInsertAfter = nullptr,
                             .x = 0,
                             .y = 0,
                             .cx = static_cast<int>(now.cx),
                             .cy = static_cast<int>(now.cy),
                             .flags = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE};
    {
        const FramePause pause(pane);
        PassPlace(pane, place);
    }
    RedrawWindow(pane, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
}

LRESULT OnPlace(HWND pane, WINDOWPOS place) {
    const SIZE told = g_sizes[pane].told, now = SizeOf(pane);
    const bool isTold = now.cx == told.cx && now.cy == told.cy;
    if (CanWait(g_sizes[pane], place)) {
        if (isTold)
            KillTimer(pane, kSizeTimer);
        else
            SetTimer(pane, kSizeTimer, kStillMs, nullptr);
        return 0;
    }
    if ((place.flags & SWP_SHOWWINDOW) != 0 && !isTold) place.flags &= ~(SWP_NOSIZE | kSameClientSize);
    return PassPlace(pane, place);
}

// The control fills only the area that it knows of.
void FillBeyond(HWND pane, HDC dc) {
    const SIZE told = g_sizes[pane].toldClient;
    RECT client = {};
    GetClientRect(pane, &client);
    const COLORREF back = ThemeCurrentChrome().paneBack;
    if (client.right > told.cx) FillArea(dc, {told.cx, 0, client.right, client.bottom}, back);
    if (client.bottom > told.cy) FillArea(dc, {0, told.cy, client.right, client.bottom}, back);
}

LRESULT CALLBACK RichSizeProc(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_WINDOWPOSCHANGED: return OnPlace(pane, *reinterpret_cast<const WINDOWPOS*>(lParam));
        case WM_TIMER:
            if (wParam != kSizeTimer) break;
            TellSize(pane);
            return 0;
        case WM_ERASEBKGND: {
            const LRESULT result = SubclassNext(pane, message, wParam, lParam);
            FillBeyond(pane, reinterpret_cast<HDC>(wParam));
            return result;
        }
        case WM_NCDESTROY: g_sizes.erase(pane); break;
        default: break;
    }
    return SubclassNext(pane, message, wParam, lParam);
}

}  // namespace

void RichSizeLate(HWND pane) {
    if (pane == nullptr || !SubclassAdd(pane, RichSizeProc)) return;
    NoteTold(pane);
}

void RichSizeKeepsEnd(HWND pane) {
    if (pane != nullptr) g_sizes[pane].keepsEnd = true;
}
