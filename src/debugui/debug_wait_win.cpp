// Waits inside a command, and the messages that the window handles meanwhile. UI thread only.
#include "debugui/debug_wait.h"

#include "debugger/debug_state.h"
#include "debugui/wait_keys.h"
#include "documents/documents_state.h"
#include "editor/caret_steps.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace {

constexpr ULONGLONG kPumpIntervalMs = 20;  // between two rounds of PumpMessages

struct WaitState {
    DebugFlow* flow = nullptr;  // of the present wait
    ULONGLONG end = 0;          // GetTickCount64 value at which DebugWaitInPlace ends
    ULONGLONG lastPump = 0;
    std::vector<MSG> late;  // keys that are handled after the wait
};
WaitState g_wait;

// The engine's own time-out begins again after each event that is no stop, so this limits the whole wait.
bool IsWaitOver() { return GetTickCount64() >= g_wait.end; }

bool IsHeld(int key) { return GetKeyState(key) < 0; }

// The editor's commands with Control.
struct EditingCommand {
    WPARAM key;
    UINT message;
};
constexpr EditingCommand kEditingCommands[] = {{'A', SCI_SELECTALL}, {'C', SCI_COPY}, {'V', SCI_PASTE}, {'X', SCI_CUT}};

bool IsEditor(HWND window) { return window != nullptr && window == g_documents.hEditor; }

bool IsField(HWND window) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return _wcsicmp(name, L"Edit") == 0;
}

WaitKey WaitKeyOf(const MSG& message) {
    constexpr UINT kFirstCharacter = 32;
    const auto key = static_cast<std::uint32_t>(message.wParam);
    return {.key = key,
            .system = message.message == WM_SYSKEYDOWN,
            .control = IsHeld(VK_CONTROL),
            .shift = IsHeld(VK_SHIFT),
            .alt = IsHeld(VK_MENU),
            .inEditor = IsEditor(message.hwnd),
            .inField = IsField(message.hwnd),
            .makesCharacter = MapVirtualKeyW(key, MAPVK_VK_TO_CHAR) >= kFirstCharacter,
            .earlierKeyWaits = !g_wait.late.empty()};
}

void RunEditingCommand(WPARAM key) {
    if (key == 'Z') return EditorUndo(g_documents.hEditor);
    if (key == 'Y') return EditorRedo(g_documents.hEditor);
    const auto command = std::ranges::find(kEditingCommands, key, &EditingCommand::key);
    if (command != std::end(kEditingCommands)) SciSend(g_documents.hEditor, command->message);
}

// Puts a key off until the wait is over. Its modifiers are noted, because they may be up by then.
void PutOff(const MSG& message) {
    const LPARAM held = (IsHeld(VK_CONTROL) ? LATE_KEY_CONTROL : 0) | (IsHeld(VK_SHIFT) ? LATE_KEY_SHIFT : 0) |
                        (IsHeld(VK_MENU) ? LATE_KEY_ALT : 0);
    g_wait.late.push_back({.hwnd = g_ui.hMainWnd, .message = MSG_LATE_KEY, .wParam = message.wParam, .lParam = held});
}

void TakeCharacter(const MSG& message) {
    const auto character = static_cast<std::uint32_t>(message.wParam);
    switch (ActionOfWaitCharacter(character, IsEditor(message.hwnd), IsField(message.hwnd), !g_wait.late.empty())) {
        case WaitCharacter::Handle: DispatchMessageW(&message); break;
        case WaitCharacter::PutOff: g_wait.late.push_back(message); break;
        case WaitCharacter::Drop: break;
    }
}

// Text goes into the editor at once, because it would otherwise arrive after the stop has moved the caret. Keys of
// commands wait.
void TakeKey(DebugFlow* flow, const MSG& message) {
    if (message.message == WM_CHAR) return TakeCharacter(message);
    if (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN) return;
    switch (ActionOfWaitKey(WaitKeyOf(message))) {
        case WaitKeyAction::Stop: FlowWantStop(flow, false); break;
        case WaitKeyAction::EditorCommand: RunEditingCommand(message.wParam); break;
        case WaitKeyAction::Handle: DispatchMessageW(&message); break;
        case WaitKeyAction::Translate: TranslateMessage(&message); break;  // its WM_CHAR is the next key message
        case WaitKeyAction::PutOff: PutOff(message); break;
        case WaitKeyAction::Drop: break;
    }
}

void PumpMessages(DebugFlow* flow) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE)) TakeKey(flow, message);
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
    for (const MSG& key : std::exchange(g_wait.late, {})) PostMessageW(key.hwnd, key.message, key.wParam, key.lParam);
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
