// Keeps a window from being painted while its content changes. UI thread only.
#pragma once

#include <windows.h>

// While one exists, the window is not painted. A hidden window is left alone, because WM_SETREDRAW with TRUE would show
// it: DefWindowProc clears and sets WS_VISIBLE. The owner invalidates the window afterwards.
class RedrawPause {
public:
    explicit RedrawPause(HWND window) : window_(IsShown(window) ? window : nullptr) { Set(FALSE); }
    ~RedrawPause() { Set(TRUE); }
    RedrawPause(const RedrawPause&) = delete;
    RedrawPause& operator=(const RedrawPause&) = delete;

private:
    static bool IsShown(HWND window) { return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0; }
    void Set(BOOL on) const {
        if (window_ != nullptr) SendMessageW(window_, WM_SETREDRAW, static_cast<WPARAM>(on), 0);
    }

    HWND window_;
};

// The same for its frame too, in which the scroll bars are. A list view under Wine keeps WM_SETREDRAW for its content and
// goes on drawing its scroll bars, each of which takes 2 ms. The owner redraws the window with RDW_FRAME afterwards.
class FramePause {
public:
    explicit FramePause(HWND window)
        : window_((GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0 ? window : nullptr) {
        Set(FALSE);
    }
    ~FramePause() { Set(TRUE); }
    FramePause(const FramePause&) = delete;
    FramePause& operator=(const FramePause&) = delete;

private:
    void Set(BOOL on) const {
        if (window_ != nullptr) DefWindowProcW(window_, WM_SETREDRAW, static_cast<WPARAM>(on), 0);
    }

    HWND window_;
};
