// The place of the main window: found at the start, kept while the program runs. UI thread.
#include "app/app_state.h"
#include "app/layout.h"
#include "app/main_window.h"
#include "ui/dpi.h"

#include <algorithm>
#include <climits>
#include <optional>

namespace {

constexpr int kFarAway = 1000000;  // pixels, beyond any desktop
constexpr int kWidth = 1200;       // of a window whose place is not known, at 96 dpi
constexpr int kHeight = 800;

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

// False when the system's folder holds no place.
bool ApplyPlaceOfSystem(HWND window) {
    // The file may hold any number, and the sums below must not overflow.
    const int left = std::clamp(WindowSetting(L"Left", INT_MIN), -kFarAway, kFarAway);
    const int top = std::clamp(WindowSetting(L"Top", INT_MIN), -kFarAway, kFarAway);
    const int width = std::min(WindowSetting(L"Width", 0), kFarAway);
    const int height = std::min(WindowSetting(L"Height", 0), kFarAway);
    if (width < 1 || height < 1) return false;
    const RECT wanted = {left, top, left + width, top + height};
    const auto work = WorkAreaOf(MonitorFromRect(&wanted, MONITOR_DEFAULTTONEAREST));
    if (!work) return false;
    const PaneRect fitted = FitToWorkArea({left, top, left + width, top + height}, *work);
    SetWindowPos(window, nullptr, fitted.left, fitted.top, fitted.width(), fitted.height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    g_startsMaximised = WindowSetting(L"Max", 0) != 0;
    return true;
}

// The place of the last run. Its size keeps its meaning on a monitor of another resolution.
void ApplyStoredPlace(HWND window, const StoredPlace& stored) {
    const int left = std::clamp<int>(stored.left, -kFarAway, kFarAway);
    const int top = std::clamp<int>(stored.top, -kFarAway, kFarAway);
    const int oldWidth = std::min<int>(stored.width, kFarAway);
    const int captionHeight = GetSystemMetrics(SM_CYCAPTION) + GetSystemMetrics(SM_CYSIZEFRAME);
    const HMONITOR monitor = MonitorFromPoint({left + oldWidth / 2, top + captionHeight / 2}, MONITOR_DEFAULTTONEAREST);
    const auto work = WorkAreaOf(monitor);
    if (!work) return;
    // Moved there first, because only then the resolution is known.
    const int anywhere = std::clamp(left, work->left, std::max(work->left, work->right - 1));
    SetWindowPos(window, nullptr, anywhere, work->top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    g_app.dpi = static_cast<int>(GetDpiForWindow(window));
    // The window would not become smaller than its least size, and would then not be where it was fitted in.
    const int width = std::max(MulDiv(oldWidth, g_app.dpi, stored.dpi), UiScaled(kMinimumWidth));
    const int height =
        std::max(MulDiv(std::min<int>(stored.height, kFarAway), g_app.dpi, stored.dpi), UiScaled(kMinimumHeight));
    const PaneRect place = PlaceForReturn({left, top, left + width, top + height}, *work, captionHeight);
    SetWindowPos(window, nullptr, place.left, place.top, place.width(), place.height(), SWP_NOZORDER | SWP_NOACTIVATE);
}

// The window was created with the default size in pixels, which is too small on a screen of high resolution.
void ApplyDefaultSize(HWND window) {
    RECT is = {};
    if (g_app.dpi == 96 || GetWindowRect(window, &is) == FALSE) return;
    const auto work = WorkAreaOf(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST));
    if (!work) return;
    const int width = std::min(UiScaled(kWidth), work->width()), height = std::min(UiScaled(kHeight), work->height());
    const int left = std::clamp(static_cast<int>(is.left), work->left, work->right - width);
    const int top = std::clamp(static_cast<int>(is.top), work->top, work->bottom - height);
    SetWindowPos(window, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
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
