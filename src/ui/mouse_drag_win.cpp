#include "ui/mouse_drag.h"

namespace {

HWND g_window = nullptr;  // of the latest drag

}  // namespace

void MouseDragBegin(HWND window) {
    g_window = window;
    SetCapture(window);
}

bool MouseDragIsMessage(const MSG& message) {
    if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE) return false;
    return MouseDragCancel();
}

bool MouseDragCancel() {
    if (g_window == nullptr || GetCapture() != g_window) return false;
    ReleaseCapture();
    return true;
}
