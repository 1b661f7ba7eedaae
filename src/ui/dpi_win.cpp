#include "ui/dpi.h"

#include <unordered_map>

namespace {

std::unordered_map<HWND, int> g_told;  // of the dialogs that are open

}  // namespace

void WindowDpiKeep(HWND window, int dpi) { g_told[window] = dpi; }

void WindowDpiForget(HWND window) { g_told.erase(window); }

int WindowDpi(HWND window) {
    if (g_told.empty()) return g_ui.dpi;
    const auto told = g_told.find(GetAncestor(window, GA_ROOT));
    return told != g_told.end() ? told->second : g_ui.dpi;
}
