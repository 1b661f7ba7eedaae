// The screens. UI thread only.
#pragma once

#include <windows.h>

// What the taskbar leaves of the monitor on which most of the window is. Empty when there is none.
inline RECT WorkAreaOf(HWND window) {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}
