#include "ui/small_icon.h"

#include "resources/ids.h"
#include "ui/dpi.h"

namespace {

void Exchange(HWND window, HANDLE icon) {
    const LRESULT before = SendMessageW(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
    if (before != 0) DestroyIcon(reinterpret_cast<HICON>(before));
}

}  // namespace

void SmallIconShow(HWND window) {
    const auto dpi = static_cast<UINT>(WindowDpi(window));
    const HANDLE icon =
        LoadImageW(g_ui.hInstance, MAKEINTRESOURCEW(IDI_APP), IMAGE_ICON, GetSystemMetricsForDpi(SM_CXSMICON, dpi),
                   GetSystemMetricsForDpi(SM_CYSMICON, dpi), 0);
    if (icon != nullptr) Exchange(window, icon);
}

void SmallIconDrop(HWND window) { Exchange(window, nullptr); }
