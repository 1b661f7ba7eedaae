// The bars between the panes. UI thread only.
#include "app/app_state.h"
#include "app/layout.h"
#include "app/main_window.h"
#include "commands/command_state.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/paint.h"

#include <windowsx.h>

#include <algorithm>

namespace {

constexpr wchar_t kSplitterClass[] = L"KxeSplitter";

struct SplitterDrag {
    bool active = false;
    POINT start = {};  // screen coordinates: the bar moves under the mouse
    int startValue = 0;
} g_drag;

std::int32_t& ValueOf(int id) {
    if (id == IDC_SPLIT_OUTPUT) return g_app.settings.splitter;
    if (id == IDC_SPLIT_TREE) return g_app.settings.projectTreeWidth;
    if (id == IDC_SPLIT_DEBUG) return g_app.debugPaneWidth;
    return g_app.settings.aiSidebarWidth;
}

void BeginDrag(HWND window, int id) {
    g_drag.active = true;
    GetCursorPos(&g_drag.start);
    RECT bar = {};
    GetWindowRect(window, &bar);
    MapWindowPoints(nullptr, g_app.hMainWnd, reinterpret_cast<POINT*>(&bar), 2);
    // From where the bar stands now: the stored value may lie outside what the window has room for.
    g_drag.startValue = id == IDC_SPLIT_OUTPUT ? static_cast<int>(bar.top) : ValueOf(id);
    if (id == IDC_SPLIT_DEBUG) {
        RECT pane = {};
        GetWindowRect(g_app.hDebugPane, &pane);
        g_drag.startValue = static_cast<int>(pane.right - pane.left);
    }
    SetCapture(window);
}

void Drag(int id) {
    POINT now = {};
    GetCursorPos(&now);
    int value = g_drag.startValue;
    if (id == IDC_SPLIT_OUTPUT)
        value += now.y - g_drag.start.y;
    else if (id == IDC_SPLIT_TREE)
        value = std::clamp(value + MulDiv(now.x - g_drag.start.x, 96, g_app.dpi), 100, 200);
    else if (id == IDC_SPLIT_DEBUG)
        value = std::max(1, value + static_cast<int>(g_drag.start.x - now.x));  // the layout knows the other limits
    else
        value = std::clamp(value + MulDiv(g_drag.start.x - now.x, 96, g_app.dpi), 150, 600);
    ValueOf(id) = value;
    MainWindow_Layout();
    UpdateWindow(g_app.hMainWnd);
}

void EndDrag() {
    if (!g_drag.active) return;
    g_drag.active = false;
    CaptureSplitterRatio();
}

}  // namespace

HWND CreateSplitter(HWND parent, int id) {
    static const ATOM registered = [] {
        WNDCLASSEXW description = {};
        description.cbSize = sizeof(description);
        description.lpfnWndProc = SplitterProc;
        description.hInstance = g_app.hInstance;
        description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        description.lpszClassName = kSplitterClass;
        return RegisterClassExW(&description);
    }();
    if (registered == 0) return nullptr;
    return CreateWindowExW(0, kSplitterClass, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_app.hInstance, nullptr);
}

LRESULT CALLBACK SplitterProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const int id = GetDlgCtrlID(window);
    switch (message) {
        case WM_SETCURSOR:
            SetCursor(LoadCursorW(nullptr, id == IDC_SPLIT_OUTPUT ? IDC_SIZENS : IDC_SIZEWE));
            return TRUE;
        case WM_WINDOWPOSCHANGING:
            // Moved together with its neighbours it would bring along what these left at its old place (Wine).
            reinterpret_cast<WINDOWPOS*>(lParam)->flags |= SWP_NOCOPYBITS;
            return 0;
        case WM_ERASEBKGND: {
            RECT area = {};
            GetClientRect(window, &area);
            FillArea(reinterpret_cast<HDC>(wParam), area, ThemeCurrentChrome().line);
            return 1;
        }
        case WM_LBUTTONDOWN: BeginDrag(window, id); return 0;
        case WM_MOUSEMOVE:
            if (g_drag.active) Drag(id);
            return 0;
        case WM_LBUTTONUP: ReleaseCapture(); return 0;
        case WM_CAPTURECHANGED: EndDrag(); return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}
