// Ctrl held down while other keys are pressed.
#pragma once

#include "harness.h"

// Ctrl stays down while the other keys are pressed, until the end of the scope.
struct HeldControl {
    const Editor& editor;
    explicit HeldControl(const Editor& program) : editor(program) {
        editor.Foreground();
        keybd_event(VK_CONTROL, 0, 0, 0);
        WaitFor([] { return GetAsyncKeyState(VK_CONTROL) < 0; });
    }
    ~HeldControl() { keybd_event(VK_CONTROL, 0, KEYEVENTF_KEYUP, 0); }
    HeldControl(const HeldControl&) = delete;
    HeldControl& operator=(const HeldControl&) = delete;
    static void Press(int key) {
        keybd_event(static_cast<BYTE>(key), 0, 0, 0);
        keybd_event(static_cast<BYTE>(key), 0, KEYEVENTF_KEYUP, 0);
    }
};
