#include "output/show_timer.h"

#include "resources/ids.h"
#include "ui/ui_state.h"

static constexpr UINT kShowIntervalMs = 20;
static bool g_runs = false;

void ShowTimerStart() {
    // Setting a timer that runs would start its time anew, and under a flood it would never fire.
    if (!g_runs) g_runs = SetTimer(g_ui.hMainWnd, TIMER_OUTPUT, kShowIntervalMs, nullptr) != 0;
}

void ShowTimerStop() {
    KillTimer(g_ui.hMainWnd, TIMER_OUTPUT);
    g_runs = false;
}
