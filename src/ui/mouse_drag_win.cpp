#include "ui/mouse_drag.h"

namespace {

HWND g_window = nullptr;  // of the latest drag
bool g_takenBack = false;

}  // namespace

void MouseDragBegin(HWND window) {
    g_window = window;
    SetCapture(window);
}

bool MouseDragIsMessage(const MSG& message) {
    if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE) return false;
    g_takenBack = true;
    const bool dragged = MouseDragCancel();
    g_takenBack = false;
    return dragged;
}

bool MouseDragIsTakenBack() { return g_takenBack; }

bool MouseDragCancel() {
    if (g_window == nullptr || GetCapture() != g_window) return false;
    ReleaseCapture();
    return true;
}
