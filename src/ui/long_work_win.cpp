#include "ui/long_work.h"

#include "base/clock.h"
#include "base/wide_format.h"

#include <windows.h>

#include <algorithm>

double g_longWorkAfterMs = kLongWorkMs;

namespace {

constexpr double kLooks = 10;    // at the message queue in each g_longWorkAfterMs
constexpr int kMostPaints = 32;  // a window that does not validate its area would be sent WM_PAINT for ever

int g_longWorks = 0;

void DropMessages(UINT first, UINT last) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, first, last, PM_REMOVE) != FALSE) {}
}

// Takes the keys out of the queue. Returns true when one of them stops the work.
bool StopKeyCame() {
    bool stop = false;
    MSG message = {};
    while (PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE) != FALSE)
        stop = stop || (message.message == WM_KEYDOWN && (message.wParam == VK_ESCAPE || message.wParam == VK_CANCEL));
    return stop;
}

void PaintWindows() {
    MSG message = {};
    for (int i = 0; i < kMostPaints && PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE) != FALSE; ++i)
        DispatchMessageW(&message);
}

}  // namespace

LongWork::LongWork(const wchar_t* what, void (*show)(const wchar_t* text))
    : what_(what), show_(show), began_(ClockMs()), looked_(began_) {
    ++g_longWorks;
}

LongWork::~LongWork() { --g_longWorks; }

bool LongWork::GoesOn(double share) {
    const double now = ClockMs();
    if (stopped_ || now - began_ < g_longWorkAfterMs) return !stopped_;
    if (Shown() && now - looked_ < g_longWorkAfterMs / kLooks) return true;
    looked_ = now;
    stopped_ = StopKeyCame();
    DropMessages(WM_MOUSEFIRST, WM_MOUSELAST);
    DropMessages(WM_NCMOUSEMOVE, WM_NCXBUTTONDBLCLK);
    const int percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100);
    show_(stopped_ ? FormatW(L"%s: stopping...", what_).c_str()
                   : FormatW(L"%s: %d %% (Esc stops)", what_, percent).c_str());
    PaintWindows();
    return !stopped_;
}

bool LongWorkRuns() { return g_longWorks > 0; }
