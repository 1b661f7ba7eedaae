#include "ui/late_size.h"

#include "base/clock.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/drag_pace.h"
#include "ui/paint.h"
#include "ui/redraw.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr UINT kSameClientSize = 0x800;  // SWP_NOCLIENTSIZE, which the headers leave out
constexpr double kTimerMs = 16;          // how much later than asked for a timer may come

struct PaneSize {
    SizeWaits kind = SizeWaits::Always;
    SIZE told = {};  // of the window, when the control was last told
    SIZE toldClient = {};
    bool waits = false;  // the size of the window is another one
    bool plain = false;  // its scroll bars are drawn as plain strips
    bool keepsEnd = false;
};

struct LateSizes {
    std::unordered_map<HWND, PaneSize> panes;
    std::vector<void (*)()> others;  // what waits with the panes
    DragPace pace;
    double changed = 0;  // when a pane last began to wait
    UINT_PTR timer = 0;
    UINT_PTR stepTimer = 0;
    double stepped = -kStillMs;  // when the frame last had another size while it was in view, and that was painted
    bool frameSteps = false;     // the step that is not painted yet is one of the frame
};
LateSizes g_late;

bool IsSlow() { return DragIsSlow(g_late.pace, ClockMs()); }

SIZE SizeOf(HWND pane) {
    RECT place = {};
    GetWindowRect(pane, &place);
    return {place.right - place.left, place.bottom - place.top};
}

void NoteTold(HWND pane) {
    RECT client = {};
    GetClientRect(pane, &client);
    PaneSize& size = g_late.panes[pane];
    size.told = SizeOf(pane);
    size.toldClient = {client.right, client.bottom};
    size.waits = false;
}

// A size that the control can wait for: the pane is in view, and only its size has changed.
bool CanWait(const PaneSize& size, const WINDOWPOS& place) {
    constexpr UINT kOther = SWP_NOSIZE | SWP_SHOWWINDOW | SWP_HIDEWINDOW | SWP_FRAMECHANGED;
    if ((place.flags & kOther) != 0 || size.toldClient.cx <= 0 || size.toldClient.cy <= 0) return false;
    if (size.kind == SizeWaits::Never) return false;
    return size.kind == SizeWaits::Always || size.waits || IsSlow();
}

LRESULT PassPlace(HWND pane, const WINDOWPOS& place) {
    const bool atEnd = g_late.panes[pane].keepsEnd && (place.flags & SWP_NOSIZE) == 0 && RichIsAtEnd(pane);
    const LRESULT result = SubclassNext(pane, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&place));
    if ((place.flags & SWP_NOSIZE) == 0) NoteTold(pane);
    // The control keeps its first line when it gets another height, so its last lines would leave the view.
    if (atEnd) RichScrollToEnd(pane);
    return result;
}

