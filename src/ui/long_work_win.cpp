#include "ui/long_work.h"

#include "base/clock.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "ui/busy_input.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <utility>

double g_longWorkAfterMs = kLongWorkMs;

namespace {

constexpr double kLooks = 10;  // at the message queue in each g_longWorkAfterMs

int g_longWorks = 0;
bool g_closeAfterwards = false;

}  // namespace

LongWork::LongWork(const wchar_t* what, void (*show)(const wchar_t* text))
    : what_(what), show_(show), began_(ClockMs()), looked_(began_) {
    ++g_longWorks;
}

LongWork::~LongWork() {
    if (--g_longWorks > 0 || !std::exchange(g_closeAfterwards, false)) return;
    PostMessageW(g_ui.hMainWnd, WM_CLOSE, 0, 0);
}

bool LongWork::GoesOn(double share) {
    const double now = ClockMs();
    if (stopped_ || now - began_ < g_longWorkAfterMs) return !stopped_;
    if (Shown() && now - looked_ < g_longWorkAfterMs / kLooks) return true;
    looked_ = now;
    const BusyInput input = TakeBusyInput();
    stopped_ = input.stop;
    g_closeAfterwards = g_closeAfterwards || input.close;
    const int percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100);
    show_(stopped_ ? FormatW(Text(L"%s: stopping..."), what_).c_str()
                   : FormatW(Text(L"%s: %d %% (Esc stops)"), what_, percent).c_str());
    PaintWhileBusy();
    return !stopped_;
}

bool LongWorkRuns() { return g_longWorks > 0; }
