#include "ui/busy_input.h"

#include "ui/ui_state.h"

BusyInput TakeBusyInput() {
    BusyInput input;
    MSG message = {};
    while (PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE) != FALSE) {
        if (message.message == WM_KEYDOWN && (message.wParam == VK_ESCAPE || message.wParam == VK_CANCEL))
            input.stop = true;
        if (message.message == WM_SYSKEYDOWN && message.wParam == VK_F4) input.close = true;  // Alt+F4
    }
    while (PeekMessageW(&message, nullptr, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE) != FALSE) continue;
    while (PeekMessageW(&message, nullptr, WM_NCMOUSEMOVE, WM_NCXBUTTONDBLCLK, PM_REMOVE) != FALSE)
        if (message.message == WM_NCLBUTTONDOWN && message.wParam == HTCLOSE && message.hwnd == g_ui.hMainWnd)
            input.close = true;
    while (PeekMessageW(&message, g_ui.hMainWnd, WM_CLOSE, WM_CLOSE, PM_REMOVE) != FALSE) input.close = true;
    input.stop = input.stop || input.close;
    return input;
}

void PaintWhileBusy() {
    constexpr int kMostPaints = 32;  // a window that does not validate its area would be sent WM_PAINT for ever
    MSG message = {};
    for (int i = 0; i < kMostPaints && PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE) != FALSE; ++i)
        DispatchMessageW(&message);
}
