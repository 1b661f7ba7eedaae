// The place of the main window: found at the start, kept while the program runs. UI thread.
#include "app/window_place.h"
#include "app/app_state.h"
#include "app/main_window.h"

#include <algorithm>
#include <climits>
#include <optional>

namespace {

// The window is maximised when it is shown. A window that were maximised while it is being created would lose its
// restored place under Wine.
bool g_startsMaximised = false;

PaneRect RectOf(const RECT& rect) {
    return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
            static_cast<int>(rect.bottom)};
}

int WindowSetting(const wchar_t* key, int fallback) {
    // GetPrivateProfileIntW looks for a name without a path in the Windows folder, while the settings are written
    // beside the executable. This is intended: an administrator can set the window's place for every user there.
    return static_cast<int>(GetPrivateProfileIntW(L"Window", key, fallback, L"Editor.ini"));
}

// The work area of a monitor.
std::optional<PaneRect> WorkAreaOf(HMONITOR monitor) {
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    if (GetMonitorInfoW(monitor, &info) == FALSE) return std::nullopt;
    return RectOf(info.rcWork);
}

void PlaceWindow(HWND window, const PaneRect& place) {
    SetWindowPos(window, nullptr, place.left, place.top, place.width(), place.height(), SWP_NOZORDER | SWP_NOACTIVATE);
}

// False when the system's folder holds no place.
bool ApplyPlaceOfSystem(HWND window) {
    const PaneRect wanted = FarRect(WindowSetting(L"Left", INT_MIN), WindowSetting(L"Top", INT_MIN),
                                    WindowSetting(L"Width", 0), WindowSetting(L"Height", 0));
    if (wanted.width() < 1 || wanted.height() < 1) return false;
    const RECT rect = {wanted.left, wanted.top, wanted.right, wanted.bottom};
    const auto work = WorkAreaOf(MonitorFromRect(&rect, MONITOR_DEFAULTTONEAREST));
    if (!work) return false;
    PlaceWindow(window, FitToWorkArea(wanted, *work));
    g_startsMaximised = WindowSetting(L"Max", 0) != 0;
    return true;
}

// The place of the last run. Its size keeps its meaning on a monitor of another resolution.
void ApplyStoredPlace(HWND window, const StoredPlace& stored) {
    const PaneRect was = StoredRect(stored);
    const auto captionAt = [](int dpi) {
        const auto of = static_cast<UINT>(dpi);
        return GetSystemMetricsForDpi(SM_CYCAPTION, of) + GetSystemMetricsForDpi(SM_CYSIZEFRAME, of);
    };
    const POINT caption = {was.left + was.width() / 2, was.top + captionAt(std::max(stored.dpi, 96)) / 2};
    const auto work = WorkAreaOf(MonitorFromPoint(caption, MONITOR_DEFAULTTONEAREST));
    if (!work) return;
    // Moved there first, because only then the resolution is known.
    const int anywhere = std::clamp(was.left, work->left, std::max(work->left, work->right - 1));
    SetWindowPos(window, nullptr, anywhere, work->top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    g_app.dpi = static_cast<int>(GetDpiForWindow(window));
    PlaceWindow(window, PlaceForReturnAt(stored, g_app.dpi, *work, captionAt(g_app.dpi)));
}

// The window was created with the default size in pixels, which is too small on a screen of high resolution and may be
// too large on a small one.
void ApplyDefaultSize(HWND window) {
    RECT is = {};
    const auto work = WorkAreaOf(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST));
    if (!work || GetWindowRect(window, &is) == FALSE) return;
    if (g_app.dpi != 96 || !LiesInside(RectOf(is), *work))
        PlaceWindow(window, FirstPlace(RectOf(is), *work, g_app.dpi));
}

}  // namespace

void MainWnd_RestorePlace(HWND window) {
    // A copy, because each move of the window is noted.
    const StoredPlace stored = g_app.settings.place;
    if (ApplyPlaceOfSystem(window)) return;
    if (stored.width < 1 || stored.height < 1) {
        ApplyDefaultSize(window);
        return;
    }
    ApplyStoredPlace(window, stored);
    g_startsMaximised = stored.maximised != 0;
}

bool MainWnd_StartsMaximised() { return g_startsMaximised; }

void MainWnd_NotePlace(HWND window) {
    WINDOWPLACEMENT place = {};
    place.length = sizeof place;
    if (GetWindowPlacement(window, &place) == FALSE) return;
    const RECT& normal = place.rcNormalPosition;
    g_app.windowPlace = {.known = true,
                         .left = static_cast<int>(normal.left),
                         .top = static_cast<int>(normal.top),
                         .width = static_cast<int>(normal.right - normal.left),
                         .height = static_cast<int>(normal.bottom - normal.top),
                         .maximised = place.showCmd == SW_SHOWMAXIMIZED};
    StoredPlace& stored = g_app.settings.place;
    if (IsIconic(window) != FALSE) return;  // comes back as it was before
    stored.maximised = IsZoomed(window) != FALSE ? 1 : 0;
    RECT is = {};
    if (stored.maximised != 0 || GetWindowRect(window, &is) == FALSE) return;
    const PaneRect rect = RectOf(is);
    stored = {.left = rect.left,
              .top = rect.top,
              .width = rect.width(),
              .height = rect.height(),
              .maximised = 0,
              .dpi = g_app.dpi};
}
