// Waits inside a command, and the messages that the window handles meanwhile. UI thread only.
#include "debugui/debug_wait.h"

#include "debugger/debug_state.h"
#include "documents/documents_state.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <iterator>
#include <span>
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

bool IsStopKey(const MSG& message) {
    if (message.message != WM_KEYDOWN) return false;
    return message.wParam == VK_ESCAPE || message.wParam == VK_CANCEL || (message.wParam == VK_F5 && IsHeld(VK_SHIFT));
}

bool IsOneOf(std::span<const WPARAM> keys, WPARAM key) { return std::ranges::find(keys, key) != keys.end(); }

// Keys by which any line of text is edited. Control and Shift belong to them.
constexpr WPARAM kFieldKeys[] = {VK_LEFT, VK_RIGHT, VK_HOME, VK_END, VK_BACK, VK_DELETE, VK_INSERT};
constexpr WPARAM kEditorKeys[] = {VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT};
constexpr WPARAM kBreakKeys[] = {VK_RETURN, VK_TAB};
constexpr WPARAM kModifiers[] = {VK_CONTROL, VK_SHIFT, VK_MENU, VK_LWIN, VK_RWIN, VK_CAPITAL, VK_NUMLOCK, VK_SCROLL};

struct EditingCommand {
    WPARAM key;  // with Control
    UINT message;
};
constexpr EditingCommand kEditingCommands[] = {{'A', SCI_SELECTALL}, {'C', SCI_COPY}, {'V', SCI_PASTE},
                                               {'X', SCI_CUT},       {'Y', SCI_REDO}, {'Z', SCI_UNDO}};

bool IsEditor(HWND window) { return window != nullptr && window == g_documents.hEditor; }

bool IsField(HWND window) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return _wcsicmp(name, L"Edit") == 0;
}

// True for a key whose WM_CHAR is text.
bool BringsText(WPARAM key) {
    constexpr UINT kFirstCharacter = 32;
    const bool altGr = IsHeld(VK_CONTROL) && IsHeld(VK_MENU);
    if ((IsHeld(VK_CONTROL) || IsHeld(VK_MENU)) && !altGr) return false;
    return key == VK_PACKET || MapVirtualKeyW(static_cast<UINT>(key), MAPVK_VK_TO_CHAR) >= kFirstCharacter;
}

bool IsEditingKey(const MSG& message) {
    const WPARAM key = message.wParam;
    if (message.message != WM_KEYDOWN || IsHeld(VK_MENU)) return false;
    if (IsOneOf(kFieldKeys, key)) return IsEditor(message.hwnd) || IsField(message.hwnd);
    return IsEditor(message.hwnd) && (IsOneOf(kEditorKeys, key) || (IsOneOf(kBreakKeys, key) && !IsHeld(VK_CONTROL)));
}

// Cut, paste and the like in the editor, where they were meant.
bool RunEditingCommand(const MSG& message) {
    if (!IsEditor(message.hwnd) || !IsHeld(VK_CONTROL) || IsHeld(VK_SHIFT) || IsHeld(VK_MENU)) return false;
    const auto command = std::ranges::find(kEditingCommands, message.wParam, &EditingCommand::key);
    if (command == std::end(kEditingCommands)) return false;
    SciSend(g_documents.hEditor, command->message);
    return true;
}

// Puts a key off until the wait is over. Its modifiers are noted, because they may be up by then.
void PutOff(const MSG& message) {
    const LPARAM held = (IsHeld(VK_CONTROL) ? LATE_KEY_CONTROL : 0) | (IsHeld(VK_SHIFT) ? LATE_KEY_SHIFT : 0) |
                        (IsHeld(VK_MENU) ? LATE_KEY_ALT : 0);
    g_wait.late.push_back({.hwnd = g_ui.hMainWnd, .message = MSG_LATE_KEY, .wParam = message.wParam, .lParam = held});
}

// Text for a field waits when an earlier key for a field does, because that may have been Enter.
void TakeCharacter(const MSG& message) {
    constexpr WPARAM kFirstCharacter = 32;
    if (message.wParam < kFirstCharacter) return;
    if (IsEditor(message.hwnd) || (IsField(message.hwnd) && g_wait.late.empty()))
        DispatchMessageW(&message);
    else if (IsField(message.hwnd))
        g_wait.late.push_back(message);
}

// Text goes into the editor at once, because it would otherwise arrive after the stop has moved the caret. Keys of
// commands wait.
void TakeKey(const MSG& message) {
    if (message.message == WM_CHAR) {
        TakeCharacter(message);
    } else if (message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN) {
        if (RunEditingCommand(message) || IsOneOf(kModifiers, message.wParam)) return;
        if (IsEditingKey(message) && (IsEditor(message.hwnd) || g_wait.late.empty()))
            DispatchMessageW(&message);
        else if (BringsText(message.wParam))
            TranslateMessage(&message);  // its WM_CHAR is the next key message
        else
            PutOff(message);
    }
}

void PumpMessages(DebugFlow* flow) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE))
        if (IsStopKey(message))
            FlowWantStop(flow, false);
        else
            TakeKey(message);
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