void RedrawAll(HWND pane) {
    RedrawWindow(pane, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

// The control draws none of its scroll bars by itself.
LRESULT PassUndrawn(HWND pane, const WINDOWPOS& place) {
    LRESULT result = 0;
    {
        const FramePause pause(pane);
        result = PassPlace(pane, place);
    }
    RedrawAll(pane);
    return result;
}

bool HasBars(HWND pane) { return (GetWindowLongPtrW(pane, GWL_STYLE) & (WS_VSCROLL | WS_HSCROLL)) != 0; }

void TellSize(HWND pane) {
    if ((GetWindowLongPtrW(pane, GWL_STYLE) & WS_VISIBLE) == 0) return;  // it is told when it is shown
    const SIZE now = SizeOf(pane), told = g_late.panes[pane].told;
    const WINDOWPOS place = {.hwnd = pane,
                             .hwndInsertAfter = nullptr,
                             .x = 0,
                             .y = 0,
                             .cx = static_cast<int>(now.cx),
                             .cy = static_cast<int>(now.cy),
                             .flags = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE};
    if (now.cx != told.cx || now.cy != told.cy)
        PassUndrawn(pane, place);
    else
        RedrawAll(pane);
}

// Returns whether there was one.
bool TellOne() {
    const auto next =
        std::ranges::find_if(g_late.panes, [](const auto& each) { return each.second.waits || each.second.plain; });
    if (next == g_late.panes.end()) return false;
    next->second.waits = next->second.plain = false;
    TellSize(next->first);
    return true;
}

// The panes are told one after the other, and the window answers between them.
void CALLBACK TellNext(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    g_late.timer = 0;
    const double left = g_late.changed + kStillMs - ClockMs();
    if (left <= 0 && !TellOne()) {
        for (const auto later : std::exchange(g_late.others, {})) later();
        return;
    }
    g_late.timer = SetTimer(nullptr, 0, left > 0 ? static_cast<UINT>(left) + 1 : USER_TIMER_MINIMUM, TellNext);
}

void TellWhenStill() {
    g_late.changed = ClockMs();
    if (g_late.timer == 0) g_late.timer = SetTimer(nullptr, 0, static_cast<UINT>(kStillMs), TellNext);
}

LRESULT OnPlace(HWND pane, WINDOWPOS place) {
    PaneSize& size = g_late.panes[pane];
    const SIZE now = SizeOf(pane);
    const bool isTold = now.cx == size.told.cx && now.cy == size.told.cy;
    if (CanWait(size, place)) {
        size.waits = !isTold;
        if (size.waits) TellWhenStill();
        return 0;
    }
    if (size.kind == SizeWaits::Never && (place.flags & SWP_NOSIZE) == 0 && IsSlow()) return PassUndrawn(pane, place);
    if ((place.flags & SWP_SHOWWINDOW) != 0 && !isTold) place.flags &= ~(SWP_NOSIZE | kSameClientSize);
    return PassPlace(pane, place);
}

// What the pane shows stays where it is while its size waits, so only new room need be painted.
LRESULT OnFrameSize(HWND pane, WPARAM wParam, LPARAM lParam) {
    PaneSize& size = g_late.panes[pane];
    const LRESULT result = SubclassNext(pane, WM_NCCALCSIZE, wParam, lParam);
    if (wParam == FALSE || !CanWait(size, *reinterpret_cast<const NCCALCSIZE_PARAMS*>(lParam)->lppos)) return result;
    return result & ~static_cast<LRESULT>(WVR_REDRAW);
}

// Where the system's drawing has it, to a pixel or two.
void FillThumb(HWND pane, HDC dc, int bar, const RECT& strip) {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    const bool upright = bar == SB_VERT;
    const int arrow = UiMetric(upright ? SM_CYVSCROLL : SM_CXHSCROLL);
    const int track = static_cast<int>(upright ? strip.bottom - strip.top : strip.right - strip.left) - 2 * arrow;
    if (GetScrollInfo(pane, bar, &info) == FALSE) return;
    const int range = info.nMax - info.nMin + 1, page = static_cast<int>(info.nPage);
    if (page <= 0 || page >= range || track <= 0) return;
    const int length = std::min(std::max(MulDiv(track, page, range), arrow / 2), track);
    const int at = arrow + MulDiv(track - length, info.nPos - info.nMin, range - page);
    RECT thumb = strip;
    (upright ? thumb.top : thumb.left) += at;
    (upright ? thumb.bottom : thumb.right) = (upright ? thumb.top : thumb.left) + length;
    InflateRect(&thumb, upright ? -UiScaled(2) : 0, upright ? 0 : -UiScaled(2));
    FillArea(dc, thumb, ThemeCurrentChrome().line);
}

// A plain strip for each scroll bar, and the ground of the panes beside the text.
void FillFrame(HWND pane) {
    const HDC dc = GetWindowDC(pane);
    if (dc == nullptr) return;
    g_late.panes[pane].plain = true;
    TellWhenStill();
    RECT place = {}, client = {};
    GetWindowRect(pane, &place);
    GetClientRect(pane, &client);
    MapWindowPoints(pane, nullptr, reinterpret_cast<POINT*>(&client), 2);
    OffsetRect(&client, -place.left, -place.top);
    OffsetRect(&place, -place.left, -place.top);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, {0, 0, place.right, client.top}, chrome.paneBack);
    FillArea(dc, {0, client.top, client.left, place.bottom}, chrome.paneBack);
    FillArea(dc, {client.right, client.top, place.right, place.bottom}, chrome.windowBack);
    FillArea(dc, {client.left, client.bottom, client.right, place.bottom}, chrome.windowBack);
    if (client.right < place.right)
        FillThumb(pane, dc, SB_VERT, {client.right, client.top, place.right, client.bottom});
    if (client.bottom < place.bottom)
        FillThumb(pane, dc, SB_HORZ, {client.left, client.bottom, client.right, place.bottom});
    ReleaseDC(pane, dc);
}

// The control fills only the area that it knows of.
void FillBeyond(HWND pane, HDC dc) {
    const PaneSize& size = g_late.panes[pane];
    if (size.kind == SizeWaits::Never || (size.kind == SizeWaits::InSlowDrag && !IsSlow())) return;
    const SIZE told = size.toldClient;
    RECT client = {};
    GetClientRect(pane, &client);
    const COLORREF back = ThemeCurrentChrome().paneBack;
    if (client.right > told.cx) FillArea(dc, {told.cx, 0, client.right, client.bottom}, back);
    if (client.bottom > told.cy) FillArea(dc, {0, told.cy, client.right, client.bottom}, back);
}

LRESULT CALLBACK LateSizeProc(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_NCCALCSIZE: return OnFrameSize(pane, wParam, lParam);
        case WM_WINDOWPOSCHANGED: return OnPlace(pane, *reinterpret_cast<const WINDOWPOS*>(lParam));
        case WM_NCPAINT:
            if (!HasBars(pane) || !IsSlow()) break;
            FillFrame(pane);
            return 0;
        case WM_ERASEBKGND: {
            const LRESULT result = SubclassNext(pane, message, wParam, lParam);
            FillBeyond(pane, reinterpret_cast<HDC>(wParam));
            return result;
        }
        case WM_NCDESTROY: g_late.panes.erase(pane); break;
        default: break;
    }
    return SubclassNext(pane, message, wParam, lParam);
}

