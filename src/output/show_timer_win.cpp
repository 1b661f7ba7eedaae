#include "output/show_timer.h"

#include "resources/ids.h"
#include "ui/ui_state.h"

static constexpr UINT kShowIntervalMs = 20;
static bool g_runs = false;

void ShowTimerStart() {
    // SetTimer on a running timer restarts its interval, so under steady output it would never fire.
    if (!g_runs) g_runs = SetTimer(g_ui.hMainWnd, TIMER_OUTPUT, kShowIntervalMs, nullptr) != 0;
}

void ShowTimerStop() {
    KillTimer(g_ui.hMainWnd, TIMER_OUTPUT);
    g_runs = false;
}
