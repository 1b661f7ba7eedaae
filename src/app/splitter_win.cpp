// The bars between the panes. UI thread.
#include "app/app_state.h"
#include "app/layout.h"
#include "app/main_window.h"
#include "resources/ids.h"
#include "ui/chrome.h"
#include "ui/paint.h"

namespace {

constexpr wchar_t kSplitterClass[] = L"KxeSplitter";

struct SplitterDrag {
    bool active = false;
    POINT start = {};    // screen coordinates, because the bar itself moves
    int startValue = 0;  // of SplitterValue
} g_drag;

Splitter KindOfSplitter(int id) {
    switch (id) {
        case IDC_SPLIT_OUTPUT: return Splitter::Output;
        case IDC_SPLIT_TREE: return Splitter::Tree;
        case IDC_SPLIT_DEBUG: return Splitter::Debug;
        default: return Splitter::Side;
    }
}

std::int32_t& SplitterValue(Splitter kind) {
    switch (kind) {
        case Splitter::Output: return g_app.settings.splitter;
        case Splitter::Tree: return g_app.settings.projectTreeWidth;
        case Splitter::Debug: return g_app.debugPaneWidth;
        case Splitter::Side: break;
    }
    return g_app.settings.aiSidebarWidth;
}

RECT PlaceInFrame(HWND child) {
    RECT place = {};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, g_app.hMainWnd, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void BeginSplitterDrag(HWND window, Splitter kind) {
    g_drag.active = true;
    GetCursorPos(&g_drag.start);
    g_drag.startValue = SplitterValue(kind);
    // The drag starts at the bar's place on the screen, because the stored value may be outside the limits of the
    // window.
    if (kind == Splitter::Output) g_drag.startValue = static_cast<int>(PlaceInFrame(window).top);
    if (kind == Splitter::Debug) {
        const RECT pane = PlaceInFrame(g_app.hDebugPane);
        g_drag.startValue = static_cast<int>(pane.right - pane.left);
    }
    SetCapture(window);
}

void DragSplitter(Splitter kind) {
    if (!g_drag.active) return;
    POINT now = {};
    GetCursorPos(&now);
    {
        const SettingsEdit edit;  // the change of a setting lays out the panes
        SplitterValue(kind) = DraggedSplitter(kind, g_drag.startValue, static_cast<int>(now.x - g_drag.start.x),
                                              static_cast<int>(now.y - g_drag.start.y), g_app.dpi);
    }
    if (kind == Splitter::Debug) MainWindow_Layout();  // because its width is no setting
    UpdateWindow(g_app.hMainWnd);
}

void EndSplitterDrag() {
    if (!g_drag.active) return;
    g_drag.active = false;
    CaptureSplitterRatio();
}

LRESULT EraseSplitter(HWND window, HDC dc) {
    RECT area = {};
    GetClientRect(window, &area);
    FillArea(dc, area, ThemeCurrentChrome().line);
    return 1;
}

}  // namespace

HWND CreateSplitter(HWND parent, int id) {
    static const ATOM registered = [] {
        WNDCLASSEXW description = {};
        description.cbSize = sizeof(description);
        description.lpfnWndProc = SplitterProc;
        description.hInstance = g_app.hInstance;
        description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNSHADOW + 1);  // EraseSplitter fills the bar
        description.lpszClassName = kSplitterClass;
        return RegisterClassExW(&description);
    }();
    if (registered == 0) return nullptr;
    return CreateWindowExW(0, kSplitterClass, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_app.hInstance, nullptr);
}

LRESULT CALLBACK SplitterProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const Splitter kind = KindOfSplitter(GetDlgCtrlID(window));
    switch (message) {
        case WM_SETCURSOR:
            SetCursor(LoadCursorW(nullptr, kind == Splitter::Output ? IDC_SIZENS : IDC_SIZEWE));
            return TRUE;
        case WM_WINDOWPOSCHANGING:
            // Without SWP_NOCOPYBITS the bar would, under Wine, copy what its neighbours have painted at its old place.
            reinterpret_cast<WINDOWPOS*>(lParam)->flags |= SWP_NOCOPYBITS;
            return 0;
        case WM_ERASEBKGND: return EraseSplitter(window, reinterpret_cast<HDC>(wParam));
        case WM_LBUTTONDOWN: BeginSplitterDrag(window, kind); return 0;
        case WM_MOUSEMOVE: DragSplitter(kind); return 0;
        case WM_LBUTTONUP: ReleaseCapture(); return 0;
        case WM_CAPTURECHANGED: EndSplitterDrag(); return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}