// The hand is still for so long after the painting. Counted from the beginning of a step, a step that takes longer than
// that would end its own drag: every pane would be told each size, and the steps would take longer still.
void EndStep(double allowance) {
    if (!g_late.pace.running) return;
    const double now = ClockMs();
    DragStepEnds(g_late.pace, now, allowance);
    if (g_late.timer != 0) g_late.changed = now;
    if (std::exchange(g_late.frameSteps, false)) g_late.stepped = now;
}

// Where another loop than the program's own runs, as while the frame is dragged, a timer comes after the painting.
void CALLBACK OnStepTimer(HWND, UINT, UINT_PTR, DWORD) {
    KillTimer(nullptr, g_late.stepTimer);
    g_late.stepTimer = 0;
    EndStep(kTimerMs);
}

}  // namespace

void SizeLate(HWND pane, SizeWaits waits) {
    if (pane == nullptr || !SubclassAdd(pane, LateSizeProc)) return;
    NoteTold(pane);
    g_late.panes[pane].kind = waits;
}

void SizeLateKeepsEnd(HWND pane) {
    if (pane != nullptr) g_late.panes[pane].keepsEnd = true;
}

bool SizeWaitsWithFrame(void (*later)()) {
    if (!IsSlow() || ClockMs() - g_late.stepped > kStillMs) return false;
    if (std::ranges::find(g_late.others, later) == g_late.others.end()) g_late.others.push_back(later);
    TellWhenStill();
    return true;
}

void SizeStepBegins() {
    DragStepBegins(g_late.pace, ClockMs());
    if (g_late.stepTimer == 0) g_late.stepTimer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, OnStepTimer);
}

void SizeStepPaint(HWND frame) {
    if (IsWindowVisible(frame) == FALSE) return;
    const bool drag = ClockMs() - g_late.stepped <= kStillMs;
    g_late.stepped = ClockMs();
    g_late.frameSteps = true;
    if (drag) SizeStepPaintNow(frame);
}

void SizeStepPaintNow(HWND frame) {
    RedrawWindow(frame, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    SizeStepEnds();
}

void SizeStepEnds() { EndStep(0); }
