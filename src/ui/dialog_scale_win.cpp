#include "ui/dialog_scale.h"

#include "base/handles.h"
#include "files/libraries.h"
#include "ui/dialog_screen.h"
#include "ui/dialog_units.h"
#include "ui/dpi.h"
#include "ui/list_view.h"
#include "ui/window_kind.h"

#include <commctrl.h>

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

struct DialogScale {
    LOGFONTW font = {};  // as the dialog was made
    int madeAt = 96;     // the DPI then
    UniqueFont present;  // of the DPI that it has now; none: the one with which it was made
    DialogBase base;
    std::unordered_map<HWND, KeptPlace> kept;         // of the controls, and of the dialog's client area
    std::unordered_map<int, std::vector<UINT>> tabs;  // tab stops of list boxes
};
std::unordered_map<HWND, DialogScale> g_scales;

// The average letter and the height of a line, as the system measures the fonts of dialogs.
DialogBase BaseOf(HFONT font) {
    constexpr wchar_t kLetters[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int kCount = 52;
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(dc, font);
    SIZE size = {};
    TEXTMETRICW metrics = {};
    GetTextExtentPoint32W(dc, kLetters, kCount, &size);
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    return {std::max(static_cast<int>(size.cx / (kCount / 2) + 1) / 2, 1), std::max<int>(metrics.tmHeight, 1)};
}

HFONT FontOf(HWND window) { return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)); }

// The system would scale the controls of a template itself, by which ours would be scaled twice.
void KeepSystemFromScaling(HWND dialog) {
    using SetBehaviour = BOOL(WINAPI*)(HWND, UINT, UINT);
    constexpr UINT kDisableAll = 1;
    static const auto setBehaviour = [] {
        const HMODULE library = LoadSystemLibrary(L"user32.dll");
        return library == nullptr ? nullptr
                                  : reinterpret_cast<SetBehaviour>(
                                        reinterpret_cast<void*>(GetProcAddress(library, "SetDialogDpiChangeBehavior")));
    }();
    // A system that is too old for it does not scale them either.
    if (setBehaviour != nullptr) setBehaviour(dialog, kDisableAll, kDisableAll);
}

// Of a combo box with its open list, which is the height that it takes.
PixelPlace PlaceOfControl(HWND dialog, HWND control) {
    RECT place = {}, open = {};
    GetWindowRect(control, &place);
    if (IsOfClass(control, WC_COMBOBOXW) &&
        SendMessageW(control, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&open)) != FALSE)
        place.bottom = std::max(place.bottom, place.top + (open.bottom - open.top));
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return {static_cast<int>(place.left), static_cast<int>(place.top), static_cast<int>(place.right - place.left),
            static_cast<int>(place.bottom - place.top)};
}

// The places of all controls, and of the client area under the window of the dialog.
std::vector<std::pair<HWND, PixelPlace>> PlacesOf(HWND dialog) {
    std::vector<std::pair<HWND, PixelPlace>> places;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        places.emplace_back(child, PlaceOfControl(dialog, child));
    RECT client = {};
    GetClientRect(dialog, &client);
    places.push_back({dialog, {0, 0, static_cast<int>(client.right), static_cast<int>(client.bottom)}});
    return places;
}

