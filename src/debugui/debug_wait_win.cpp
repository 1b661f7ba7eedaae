// Waits inside a command, and the messages that the window handles meanwhile. UI thread only.
#include "debugui/debug_wait.h"

#include "debugger/debug_state.h"
#include "documents/documents_state.h"
#include "resources/ids.h"
#include "ui/ui_state.h"

#include <algorithm>

namespace {

constexpr ULONGLONG kPumpIntervalMs = 20;  // between two rounds of PumpMessages

struct WaitState {
    DebugFlow* flow = nullptr;  // of the present wait
    ULONGLONG end = 0;          // GetTickCount64 value at which DebugWaitInPlace ends
    ULONGLONG lastPump = 0;
};
WaitState g_wait;

// The engine's own time-out begins again after each event that is no stop, so this limits the whole wait.
bool IsWaitOver() { return GetTickCount64() >= g_wait.end; }

bool IsHeld(int key) { return GetKeyState(key) < 0; }

bool IsStopKey(const MSG& message) {
    if (message.message != WM_KEYDOWN) return false;
    return message.wParam == VK_ESCAPE || message.wParam == VK_CANCEL || (message.wParam == VK_F5 && IsHeld(VK_SHIFT));
}

// True for keys that edit or move the caret without a WM_CHAR of text.
bool IsEditingKey(WPARAM key) {
    constexpr WPARAM kKeys[] = {VK_RETURN, VK_TAB, VK_BACK, VK_DELETE, VK_LEFT,
                                VK_RIGHT,  VK_UP,  VK_DOWN, VK_HOME,   VK_END};
    return std::ranges::find(kKeys, key) != std::end(kKeys) && !IsHeld(VK_CONTROL) && !IsHeld(VK_MENU) &&
           !IsHeld(VK_SHIFT);
}

// Text goes into the editor at once, because it would otherwise arrive after the stop has moved the caret. Keys of
// commands, and keys for any other window, are dropped.
void TypeIntoEditor(const MSG& message) {
    constexpr WPARAM kFirstCharacter = 32;
    if (message.hwnd == nullptr || message.hwnd != g_documents.hEditor) return;
    if (message.message == WM_KEYDOWN) TranslateMessage(&message);  // its WM_CHAR is the next key message
    const bool character = message.message == WM_CHAR && message.wParam >= kFirstCharacter;
    if (character || (message.message == WM_KEYDOWN && IsEditingKey(message.wParam))) DispatchMessageW(&message);
}

void PumpMessages(DebugFlow* flow) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE))
        if (IsStopKey(message))
            FlowWantStop(flow, false);
        else
            TypeIntoEditor(message);
    // The toolbar turns clicks into commands; the main window accepts only Stop now.
    const HWND toolbar = GetDlgItem(g_ui.hMainWnd, IDC_TOOLBAR);
    while (toolbar != nullptr && PeekMessageW(&message, toolbar, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE))
        DispatchMessageW(&message);
    while (PeekMessageW(&message, g_ui.hMainWnd, WM_NCLBUTTONDOWN, WM_NCLBUTTONDBLCLK, PM_REMOVE))
        if (message.message == WM_NCLBUTTONDOWN && message.wParam == HTCLOSE) FlowWantStop(flow, true);
    while (PeekMessageW(&message, g_ui.hMainWnd, WM_CLOSE, WM_CLOSE, PM_REMOVE)) FlowWantStop(flow, true);
    constexpr int kMostPaints = 32;  // a window that does not validate its area would be sent WM_PAINT for ever
    for (int i = 0; i < kMostPaints && PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE); ++i)
        DispatchMessageW(&message);
}

}  // namespace

DebugWaitScope::DebugWaitScope(DebugFlow* flow, DebugWaitHook hook) : flow_(flow), previous_(DebugSetWaitHook(hook)) {
    flow_->waiting = true;
    g_wait.flow = flow_;
    g_wait.lastPump = 0;
}

DebugWaitScope::~DebugWaitScope() {
    flow_->waiting = false;
    DebugSetWaitHook(previous_);
}

int DebugWaitInPlace(DebugFlow* flow, DWORD milliseconds, ULONGLONG limit) {
    g_wait.end = GetTickCount64() + limit;
    const DebugWaitScope scope(flow, IsWaitOver);
    return g_debugger.awaits != DebugAwaits::Nothing ? DebugWaitStart(&g_debugger, milliseconds)
                                                     : DebugWaitEvent(&g_debugger, milliseconds);
}

bool DebugPumpStart() {
    const ULONGLONG now = GetTickCount64();
    if (now - g_wait.lastPump >= kPumpIntervalMs) {
        g_wait.lastPump = now;
        PumpMessages(g_wait.flow);
    }
    return FlowStartWaitIsOver(*g_wait.flow, g_debugger.awaits != DebugAwaits::Nothing, now);
}
