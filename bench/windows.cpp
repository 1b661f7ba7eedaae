// What the measurements do with the windows of a program: ask them, wait for their painting, bring them to the front.
#include "bench.h"

#include <Scintilla.h>

#include <algorithm>

namespace {

constexpr double kFrontLimitMs = 20000;
constexpr DWORD kQuietMs = 20;

bool NeedsPaint(HWND window) {
    RECT rect = {};
    return GetUpdateRect(window, &rect, FALSE) != FALSE;
}

BOOL CALLBACK AddShown(HWND window, LPARAM context) {
    auto& windows = *reinterpret_cast<std::vector<HWND>*>(context);
    if (IsWindowVisible(window) && std::find(windows.begin(), windows.end(), window) == windows.end())
        windows.push_back(window);
    return TRUE;
}

}  // namespace

void Pause(double ms) {
    using Delay = LONG(WINAPI*)(BOOLEAN alertable, const LARGE_INTEGER* interval);
    static const auto delay = reinterpret_cast<Delay>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtDelayExecution")));
    if (delay == nullptr) Die("ntdll.dll has no NtDelayExecution");
    LARGE_INTEGER interval = {};
    interval.QuadPart = -static_cast<LONGLONG>(ms * 10000);  // negative: relative, in units of 100 ns
    delay(FALSE, &interval);
}

void AwaitPainted(HWND window, double limit) {
    while (NeedsPaint(window)) {
        if (NowMs() > limit) {
            wchar_t name[64] = {};
            GetClassNameW(window, name, 64);
            Die("a window is not painted: " + Narrow(name) + " " + std::to_string(GetDlgCtrlID(window)));
        }
        Pause(kLookMs);
    }
}

void ShownWindows::Add() {
    AddShown(frame_, reinterpret_cast<LPARAM>(&windows_));
    EnumChildWindows(frame_, AddShown, reinterpret_cast<LPARAM>(&windows_));
}

// The painting of one window may make another one dirty. The update region is empty when painting begins; WM_NULL is
// answered after the painting.
void ShownWindows::AwaitPainted(double limit) const {
    for (bool again = true; again;) {
        again = false;
        for (const HWND window : windows_) {
            if (!NeedsPaint(window)) continue;
            again = true;
            ::AwaitPainted(window, limit);
        }
        Ask(frame_, WM_NULL);
    }
}

LRESULT Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    DWORD_PTR result = 0;
    if (!SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kAnswerLimitMs, &result))
        Die("a window does not answer message " + std::to_string(message));
    return static_cast<LRESULT>(result);
}

void AwaitQuiet(HWND window) {
    for (int quiet = 0; quiet < 10; ++quiet) {
        AwaitPainted(window, NowMs() + kFrontLimitMs);
        Sleep(kQuietMs);
        Ask(window, WM_NULL);
    }
}

void BringToFront(const Program& program) {
    SetForegroundWindow(program.Main());
    const double start = NowMs();
    while (Ask(program.Sci(), SCI_GETFOCUS) == 0 || GetForegroundWindow() != program.Main()) {
        if (NowMs() - start > kFrontLimitMs) Die("a program does not come to the front");
        Pause(kLookMs);
    }
    AwaitQuiet(program.Sci());
}
