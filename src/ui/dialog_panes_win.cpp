#include "ui/dialog_panes.h"

#include "base/texts.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dialog_scale.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"

#include <richedit.h>

#include <cstdint>
#include <vector>

namespace {

// Leaves Tab, Enter and Esc to the dialog, which the control would keep.
LRESULT CALLBACK DifferenceProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    return message == WM_GETDLGCODE ? DLGC_WANTARROWS : SubclassNext(window, message, wParam, lParam);
}

std::uint32_t ColourOfKind(DifferenceKind kind) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    switch (kind) {
        case DifferenceKind::Removed: return chrome.error;
        case DifferenceKind::Added: return chrome.success;
        case DifferenceKind::Place: return ThemeQuietText();
        default: return 0;
    }
}

}  // namespace

void DialogPutInPlace(HWND dialog, int placeholder, HWND window) {
    RECT place = {};
    const HWND text = GetDlgItem(dialog, placeholder);
    GetWindowRect(text, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    SetWindowLongPtrW(window, GWL_STYLE, GetWindowLongPtrW(window, GWL_STYLE) | WS_TABSTOP | WS_BORDER);
    SetWindowPos(window, text, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_SHOWWINDOW | SWP_FRAMECHANGED);
    DestroyWindow(text);
}

int DialogUnits(HWND dialog, int units) { return static_cast<int>(DialogPixels(dialog, 0, units).cy); }

void DialogMoveControl(HWND dialog, int control, int by) {
    const HWND window = GetDlgItem(dialog, control);
    RECT place = {};
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    SetWindowPos(window, nullptr, place.left, place.top + by, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

HWND DifferencePaneMake(HWND dialog, int placeholder) {
    const HWND pane = RichPaneCreate(dialog, placeholder, L"", false);
    if (pane == nullptr) return nullptr;
    DialogPutInPlace(dialog, placeholder, pane);
    SendMessageW(pane, EM_SETBKGNDCOLOR, 0, static_cast<LPARAM>(ThemeCurrentChrome().paneBack));
    ScrollBarsApplyTheme(pane);
    SubclassAdd(pane, DifferenceProc, 0);
    AccessibleNameSet(pane, Text(L"Difference"));
    return pane;
}

void DifferencePaneShow(HWND pane, std::span<const DifferenceLine> difference) {
    std::vector<PaneLine> lines;
    for (const DifferenceLine& line : difference) lines.push_back({line.text, ColourOfKind(line.kind)});
    if (!lines.empty()) RichLinesAppend(pane, lines, 0);
    SendMessageW(pane, EM_SETSEL, 0, 0);
    RichScrollToLeft(pane);
    SendMessageW(pane, WM_VSCROLL, SB_TOP, 0);
    InvalidateRect(pane, nullptr, TRUE);
}