void SetClientSize(HWND dialog, POINT at, int width, int height) {
    RECT frame = {0, 0, width, height};
    AdjustWindowRectExForDpi(&frame, static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_STYLE)), FALSE,
                             static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_EXSTYLE)), GetDpiForWindow(dialog));
    SetWindowPos(dialog, nullptr, at.x, at.y, frame.right - frame.left, frame.bottom - frame.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void SetTabs(HWND dialog, int list, const std::vector<UINT>& stops) {
    SendDlgItemMessageW(dialog, list, LB_SETTABSTOPS, stops.size(), reinterpret_cast<LPARAM>(stops.data()));
}

// A list box keeps in pixels how far it scrolls sideways.
void ScaleExtent(HWND control, const DialogBase& before, const DialogBase& now) {
    if (!IsOfClass(control, WC_LISTBOXW)) return;
    const auto extent = static_cast<int>(SendMessageW(control, LB_GETHORIZONTALEXTENT, 0, 0));
    SendMessageW(control, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(MulDiv(extent, now.width, before.width)), 0);
}

// Gives the font to the controls that have that of the dialog. Others, such as a list, have fonts of their own.
void ExchangeFont(HWND dialog, DialogScale& scale, int dpi) {
    LOGFONTW wanted = scale.font;
    wanted.lfHeight = MulDiv(scale.font.lfHeight, dpi, scale.madeAt);
    wanted.lfWidth = 0;
    UniqueFont font(CreateFontIndirectW(&wanted));
    if (!font) return;
    const HFONT before = scale.present ? scale.present.Get() : FontOf(dialog);
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        if (FontOf(child) == before) SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
    scale.present = std::move(font);  // nothing has the former one any more
    const DialogBase base = std::exchange(scale.base, BaseOf(scale.present.Get()));
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        ScaleExtent(child, base, scale.base);
    for (const auto& [list, stops] : scale.tabs) SetTabs(dialog, list, stops);
}

}  // namespace

void DialogScaleBegin(HWND dialog) {
    if (g_scales.contains(dialog)) return;
    DialogScale& scale = g_scales[dialog];
    scale.madeAt = static_cast<int>(GetDpiForWindow(dialog));
    WindowDpiKeep(dialog, scale.madeAt);
    KeepSystemFromScaling(dialog);
    const HFONT font = FontOf(dialog);
    GetObjectW(font, sizeof(scale.font), &scale.font);
    scale.base = BaseOf(font);
}

void DialogScaleEnd(HWND dialog) {
    g_scales.erase(dialog);
    WindowDpiForget(dialog);
}

void DialogListTabs(HWND dialog, int list, std::span<const UINT> stops) {
    DialogScaleBegin(dialog);
    std::vector<UINT>& kept = g_scales[dialog].tabs[list];
    kept.assign(stops.begin(), stops.end());
    SetTabs(dialog, list, kept);
}

SIZE DialogPixels(HWND dialog, int across, int down) {
    const auto found = g_scales.find(dialog);
    if (found == g_scales.end()) return {};
    const UnitPlace units = {0, 0, static_cast<double>(across), static_cast<double>(down)};
    const PixelPlace pixels = PixelsOfPlace(units, found->second.base);
    return {pixels.width, pixels.height};
}

bool DialogRescale(HWND dialog, int dpi, const RECT& suggested) {
    const auto found = g_scales.find(dialog);
    WindowDpiKeep(dialog, dpi);
    if (found == g_scales.end() || (GetWindowLongPtrW(dialog, GWL_STYLE) & WS_THICKFRAME) != 0) return false;
    DialogScale& scale = found->second;
    std::unordered_map<HWND, KeptPlace> wanted;
    for (const auto& [window, now] : PlacesOf(dialog)) {
        const auto kept = scale.kept.find(window);
        wanted[window].units = WantedPlace(kept != scale.kept.end() ? &kept->second : nullptr, now, scale.base);
    }
    ExchangeFont(dialog, scale, dpi);
    DialogFitFields(dialog);  // before the places, because a combo box that gets another height moves its list
    for (const auto& [window, place] : wanted) {
        const PixelPlace to = PixelsOfPlace(place.units, scale.base);
        if (window == dialog)
            SetClientSize(dialog, {suggested.left, suggested.top}, to.width, to.height);
        else
            SetWindowPos(window, nullptr, to.left, to.top, to.width, to.height,
                         SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }
    DialogFitTexts(dialog);
    DialogFitSize(dialog);
    ListViewsRenew(dialog);
    for (const auto& [window, now] : PlacesOf(dialog)) wanted[window].shown = now;
    scale.kept = std::move(wanted);
    RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    return true;
}
